#include <vxr/platform/imaging/PageMark.h>

#include <sys/random.h>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace vxr {

std::string makePageMark()
{
    std::array<std::uint8_t, 16> random {};
    if (::getrandom(random.data(), random.size(), 0) != ssize_t(random.size()))
        throw std::runtime_error("no random numbers");
    std::string mark;
    for (const std::uint8_t byte : random) {
        mark += "0123456789abcdef"[byte >> 4];
        mark += "0123456789abcdef"[byte & 15];
    }
    return mark;
}

std::string pageMarkJPEG(std::string_view mark)
{
    std::string jpeg;
    const auto segment = [&](std::uint8_t code, std::string_view content) {
        jpeg += { '\xff', char(code), char((content.size() + 2) >> 8), char(content.size() + 2) };
        jpeg += content;
    };
    const auto huffmanTable = [&](char id, char value) {
        std::string table(17, '\0');
        table[0] = id;
        table[1] = 1; // one code of one bit
        segment(0xc4, table + value);
    };
    jpeg = "\xff\xd8";
    segment(0xfe, mark);
    segment(0xdb, '\0' + std::string(64, '\x10'));
    segment(0xc0, std::string("\x08\0\1\0\1\1\1\x11\0", 9)); // 8 bits, 1 x 1, one component
    huffmanTable(0x00, 0);
    huffmanTable(0x10, 0);
    segment(0xda, std::string("\1\1\0\0\x3f\0", 6));
    return jpeg + "\x3f\xff\xd9"; // no difference, end of block, padding
}

} // namespace vxr
