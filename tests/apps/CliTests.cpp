#include <vxr/platform/graphics/Image.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// The built program as its user meets it: arguments in; files, messages and exit status out.

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct Result {
    int status = -1;
    std::string out, err;
};

class CommandLine : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "vxr-cli-XXXXXX").string();
        ASSERT_TRUE(mkdtemp(pattern.data()));
        mFolder = pattern;
        write("good.svg",
            "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 40 20'>"
            "<path id='p' fill='red' d='M0 0H20V20H0Z'/></svg>");
        write("bad.svg", "<svg xmlns='http://www.w3.org/2000/svg'>\n<g>\n</svg>");
    }
    void TearDown() override { fs::remove_all(mFolder); }

    void write(const std::string& name, const std::string& text) { std::ofstream(mFolder / name) << text; }
    std::string read(const std::string& name) const
    {
        std::ifstream file(mFolder / name, std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }

    /// Runs `vxr ARGUMENTS` by a shell in the test's folder.
    Result vxr(const std::string& arguments)
    {
        const std::string command
            = "cd '" + mFolder.string() + "' && '" VXR_PROGRAM "' " + arguments + " >.out 2>.err";
        const int status = std::system(command.c_str());
        Result result { WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(".out"), read(".err") };
        fs::remove(mFolder / ".out");
        fs::remove(mFolder / ".err");
        return result;
    }

    /// All files, sorted, the given drawings left out.
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(mFolder)) {
            if (entry.is_regular_file() && entry.path().extension() != ".svg")
                names.push_back(fs::relative(entry.path(), mFolder).string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /// Width and height from a PNG's header, whose numbers have their large bytes first.
    std::pair<int, int> sizeOfPNG(const std::string& name) const
    {
        const std::string bytes = read(name);
        if (bytes.size() < 24 || bytes.substr(1, 3) != "PNG")
            return {};
        const auto number = [&](std::size_t at) {
            return static_cast<unsigned char>(bytes[at + 2]) * 256
                + static_cast<unsigned char>(bytes[at + 3]);
        };
        return { number(16), number(20) };
    }

    fs::path mFolder;
};

TEST_F(CommandLine, RendersOneDrawingToAFile)
{
    const Result png = vxr("render good.svg -o out.png");
    EXPECT_EQ(png.status, 0) << png.err;
    EXPECT_EQ(png.out + png.err, "");
    EXPECT_EQ(sizeOfPNG("out.png"), std::pair(40, 20));
    EXPECT_EQ(vxr("render good.svg -o out.pdf").status, 0);
    EXPECT_THAT(read("out.pdf"), StartsWith("%PDF-"));
    EXPECT_THAT(files(), ElementsAre("out.pdf", "out.png"));
    struct stat info { };
    stat((mFolder / "out.png").c_str(), &info);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(info.st_mode & 0777, 0666 & ~mask);
}

TEST_F(CommandLine, SizesPictures)
{
    const std::pair<const char*, std::pair<int, int>> cases[]
        = { { "--scale 2", { 80, 40 } }, { "--width 100", { 100, 50 } }, { "--height 100", { 200, 100 } },
              { "--width 100 --height 20", { 40, 20 } }, { "--width 30 --height 100", { 30, 15 } },
              { "--scale 0.01", { 1, 1 } }, { "--width 33 --road nonscreen", { 33, 17 } } };
    for (const auto& [options, size] : cases) {
        EXPECT_EQ(vxr(std::string("render good.svg -o out.png ") + options).status, 0) << options;
        EXPECT_EQ(sizeOfPNG("out.png"), size) << options;
    }
    const Result huge = vxr("render good.svg -o huge.png --scale 1000");
    EXPECT_EQ(huge.status, 1);
    EXPECT_THAT(huge.err, HasSubstr("good.svg: error: the picture would be 40000 x 20000 pixels"));
    EXPECT_FALSE(fs::exists(mFolder / "huge.png"));
}

TEST_F(CommandLine, RendersSeveralDrawingsIntoAFolderABadOneCostsOnlyItself)
{
    write("other.svg", read("good.svg"));
    EXPECT_EQ(vxr("render good.svg other.svg -o made/here --format pdf").status, 0);
    EXPECT_THAT(files(), ElementsAre("made/here/good.pdf", "made/here/other.pdf"));

    fs::create_directories(mFolder / "empty");
    fs::create_directory(mFolder / "sub");
    fs::copy(mFolder / "good.svg", mFolder / "sub/good.svg");
    const Result result = vxr("render missing.svg bad.svg empty good.svg sub/good.svg -o made/here");
    EXPECT_EQ(result.status, 1);
    for (const char* message : { "missing.svg: error: No such file or directory\n",
             "bad.svg:3: error: ", "empty: error: there is no .svg, .svgz, .vxr file in this folder\n",
             "made/here/good.png: error: two of the drawings would have this name; sub/good.svg" })
        EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_THAT(files(), ElementsAre("made/here/good.pdf", "made/here/good.png", "made/here/other.pdf"));
}

TEST_F(CommandLine, LeavesNoPartialFileAndKeepsTheOldOne)
{
    write("kept.png", "what was here before");
    EXPECT_EQ(vxr("render bad.svg -o kept.png").status, 1);
    EXPECT_EQ(read("kept.png"), "what was here before");
    // The disk is full after a few bytes: the limit on file sizes stands in for it.
    const std::string command = "cd '" + mFolder.string()
        + "' && trap '' XFSZ && ulimit -f 0 && '" VXR_PROGRAM "' render good.svg -o full.pdf 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_THAT(files(), ElementsAre("kept.png"));

    const Result nowhere = vxr("render good.svg -o no/such/folder/out.png");
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_THAT(nowhere.err, HasSubstr("no/such/folder/out.png: error: No such file or directory"));
}

TEST_F(CommandLine, AnInterruptedRunLeavesNothingBehind)
{
    std::string many = "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 400 400'>";
    for (int i = 0; i < 3000; ++i)
        many += "<circle cx='200' cy='" + std::to_string(i % 400) + "' r='150' fill-opacity='.1'/>";
    write("many.svg", many + "</svg>");
    write("many.pdf", "old");
    for (const char* wait : { "0.02", "0.1", "0.2", "0.3", "0.5", "0.7" }) {
        for (const char* signal : { "TERM", "KILL" }) {
            const std::string command = "cd '" + mFolder.string() + "' && timeout -s " + signal + " " + wait
                + " '" VXR_PROGRAM "' render many.svg good.svg -o . --width 1200 --format pdf 2>/dev/null";
            static_cast<void>(std::system(command.c_str()));
            for (const std::string& file : files())
                EXPECT_THAT(file, testing::AnyOf("many.pdf", "good.pdf")) << wait << signal;
            EXPECT_THAT(read("many.pdf"), testing::AnyOf("old", testing::EndsWith("%%EOF\n")));
        }
    }
}

TEST_F(CommandLine, ReadsStandardInputCompressedDrawingsAndFoldersButNoPipes)
{
    EXPECT_EQ(vxr("render - -o out.png <good.svg").status, 0);
    EXPECT_EQ(sizeOfPNG("out.png"), std::pair(40, 20));
    ASSERT_EQ(std::system(("cd '" + mFolder.string()
                  + "' && mkdir in && gzip -c good.svg >in/z.svgz && cp "
                    "good.svg in/a.svg && mkfifo pipe")
                              .c_str()),
        0);
    EXPECT_EQ(vxr("render in -o made").status, 0);
    EXPECT_THAT(files(), ElementsAre("in/z.svgz", "made/a.png", "made/z.png", "out.png"));
    EXPECT_THAT(vxr("render pipe -o out.png").err, HasSubstr("pipe: error: is no regular file; use -"));
    write("cut.svg", read("in/z.svgz").substr(0, 60));
    EXPECT_THAT(vxr("inspect cut.svg").err, HasSubstr("cut.svg: error: the compressed drawing is damaged"));
}

TEST_F(CommandLine, WarnsWithFileAndLine)
{
    write("warn.svg",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 9'>\n<text>a</text>\n"
        "<path d='M0 0L9'/></svg>");
    const Result result = vxr("render warn.svg -o out.png");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
        "warn.svg:2: warning: text is not drawn\nwarn.svg:3: warning: the path is drawn up to the error at "
        "'9'\n");
    EXPECT_THAT(files(), ElementsAre("out.png"));
}

