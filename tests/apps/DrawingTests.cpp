#include <apps/vxr/import/OutlineStroke.h>
#include <apps/vxr/render/DrawingCanvas.h>
#include <apps/vxr/render/Roads.h>

#include <vxr/geometry/Color.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRGroup.h>
#include <vxr/renderables/VXRShape.h>

#include <gmock/gmock.h>

#include <fstream>

namespace app {
namespace {

using testing::ElementsAre;

svg::Drawing readContent(const std::string& content, const std::string& size)
{
    return svg::readDrawing("<svg xmlns='http://www.w3.org/2000/svg' " + size + ">" + content + "</svg>");
}

/// A drawing of 40 by 30 units on white, a pixel a unit.
struct Sheet {
    explicit Sheet(const std::string& content, float scale = 1)
        : drawing(importDrawing(readContent(content, "width='40' height='30'")))
        , page { drawing, static_cast<int>(40 * scale), static_cast<int>(30 * scale), scale,
            svg::Rgba { 1, 1, 1, 1 }, false }
    {
    }

    Picture direct() const { return drawDirect(page); }
    Picture composited() const
    {
        ShownPage window(page, true);
        window.display();
        return window.picture();
    }

    ImportedDrawing drawing;
    Page page;
};

std::uint32_t pixel(const Picture& picture, int x, int y)
{
    return picture.pixels.at(static_cast<std::size_t>(y * picture.width + x));
}

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%08x", value);
    return text;
}

struct ProbeCase {
    const char* name;
    const char* content;
    struct Probe {
        int x, y;
        const char* argb;
    };
    std::vector<Probe> probes;
};

// Each probe lies well inside an area of one colour. Half of 255 is 128 or 127, whichever way it is reached.
const ProbeCase probeCases[] = {
    { "GroupOpacityIsSharedByOverlaps",
        "<g opacity='.6'><rect width='20' height='30' fill='red'/><rect x='10' width='20' height='30' "
        "fill='blue'/></g>",
        { { 5, 15, "ffff6666" }, { 15, 15, "ff6666ff" }, { 25, 15, "ff6666ff" }, { 35, 15, "ffffffff" } } },
    { "ClipIsTheUnionWhateverWayRound",
        "<clipPath id='c'><path d='M0 0H20V20H0Z'/><path d='M10 10V30H30V10Z'/></clipPath>"
        "<rect width='40' height='30' fill='red' clip-path='url(#c)'/>",
        { { 5, 5, "ffff0000" }, { 15, 15, "ffff0000" }, { 25, 25, "ffff0000" }, { 25, 5, "ffffffff" } } },
    { "EvenOddClipKeepsItsHoleUntilAnotherAreaCoversIt",
        "<clipPath id='c'><path clip-rule='evenodd' d='M0 0H20V20H0ZM5 5H15V15H5Z'/><path d='M10 "
        "10H30V30H10Z'/>"
        "</clipPath><rect width='40' height='30' fill='red' clip-path='url(#c)'/>",
        { { 2, 2, "ffff0000" }, { 7, 7, "ffffffff" }, { 12, 12, "ffff0000" }, { 25, 25, "ffff0000" } } },
    { "ClipOfAClipAndOfAnAreaAreIntersections",
        "<clipPath id='a'><rect width='20' height='30'/></clipPath>"
        "<clipPath id='b' clip-path='url(#a)'><rect width='40' height='10'/>"
        "<rect y='20' width='40' height='10' clip-path='url(#d)'/></clipPath>"
        "<clipPath id='d'><rect x='10' width='40' height='30'/></clipPath>"
        "<rect width='40' height='30' fill='red' clip-path='url(#b)'/>",
        { { 5, 5, "ffff0000" }, { 25, 5, "ffffffff" }, { 5, 25, "ffffffff" }, { 15, 25, "ffff0000" } } },
    { "EmptyClipHidesAll", "<clipPath id='c'/><rect width='40' height='30' fill='red' clip-path='url(#c)'/>",
        { { 5, 5, "ffffffff" } } },
    { "StopsThatMeetAtTheEndsKeepTheirColours",
        "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='10' x2='30'><stop stop-color='red'/>"
        "<stop stop-color='blue'/><stop offset='1' stop-color='blue'/><stop offset='1' stop-color='lime'/>"
        "</linearGradient><rect width='40' height='30' fill='url(#g)'/>",
        { { 5, 15, "ffff0000" }, { 15, 15, "ff0000ff" }, { 25, 15, "ff0000ff" }, { 35, 15, "ff00ff00" } } },
    { "PenIsStretchedWithItsShape",
        "<path transform='scale(4 1)' d='M5 0V30' stroke='red' stroke-width='4'/>"
        "<path transform='scale(4 1)' d='M0 15H10' stroke='blue' stroke-width='4'/>",
        { { 13, 5, "ffff0000" }, { 26, 5, "ffff0000" }, { 3, 14, "ff0000ff" }, { 3, 18, "ffffffff" } } },
    { "LinesOfNoLengthShowTheirCaps",
        "<g stroke='red' stroke-width='10'><path d='M10 10Z' stroke-linecap='square'/>"
        "<path d='M30 10h0' stroke-linecap='square'/><path d='M10 25h0' stroke-linecap='round'/>"
        "<path d='M30 25h0'/></g>",
        { { 6, 6, "ffff0000" }, { 26, 6, "ffff0000" }, { 10, 25, "ffff0000" }, { 30, 25, "ffffffff" } } },
    { "MoreThanSixDashes",
        "<path d='M0 15H40' stroke='red' stroke-width='20' stroke-dasharray='4 4 8 4 4 4 8 4'/>",
        { { 2, 15, "ffff0000" }, { 6, 15, "ffffffff" }, { 13, 15, "ffff0000" }, { 38, 15, "ffffffff" } } },
    { "BoundingBoxGradientEndsWithItsShape",
        "<linearGradient id='g'><stop offset='.5' stop-color='red'/><stop offset='.5' stop-color='blue'/>"
        "</linearGradient><rect x='10' width='20' height='30' fill='url(#g)' fill-opacity='.6'/>",
        { { 12, 15, "ffff6666" }, { 18, 15, "ffff6666" }, { 22, 15, "ff6666ff" }, { 5, 5, "ffffffff" } } },
    { "RepeatedGradientGoesOnBothWays",
        "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='10' x2='20' spreadMethod='repeat'>"
        "<stop offset='.5' stop-color='red'/><stop offset='.5' stop-color='blue'/></linearGradient>"
        "<rect width='40' height='30' fill='url(#g)'/>",
        { { 2, 9, "ffff0000" }, { 7, 9, "ff0000ff" }, { 32, 9, "ffff0000" }, { 37, 9, "ff0000ff" } } },
    { "ReflectedGradientTurnsBack",
        "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='10' x2='20' spreadMethod='reflect'>"
        "<stop offset='.5' stop-color='red'/><stop offset='.5' stop-color='blue'/><stop offset='1' "
        "stop-color='blue'/></linearGradient>"
        "<rect width='40' height='30' fill='url(#g)'/>",
        { { 2, 9, "ff0000ff" }, { 7, 9, "ffff0000" }, { 22, 9, "ff0000ff" }, { 27, 9, "ffff0000" } } },
    { "CirclesGrowOutOfTheFocus",
        "<radialGradient id='g' gradientUnits='userSpaceOnUse' cx='20' cy='15' r='15' fx='8' fy='15'>"
        "<stop offset='.5' stop-color='red'/><stop offset='.5' stop-color='blue'/></radialGradient>"
        "<rect width='40' height='30' fill='url(#g)' fill-opacity='.6'/>",
        // Half way the circle is about (14, 15) with radius 7.5: from 6.5 to 21.5.
        { { 8, 15, "ffff6666" }, { 20, 15, "ffff6666" }, { 23, 15, "ff6666ff" }, { 39, 29, "ff6666ff" } } },
};

TEST(Drawing, PaintsWhatItSaysOnEveryRoad)
{
    for (const ProbeCase& c : probeCases) {
        const Sheet sheet(c.content, 2); // edges lie on pixels
        const Picture direct = sheet.direct();
        for (const auto& probe : c.probes) {
            EXPECT_EQ(hex(pixel(direct, 2 * probe.x + 1, 2 * probe.y + 1)), probe.argb)
                << c.name << " at " << probe.x << ", " << probe.y;
        }
        EXPECT_LE(compare(direct, sheet.composited(), 0).largest, 1) << c.name;
        EXPECT_EQ(compare(direct, drawOffScreen(sheet.page), 0).largest, 0) << c.name;
    }
}

TEST(Drawing, OutlinedPenEqualsTheLibrarysStroke)
{
    // A pen that a plain stroke can draw, once with that and once as an outline.
    const std::string path
        = "<path d='M8 8C30 0 0 30 32 22L34 8' fill='none' stroke-width='5' stroke-linecap='round' "
          "stroke-linejoin='bevel' stroke-dasharray='9 3' transform='rotate(8)' stroke='";
    const Sheet plain(path + "red'/>", 4);
    const Sheet outlined(
        "<linearGradient id='g'><stop stop-color='red'/><stop offset='1' stop-color='red'/></linearGradient>"
            + path + "url(#g)'/>",
        4);
    const auto strokeOf = [](const Sheet& sheet) {
        return static_cast<const vxr::VXRShape&>(*sheet.drawing.renderables.at(0)).stroke();
    };
    ASSERT_FALSE(dynamic_cast<const OutlineStroke*>(strokeOf(plain).get()));
    ASSERT_TRUE(dynamic_cast<const OutlineStroke*>(strokeOf(outlined).get()));
    EXPECT_LT(compare(plain.direct(), outlined.direct(), 32).share, 0.001);
    EXPECT_TRUE(strokeOf(outlined)->isEqual(*strokeOf(outlined)->copyWithZone()));
    EXPECT_FALSE(strokeOf(plain)->isEqual(*strokeOf(outlined)));
}

TEST(Drawing, LineEndsLookLikeTheMarkersTheyStandFor)
{
    // The same marker, once as the model takes it and once with a rule that makes it an ordinary shape.
    const auto drawing = [](const std::string& rule) {
        return "<marker id='m' orient='auto' markerWidth='5' markerHeight='4' refX='1' refY='2'>"
               "<path fill='red' fill-rule='"
            + rule
            + "' d='M0 0L5 2L0 4L1 2Z'/></marker><g fill='none' stroke='red' transform='rotate(10) "
              "scale(.8)'>"
              "<path d='M10 8C20 0 30 20 40 8' stroke-width='1.5' marker-start='url(#m)' "
              "marker-end='url(#m)'/>"
              "<line x1='12' y1='28' x2='40' y2='20' stroke-width='.75' marker-end='url(#m)' "
              "marker-start='url(#m)'/></g>";
    };
    const Sheet lineEnds(drawing("nonzero"), 4);
    const Sheet shapes(drawing("evenodd"), 4);
    ASSERT_EQ(lineEnds.drawing.shapeCount, 2u);
    ASSERT_EQ(shapes.drawing.shapeCount, 6u);
    EXPECT_LE(compare(lineEnds.direct(), shapes.direct(), 0).largest, 24);
    EXPECT_LT(compare(lineEnds.direct(), shapes.direct(), 8).share, 0.002);
}

TEST(Drawing, BlackAndWhiteHasWhiteAreasAndBlackLines)
{
    Sheet sheet("<radialGradient id='g' fx='.3'><stop stop-color='red'/><stop offset='1' "
                "stop-color='red'/></radialGradient>"
                "<rect width='40' height='30' fill='gray'/>"
                "<path d='M0 5H40' stroke='lime' stroke-width='4'/>"
                "<path transform='scale(2 1)' d='M0 15H20' stroke='lime' stroke-width='4'/>"
                "<rect y='20' width='40' height='10' fill='url(#g)' stroke='url(#g)' stroke-width='2'/>");
    // Layers that still have colours in them are not used again.
    EXPECT_EQ(hex(pixel(sheet.composited(), 20, 5)), "ff00ff00");
    sheet.page.blackAndWhite = true;
    for (const Picture& picture : { sheet.direct(), sheet.composited() }) {
        for (const int black : { 5, 15, 20 })
            EXPECT_EQ(hex(pixel(picture, 20, black)), "ff000000") << black;
        for (const int white : { 10, 25 })
            EXPECT_EQ(hex(pixel(picture, 20, white)), "ffffffff") << white;
    }
}

/// A drawing's group on a canvas in a window, edited while it is shown.
class ShownGroup {
public:
    ShownGroup(bool usesCompositor, float scale)
        : mSheet(
            "<clipPath id='c'><rect width='30' height='30'/></clipPath><g opacity='.5' clip-path='url(#c)'>"
            "<rect width='10' height='10' fill='red'/><rect x='20' y='10' width='20' height='10' "
            "fill='blue'/></g>",
            scale)
        , mCanvas(std::make_shared<DrawingCanvas>(frame(), mSheet.drawing.renderables, scale, usesCompositor))
        , mWindow(frame())
    {
        mWindow.setContentView(mCanvas);
        mWindow.display();
    }

