#include <apps/import/ExifTags.h>

namespace vxr::importing {

namespace {

class TiffBytes {
public:
    explicit TiffBytes(std::span<const std::byte> bytes)
        : mBytes(bytes)
        , mIsBigEndian(!bytes.empty() && bytes[0] == std::byte { 'M' })
    {
    }

    /// Of `size` bytes; 0 beyond the end.
    std::uint32_t number(std::size_t at, std::size_t size) const
    {
        if (at > mBytes.size() || size > mBytes.size() - at)
            return 0;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | std::uint32_t(mBytes[mIsBigEndian ? at + i : at + size - 1 - i]);
        return value;
    }

    double fraction(std::size_t at) const
    {
        const double under = number(at + 4, 4);
        return under > 0 ? number(at, 4) / under : 0;
    }

private:
    std::span<const std::byte> mBytes;
    bool mIsBigEndian;
};

enum Tag : std::uint32_t { Orientation = 0x112, ResolutionX = 0x11a, ResolutionY = 0x11b, Unit = 0x128 };
enum Type : std::uint32_t { Short = 3, Rational = 5 };

} // namespace

ExifTags readExifTags(std::span<const std::byte> tiff)
{
    constexpr std::size_t entrySize = 12;
    constexpr std::uint32_t inches = 2, centimetres = 3;
    const TiffBytes bytes(tiff);
    const std::size_t directory = bytes.number(4, 4);
    double x = 0, y = 0;
    std::uint32_t unit = inches;
    ExifTags tags;
    for (std::uint32_t i = 0, count = bytes.number(directory, 2); i < count; ++i) {
        const std::size_t entry = directory + 2 + i * entrySize;
        if (entry + entrySize > tiff.size())
            break;
        const std::uint32_t tag = bytes.number(entry, 2), type = bytes.number(entry + 2, 2);
        const std::uint32_t value = bytes.number(entry + 8, type == Short ? 2 : 4);
        if (tag == Orientation && type == Short && value >= 1 && value <= 8)
            tags.orientation = value;
        else if (tag == Unit && type == Short)
            unit = value;
        else if (tag == ResolutionX && type == Rational)
            x = bytes.fraction(value);
        else if (tag == ResolutionY && type == Rational)
            y = bytes.fraction(value);
    }
    if (x > 0 && y > 0 && (unit == inches || unit == centimetres)) {
        const double perInch = unit == inches ? 1 : 2.54;
        tags.horizontalResolution = float(x * perInch);
        tags.verticalResolution = float(y * perInch);
    }
    return tags;
}

} // namespace vxr::importing
