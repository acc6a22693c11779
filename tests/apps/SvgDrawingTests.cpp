#include "OutlineText.h"

#include <apps/vxr/svg/Document.h>
#include <apps/vxr/svg/Drawing.h>

#include <gmock/gmock.h>

#include <fstream>

namespace app::svg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Drawing read(const std::string& content, const std::string& attributes = "viewBox='0 0 100 100'")
{
    return readDrawing("<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
        + attributes + ">" + content + "</svg>");
}

const Shape& shapeAt(const std::vector<Node>& nodes, std::size_t index)
{
    return std::get<Shape>(nodes.at(index).content);
}
const Group& groupAt(const std::vector<Node>& nodes, std::size_t index)
{
    return std::get<Group>(nodes.at(index).content);
}

/// A shape's outline on the canvas.
std::string placed(const Shape& shape) { return textOf(shape.outline.transformed(shape.toCanvas)); }

TEST(SvgDrawing, SizesTheCanvas)
{
    const struct {
        const char* attributes;
        double width, height;
        const char* unit; ///< where a line from (0, 0) to (1, 1) comes to lie
    } cases[] = {
        { "viewBox='0 0 640 480'", 640, 480, "M0 0 L1 1" },
        { "width='320' viewBox='0 0 640 480'", 320, 240, "M0 0 L0.5 0.5" },
        { "height='1in' viewBox='10 0 48 48'", 96, 96, "M-20 0 L-18 2" },
        { "width='100' height='100' viewBox='0 0 50 100'", 100, 100, "M25 0 L26 1" },
        { "width='100%' height='100%' viewBox='0 0 50 100'", 50, 100, "M0 0 L1 1" },
        { "width='70' height='80'", 70, 80, "M0 0 L1 1" },
        { "", 300, 150, "M0 0 L1 1" },
    };
    for (const auto& c : cases) {
        const Drawing drawing = read("<path stroke='red' d='M0 0L1 1'/>", c.attributes);
        EXPECT_NEAR(drawing.width, c.width, 1e-9) << c.attributes;
        EXPECT_NEAR(drawing.height, c.height, 1e-9) << c.attributes;
        EXPECT_EQ(placed(shapeAt(drawing.nodes, 0)), c.unit) << c.attributes;
    }
}

TEST(SvgDrawing, WarnsOfWhatItLeavesOut)
{
    const std::string rect = "<rect width='1' height='1' ";
    const struct {
        std::string content;
        const char* warning;
    } cases[] = {
        { rect + "transform-origin='5 5'/>", "'transform-origin' is not applied" },
        { rect + "transform-origin='0 0'/>", nullptr },
        { "<g style='paint-order:stroke'>" + rect + "/></g>", "'paint-order' is not applied" },
        { rect + "style='rx:3px'/>", "'rx' is not applied" },
        { rect + "rx='3'/>", nullptr }, // the attribute is
        { rect + "shape-rendering='crispEdges'/>", "'shape-rendering' is not applied" },
        { rect + "style='filter:none;mask:none;mix-blend-mode:normal;-x-y:z;letter-spacing:3'/>", nullptr },
        { rect + "filter='blur(2px)'/>", "filters are not applied" },
        { rect + "mask='url(#m)'/>", "masks are not applied" },
        { rect + "style='mix-blend-mode:multiply'/>", "blend modes are not applied" },
        { rect + "fill='context-fill'/>", "context-fill paints nothing outside of a marker" },
        { "<switch>" + rect + "systemLanguage='de'/></switch>", "systemLanguage is compared with English" },
        { rect + "systemLanguage='de'/>", "systemLanguage is compared with English" },
        { "<marker id='m' markerUnits='user'>" + rect + "/></marker><path d='M0 0H9' marker-end='url(#m)'/>",
            "'user' is no value for markerUnits" },
        { "<marker id='m' orient='1 turn'>" + rect + "/></marker><path d='M0 0H9' marker-end='url(#m)'/>",
            "'1 turn' is no angle for orient" },
        { "<marker id='m' orient='.5turn'>" + rect + "/></marker><path d='M0 0H9' marker-end='url(#m)'/>",
            nullptr },
    };
    for (const auto& c : cases) {
        std::string warnings;
        for (const Warning& warning : read(c.content).warnings)
            warnings += warning.message;
        EXPECT_EQ(warnings, c.warning ? c.warning : "") << c.content;
    }
}