TEST_F(CommandLine, RefusesWrongOnes)
{
    const char* const cases[] = {
        "",
        "render good.svg",
        "render good.svg -o out.jpg",
        "render good.svg bad.svg -o out.png",
        "render good.svg -o out.png --scale 0",
        "render good.svg -o out.png --scale 2 --width 10",
        "render good.svg -o out.png --width ten",
        "render good.svg -o out.png --background reddish",
        "render good.svg -o out.png --road fast",
        "render good.svg -o out.pdf --road direct",
        "render good.svg -o out.png --road compositor --background none",
        "render good.svg -o out.png --road compositor --background '#ff08'",
        "render good.svg -o out.png --tile-size 256",
        "render good.svg -o out.png --road compositor --tile-size 4096",
        "render good.svg -o out.png --road compositor --tile-size 15",
        "render good.svg -o out.png --format pdf",
        "render good.svg -o out.png --sparkle",
        "inspect good.svg bad.svg",
        "convert good.svg -o out.pdf",
        "filter dots.bmp -o out.jpg",
        "filter dots.bmp -o out.png --saturation -1",
        "filter dots.bmp -o out.png --levels hue",
        "report",
    };
    for (const char* arguments : cases) {
        const Result result = vxr(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_THAT(result.err, StartsWith("vxr: ")) << arguments;
        EXPECT_THAT(result.err, HasSubstr("--help")) << arguments;
        EXPECT_THAT(files(), IsEmpty()) << arguments;
    }
}

TEST_F(CommandLine, HelpsOnStandardOutput)
{
    const Result whole = vxr("--help"), render = vxr("render --help");
    EXPECT_EQ(whole.status, 0);
    EXPECT_THAT(whole.out, AllOf(HasSubstr("render"), HasSubstr("gallery"), HasSubstr("report")));
    EXPECT_THAT(vxr("--version").out, testing::MatchesRegex("vxr [0-9.]+\n"));
    EXPECT_THAT(vxr("draw good.svg").err,
        HasSubstr("no command 'draw'; there are render, filter, convert, inspect, gallery, report"));
    EXPECT_EQ(render.status, 0);
    EXPECT_THAT(render.out, AllOf(HasSubstr("--road"), HasSubstr("--output"), HasSubstr("Exit status")));
    EXPECT_EQ(whole.err + render.err, "");
}

TEST_F(CommandLine, InspectShowsTheTree)
{
    write("tree.svg",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 40 20'>\n"
        "<g id='pair' opacity='.5'>\n<path id='p' fill='red' d='M0 0H20V20H0Z'/>\n"
        "<rect transform='translate(5 6)' width='4' height='3' fill='none' stroke='#00f8' "
        "stroke-width='2' stroke-dasharray='4 2'/>\n</g></svg>");
    const Result result = vxr("inspect tree.svg");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out,
        "tree.svg: 40 x 20, 2 shapes\n"
        "  group g#pair, line 2\n"
        "    bounds (0, 0) 20 x 20\n"
        "    opacity 0.5\n"
        "    shape path#p, line 3\n"
        "      bounds (0, 0) 20 x 20\n"
        "      path of 5 elements, nonzero\n"
        "      fill #ff0000\n"
        "    shape rect, line 4\n"
        "      bounds (4, 5) 6 x 5\n"
        "      transform [1 0 0 1 5 6]\n"
        "      path of 5 elements, nonzero\n"
        "      stroke #0000ff alpha 0.533333, 2 wide, butt caps, miter joins, dashes 4 2\n");
    const Result bad = vxr("inspect bad.svg");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.out, "");
}

