#include <tests/imaging/HostState.h>
#include <tests/imaging/ImportSupport.h>

#include <cstdlib>
#include <random>

using namespace vxr;
using namespace vxr::test;

namespace {

using Random = std::mt19937;

/// Changes, cuts out and repeats stretches, and now and then cuts the end off.
std::string damaged(std::string file, Random& random)
{
    for (unsigned rounds = 1 + random() % 10; rounds > 0 && !file.empty(); --rounds) {
        const std::size_t at = random() % file.size(), length = random() % 24;
        switch (random() % 5) {
        case 0:
            file[at] = char(random());
            break;
        case 1:
            file.erase(at, length);
            break;
        case 2:
            file.insert(at, file.substr(at, length));
            break;
        case 3: // where sizes and counts stand
            file[random() % std::min<std::size_t>(file.size(), 100)] = char(random() % 2 ? 0xff : random());
            break;
        default:
            if (random() % 4 == 0)
                file.resize(at);
        }
    }
    return file;
}

std::vector<std::string> goodFiles()
{
    MadePicture color { .width = 60, .height = 40 }, inks { .bands = 4, .isCMYK = true };
    color.sample = [](int x, int y, int band) { return (x * 7 + y * 13 + band * 50) % 256 / 255.0; };
    std::vector<std::string> files;
    for (const char* suffix :
        { ".jpg", ".jpg[interlace]", ".png", ".png[interlace]", ".tif", ".gif", ".webp", ".jp2", ".bmp" })
        files.push_back(makePicture(color, suffix));
    files.push_back(makePicture(inks, ".tif[compression=deflate]"));
    files.push_back(makePage("/MediaBox[0 0 100 100]/ArtBox[10 10 50 50]/Rotate 90",
        "0 1 1 0 k 10 10 50 50 re f BT /F 20 Tf 5 50 Td (Soak) Tj ET 20 20 m 90 10 40 80 70 70 c S"));
    files.push_back("%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 100 100\n"
                    "/Helvetica findfont 20 scalefont setfont 10 10 moveto (Soak) show\n"
                    "1 0 0 setrgbcolor 20 40 30 30 rectfill\nshowpage\n%%EOF\n");
    files.push_back(makePSD(color, 3, true));
    // A drawing of a frame, a pattern, a region and some text.
    files.push_back(std::string("\0\0\0\0\0\0\0\x60\0\x60\0\x11\2\xff\x0c\0", 16) + std::string(24, '\0')
        + std::string(
            "\0\x1a\xff\xff\0\0\0\0\0\x31\0\2\0\3\0\x30\0\x40\0\x0a\xaa\x55\xaa\x55\xaa\x55\xaa\x55"
            "\0\x52\0\2\0\3\0\x30\0\x40\0\x81\0\x0a\0\5\0\5\0\x50\0\x50\0\x28\0\x40\0\x10\4Soak\0\0\xff",
            64));
    std::erase(files, std::string()); // kinds that can't be written here
    return files;
}

class ImportSoak : public Importing { };

} // namespace

// VXR_SOAK=10000 in the environment makes a long run of it, VXR_SOAK_SEED=2 another one.
TEST_F(ImportSoak, DamagedFilesLeaveTheHostAsItWas)
{
    const char* wanted = std::getenv("VXR_SOAK");
    const int count = wanted ? std::atoi(wanted) : 120;
    const auto files = goodFiles();
    const std::string good = files.front();
    ImportProgram program(VXR_IMPORT);
    program.setLimits(std::size_t { 1 } << 29, std::size_t { 1 } << 28, 2, 4000);
    ASSERT_TRUE(program.decodeBitmap(*memoryFile(good), { true }));
    const HostState before = HostState::now();
    const char* seed = std::getenv("VXR_SOAK_SEED");
    Random random(seed ? unsigned(std::atoi(seed)) : 1);
    int outcomes[6] = {};
    for (int i = 0; i < count; ++i) {
        const std::string& source = files[random() % files.size()];
        const auto file = memoryFile(damaged(source, random));
        ImportFailure ended;
        if (source.starts_with("%PDF")) {
            program.measureDocument(*file, &ended);
            program.renderPageArea(*file, { 2, 2, 0, 0, 200, 200 }, &ended);
            if (const auto plain = program.normalisedDocument(*file, &ended)) {
                const PlacedPage place[] { { "mark", plain } };
                program.placePages(*plain, place, &ended);
            }
        } else if (source.starts_with("%!")) {
            program.convertEPS(*file, &ended);
        } else if (source.starts_with('\0')) {
            program.convertPICT(*file, &ended);
        } else {
            program.decodeBitmap(*file, { random() % 2 == 0 }, &ended);
        }
        ASSERT_NE(ended.outcome, ImportOutcome::Unavailable) << ended.message;
        ++outcomes[unsigned(ended.outcome)];
    }
    std::cout << outcomes[0] << " done, " << outcomes[1] << " refused, " << outcomes[2] << " too large, "
              << outcomes[3] << " timed out, " << outcomes[4] << " crashed\n";
    EXPECT_TRUE(program.decodeBitmap(*memoryFile(good), { true }));
    const HostState after = HostState::now();
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.importFolders, before.importFolders);
    EXPECT_FALSE(after.hasChildren);
    constexpr std::size_t scatter = std::size_t { 8 } << 20; // of the allocator
    EXPECT_LT(after.residentBytes, before.residentBytes + scatter);
}