TEST(SvgDrawing, ExpandsUseAndSymbol)
{
    const Drawing drawing = read("<defs><path id='p' d='M0 0H1' fill='red'/>"
                                 "<symbol id='s' viewBox='0 0 10 10'><path d='M0 0H10'/></symbol></defs>"
                                 "<g fill='blue' transform='translate(1 0)'>"
                                 "<use href='#p' x='5' y='6'/>"
                                 "<use xlink:href='#s' x='5' y='6' width='40' height='20'/></g>");
    ASSERT_EQ(drawing.nodes.size(), 2u);
    EXPECT_EQ(placed(shapeAt(drawing.nodes, 0)), "M6 6 L7 6");
    EXPECT_EQ(shapeAt(drawing.nodes, 0).fill.color, *parseColor("red"));
    // Twice as large, in the middle of 40 by 20.
    EXPECT_EQ(placed(shapeAt(drawing.nodes, 1)), "M16 6 L36 6");
    EXPECT_EQ(shapeAt(drawing.nodes, 1).fill.color, *parseColor("blue"));
}

TEST(SvgDrawing, ClipsANestedViewportOnlyWhereSomethingSticksOut)
{
    const auto content = [](const std::string& attributes) {
        return read("<svg x='10' y='10' width='20' height='20'><path " + attributes + "/></svg>").nodes;
    };
    const std::string pen = "stroke='red' stroke-width='2' stroke-linejoin='round' ";
    EXPECT_TRUE(std::holds_alternative<Shape>(content("d='M0 0H20V20H0Z'").at(0).content));
    EXPECT_TRUE(std::holds_alternative<Shape>(content(pen + "d='M1.6 9H9'").at(0).content));
    EXPECT_TRUE(groupAt(content(pen + "d='M1.4 9H9'"), 0).clip); // less than the reach of 1.5
    const auto nodes = content("d='M0 0H21V20H0Z'");
    ASSERT_TRUE(groupAt(nodes, 0).clip);
    EXPECT_EQ(textOf(groupAt(nodes, 0).clip->areas.at(0).outline), "M10 10 L30 10 L30 30 L10 30 Z");
}

TEST(SvgDrawing, GroupsOnlyWhereOpacityOrClipIsShared)
{
    const Drawing drawing = read("<g><path d='M0 0H1V1Z'/></g>"
                                 "<g opacity='.5'><path opacity='.5' d='M0 0H1V1Z'/></g>"
                                 "<g opacity='.5'><path d='M0 0H1V1Z'/><path d='M0 0H1V1Z'/></g>"
                                 "<g opacity='0'><path d='M0 0H1V1Z'/></g>");
    ASSERT_EQ(drawing.nodes.size(), 3u);
    EXPECT_EQ(shapeAt(drawing.nodes, 0).opacity, 1);
    EXPECT_EQ(shapeAt(drawing.nodes, 1).opacity, 0.25);
    EXPECT_EQ(groupAt(drawing.nodes, 2).opacity, 0.5);
    EXPECT_EQ(groupAt(drawing.nodes, 2).children.size(), 2u);
    EXPECT_EQ(shapeCount(drawing.nodes), 4u);

    // An opacity counts once, wherever it is kept.
    const Drawing clipped = read("<clipPath id='c'><path d='M0 0H1V1Z'/></clipPath>"
                                 "<path clip-path='url(#c)' opacity='.5' d='M0 0H1V1Z'/>");
    EXPECT_EQ(groupAt(clipped.nodes, 0).opacity, 0.5);
    EXPECT_EQ(shapeAt(groupAt(clipped.nodes, 0).children, 0).opacity, 1);
}

TEST(SvgDrawing, LeavesOutWhatIsNotDisplayedOrVisible)
{
    const Drawing drawing
        = read("<g display='none'><path style='display:inline' d='M0 0H1V1Z'/></g>"
               "<g visibility='hidden'><path d='M0 0H1V1Z'/><path visibility='visible' d='M5 0H1V1Z'/></g>"
               "<path fill='none' d='M0 0H1V1Z'/><path transform='scale(0)' d='M0 0H1V1Z'/>"
               "<rect width='0' height='5'/><circle r='-1'/>");
    ASSERT_EQ(drawing.nodes.size(), 1u);
    EXPECT_EQ(placed(shapeAt(drawing.nodes, 0)), "M5 0 L1 0 L1 1 Z");
}

