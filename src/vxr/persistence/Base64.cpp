#include <vxr/persistence/Base64.h>

#include <vxr/platform/base/Exceptions.h>

#include <cstdint>

namespace vxr {

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string base64FromBytes(std::span<const std::byte> bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (i + k < bytes.size() ? std::to_integer<std::uint32_t>(bytes[i + k]) : 0);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : digits[group >> (18 - 6 * k) & 63];
    }
    return text;
}

std::vector<std::byte> bytesFromBase64(std::string_view text)
{
    std::vector<std::byte> bytes;
    std::uint32_t group = 0;
    int bits = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        if (c == ' ' || c == '\n' || c == '\t')
            continue;
        const std::size_t digit = digits.find(c);
        if ((c != '=' && (digit == digits.npos || padding > 0)) || (c == '=' && ++padding > 2))
            throw InvalidArgumentException("this is no base64 text");
        if (c == '=')
            continue;
        group = group << 6 | static_cast<std::uint32_t>(digit);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes.push_back(static_cast<std::byte>(group >> bits & 255));
        }
    }
    return bytes;
}

} // namespace vxr
