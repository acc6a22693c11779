#include <apps/import/pict/PictPixels.h>

#include <algorithm>

namespace vxr::importing {
namespace {

constexpr std::int64_t pixelLimit = 64'000'000;
constexpr int shortestPackedRow = 8; ///< shorter rows are stored as they are
constexpr int longestByteCounted = 250; ///< the packed length of longer rows is of two bytes

/// Unpacks runs of `unit` bytes: a count of n from 0 to 127 is followed by n + 1 units, one from -1 to -127
/// by a unit that stands for 1 - n. What is missing stays zero.
void unpackRow(std::span<const std::byte> packed, std::size_t unit, std::span<std::uint8_t> row)
{
    std::size_t in = 0, out = 0;
    while (in < packed.size() && out < row.size()) {
        const int count = static_cast<std::int8_t>(packed[in++]);
        if (count == -128)
            continue;
        const bool repeats = count < 0;
        const std::size_t units = static_cast<std::size_t>(repeats ? 1 - count : count + 1);
        for (std::size_t i = 0; i < units; ++i) {
            const std::size_t from = in + (repeats ? 0 : i * unit);
            for (std::size_t b = 0; b < unit && from + b < packed.size() && out < row.size(); ++b)
                row[out++] = std::to_integer<std::uint8_t>(packed[from + b]);
        }
        in += unit * (repeats ? 1 : units);
    }
}

std::uint32_t opaque(unsigned red, unsigned green, unsigned blue)
{
    return 0xff000000u | red << 16 | green << 8 | blue;
}

} // namespace

PictPixelFormat PictPixelFormat::read(PictReader& reader)
{
    PictPixelFormat format;
    const int rowBytes = reader.u16();
    format.isBitmap = !(rowBytes & 0x8000);
    format.rowBytes = rowBytes & 0x7fff;
    format.bounds = reader.rect();
    if (!format.isBitmap) {
        format.readPixelMap(reader);
        format.readColorTable(reader);
    }
    format.check();
    return format;
}

PictPixelFormat PictPixelFormat::readDirect(PictReader& reader)
{
    PictPixelFormat format;
    reader.skip(4); // a base address
    format.isBitmap = false;
    format.rowBytes = reader.u16() & 0x7fff;
    format.bounds = reader.rect();
    format.readPixelMap(reader);
    if (format.pixelSize != 16 && format.pixelSize != 32)
        throw PictError("An image of direct colours has neither 16 nor 32 bits a pixel.");
    format.check();
    return format;
}

void PictPixelFormat::readPixelMap(PictReader& reader)
{
    reader.skip(2); // the record's version
    packType = reader.u16();
    reader.skip(4 + 8 + 2); // packed size, resolutions, kind of pixels
    pixelSize = reader.u16();
    componentCount = reader.u16();
    reader.skip(2 + 12); // size of a component, planes, colour table, reserved
}

void PictPixelFormat::readColorTable(PictReader& reader)
{
    reader.skip(4);
    const bool isDevice = reader.u16() & 0x8000; // entries in order, without indices
    const int count = reader.u16() + 1;
    if (count > 256)
        throw PictError("A colour table is damaged.");
    colors.assign(256, 0xff000000u);
    for (int i = 0; i < count; ++i) {
        const int index = reader.u16();
        const unsigned red = reader.u16() >> 8, green = reader.u16() >> 8, blue = reader.u16() >> 8;
        colors[std::size_t(isDevice ? i : index & 255)] = opaque(red, green, blue);
    }
}

void PictPixelFormat::check() const
{
    const bool isKnown = isBitmap || pixelSize == 1 || pixelSize == 2 || pixelSize == 4 || pixelSize == 8
        || pixelSize == 16 || pixelSize == 32;
    if (!isKnown || bounds.isEmpty() || std::int64_t(bounds.width()) * bounds.height() > pixelLimit)
        throw PictError("An image is damaged.");
    const int bits = isBitmap ? 1 : pixelSize;
    if (std::int64_t(rowBytes) * 8 < std::int64_t(bounds.width()) * bits)
        throw PictError("An image has rows that are too short.");
}

PictPixels PictPixelFormat::readPixels(PictReader& reader, bool isPacked) const
{
    PictPixels image { bounds, isBitmap, {} };
    const auto width = static_cast<std::size_t>(bounds.width());
    image.pixels.reserve(width * static_cast<std::size_t>(bounds.height()));
    const bool isDirect = !isBitmap && pixelSize >= 16;
    const bool isStored = !isPacked || rowBytes < shortestPackedRow || packType == 1 || packType == 2;
    // Packed rows of 32 bits hold one component after the other; alpha comes first where there is one.
    const bool isPlanar = isDirect && pixelSize == 32 && !isStored;
    const std::size_t planes = componentCount == 4 ? 4 : 3;
    std::size_t rowSize = static_cast<std::size_t>(rowBytes);
    if (isPlanar)
        rowSize = width * planes;
    else if (isDirect && pixelSize == 32 && packType == 2)
        rowSize = width * 3;
    std::vector<std::uint8_t> row(rowSize);
    for (int y = 0; y < bounds.height(); ++y) {
        if (isStored) {
            const auto bytes = reader.bytes(rowSize);
            std::transform(bytes.begin(), bytes.end(), row.begin(),
                [](std::byte b) { return std::to_integer<std::uint8_t>(b); });
        } else {
            const std::size_t length = rowBytes > longestByteCounted ? reader.u16() : reader.u8();
            std::fill(row.begin(), row.end(), std::uint8_t(0));
            unpackRow(reader.bytes(length), isDirect && pixelSize == 16 ? 2 : 1, row);
        }
        for (std::size_t x = 0; x < width; ++x) {
            if (isPlanar) {
                const std::size_t first = (planes - 3) * width + x;
                image.pixels.push_back(opaque(row[first], row[first + width], row[first + 2 * width]));
            } else if (isDirect && pixelSize == 32) {
                const std::size_t at = packType == 2 ? 3 * x : 4 * x + 1;
                image.pixels.push_back(opaque(row[at], row[at + 1], row[at + 2]));
            } else if (isDirect) {
                const unsigned word = unsigned(row[2 * x]) << 8 | row[2 * x + 1];
                const auto wide = [](unsigned five) { return (five & 31) << 3 | (five & 31) >> 2; };
                image.pixels.push_back(opaque(wide(word >> 10), wide(word >> 5), wide(word)));
            } else {
                const auto bits = static_cast<std::size_t>(isBitmap ? 1 : pixelSize);
                const std::size_t bit = x * bits;
                const unsigned value = unsigned(row[bit / 8]) >> (8 - bits - bit % 8) & ((1u << bits) - 1);
                image.pixels.push_back(isBitmap ? value : colors[value]);
            }
        }
    }
    return image;
}

} // namespace vxr::importing
