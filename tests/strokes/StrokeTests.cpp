#include <tests/support/FakeShape.h>
#include <vxr/geometry/Color.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace vxr;
using namespace vxr::test;
using ::testing::ElementsAre;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

std::shared_ptr<VXRStroke> strokeOf(std::shared_ptr<Color> color, float width)
{
    return VXRStroke::strokeWithColorWidth(std::move(color), width);
}

std::vector<float> entries(const VXRStrokePattern& pattern)
{
    return { pattern.pattern(), pattern.pattern() + VXRStrokePattern::capacity };
}

} // namespace

TEST(StrokePattern, KeepsSixEntriesAndZeroesTheRest)
{
    const float eight[] = { 1, 2, 3, 4, 5, 6, 7, 8 };
    VXRStrokePattern pattern(eight, 8, 0);
    EXPECT_EQ(pattern.count(), 6);
    EXPECT_THAT(entries(pattern), ElementsAre(1, 2, 3, 4, 5, 6));
    pattern._setPatternCount(eight, 2);
    EXPECT_THAT(entries(pattern), ElementsAre(1, 2, 0, 0, 0, 0));

    VXRStrokePattern none(nullptr, 0, 0);
    EXPECT_THAT(entries(none), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(StrokePattern, DashesInUnitsOfTheLineWidth)
{
    const float lengths[] = { 2, 1, 0.5f };
    Path path;
    VXRStrokePattern(lengths, 3, 1.5f).applyToBezierPathLineWidth(path, 4);
    EXPECT_THAT(path.lineStyle().dash, ElementsAre(8, 4, 2));
    EXPECT_EQ(path.lineStyle().dashPhase, 6);
    VXRStrokePattern::solidPattern()->applyToBezierPathLineWidth(path, 4);
    EXPECT_TRUE(path.lineStyle().dash.empty());
    VXRStrokePattern::longDashPattern()->applyToBezierPathLineWidth(path, 4);
    EXPECT_THAT(path.lineStyle().dash, ElementsAre(24, 24));
}

TEST(StrokePattern, EqualityAsksForTheTypeOfAnUndashedReceiverOnly)
{
    const VXRStrokePattern dashed(nullptr, 0, 0);
    const auto solid = VXRStrokePattern::solidPattern(), empty = VXRStrokePattern::emptyPattern();
    EXPECT_TRUE(dashed.isEqual(*solid));
    EXPECT_FALSE(solid->isEqual(dashed));
    EXPECT_FALSE(solid->isEqual(*empty));
    EXPECT_TRUE(empty->copyWithZone()->isEqual(*empty));

    const float a[] = { 1, 1 }, b[] = { 1, 2 };
    const VXRStrokePattern one(a, 2, 0), unordered(a, 2, notANumber);
    EXPECT_TRUE(one.isEqual(*VXRStrokePattern::shortDashPattern()));
    EXPECT_FALSE(one.isEqual(VXRStrokePattern(b, 2, 0)));
    EXPECT_FALSE(one.isEqual(VXRStrokePattern(a, 1, 0)));
    EXPECT_FALSE(one.isEqual(VXRStrokePattern(a, 2, 0.5f)));
    EXPECT_TRUE(unordered.isEqual(unordered)) << "identity comes before the values";
    EXPECT_FALSE(unordered.isEqual(*unordered.copyWithZone()));
}

TEST(Stroke, RendersOnlyPositiveWidthsOfNonemptyPatterns)
{
    EXPECT_TRUE(strokeOf(nullptr, 1e-6f)->shouldRender());
    for (const float width : { 0.0f, -1.0f, notANumber })
        EXPECT_FALSE(strokeOf(Color::blackColor(), width)->shouldRender()) << width;
    EXPECT_FALSE(VXRStroke::emptyStroke()->shouldRender());
}

TEST(Stroke, InsideStrokesDoubleTheWidthButNotTheDashes)
{
    VXRStroke stroke(Color::blackColor(), 3, 1, 2, VXRStrokePattern::shortDashPattern());
    Path path;
    stroke.applyToBezierPathInsideStroke(path, false);
    EXPECT_EQ(path.lineStyle(), (LineStyle { 3, LineCap::Round, LineJoin::Bevel, 4, { 3, 3 }, 0 }));
    stroke.setMiterLimit(7);
    stroke.applyInteriorWrapPropertiesToBezierPathInsideStroke(path, true);
    EXPECT_EQ(path.lineStyle(), (LineStyle { 6, LineCap::Round, LineJoin::Bevel, 7, { 3, 3 }, 0 }));
}

struct PaintCase {
    const char* name;
    float width, alpha;
    bool interior, onCanvas, compositor, blackAndWhite;
    int destination;
    const char* painted; ///< by paintShape
    const char* paintedWithNormalClip;
};

#define STROKE(width, color)                                                                                 \
    "set-color " color "\nstroke width=" width " miter=4 [M0 0 L10 0 L10 10 L0 10 Z]\n"
#define CLIP "clip [M0 0 L10 0 L10 10 L0 10 Z]\n"
#define RED "1 0 0 1"

const PaintCase paintCases[] = {
    { "NoCanvas", 2, 1, false, false, false, false, 0, STROKE("2", RED), STROKE("2", RED) },
    { "InteriorWithoutCanvasClips", 2, 1, true, false, false, false, 0, CLIP STROKE("4", RED),
        CLIP STROKE("4", RED) },
    { "DirectClipsDespiteCompositor", 2, 1, true, true, true, false, 0, CLIP STROKE("4", RED),
        CLIP STROKE("4", RED) },
    { "CompositorOffClips", 2, 1, true, true, false, false, 1, CLIP STROKE("4", RED), CLIP STROKE("4", RED) },
    { "CompositorLeavesHalfAPoint", 0.5f, 1, true, true, true, false, 1, STROKE("1", RED),
        CLIP STROKE("1", RED) },
    // Everything within 0.6 + 10 of the bounds, except the inside.
    { "CompositorErasesOutsideAboveHalfAPoint", 0.6f, 1, true, true, true, false, 1,
        STROKE("1.2", RED) "clip even-odd [M0 0 L10 0 L10 10 L0 10 Z M-10.6 -10.6 L20.6 -10.6 L20.6 20.6 "
                           "L-10.6 20.6 Z]\nsave\nset-operation clear\nfill-rect -10.6 -10.6 31.2 "
                           "31.2\nrestore\n",
        CLIP STROKE("1.2", RED) },
    { "CompositorErasesNothingOfCentredStrokes", 2, 1, false, true, true, false, 1, STROKE("2", RED),
        STROKE("2", RED) },
    { "TransparentOnScreen", 2, 0, false, true, false, false, 0, STROKE("2", "1 0 0 0"), "" },
    { "TransparentOffScreen", 2, 0, true, true, false, false, 2, CLIP, CLIP },
    { "TransparentBlackAndWhite", 2, 0, false, true, false, true, 2, STROKE("2", "0 0 0 1"),
        STROKE("2", "0 0 0 1") },
    { "NothingToRender", 0, 1, true, true, false, false, 0, "", CLIP },
};

TEST(Stroke, PaintsByTheCanvasItIsOn)
{
    for (const PaintCase& c : paintCases) {
        FakeCanvas canvas;
        canvas.compositor = c.compositor;
        canvas.blackAndWhite = c.blackAndWhite;
        canvas.destination = c.destination;
        FakeShape square(Size { 10, 10 });
        square.onCanvas = c.onCanvas ? &canvas : nullptr;
        square.interiorStroke = c.interior;
        const auto stroke = strokeOf(Color::colorWithCalibratedRGB(1, 0, 0, c.alpha), c.width);
        EXPECT_EQ(recordingOf([&] { stroke->paintShape(square); }), c.painted) << c.name;
        EXPECT_EQ(recordingOf([&] { stroke->paintShapeWithNormalClip(square); }), c.paintedWithNormalClip)
            << c.name;
    }
}

TEST(Stroke, CopiesEqualByValueWithEquivalentColoursAndWithoutTheMask)
{
    const auto base = strokeOf(Color::blackColor(), 2);
    base->setMiterLimit(9);
    base->setStrokeMask(5);
    const struct {
        const char* name;
        void (*change)(VXRStroke&);
        bool equal;
    } cases[] = {
        { "nothing but the mask", [](auto& s) { EXPECT_EQ(s.strokeMask(), 0u); }, true },
        { "colour space", [](auto& s) { s.setColor(Color::colorWithCalibratedRGB(0, 0, 0)); }, true },
        { "colour", [](auto& s) { s.setColor(Color::whiteColor()); }, false },
        { "no colour", [](auto& s) { s.setColor(nullptr); }, false },
        { "width", [](auto& s) { s.setWidth(3); }, false },
        { "cap", [](auto& s) { s.setCap(1); }, false },
        { "join", [](auto& s) { s.setJoin(1); }, false },
        { "miter limit", [](auto& s) { s.setMiterLimit(3); }, false },
        { "pattern", [](auto& s) { s.setPattern(VXRStrokePattern::emptyPattern()); }, false },
    };
    for (const auto& c : cases) {
        const auto copy = base->copyWithZone();
        c.change(*copy);
        EXPECT_EQ(base->isEqual(*copy), c.equal) << c.name;
    }
    EXPECT_NE(base->copyWithZone()->pattern(), base->pattern());
    EXPECT_FALSE(base->isEqual(*base->pattern()));
    EXPECT_TRUE(strokeOf(nullptr, 2)->isEqual(*strokeOf(nullptr, 2)));
    EXPECT_FALSE(strokeOf(nullptr, 2)->isEqual(*strokeOf(Color::blackColor(), 2)));
}
