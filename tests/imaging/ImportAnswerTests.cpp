#include <vxr/platform/imaging/ImportAnswers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

using namespace vxr;
using namespace vxr::importing;

namespace {

Report goodReport()
{
    Report report;
    report.bitmap.source = { 40, 30, 3, 3, 8, 0, 0, 0, 120 };
    report.bitmap.pixels = { 40, 30, 3, 4, 8, 0, 1, 0, 160 };
    report.bitmap.orientation = report.bitmap.frames = 1;
    std::string_view("png").copy(report.bitmap.kind, 3);
    report.document.pages = 1;
    report.document.boxes[0][2] = 100;
    return report;
}

std::span<const std::byte> bytesOf(const Report& report) { return std::as_bytes(std::span(&report, 1)); }

/// Whether every reader accepts the report, with a payload of exactly the pixels' size.
bool isAccepted(const Report& report)
{
    return readReport(bytesOf(report)) && readBitmapInfo(bytesOf(report)) && readPixelFormat(report, 160 * 30)
        && readDocumentInfo(report);
}

struct LieCase {
    const char* name;
    std::function<void(Report&)> tell;
};

const LieCase lies[] = {
    { "other magic", [](Report& r) { r.magic++; } },
    { "more behind it than there is", [](Report& r) { r.trailingBytes = ~0ull; } },
    { "unknown outcome", [](Report& r) { r.outcome = ImportOutcome(99); } },
    { "no width", [](Report& r) { r.bitmap.source.width = 0; } },
    { "width beyond all measure", [](Report& r) { r.bitmap.pixels.width = ~0u; } },
    { "one row too many", [](Report& r) { r.bitmap.pixels.height++; } },
    { "rows that overlap", [](Report& r) { r.bitmap.pixels.bytesPerRow = 156; } },
    { "rows off the grid",
        [](Report& r) {
            r.bitmap.pixels = { 10, 10, 3, 4, 8, 0, 1, 0, 41 };
        } },
    { "rows that overflow", [](Report& r) { r.bitmap.pixels.bytesPerRow = ~0ull / 29; } },
    { "two components", [](Report& r) { r.bitmap.source.model = 2; } },
    { "samples that don't add up", [](Report& r) { r.bitmap.source.samplesPerPixel = 4; } },
    { "32 bits", [](Report& r) { r.bitmap.source.bitsPerSample = 32; } },
    { "drawable of 16 bits", [](Report& r) { r.bitmap.pixels.bitsPerSample = 16; } },
    { "a kind that is no word", [](Report& r) { r.bitmap.kind[0] = '/'; } },
    { "no pages", [](Report& r) { r.document.pages = 0; } },
    { "a box that is no number", [](Report& r) { r.document.boxes[1][0] = std::nan(""); } },
    { "a negative box", [](Report& r) { r.document.boxes[4][3] = -1; } },
    { "an odd angle", [](Report& r) { r.document.rotation = 45; } },
};

} // namespace

TEST(ImportAnswers, EveryLieIsFoundOut)
{
    ASSERT_TRUE(isAccepted(goodReport()));
    for (const LieCase& lie : lies) {
        Report report = goodReport();
        lie.tell(report);
        EXPECT_FALSE(isAccepted(report)) << lie.name;
    }
    EXPECT_FALSE(readReport(bytesOf(goodReport()).first(sizeof(Report) - 1)));
}

TEST(ImportAnswers, NumbersWithoutHarmAreMended)
{
    Report report = goodReport();
    report.bitmap.horizontalResolution = std::numeric_limits<float>::infinity();
    report.bitmap.verticalResolution = -72;
    report.bitmap.orientation = 12;
    report.bitmap.frames = 0;
    const auto info = readBitmapInfo(bytesOf(report));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->horizontalResolution, 0);
    EXPECT_EQ(info->verticalResolution, 0);
    EXPECT_EQ(info->orientation, 1u);
    EXPECT_EQ(info->frames, 1u);
    std::string_view("broken\nin\x1b[2J two ").copy(report.message, sizeof report.message);
    EXPECT_EQ(readMessage(report), "broken in?[2J two");
}