TEST_F(CommandLine, DocumentsDrawAsTheDrawingsTheyAreMadeOf)
{
    write("two.svg",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 20 20'><g id='g' opacity='.5'><path d='M0 "
        "0H9V9'/>"
        "<circle r='7'/></g></svg>");
    EXPECT_EQ(vxr("convert good.svg two.svg -o both.vxr").status, 0);
    EXPECT_EQ(vxr("render two.svg -o two.png --scale 3").status, 0);
    EXPECT_EQ(vxr("render both.vxr --page 2 -o page.png --scale 3").status, 0);
    EXPECT_EQ(read("page.png"), read("two.png"));
    EXPECT_EQ(vxr("render both.vxr -o both.pdf").status, 0);
    EXPECT_THAT(read("both.pdf"), AllOf(HasSubstr("/Count 2"), Not(HasSubstr("/Subtype /Image"))));
    EXPECT_THAT(vxr("render both.vxr -o x.png --page 3").err, HasSubstr("no page 3; the document has 2"));
    EXPECT_EQ(vxr("inspect both.vxr").out,
        "both.vxr: 2 pages, 0 styles, 0 pictures\n"
        "  page 1: 40 x 20, 1 shapes\n    shape path#p\n      bounds (0, 0) 20 x 20\n"
        "      path of 5 elements, nonzero\n      fill #ff0000\n"
        "  page 2: 20 x 20, 2 shapes\n    group g#g\n      bounds (-7, -7) 16 x 16\n      opacity 0.5\n"
        "      shape path\n        bounds (0, 0) 9 x 9\n        path of 3 elements, nonzero\n"
        "        fill #000000\n      shape circle\n        bounds (-7, -7) 14 x 14\n"
        "        transform [1 0 0 1 -7 -7]\n        path of 6 elements, nonzero\n        fill #000000\n");
    const std::string whole = read("both.vxr");
    std::ofstream(mFolder / "cut.vxr", std::ios::binary) << whole.substr(0, whole.size() - 100);
    const Result cut = vxr("render cut.vxr -o cut.png");
    EXPECT_EQ(cut.status, 1);
    EXPECT_THAT(cut.err, HasSubstr("cut.vxr: warning: the list of contents is damaged"));
    EXPECT_THAT(vxr("convert good.svg -o cut.vxr").err, HasSubstr("cut.vxr: error: is a damaged document"));
    EXPECT_EQ(vxr("convert good.svg -o cut.vxr --replace-damaged").status, 0);
    EXPECT_EQ(vxr("convert good.svg -o cut.vxr").status, 0);
}