TEST(SvgDrawing, ResolvesGradientsThroughTheirChain)
{
    const Drawing drawing = read(
        "<linearGradient id='a' spreadMethod='reflect' x1='10%' y2='1'><stop offset='20%' stop-color='red'/>"
        "<stop offset='.1' style='stop-color:blue;stop-opacity:.5'/></linearGradient>"
        "<linearGradient id='b' href='#a' x2='.5' gradientTransform='scale(2)'/>"
        "<path fill='url(#b)' fill-opacity='.5' transform='scale(3)' d='M10 20H30V60H10Z'/>");
    const Drawing nearer
        = read("<linearGradient id='a'><stop stop-color='red'/><stop/></linearGradient>"
               "<linearGradient id='b' href='#a'><stop stop-color='lime'/><stop/></linearGradient>"
               "<path fill='url(#b)' d='M0 0H1V1Z'/>");
    EXPECT_EQ(shapeAt(nearer.nodes, 0).fill.gradient->stops.at(0).color, *parseColor("lime"));

    const Paint& paint = shapeAt(drawing.nodes, 0).fill;
    ASSERT_EQ(paint.kind, Paint::Kind::Gradient);
    const Gradient& gradient = *paint.gradient;
    EXPECT_EQ(paint.opacity, 0.5);
    EXPECT_EQ(gradient.spread, Gradient::Spread::Reflect);
    EXPECT_EQ(gradient.start, (Vec { 0.1, 0 }));
    EXPECT_EQ(gradient.end, (Vec { 0.5, 1 }));
    // The box of 20 by 40 from (10, 20), with the gradient's own scale inside it.
    EXPECT_EQ(gradient.toUser.map({ 0.5, 0.5 }), (Vec { 30, 60 }));
    ASSERT_EQ(gradient.stops.size(), 2u);
    EXPECT_EQ(gradient.stops[1].offset, 0.2); // never before the one ahead of it
    EXPECT_EQ(gradient.stops[1].color.a, 0.5);
}

TEST(SvgDrawing, FallsBackWhereAGradientHasNothingToBlend)
{
    const auto fill = [](const std::string& gradient, const std::string& paint = "url(#g) lime") {
        const Drawing drawing = read(gradient + "<path stroke='red' fill='" + paint + "' d='M0 0H5V5Z'/>");
        return shapeAt(drawing.nodes, 0).fill;
    };
    const std::string stops = "<stop stop-color='red'/><stop offset='1' stop-color='blue'/>";
    EXPECT_EQ(fill("").color, *parseColor("lime"));
    EXPECT_EQ(fill("", "url(#g)").kind, Paint::Kind::None);
    EXPECT_EQ(fill("<linearGradient id='g' href='#g'/>").kind, Paint::Kind::None);
    for (const auto& [gradient, color] :
        { std::pair("<linearGradient id='g'><stop stop-color='red'/>", "red"),
            { "<linearGradient id='g' x2='0'>", "blue" }, { "<radialGradient id='g' r='0'>", "blue" } }) {
        const std::string name(gradient + 1, 14);
        EXPECT_EQ(fill(gradient + (*color == 'b' ? stops : "") + "</" + name + ">").color, *parseColor(color))
            << gradient;
    }
    // A focus outside is moved onto the line to the centre, just inside the circle.
    const Paint radial
        = fill("<radialGradient id='g' cx='0' cy='0' r='1' fx='10'>" + stops + "</radialGradient>");
    EXPECT_NEAR(radial.gradient->focus.x, 1, 0.01);
    EXPECT_LT(radial.gradient->focus.x, 1);
    // A line has no box to measure a gradient by.
    EXPECT_TRUE(read("<linearGradient id='g'>" + stops + "</linearGradient><line stroke='url(#g)' x2='9'/>")
                    .nodes.empty());
}

