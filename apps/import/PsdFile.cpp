#include <apps/import/PsdFile.h>

#include <apps/import/Job.h>

#include <algorithm>
#include <cstring>

namespace vxr::importing {

namespace {

constexpr std::uint32_t mostChannels = 56;

/// Numbers with the highest byte first, and stretches with their length in front.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes)
        : mBytes(bytes)
    {
    }

    std::span<const std::byte> take(std::size_t count)
    {
        if (count > mBytes.size())
            throw Refusal("The file ends too early.");
        const auto taken = mBytes.first(count);
        mBytes = mBytes.subspan(count);
        return taken;
    }
    std::uint32_t number(std::size_t bytes)
    {
        std::uint32_t value = 0;
        for (const std::byte byte : take(bytes))
            value = value << 8 | std::uint32_t(byte);
        return value;
    }
    std::span<const std::byte> block() { return take(number(4)); }
    std::span<const std::byte> rest() const { return mBytes; }

private:
    std::span<const std::byte> mBytes;
};

/// One row of a channel, unpacked; what is missing at its end stays as it is.
void unpackRow(std::span<const std::byte> packed, std::span<std::byte> row)
{
    std::size_t from = 0, to = 0;
    while (from < packed.size() && to < row.size()) {
        const auto count = int(static_cast<signed char>(packed[from++]));
        if (count == -128)
            continue;
        if (count < 0) {
            if (from == packed.size())
                return;
            const std::size_t length = std::min(std::size_t(1 - count), row.size() - to);
            std::memset(row.data() + to, int(packed[from++]), length);
            to += length;
        } else {
            const std::size_t length
                = std::min({ std::size_t(count) + 1, row.size() - to, packed.size() - from });
            std::memcpy(row.data() + to, packed.data() + from, length);
            from += length;
            to += length;
        }
    }
}

/// Whether the section of layers says that the first channel behind the colours is the picture's alpha.
bool hasMergedAlpha(std::span<const std::byte> layers)
{
    Reader reader(layers);
    if (layers.size() < 6 || reader.number(4) < 2)
        return false;
    return (reader.number(2) & 0x8000) != 0; // a negative number of layers
}

} // namespace

bool PsdFile::readHeader(std::span<const std::byte> file)
{
    Reader reader(file);
    reader.take(4);
    if (reader.number(2) != 1)
        return false;
    reader.take(6);
    mChannels = reader.number(2);
    height = reader.number(4);
    width = reader.number(4);
    bitsPerSample = reader.number(2);
    const std::uint32_t mode = reader.number(2);
    colors = mode == 1 ? 1 : mode == 3 ? 3 : mode == 4 ? 4 : 0;
    if (colors == 0 || (bitsPerSample != 8 && bitsPerSample != 16))
        return false;
    if (mChannels < colors || mChannels > mostChannels || width == 0 || height == 0)
        throw Refusal("The file's header is damaged.");
    if (width > mostPixelsPerSide || height > mostPixelsPerSide)
        throw OversizeError();
    reader.block(); // colours of other modes
    readResources(reader.block());
    const auto layers = reader.block();
    hasAlpha = mChannels > colors && hasMergedAlpha(layers);
    mPixelData = reader.rest();
    return true;
}

void PsdFile::readResources(std::span<const std::byte> resources)
{
    constexpr std::uint32_t resolution = 0x3ed, embeddedProfile = 0x40f;
    Reader reader(resources);
    while (reader.rest().size() >= 12) {
        reader.take(4);
        const std::uint32_t id = reader.number(2);
        const std::uint32_t nameLength = reader.number(1);
        reader.take(nameLength + (nameLength + 1) % 2); // the length and the name fill whole pairs
        const auto content = reader.block();
        if (content.size() % 2 && !reader.rest().empty())
            reader.take(1);
        if (id == resolution && content.size() >= 4)
            pixelsPerInch = Reader(content).number(4) / 65536.0;
        else if (id == embeddedProfile)
            profile = content;
    }
}

std::vector<std::byte> PsdFile::readSamples() const
{
    Reader reader(mPixelData);
    const std::uint32_t compression = reader.number(2);
    if (compression > 1)
        throw Refusal("The file is packed in a way that is not known.");
    const std::size_t bytes = bitsPerSample / 8, rowBytes = std::size_t(width) * bytes;
    const std::size_t samples = colors + hasAlpha;
    std::vector<std::size_t> lengths(std::size_t(mChannels) * height, rowBytes);
    if (compression == 1)
        for (std::size_t& length : lengths)
            length = reader.number(2);
    std::vector<std::byte> pixels(rowBytes * height * samples), row(rowBytes);
    const std::byte flip = colors == 4 ? std::byte(0xff) : std::byte(0); // the file counts what is not inked
    for (std::size_t channel = 0; channel < samples; ++channel)
        for (std::size_t y = 0; y < height; ++y) {
            const auto stored = reader.take(lengths[channel * height + y]);
            if (compression == 1)
                unpackRow(stored, row);
            else
                std::memcpy(row.data(), stored.data(), rowBytes);
            std::byte* to = pixels.data() + (y * width * samples + channel) * bytes;
            const std::byte change = channel < colors ? flip : std::byte(0);
            for (std::size_t x = 0; x < width; ++x, to += samples * bytes) {
                if (bytes == 1) {
                    *to = row[x] ^ change;
                    continue;
                }
                const auto value
                    = std::uint16_t(unsigned(row[2 * x] ^ change) << 8 | unsigned(row[2 * x + 1] ^ change));
                std::memcpy(to, &value, sizeof value);
            }
        }
    return pixels;
}

} // namespace vxr::importing