    vxr::VXRGroup& group() { return static_cast<vxr::VXRGroup&>(*mSheet.drawing.renderables.at(0)); }
    vxr::VXRShape& child() { return static_cast<vxr::VXRShape&>(*group().renderables().at(0)); }

    Picture picture() const
    {
        return { mWindow.width(), mWindow.height(),
            { mWindow.pixels(), mWindow.pixels() + mWindow.width() * mWindow.height() } };
    }

    /// Levels by which redrawing what was damaged differs from redrawing everything.
    int staleness()
    {
        mWindow.displayIfNeeded();
        const Picture updated = picture();
        mWindow.display();
        return compare(updated, picture(), 0).largest;
    }

private:
    vxr::Rect frame() const
    {
        return { 0, 0, static_cast<float>(mSheet.page.width), static_cast<float>(mSheet.page.height) };
    }

    Sheet mSheet;
    std::shared_ptr<DrawingCanvas> mCanvas;
    vxr::Window mWindow;
};

TEST(Drawing, ChangesInAGroupReachTheWindow)
{
    const struct {
        const char* name;
        void (*change)(ShownGroup&);
    } changes[] = {
        { "move of a child", [](auto& s) { s.child().offsetBy(15, 12); } },
        { "move by a part of a pixel", [](auto& s) { s.child().offsetBy(-0.4f, -12.3f); } },
        { "fill of a child",
            [](auto& s) { s.child().setFill(vxr::Color::colorWithCalibratedRGB(0, 1, 0)); } },
        { "opacity of a child", [](auto& s) { s.child().setOpacity(0.5f); } },
        { "move of the group", [](auto& s) { s.group().offsetBy(3.3f, 0); } },
        { "move of a child in a moved group", [](auto& s) { s.child().offsetBy(-14, 7); } },
    };
    for (const bool compositor : { true, false }) {
        for (const float scale : { 1.0f, 1.5f, 80.0f }) {
            ShownGroup shown(compositor, scale);
            for (const auto& [name, change] : changes) {
                const Picture before = shown.picture();
                change(shown);
                EXPECT_EQ(shown.staleness(), 0) << name << " at " << scale;
                EXPECT_GT(compare(before, shown.picture(), 0).largest, 0) << name << " at " << scale;
            }
        }
    }
}

TEST(Drawing, OutlinesAreMadeAnewForAnotherScale)
{
    const std::string content = "<path transform='scale(1 .2)' fill='none' stroke='red' stroke-width='5' "
                                "d='M8 8C40 0 0 160 32 100L34 8'/>";
    Sheet sheet(content, 0.25f);
    sheet.direct();
    const Sheet fresh(content, 16);
    const Page enlarged { sheet.drawing, fresh.page.width, fresh.page.height, 16, fresh.page.background,
        false };
    EXPECT_EQ(compare(drawDirect(enlarged), fresh.direct(), 0).largest, 0);
}

/// Shapes lie anywhere here, at a scale that is no whole number.
TEST(Drawing, SamplesDrawOnEveryRoad)
{
    for (const char* name : { "rs", "mx", "emoji_u1f386", "emoji_u1f4e6" }) {
        std::ifstream file(std::string(VXR_DRAWINGS "/") + name + ".svg");
        const std::string text { std::istreambuf_iterator<char>(file), {} };
        const ImportedDrawing drawing = importDrawing(svg::readDrawing(text));
        const float scale = 256 / drawing.size.width;
        const Page page { drawing, 256, static_cast<int>(std::lround(drawing.size.height * scale)), scale,
            svg::Rgba { 1, 1, 1, 1 }, false };
        const Picture direct = drawDirect(page);
        ShownPage window(page, true);
        window.display();
        const Picture first = window.picture();
        // Without a layer the paints of one object round one after the other.
        EXPECT_LE(compare(direct, first, 0).largest, 2) << name;
        window.display();
        EXPECT_EQ(compare(first, window.picture(), 0).largest, 0) << name;
        std::string pdf;
        drawPDF(
            page, *vxr::DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
                pdf.append(reinterpret_cast<const char*>(data), size);
                return true;
            }));
        EXPECT_TRUE(pdf.starts_with("%PDF-") && pdf.find("%%EOF") != std::string::npos) << name;
    }
}

} // namespace
} // namespace app
