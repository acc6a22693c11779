#include <apps/import/SamplePictures.h>

#include <string_view>

namespace vxr::importing {

namespace {

std::string fromHexadecimal(std::string_view digits)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += char(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
    return bytes;
}

} // namespace

std::string sampleJPEG()
{
    return fromHexadecimal(
        "ffd8ffdb004300080606070605080707070909080a0c140d0c0b0b0c1912130f141d1a1f1e1d1a1c1c20242e2720222c"
        "231c1c2837292c30313434341f27393d38323c2e333432ffc0000b080001000101011100ffc400140001000000000000"
        "00000000000000000008ffc40014100100000000000000000000000000000000ffda0008010100003f003fbfffd9");
}

std::string samplePNG()
{
    return fromHexadecimal(
        "89504e470d0a1a0a0000000d49484452000000010000000108000000003a7e9b550000000a49444154789c6360000000"
        "02000148afa4710000000049454e44ae426082");
}

std::string sampleBMP()
{
    return fromHexadecimal(
        "424d3a000000000000003600000028000000010000000100000001001800000000000400000000000000000000000000"
        "00000000000000000000");
}

} // namespace vxr::importing
