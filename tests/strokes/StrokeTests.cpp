#include <tests/renderables/ModelFakes.h>
#include <vxr/geometry/Color.h>
#include <vxr/protocols/VXRPaintedShape.h>
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

/// A square of side 10 at the origin.
struct Square final : VXRPaintedShape {
    VXRCanvasRole* onCanvas = nullptr;
    bool interior = false;

    VXRCanvasRole* canvas() const override { return onCanvas; }
    std::shared_ptr<Path> path() const override { return Path::pathWithRect({ 0, 0, 10, 10 }); }
    std::shared_ptr<Path> transformedPath() const override { return path(); }
    AffineTransform transform() const override { return {}; }
    Size naturalSize() const override { return { 10, 10 }; }
    Point center() const override { return { 5, 5 }; }
    float angle() const override { return 0; }
    Rect alignmentBounds() const override { return { 0, 0, 10, 10 }; }
    bool wantsInteriorStroke() const override { return interior; }
    void clip() const override { path()->addClip(); }
};

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

    const float a[] = { 1, 1 }, b[] = { 1, 2 };
    const VXRStrokePattern one(a, 2, 0);
    EXPECT_TRUE(one.isEqual(*VXRStrokePattern::shortDashPattern()));
    EXPECT_FALSE(one.isEqual(VXRStrokePattern(b, 2, 0)));
    EXPECT_FALSE(one.isEqual(VXRStrokePattern(a, 1, 0)));
    EXPECT_FALSE(one.isEqual(VXRStrokePattern(a, 2, 0.5f)));
    // Identity comes before the values.
    const VXRStrokePattern unordered(a, 2, notANumber);
    EXPECT_TRUE(unordered.isEqual(unordered));
    EXPECT_FALSE(unordered.isEqual(*unordered.copyWithZone()));

    const auto copy = empty->copyWithZone();
    EXPECT_NE(copy, empty);
    EXPECT_TRUE(copy->isEqual(*empty) && empty->isEqual(*copy));
}

TEST(Stroke, RendersOnlyPositiveWidthsOfNonemptyPatterns)
{
    EXPECT_TRUE(strokeOf(nullptr, 1e-6f)->shouldRender());
    for (const float width : { 0.0f, -1.0f, notANumber })
        EXPECT_FALSE(strokeOf(Color::blackColor(), width)->shouldRender()) << width;
    EXPECT_FALSE(VXRStroke::emptyStroke()->shouldRender());
    EXPECT_EQ(recordingOf([] {
        Square square;
        VXRStroke::emptyStroke()->paintShape(square);
    }),
        "");
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
        Square square;
        square.onCanvas = c.onCanvas ? &canvas : nullptr;
        square.interior = c.interior;
        const auto stroke = strokeOf(Color::colorWithCalibratedRGB(1, 0, 0, c.alpha), c.width);
        EXPECT_EQ(recordingOf([&] { stroke->paintShape(square); }), c.painted) << c.name;
        EXPECT_EQ(recordingOf([&] { stroke->paintShapeWithNormalClip(square); }), c.paintedWithNormalClip)
            << c.name;
    }
}

TEST(Stroke, EqualityIsByValueWithEquivalentColoursAndWithoutTheMask)
{
    const auto base = strokeOf(Color::blackColor(), 2);
    const auto variant = [&](void (*change)(VXRStroke&)) {
        const auto copy = base->copyWithZone();
        change(*copy);
        return base->isEqual(*copy);
    };
    EXPECT_TRUE(variant([](VXRStroke&) {}));
    EXPECT_TRUE(variant([](VXRStroke& s) { s.setStrokeMask(5); }));
    EXPECT_TRUE(variant([](VXRStroke& s) { s.setColor(Color::colorWithCalibratedRGB(0, 0, 0)); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setColor(Color::whiteColor()); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setColor(nullptr); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setWidth(3); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setCap(1); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setJoin(1); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setMiterLimit(3); }));
    EXPECT_FALSE(variant([](VXRStroke& s) { s.setPattern(VXRStrokePattern::emptyPattern()); }));
    EXPECT_TRUE(strokeOf(nullptr, 2)->isEqual(*strokeOf(nullptr, 2)));
    EXPECT_FALSE(strokeOf(nullptr, 2)->isEqual(*base));
}

TEST(Stroke, CopiesShareTheColourAndLeaveTheMaskBehind)
{
    const auto stroke = strokeOf(Color::colorWithCalibratedRGB(1, 0, 0), 2);
    stroke->setStrokeMask(5);
    stroke->setMiterLimit(9);
    const auto copy = stroke->copyWithZone();
    EXPECT_EQ(copy->color(), stroke->color());
    EXPECT_NE(copy->pattern(), stroke->pattern());
    EXPECT_EQ(copy->miterLimit(), 9);
    EXPECT_EQ(copy->strokeMask(), 0u);
}

/// What a subclass with a field of its own looks like.
class NamedStroke final : public VXRStroke {
public:
    using VXRStroke::VXRStroke;

protected:
    std::shared_ptr<VXRStroke> makeOfSameClass(std::shared_ptr<Color> color, float width, int cap, int join,
        std::shared_ptr<VXRStrokePattern> pattern) const override
    {
        return std::make_shared<NamedStroke>(std::move(color), width, cap, join, std::move(pattern));
    }
    bool isOfReceiversClass(const Object& other) const override
    {
        return dynamic_cast<const NamedStroke*>(&other) != nullptr;
    }
};

TEST(Stroke, SubclassesCopyToTheirOwnClassAndEqualOnlyIt)
{
    const auto plain = VXRStroke::stroke();
    const NamedStroke named(Color::blackColor(), 1, 0, 0, VXRStrokePattern::solidPattern());
    EXPECT_NE(std::dynamic_pointer_cast<NamedStroke>(named.copyWithZone()), nullptr);
    EXPECT_TRUE(plain->isEqual(named)) << "the receiver's class or a subclass";
    EXPECT_FALSE(named.isEqual(*plain));
}