TEST_F(CommandLine, GalleryShowsEveryPictureItWrites)
{
    const Result result = vxr("gallery -o scenes");
    ASSERT_EQ(result.status, 0) << result.err;
    const std::string page = read("scenes/index.html");
    const auto made = files();
    for (const std::string& file : made) {
        if (file != "scenes/index.html") {
            EXPECT_THAT(page, HasSubstr("\"" + fs::path(file).filename().string() + "\"")) << file;
        }
    }
    EXPECT_GT(made.size(), 1u);
    EXPECT_EQ(made.size() % 2, 1u); // the page, and each picture as PNG and as PDF
}

#ifdef VXR_HAS_IMPORT

const char art[]
    = "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 120 80\n1 0 0 setrgbcolor 10 10 60 40 rectfill\n"
      "/Helvetica findfont 20 scalefont setfont 10 60 moveto (Art) show\nshowpage\n%%EOF\n";

TEST_F(CommandLine, RendersAndInspectsPictures)
{
    write("art.eps", art);
    // Two by two pixels of 24 bits.
    const std::string header("BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18\0", 30);
    write("dots.bmp", header + std::string(24, '\0') + std::string(16, '\x7f'));
    EXPECT_THAT(
        vxr("inspect art.eps").out, AllOf(HasSubstr("eps, 120 x 80 points, 1 page"), HasSubstr("art box")));
    EXPECT_THAT(vxr("inspect dots.bmp").out, HasSubstr("bmp, 2 x 2 pixels, 8 bits, RGB"));
    EXPECT_EQ(vxr("render art.eps -o art.png --scale 2").err, "");
    EXPECT_EQ(sizeOfPNG("art.png"), std::pair(240, 160));
    EXPECT_EQ(vxr("render dots.bmp -o dots.png").status, 0);
    EXPECT_EQ(sizeOfPNG("dots.png"), std::pair(2, 2));
}

