#include <vxr/images/VXRPixelConversions.h>

#include <bit>

namespace vxr {

namespace {

/// Five bits of each component, the highest bit unused.
void convertToRGB555(const std::uint8_t* source, int pixelBytes, std::uint16_t* out, int count)
{
    for (int i = 0; i < count; ++i, source += pixelBytes)
        out[i]
            = static_cast<std::uint16_t>((source[0] & 0xf8) << 7 | (source[1] & 0xf8) << 2 | source[2] >> 3);
}

} // namespace

void convertARGBtoRGBA(const std::uint32_t* argb, std::uint32_t* rgba, int count)
{
    for (int i = 0; i < count; ++i)
        rgba[i] = std::rotl(argb[i], 8);
}

void convertRGBAtoARGB(const std::uint32_t* rgba, std::uint32_t* argb, int count)
{
    for (int i = 0; i < count; ++i)
        argb[i] = std::rotr(rgba[i], 8);
}

void convertRGBtoARGB(const std::uint8_t* rgb, std::uint32_t* argb, int count)
{
    for (int i = 0; i < count; ++i, rgb += 3)
        argb[i] = 0xff000000u | std::uint32_t { rgb[0] } << 16 | std::uint32_t { rgb[1] } << 8 | rgb[2];
}

void convertRGBAtoRGB555(const std::uint8_t* rgba, std::uint16_t* rgb555, int count)
{
    convertToRGB555(rgba, 4, rgb555, count);
}

void convertRGBtoRGB555(const std::uint8_t* rgb, std::uint16_t* rgb555, int count)
{
    convertToRGB555(rgb, 3, rgb555, count);
}

void VXRExtractAlphaChannel(const std::uint8_t* source, std::size_t sourceRowBytes, std::uint8_t* destination,
    std::size_t destinationRowBytes, int width, int height)
{
    for (int y = 0; y < height; ++y, source += sourceRowBytes, destination += destinationRowBytes)
        for (int x = 0; x < width; ++x)
            destination[x] = source[4 * x + 3];
}

void VXRColorizeAlphaBuffer(const std::uint8_t* alpha, std::size_t alphaRowBytes, std::uint8_t* destination,
    std::size_t destinationRowBytes, int width, int height, std::uint8_t c1, std::uint8_t c2, std::uint8_t c3,
    std::uint8_t c4)
{
    for (int y = 0; y < height; ++y, alpha += alphaRowBytes, destination += destinationRowBytes) {
        std::uint8_t* out = destination;
        for (int x = 0; x < width; ++x, out += 4) {
            const unsigned a = alpha[x] * unsigned { c4 } >> 8;
            out[0] = static_cast<std::uint8_t>(c3 * a >> 8);
            out[1] = static_cast<std::uint8_t>(c2 * a >> 8);
            out[2] = static_cast<std::uint8_t>(c1 * a >> 8);
            out[3] = static_cast<std::uint8_t>(a);
        }
    }
}

} // namespace vxr
