#include <apps/import/BitmapFile.h>
#include <apps/import/Job.h>
#include <apps/import/Orientation.h>
#include <apps/import/PixelConversion.h>

#include <cstring>

namespace vxr::importing {

namespace {

constexpr std::uint32_t rowsAtOnce = 64;

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
    BitmapRecord& record = output.report.bitmap;
    record.source = recordOf(uprightFormat(info));
    record.horizontalResolution = info.horizontalResolution;
    record.verticalResolution = info.verticalResolution;
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
        , mStrip(std::size_t(bytesPerRow) * rowsAtOnce)
    {
    }

    std::byte* row(std::uint32_t y)
    {
        if (y >= mFirst + rowsAtOnce)
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
    std::vector<std::byte> mStrip;
    std::uint32_t mFirst = 0, mCount = 0;
};

} // namespace

void measureBitmap(const JobInput& input, JobOutput& output)
{
    const BitmapFile file(input.bytes());
    describe(file.info(), output);
}

void decodeBitmap(const Request& request, const JobInput& input, JobOutput& output)
{
    BitmapFile file(input.bytes());
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

    const auto profile
        = request.useProfile ? std::span<const std::byte>(info.profile) : std::span<const std::byte>();
    PixelConversion conversion(info.format, isDrawable ? profile : std::span<const std::byte>());
    const std::size_t pixelBytes = format.samplesPerPixel * (format.bitsPerSample / 8);
    const auto copyRow = [&](const std::byte* samples, std::byte* pixels) {
        if (isDrawable)
            conversion.convertRow(samples, reinterpret_cast<std::uint32_t*>(pixels));
        else
            std::memcpy(pixels, samples, pixelBytes * info.format.width);
    };
    if (info.orientation == 1) {
        StripWriter writer(output, format.bytesPerRow);
        file.readRows([&](std::uint32_t y, const std::byte* samples) { copyRow(samples, writer.row(y)); });
        writer.flush(format.height);
    } else {
        std::byte* const pixels = output.mapPayload(bytes);
        std::vector<std::byte> row(pixelBytes * info.format.width);
        file.readRows([&](std::uint32_t y, const std::byte* samples) {
            copyRow(samples, row.data());
            placeRow(row.data(), y, info, pixelBytes, pixels, std::size_t(format.bytesPerRow));
        });
    }
    describe(info, output);
    output.report.bitmap.pixels = recordOf(format);
}

} // namespace vxr::importing