TEST(SvgDrawing, PlacesClipsOnTheCanvas)
{
    const Drawing drawing
        = read("<clipPath id='c' transform='translate(1 0)'><rect width='2' height='2' clip-rule='evenodd'/>"
               "<use href='#r' x='5'/><g><rect width='99' height='99'/></g></clipPath>"
               "<defs><rect id='r' width='1' height='1'/></defs>"
               "<clipPath id='b' clipPathUnits='objectBoundingBox' clip-path='url(#c)'>"
               "<path d='M0 0H1V.5H0Z'/></clipPath>"
               "<g transform='scale(10)' clip-path='url(#c)'><path d='M0 0H9V9Z'/></g>"
               "<path clip-path='url(#b)' d='M10 20H30V60H10Z'/>"
               "<path clip-path='url(#none)' d='M10 20H30V60H10Z'/>");
    const Clip& first = *groupAt(drawing.nodes, 0).clip;
    ASSERT_EQ(first.areas.size(), 2u); // a group is no part of a clip path
    EXPECT_EQ(textOf(first.areas[0].outline), "M10 0 L30 0 L30 20 L10 20 Z");
    EXPECT_EQ(first.areas[0].rule, FillRule::EvenOdd);
    EXPECT_EQ(textOf(first.areas[1].outline), "M60 0 L70 0 L70 10 L60 10 Z");
    const Clip& second = *groupAt(drawing.nodes, 1).clip;
    EXPECT_EQ(textOf(second.areas.at(0).outline), "M10 20 L30 20 L30 40 L10 40 Z");
    ASSERT_TRUE(second.within);
    EXPECT_EQ(second.within->areas.size(), 2u);
    EXPECT_TRUE(std::holds_alternative<Shape>(drawing.nodes.at(2).content)); // a missing clip clips nothing
}

TEST(SvgMarkers, StandOnVerticesAlongTheBisector)
{
    const struct {
        const char* data;
        std::vector<int> degrees; ///< at each vertex
    } cases[] = {
        { "M0 0L10 0L10 10", { 0, 45, 90 } },
        { "M0 0H10V10H0Z", { -45, 45, 135, -135, -45 } },
        { "M0 0A5 5 0 0 1 10 0", { -90, 90 } },
        { "M0 0C0 0 0 5 5 5", { 90, 0 } }, // the first control point is no help
        { "M0 0l-9.397 3.42l-9.848-1.736", { 160, 175, -170 } }, // the short way round
        { "M0 0H5M0 10V20", { 0, 0, 90, 90 } },
    };
    for (const auto& c : cases) {
        std::vector<int> degrees;
        for (const MarkerVertex& vertex : markerVertices(parsePathData(c.data).outline))
            degrees.push_back(static_cast<int>(std::lround(vertex.angle * 180 / 3.14159265358979)));
        EXPECT_EQ(degrees, c.degrees) << c.data;
    }
}

const char* const arrow = "<marker id='m' orient='auto' markerWidth='4' markerHeight='4' refX='1' refY='2'>"
                          "<path fill='red' d='M0 0L4 2L0 4Z'/></marker>";

TEST(SvgMarkers, BecomeLineEndsWhereTheModelHasThem)
{
    const Drawing drawing = read(std::string(arrow)
        + "<path fill='none' stroke='red' stroke-width='2' marker-start='url(#m)' marker-end='url(#m)' "
          "d='M10 10H50'/>");
    ASSERT_EQ(drawing.nodes.size(), 1u);
    const Shape& shape = shapeAt(drawing.nodes, 0);
    ASSERT_TRUE(shape.finalEnd && shape.startEnd);
    EXPECT_EQ(textOf(shape.finalEnd->outline), "M-2 -4 L6 0 L-2 4 Z");
    // At the start the arrow points along the line, so into it.
    EXPECT_EQ(textOf(shape.startEnd->outline), "M2 4 L-6 0 L2 -4 Z");
}

TEST(SvgMarkers, AreShapesEverywhereElse)
{
    const char* const cases[] = {
        "stroke='blue' marker-end='url(#m)' d='M10 10H50'", // another colour
        "stroke='red' marker-mid='url(#m)' d='M10 10H30H50'",
        "stroke='red' marker-end='url(#m)' d='M10 10H50V40Z'",
        "stroke='red' marker-end='url(#m)' transform='scale(1 2)' d='M10 10H50'",
        "stroke='red' marker-end='url(#m)' d='M10 10H50M0 0H5'",
    };
    for (const char* attributes : cases) {
        const Drawing drawing = read(std::string(arrow) + "<path fill='none' " + attributes + "/>");
        EXPECT_EQ(drawing.nodes.size(), 2u) << attributes;
        EXPECT_FALSE(shapeAt(drawing.nodes, 0).finalEnd) << attributes;
    }
    const Drawing drawing = read(std::string(arrow)
        + "<path fill='none' stroke='blue' stroke-width='2' marker-end='url(#m)' d='M10 10V50'/>");
    EXPECT_EQ(placed(shapeAt(drawing.nodes, 1)), "M14 48 L10 56 L6 48 Z");
}