TEST_F(CommandLine, FiltersPictures)
{
    // Two by two pixels of 24 bits, all of one grey.
    const std::string header("BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18\0", 30);
    write("dots.bmp", header + std::string(24, '\0') + std::string(16, '\x7f'));
    const auto levelOf = [&](const std::string& options) {
        EXPECT_EQ(vxr("filter dots.bmp -o out.png " + options).err, "") << options;
        const auto image = ::vxr::Image::createWithPNGFile((mFolder / "out.png").string());
        return image ? int(image->pixels()[1]) : -1;
    };
    EXPECT_EQ(levelOf(""), 127);
    EXPECT_EQ(levelOf("--saturation 70 --hue -30"), 127) << "a grey stays";
    EXPECT_EQ(levelOf("--exposure 33.3333333"), 174) << "a stop up";
    EXPECT_EQ(levelOf("--brightness 10 --black-point 25"), 101);
    EXPECT_THAT(vxr("filter dots.bmp -o out.png --exposure 150").err,
        HasSubstr("value '150' for property 'kVXRExposureProperty' is invalid, error 150 is not between -100 "
                  "and 100"));
    EXPECT_THAT(vxr("filter --help").out, AllOf(HasSubstr("--temperature"), HasSubstr("-100 to 100")));
    EXPECT_EQ(vxr("filter none.png -o out.png").status, 1);
}

TEST_F(CommandLine, APlacedPageStaysVectorsInADocumentThatIsSound)
{
    write("art.eps", art);
    ASSERT_EQ(vxr("render art.eps -o art.pdf").status, 0);
    EXPECT_THAT(read("art.pdf"), AllOf(HasSubstr("Helvetica"), Not(HasSubstr("/Subtype /Image"))));
    EXPECT_THAT(vxr("inspect art.pdf").out, HasSubstr("pdf, 120 x 80 points, 1 page"));
    if (std::system("qpdf --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "qpdf is not installed";
    EXPECT_EQ(std::system(("qpdf --check '" + (mFolder / "art.pdf").string() + "' >/dev/null").c_str()), 0);
}

TEST_F(CommandLine, SaysWhyAPictureCantBeRead)
{
    write("art.eps", "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 9 9\nnosuchoperator\n");
    write("text.png", "no picture");
    for (const char* name : { "art.eps", "text.png", "missing.png" }) {
        const Result result = vxr(std::string("render ") + name + " -o out.png");
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.err, HasSubstr(std::string(name) + ": error: "));
        EXPECT_EQ(vxr(std::string("inspect ") + name).status, 1) << name;
    }
    EXPECT_FALSE(fs::exists(mFolder / "out.png"));
    const std::string without = "cd '" + mFolder.string()
        + "' && VXR_IMPORT_PROGRAM=/nonexistent '" VXR_PROGRAM "' render text.png -o out.png 2>.err";
    EXPECT_NE(std::system(without.c_str()), 0);
    EXPECT_THAT(read(".err"), HasSubstr("vxr-import is missing"));
}

#endif

} // namespace
