#include <apps/import/QuickJobs.h>

#include <apps/import/Job.h>
#include <apps/import/JpegFile.h>
#include <apps/import/PngFile.h>
#include <apps/import/SamplePictures.h>

namespace vxr::importing {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view jpegStart = "\xff\xd8\xff"sv, pngStart = "\x89PNG\r\n\x1a\n"sv;

std::unique_ptr<BitmapReader> readerOf(std::span<const std::byte> bytes)
{
    if (std::uint8_t(bytes[0]) == std::uint8_t(jpegStart[0]))
        return std::make_unique<JpegFile>(bytes);
    return std::make_unique<PngFile>(bytes);
}

} // namespace

QuickJobs::QuickJobs()
{
    for (const std::string& picture : { sampleJPEG(), samplePNG() })
        readerOf(std::as_bytes(std::span(picture)))->readRows([](std::uint32_t, const std::byte*) {});
}

bool QuickJobs::takes(const Request& request, std::span<const std::byte> start) const
{
    const std::string_view text(reinterpret_cast<const char*>(start.data()), start.size());
    return (request.job == Job::MeasureBitmap || request.job == Job::DecodeBitmap)
        && (text.starts_with(jpegStart) || text.starts_with(pngStart));
}

void QuickJobs::run(const Request& request, const JobInput& input, JobOutput& output)
{
    const auto reader = readerOf(input.bytes());
    if (request.job == Job::MeasureBitmap)
        measureBitmap(*reader, output);
    else
        decodeBitmap(*reader, request, output);
}

} // namespace vxr::importing