TEST(SvgDrawing, WarnsOnceAKindWithTheLine)
{
    const Drawing drawing
        = read("\n<text/>\n<text/>\n<foreignObject/><image/><g filter='url(#f)'/>\n<g mask='url(#f)'/>"
               "<pattern id='p'/><path fill='url(#p)' d='M0 0H1V1Z'/><path d='M0 0L1'/><path d='Q'/>");
    std::vector<std::string> seen;
    for (const Warning& warning : drawing.warnings)
        seen.push_back(std::to_string(warning.line) + " " + warning.message);
    EXPECT_THAT(seen,
        ElementsAre("2 text is not drawn", "4 foreign objects are not drawn", "4 filters are not applied",
            "5 masks are not applied", "5 patterns are not drawn",
            "5 the path is drawn up to the error at '1'", "5 the path is drawn up to the error at 'Q'"));
}

TEST(SvgDrawing, ReadsTheSampleDrawings)
{
    const struct {
        const char* name;
        double width, height;
        std::size_t shapes; ///< elements that draw, counted in the file, `use` repeated
    } cases[] = { { "bt", 640, 480, 77 }, { "za", 640, 480, 6 }, { "mx", 640, 480, 371 },
        { "emoji_u1f308", 128, 128, 6 }, { "emoji_u1f386", 128, 128, 66 }, { "emoji_u1f9ed", 128, 128, 21 } };
    for (const auto& c : cases) {
        std::ifstream file(std::string(VXR_DRAWINGS "/") + c.name + ".svg");
        const Drawing drawing = readDrawing(std::string { std::istreambuf_iterator<char>(file), {} });
        EXPECT_TRUE(drawing.warnings.empty()) << c.name << ": " << drawing.warnings.front().message;
        EXPECT_EQ(drawing.width, c.width) << c.name;
        EXPECT_EQ(drawing.height, c.height) << c.name;
        EXPECT_EQ(shapeCount(drawing.nodes), c.shapes) << c.name;
    }
}

TEST(SvgDrawing, StopsLoopsAndBombs)
{
    EXPECT_THAT(read("<g id='a'><use href='#a'/><path d='M0 0H1V1Z'/></g>").warnings.at(0).message,
        HasSubstr("contains itself"));
    EXPECT_NO_THROW(read("<clipPath id='c'><path clip-path='url(#c)' d='M0 0H1V1Z'/></clipPath>"
                         "<path clip-path='url(#c)' d='M0 0H1V1Z'/>"));
    EXPECT_NO_THROW(read("<marker id='m'><path marker-start='url(#m)' d='M0 0H1V1Z'/></marker>"
                         "<path marker-start='url(#m)' d='M0 0H1V1Z'/>"));

    std::string bomb = "<defs><g id='g0'><path d='M0 0H1V1Z'/></g>";
    std::string empty = "<defs><g id='g0'/>";
    std::string chain = "<defs><path id='g0' d='M0 0H1V1Z'/>";
    for (int i = 1; i < 1000; ++i) {
        const std::string target = "<use href='#g" + std::to_string(i - 1) + "'/>";
        const std::string open = "<g id='g" + std::to_string(i) + "'>";
        if (i < 30) {
            bomb += open + target + target + target + "</g>";
            empty += open + target + target + target + "</g>";
        }
        chain += open + target + "</g>";
    }
    const auto message = [](const std::string& content) {
        DrawingLimits limits;
        limits.shapes = 2000;
        limits.visits = 20000;
        try {
            readDrawing("<svg>" + content + "</svg>", {}, limits);
        } catch (const DocumentError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(message(bomb + "</defs><use href='#g29'/>"), "the drawing has more than 2000 shapes");
    EXPECT_EQ(message(empty + "</defs><use href='#g29'/>"),
        "the drawing grows to more than 20000 elements through its references");
    EXPECT_EQ(message(chain + "</defs><use href='#g999'/>"), "references are nested more than 400 deep");
}

} // namespace
} // namespace app::svg
