#include <apps/import/BitmapReader.h>
#include <apps/import/Job.h>
#include <apps/import/Orientation.h>
#include <apps/import/PixelConversion.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vxr::importing {

namespace {

constexpr std::uint64_t stripBytes = 1 << 18; ///< stays in the processor's cache until it is written

FormatRecord recordOf(const BitmapFormat& format)
{
    return { format.width, format.height, std::uint32_t(format.model), format.samplesPerPixel,
        format.bitsPerSample, format.hasAlpha, format.isDrawable, 0, format.bytesPerRow };
}

/// Samples as they lie in the file, but upright.
BitmapFormat uprightFormat(const BitmapInfo& info)
{
    BitmapFormat format = info.format;
    if (swapsSides(info.orientation))
        std::swap(format.width, format.height);
    format.bytesPerRow = std::uint64_t { format.width } * format.samplesPerPixel * (format.bitsPerSample / 8);
    return format;
}

void describe(const BitmapInfo& info, JobOutput& output)
{
    // Writers that know no resolution like to say one pixel a millimetre.
    constexpr float perMillimetre = 25.4f;
    const bool isStated = std::abs(info.horizontalResolution - perMillimetre) > 0.01f
        || std::abs(info.verticalResolution - perMillimetre) > 0.01f;
    BitmapRecord& record = output.report.bitmap;
    record.source = recordOf(uprightFormat(info));
    record.horizontalResolution = isStated ? info.horizontalResolution : 0;
    record.verticalResolution = isStated ? info.verticalResolution : 0;
    if (swapsSides(info.orientation))
        std::swap(record.horizontalResolution, record.verticalResolution);
    record.orientation = info.orientation;
    record.frames = info.frames;
    record.isPlainJPEG = info.isPlainJPEG;
    info.kind.copy(record.kind, sizeof record.kind - 1);
    if (!info.profile.empty())
        nameOfProfile(info.profile).copy(record.profileName, sizeof record.profileName - 1);
    output.trailing = info.profile;
}

/// Gathers rows and writes them in strips; for pictures that are stored upright.
class StripWriter {
public:
    StripWriter(JobOutput& output, std::uint64_t bytesPerRow)
        : mOutput(output)
        , mBytesPerRow(bytesPerRow)
        , mRowsAtOnce(std::uint32_t(std::max<std::uint64_t>(stripBytes / bytesPerRow, 1)))
        , mStrip(std::size_t(bytesPerRow) * mRowsAtOnce)
    {
    }

    std::byte* row(std::uint32_t y)
    {
        if (y >= mFirst + mRowsAtOnce)
            flush(y);
        mCount = y - mFirst + 1;
        return mStrip.data() + std::size_t(mBytesPerRow) * (y - mFirst);
    }
    void flush(std::uint32_t next)
    {
        mOutput.writePayload(mBytesPerRow * mFirst, mStrip.data(), std::size_t(mBytesPerRow) * mCount);
        mFirst = next;
        mCount = 0;
    }

private:
    JobOutput& mOutput;
    std::uint64_t mBytesPerRow;
    std::uint32_t mRowsAtOnce;
    std::vector<std::byte> mStrip;
    std::uint32_t mFirst = 0, mCount = 0;
};

} // namespace

void measureBitmap(const BitmapReader& file, JobOutput& output) { describe(file.info(), output); }

void decodeBitmap(BitmapReader& file, const Request& request, JobOutput& output)
{
    const BitmapInfo& info = file.info();
    const bool isDrawable = request.drawable != 0;
    BitmapFormat format = uprightFormat(info);
    if (isDrawable) {
        format.model = BitmapModel::RGB;
        format.samplesPerPixel = 4;
        format.bitsPerSample = 8;
        format.isDrawable = true;
        format.bytesPerRow = std::uint64_t { format.width } * 4;
    }
    const std::uint64_t bytes = format.bytesPerRow * format.height;
    output.setPayloadSize(bytes); // a size that can't be is refused before anything is decoded

    const auto profile = isDrawable && request.useProfile ? std::span<const std::byte>(info.profile)
                                                          : std::span<const std::byte>();
    PixelConversion conversion(info.format, profile);
    const std::size_t pixelBytes = format.samplesPerPixel * (format.bitsPerSample / 8);
    const std::size_t rowBytes = pixelBytes * info.format.width;
    const auto readInto = [&](const auto& rowAt, const auto& take) {
        const auto copy = [&](std::uint32_t y, const std::byte* pixels) {
            std::memcpy(rowAt(y), pixels, rowBytes);
            take(y);
        };
        if (!isDrawable)
            file.readRows(copy);
        else if (!conversion.leavesSamples() || !file.readDrawableRows(copy))
            file.readRows([&](std::uint32_t y, const std::byte* samples) {
                conversion.convertRow(samples, reinterpret_cast<std::uint32_t*>(rowAt(y)));
                take(y);
            });
    };
    if (info.orientation == 1) {
        StripWriter writer(output, format.bytesPerRow);
        readInto([&](std::uint32_t y) { return writer.row(y); }, [](std::uint32_t) {});
        writer.flush(format.height);
    } else {
        std::byte* const pixels = output.mapPayload(bytes);
        std::vector<std::byte> row(rowBytes);
        readInto([&](std::uint32_t) { return row.data(); },
            [&](std::uint32_t y) {
                placeRow(row.data(), y, info, pixelBytes, pixels, std::size_t(format.bytesPerRow));
            });
    }
    describe(info, output);
    output.report.bitmap.pixels = recordOf(format);
}

} // namespace vxr::importing
