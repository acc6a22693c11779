#include <tests/imaging/ImportSupport.h>

#include <random>

using namespace vxr;
using namespace vxr::test;

// Files that lie about themselves.

namespace {

constexpr unsigned mostFrames = 65535;

class HostileFiles : public Importing {
protected:
    void expectThatTheNextJobWorks(ImportProgram& program)
    {
        EXPECT_TRUE(program.decodeBitmap(*memoryFile(makePicture({}, ".png")), { true }, &failure))
            << failure.message;
        EXPECT_TRUE(program.decodeBitmap(*memoryFile(makePicture({}, ".tif")), { true }, &failure))
            << failure.message;
    }
};

std::string little(std::uint32_t value, int size)
{
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += char(value >> 8 * i);
    return bytes;
}

std::string gifOf(unsigned frames)
{
    std::string gif = "GIF89a" + little(1, 2) + little(1, 2) + std::string("\x80\0\0\xff\0\0\0\0\xff", 9);
    for (unsigned i = 0; i < frames; ++i)
        gif += "," + std::string(4, '\0') + little(1, 2) + little(1, 2) + std::string("\0\2\2\x44\1\0", 6);
    return gif + ";";
}

/// Directories one behind the other, all with the same pixel.
std::string tiffOf(unsigned pages)
{
    constexpr std::uint32_t entries = 8, size = 2 + entries * 12 + 4;
    std::string tiff = "II*" + std::string(1, '\0') + little(8, 4);
    for (unsigned i = 0; i < pages; ++i) {
        tiff += little(entries, 2);
        for (const auto& [tag, value] : { std::pair { 256u, 1u }, { 257u, 1u }, { 258u, 8u }, { 259u, 1u },
                 { 262u, 1u }, { 273u, 0u }, { 278u, 1u }, { 279u, 1u } })
            tiff += little(tag, 2) + little(3, 2) + little(1, 4) + little(value, 4);
        tiff += little(i + 1 < pages ? 8 + size * (i + 1) : 0, 4);
    }
    return tiff;
}

} // namespace

TEST_F(HostileFiles, AsManyFramesAsThereCanBe)
{
    for (const std::string& file : { gifOf(mostFrames), tiffOf(2000) }) {
        const auto bitmap = importer().decodeBitmap(*memoryFile(file), { true }, &failure);
        ASSERT_TRUE(bitmap) << failure.message;
        EXPECT_EQ(bitmap->format().width, 1u);
        EXPECT_EQ(bitmap->format().height, 1u);
        EXPECT_GE(bitmap->info().frames, 2000u);
    }
    importer().decodeBitmap(*memoryFile(tiffOf(mostFrames)), { true }, &failure); // as it likes
    EXPECT_NE(failure.outcome, ImportOutcome::Unavailable);
    expectThatTheNextJobWorks(importer());
}

TEST_F(HostileFiles, BombsOfEachKindAreTooLarge)
{
    // 60,000 by 60,000 pixels, with nothing or next to nothing behind the header.
    constexpr std::uint32_t side = 60000;
    std::string tiff = tiffOf(1), bmp = makePicture({}, ".bmp"), psd = makePSD({}, 3, false);
    tiff.replace(18, 4, little(side, 4));
    tiff.replace(30, 4, little(side, 4));
    std::vector<std::string> bombs { tiff };
    if (!bmp.empty())
        bombs.push_back(bmp.replace(18, 8, little(side, 4) + little(side, 4)));
    bombs.push_back(psd.replace(14, 8, std::string("\0\0\xea\x60\0\0\xea\x60", 8)));
    std::string jpeg = makePicture({}, ".jpg");
    for (std::size_t at = 2; at + 9 < jpeg.size(); ++at)
        if (jpeg[at] == '\xff' && jpeg[at + 1] == '\xc0') {
            jpeg.replace(at + 5, 4, "\xea\x60\xea\x60");
            break;
        }
    bombs.push_back(jpeg);
    for (const std::string& bomb : bombs) {
        SCOPED_TRACE(bomb.substr(0, 4));
        failure = {};
        EXPECT_FALSE(importer().decodeBitmap(*memoryFile(bomb), { true }, &failure));
        EXPECT_NE(failure.outcome, ImportOutcome::Unavailable) << failure.message;
        EXPECT_NE(failure.outcome, ImportOutcome::Done);
    }
    expectThatTheNextJobWorks(importer());
}

TEST_F(HostileFiles, ProfilesThatLieCostTheirEffectAtMost)
{
    const char* const profile = "/usr/share/color/icc/ghostscript/a98.icc";
    const std::string good = makePicture(
        { .sample = [](int, int, int band) { return band * 0.4; }, .profile = profile }, ".jpg[Q=100]");
    const std::size_t start = good.find("acsp");
    ASSERT_NE(start, std::string::npos);
    const std::size_t header = start - 36;
    const auto decoded = importer().decodeBitmap(*memoryFile(good), { true }, &failure);
    ASSERT_TRUE(decoded) << failure.message;
    ASSERT_FALSE(decoded->info().profile.empty());

    // One of inks for a picture of colours is none.
    std::string inks = good;
    inks.replace(header + 16, 4, "CMYK");
    const auto plain = importer().decodeBitmap(*memoryFile(inks), { true }, &failure);
    ASSERT_TRUE(plain) << failure.message;
    EXPECT_TRUE(plain->info().profile.empty());

    std::mt19937 random(7);
    const std::uint32_t bytes = 300; // the header and the table of tags lie there
    for (int round = 0; round < 60; ++round) {
        std::string lying = good;
        for (int change = 0; change < 4; ++change)
            lying[header + random() % bytes] = char(random() % 3 ? 0xff : random());
        for (const bool drawable : { true, false }) {
            const auto bitmap = importer().decodeBitmap(*memoryFile(lying), { drawable }, &failure);
            ASSERT_TRUE(bitmap || failure.outcome != ImportOutcome::Unavailable) << failure.message;
        }
    }
    expectThatTheNextJobWorks(importer());
}

TEST_F(HostileFiles, PagesThatWouldTakeHoursAreGivenUp)
{
    ImportProgram program(VXR_IMPORT);
    program.setLimits(std::size_t { 1 } << 29, std::size_t { 1 } << 28, 1, patience);
    const std::string page = makePDF({ "<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Contents 4 0 R/Resources<</Pattern<</P 5 0 R>>>>>>",
        "<</Length 44>>stream\n/Pattern cs /P scn 0 0 200 200 re f          \nendstream",
        "<</Type/Pattern/PatternType 1/PaintType 1/TilingType 1/BBox[0 0 99999999999 10]/XStep 1/YStep 1"
        "/Resources<<>>/Length 14>>stream\n0 0 1 1 re f  \nendstream" });
    const auto file = memoryFile(page);
    for (int area = 0; area < 2; ++area) {
        const auto pixels = program.renderPageArea(*file, { 4, 4, 0, 0, 800, 800 }, &failure);
        EXPECT_TRUE(pixels || failure.outcome == ImportOutcome::TimedOut
            || failure.outcome == ImportOutcome::TooLarge)
            << failure.message;
    }
    program.setLimits(std::size_t { 1 } << 29, std::size_t { 1 } << 28, 60, patience);
    expectThatTheNextJobWorks(program);
}
