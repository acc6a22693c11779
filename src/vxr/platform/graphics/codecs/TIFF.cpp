#include <vxr/platform/graphics/ImageImpl.h>
#include <vxr/platform/graphics/codecs/TIFF.h>

#include <cstring>

namespace vxr {

namespace {

enum FieldType : std::uint16_t { Short = 3, Long = 4 };

/// A little-endian file with one directory after the pixels.
class Writer {
public:
    void put16(std::uint32_t value) { put(value, 2); }
    void put32(std::uint32_t value) { put(value, 4); }
    void putField(std::uint16_t tag, FieldType type, std::uint32_t count, std::uint32_t value)
    {
        put16(tag);
        put16(type);
        put32(count);
        put32(value);
    }
    void putBytes(const std::vector<std::uint8_t>& bytes)
    {
        const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
        mBytes.insert(mBytes.end(), first, first + bytes.size());
    }
    std::vector<std::byte> take() { return std::move(mBytes); }

private:
    void put(std::uint32_t value, int bytes)
    {
        for (; bytes > 0; --bytes, value >>= 8)
            mBytes.push_back(static_cast<std::byte>(value & 0xff));
    }

    std::vector<std::byte> mBytes;
};

} // namespace

std::vector<std::uint8_t> straightPixelsOfImage(const Image& image)
{
    const std::size_t row = static_cast<std::size_t>(image.width()) * 4;
    std::vector<std::uint8_t> pixels(row * static_cast<std::size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y)
        readStraightRow(image.layout(), image.pixels(), y, pixels.data() + static_cast<std::size_t>(y) * row);
    return pixels;
}

std::vector<std::byte> tiffOfImage(const Image& image)
{
    const auto width = static_cast<std::uint32_t>(image.width());
    const auto height = static_cast<std::uint32_t>(image.height());
    constexpr std::uint32_t headerBytes = 8, bitsBytes = 8;
    const std::uint32_t pixelBytes = width * height * 4;
    Writer file;
    file.put16('I' | 'I' << 8);
    file.put16(42);
    file.put32(headerBytes + bitsBytes + pixelBytes);
    for (int sample = 0; sample < 4; ++sample)
        file.put16(8);
    file.putBytes(straightPixelsOfImage(image));
    file.put16(11);
    file.putField(256, Long, 1, width);
    file.putField(257, Long, 1, height);
    file.putField(258, Short, 4, headerBytes); // bits per sample
    file.putField(259, Short, 1, 1); // not compressed
    file.putField(262, Short, 1, 2); // RGB
    file.putField(273, Long, 1, headerBytes + bitsBytes); // the only strip
    file.putField(277, Short, 1, 4);
    file.putField(278, Long, 1, height);
    file.putField(279, Long, 1, pixelBytes);
    file.putField(284, Short, 1, 1); // samples interleaved
    file.putField(338, Short, 1, 2); // the fourth is straight alpha
    file.put32(0);
    return file.take();
}

} // namespace vxr
