#include <apps/vxr/import/Import.h>
#include <apps/vxr/render/DrawingCanvas.h>
#include <apps/vxr/render/Roads.h>

#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRRenderable.h>

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace app {
namespace {

namespace files = std::filesystem;

/// A folder with a picture of 4 by 2 pixels in it, red on the left and blue on the right, and one beside it.
class PlacedPictures : public testing::Test {
protected:
    void SetUp() override
    {
        if (!vxr::Importer::shared().isAvailable())
            GTEST_SKIP() << "there is no import program";
        std::string name = (files::temp_directory_path() / "placed-pictures-XXXXXX").string();
        ASSERT_TRUE(::mkdtemp(name.data()));
        mRoot = name;
        files::create_directories(mRoot / "drawing/below");
        const std::array<std::uint32_t, 8> pixels { 0xffff0000, 0xffff0000, 0xff0000ff, 0xff0000ff,
            0xffff0000, 0xffff0000, 0xff0000ff, 0xff0000ff };
        const auto image = vxr::Image::createWithCopy(
            vxr::ImageLayout::nativeARGB(4, 2, 16), pixels.data(), sizeof pixels);
        for (const char* path : { "drawing/a b.png", "drawing/below/c.png", "beside.png" })
            ASSERT_TRUE(image->writePNG((mRoot / path).string()));
        files::create_symlink("../beside.png", mRoot / "drawing/link.png");
        std::ofstream(mRoot / "drawing/broken.png") << "no picture";
    }
    void TearDown() override
    {
        if (!mRoot.empty())
            files::remove_all(mRoot);
    }

    std::string folder() const { return (mRoot / "drawing").string(); }

    std::string dataURL() const
    {
        std::ifstream file(mRoot / "beside.png", std::ios::binary);
        constexpr char digits[] = "0123456789abcdef";
        std::string url = "data:image/png,";
        for (char c = 0; file.get(c);)
            url += { '%', digits[static_cast<unsigned char>(c) >> 4], digits[c & 15] };
        return url;
    }

    ImportedDrawing read(const std::string& image) const
    {
        return importDrawing(
            svg::readDrawing(
                "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='30'>" + image + "</svg>"),
            folder());
    }

    files::path mRoot;
};

Page pageOf(const ImportedDrawing& drawing)
{
    return { drawing, 40, 30, 1, svg::Rgba { 1, 1, 1, 1 }, false };
}

constexpr std::uint32_t red = 0xffff0000, blue = 0xff0000ff, white = 0xffffffff;

} // namespace

TEST_F(PlacedPictures, AreFittedToTheirViewportOnEachRoad)
{
    struct FitCase {
        const char* name;
        std::string attributes;
        struct Probe {
            int x, y;
            std::uint32_t color;
        };
        std::vector<Probe> probes;
    };
    const FitCase cases[] = {
        { "natural size", "x='8' y='6' href='a%20b.png'",
            { { 8, 6, red }, { 11, 7, blue }, { 12, 6, white }, { 8, 8, white } } },
        { "fits inside, in the middle", "width='20' height='20' href='below/c.png'",
            { { 10, 4, white }, { 2, 10, red }, { 17, 10, blue }, { 10, 15, white } } },
        { "covers, cut at the viewport",
            "width='20' height='20' preserveAspectRatio='xMinYMid slice' href='a b.png'",
            { { 2, 1, red }, { 3, 18, red }, { 21, 10, white } } },
        { "stretched", "width='20' height='20' preserveAspectRatio='none' href='a b.png'",
            { { 2, 1, red }, { 17, 18, blue } } },
        { "one side given", "width='20' href='a b.png'",
            { { 2, 8, red }, { 17, 8, blue }, { 2, 12, white } } },
        { "a data URL, turned",
            "transform='translate(20 10) rotate(180)' width='20' href='" + dataURL() + "'",
            { { 2, 2, blue }, { 17, 8, red } } },
    };
    for (const FitCase& fit : cases) {
        SCOPED_TRACE(fit.name);
        const ImportedDrawing drawing = read("<image " + fit.attributes + "/>");
        EXPECT_TRUE(drawing.warnings.empty());
        ShownPage window(pageOf(drawing), true);
        window.display();
        for (const Picture& picture : { drawDirect(pageOf(drawing)), window.picture() })
            for (const auto& probe : fit.probes)
                EXPECT_EQ(picture.pixels.at(static_cast<std::size_t>(probe.y * picture.width + probe.x)),
                    probe.color)
                    << probe.x << ' ' << probe.y;
    }
}

TEST_F(PlacedPictures, NothingOutsideOfTheDrawingsFolderIsRead)
{
    for (const std::string& reference :
        { std::string("../beside.png"), (mRoot / "drawing/below/c.png").string(), std::string("link.png"),
            std::string("%2e%2e/beside.png"), std::string("file:below/c.png"),
            std::string("below/missing.png"), std::string("broken.png"), std::string("below"),
            std::string("data:image/png;base64,AAAA"), std::string("data:text/plain,x") }) {
        SCOPED_TRACE(reference);
        const ImportedDrawing drawing = read("<image width='20' height='20' href='" + reference + "'/>");
        EXPECT_EQ(drawing.warnings.size(), 1u);
        const Picture picture = drawDirect(pageOf(drawing));
        EXPECT_NE(picture.pixels.at(10), white) << "the edge of the placeholder";
        EXPECT_NE(picture.pixels.at(10), red);
    }
    EXPECT_EQ(importDrawing(
                  svg::readDrawing("<svg xmlns='http://www.w3.org/2000/svg'><image href='a b.png'/></svg>"))
                  .warnings.size(),
        1u)
        << "a drawing without a folder has no files";
}

} // namespace app
