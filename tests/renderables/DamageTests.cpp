#include <tests/renderables/ModelFakes.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRShadowOnlyShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <gtest/gtest.h>

// What each change tells the canvas and the layer, in order.

using namespace vxr;
using namespace vxr::test;

namespace {

/// A shape, a canvas with compositor at zoom 1, and a layer that all write into one list.
///
/// The shape is the rectangle (10.5, 20.5, 30, 40) with a black stroke 2 wide, so its alignment bounds are
/// (9.5, 19.5, 32, 42), and what it erases is (4, 14, 43, 53).
struct Stage {
    Lines lines;
    FakeCanvas canvas { &lines };
    Layered<VXRShape> shape { &lines };

    Stage()
    {
        canvas.compositor = true;
        shape.setPath(Path::pathWithRect({ 10.5f, 20.5f, 30, 40 }));
        shape.setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), 2));
        shape.setCanvas(&canvas);
        shape.layer();
        shape.erasableBounds();
        lines.clear();
    }
};

std::shared_ptr<VXRShadow> shadowAt(float angle, int radius = 3)
{
    return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(angle, 10, radius, 1, Color::blackColor());
}

struct DamageCase {
    const char* name;
    void (*prepare)(Stage&);
    void (*change)(Stage&);
    Lines expected;
};

constexpr auto nothing = [](Stage&) {};
const std::string before = "damage 4 14 43 53";

const DamageCase damageCases[] = {
    { "Opacity", nothing, [](Stage& s) { s.shape.setOpacity(0.5f); }, { before } },
    { "OpacityEqual", nothing, [](Stage& s) { s.shape.setOpacity(1); }, {} },
    { "NaturalSize", nothing,
        [](Stage& s) {
            s.shape.setNaturalSize({ 5, 5 });
        },
        {} },
    { "PlainStores", nothing,
        [](Stage& s) {
            s.shape.setClipRect({ 1, 2, 3, 4 });
            s.shape.setAllowsTiling(false);
            s.shape.setAlwaysStrokesWhenBlackAndWhite(true);
            s.shape.invalidateBoundingBox();
            s.shape._setTransform(AffineTransform::makeScale(2, 2));
        },
        {} },
    { "TransformEqual", nothing, [](Stage& s) { s.shape.setTransform(s.shape.transform()); }, {} },
    { "MoveAtWholeZoom", nothing, [](Stage& s) { s.shape.offsetBy(100, 7); },
        { before, "damage 104 21 43 53" } },
    { "MoveToAtFractionalZoom", [](Stage& s) { s.canvas.scale = 1.5f; },
        [](Stage& s) {
            s.shape.offsetTo({ 0, 0 });
        },
        { before, "layer invalidate", "told", "damage -6 -6 42 52" } },
    { "DragAtFractionalZoom",
        [](Stage& s) { s.canvas.scale = 1.5f, s.shape.setDynamicallyTranslating(true); },
        [](Stage& s) { s.shape.offsetBy(1, 0); }, { before, "damage 5 14 43 53" } },
    { "DragEndsAtFractionalZoom",
        [](Stage& s) { s.canvas.scale = 1.5f, s.shape.setDynamicallyTranslating(true); },
        [](Stage& s) { s.shape.setDynamicallyTranslating(false); }, { "layer invalidate", "told", before } },
    { "DragEndsAtWholeZoom", [](Stage& s) { s.shape.setDynamicallyTranslating(true); },
        [](Stage& s) { s.shape.setDynamicallyTranslating(false); }, {} },
    { "NoDragEndsAtFractionalZoom", [](Stage& s) { s.canvas.scale = 1.5f; },
        [](Stage& s) { s.shape.setDynamicallyTranslating(false); }, {} },
    // The stroke is not scaled: it is drawn on the transformed path.
    { "Scale", nothing,
        [](Stage& s) {
            s.shape.scaleXByYByPivot(2, 1, { 10, 0 });
        },
        { before, "layer invalidate", "told", "damage 5 14 72 53" } },
    { "Rotate", nothing,
        [](Stage& s) {
            s.shape.rotateByRadiansPivot(3.14159265f, { 25.5f, 40.5f });
        },
        { before, "layer invalidate", "told", before } },
    { "TransformingBegins", nothing, [](Stage& s) { s.shape.setDynamicallyTransforming(true); }, {} },
    { "TransformingEnds", nothing, [](Stage& s) { s.shape.setDynamicallyTransforming(false); },
        { "layer invalidate", "told", before } },
    // Grown by the radius 3 and moved down by 10: (6.5, 26.5, 38, 48), united to (6.5, 19.5, 38, 55).
    { "ShadowFirst", nothing, [](Stage& s) { s.shape.setShadow(shadowAt(90)); },
        { before, "layer invalidate", "told", "damage 1 14 49 66" } },
    { "ShadowTurns", [](Stage& s) { s.shape.setShadow(shadowAt(90)); },
        [](Stage& s) { s.shape.setShadow(shadowAt(0)); }, { "damage 1 14 49 66", "damage 4 11 56 59" } },
    { "ShadowSpreads", [](Stage& s) { s.shape.setShadow(shadowAt(90)); },
        [](Stage& s) { s.shape.setShadow(shadowAt(90, 4)); },
        { "damage 1 14 49 66", "layer invalidate", "told", "damage 0 14 51 67" } },
    { "ShadowNoneToNone", nothing, [](Stage& s) { s.shape.setShadow(VXRShadow::nullShadow()); },
        { before, before } },
    { "ShadowGoes", [](Stage& s) { s.shape.setShadow(shadowAt(90)); },
        [](Stage& s) { s.shape.setShadow(nullptr); },
        { "damage 1 14 49 66", "layer invalidate", "told", before } },
    { "Fill", nothing, [](Stage& s) { s.shape.setFill(Color::blackColor()); },
        { "layer invalidate", "told", before } },
    { "FillEqual", nothing, [](Stage& s) { s.shape.setFill(s.shape.fill()); },
        { "layer invalidate", "told", before } },
    { "StrokeWider", nothing,
        [](Stage& s) { s.shape.setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), 10)); },
        { before, "layer invalidate", "told", "damage 0 10 51 61" } },
    { "StrokeEqual", nothing, [](Stage& s) { s.shape.setStroke(s.shape.stroke()); },
        { before, "layer invalidate", "told", before } },
    { "InteriorStrokeEqual", nothing, [](Stage& s) { s.shape.setWantsInteriorStroke(false); }, {} },
    { "InteriorStrokeKeepsBounds", nothing, [](Stage& s) { s.shape.setWantsInteriorStroke(true); },
        { before, "layer invalidate", "told", before } },
    { "HeadLineEndOnClosedPath", nothing, [](Stage& s) { s.shape.setHeadLineEnd(VXRLineEnd::openArrow()); },
        { before, "layer invalidate", "told", before } },
    // The move to the new path's place comes first and still carries the old bounds.
    { "Path", nothing,
        [](Stage& s) {
            s.shape.setPath(Path::pathWithRect({ 110, 20, 10, 10 }));
        },
        { before, before, "damage 104 14 42 52", "layer invalidate", "told", "damage 104 14 22 22" } },
    { "PathInPlace", nothing,
        [](Stage& s) {
            s.shape.setPathPreserveOffset(Path::pathWithRect({ 110, 20, 10, 10 }), false);
        },
        { before, "layer invalidate", "told", "damage 4 14 23 23" } },
    { "NeedsDisplay", nothing, [](Stage& s) { s.shape.setNeedsDisplay(true); }, { "layer display", before } },
    { "NeedsNoDisplay", nothing, [](Stage& s) { s.shape.setNeedsDisplay(false); }, { "layer fresh" } },
    { "NeedsDisplayInRect", [](Stage& s) { s.shape.setShadow(shadowAt(90)); },
        [](Stage& s) {
            s.shape.setNeedsDisplayInRect({ 1, 2, 5, 5 });
        },
        { "layer display-in 1 2 5 5", "told-in 8.5 22.5 11 18", "damage 8.5 22.5 11 18" } },
    { "SameCanvas", nothing, [](Stage& s) { s.shape.setCanvas(&s.canvas); }, {} },
    { "OtherCanvas", nothing,
        [](Stage& s) {
            FakeCanvas other(&s.lines);
            s.shape.setCanvas(&other);
            s.shape.setCanvas(nullptr);
        },
        { "unregister", "layer clear", "register", "unregister", "layer clear" } },
    { "Silent", [](Stage& s) { s.shape.setAutoInvalidates(false); },
        [](Stage& s) {
            s.shape.setFill(nullptr);
            s.shape.setStroke(nullptr);
            s.shape.offsetBy(3, 3);
            s.shape.scaleXByYByPivot(2, 2, {});
            s.shape.setOpacity(0);
            s.shape.setShadow(shadowAt(90));
            s.shape.setDynamicallyTransforming(false);
            s.shape.setPath(Path::pathWithRect({ 0, 0, 1, 1 }));
        },
        {} },
    { "SilentButAsked", [](Stage& s) { s.shape.setAutoInvalidates(false); },
        [](Stage& s) { s.shape.invalidate(); }, { "layer invalidate", "told", before } },
    { "WithoutCompositor", [](Stage& s) { s.canvas.compositor = false; },
        [](Stage& s) { s.shape.setFill(nullptr); }, { "told", before } },
    { "WithoutCanvas", [](Stage& s) { s.shape.setCanvas(nullptr); },
        [](Stage& s) {
            s.shape.setFill(nullptr);
            s.shape.offsetBy(1, 1);
            s.shape.setNeedsDisplay(true);
        },
        { "layer display" } },
};

TEST(Damage, EachChangeErasesAndInvalidatesInItsOwnOrder)
{
    for (const DamageCase& c : damageCases) {
        Stage stage;
        c.prepare(stage);
        stage.lines.clear();
        c.change(stage);
        EXPECT_EQ(stage.lines, c.expected) << c.name;
    }
}

/// Lines of a change to a parametric shape on a canvas with compositor.
template <class Shape, class... Arguments> Lines damageOf(void (*change)(Shape&), Arguments... arguments)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    canvas.compositor = true;
    Layered<Shape> shape(&lines, arguments...);
    shape.setStroke(nullptr);
    shape.setCanvas(&canvas);
    shape.layer();
    shape.erasableBounds();
    lines.clear();
    change(shape);
    shape.setCanvas(nullptr);
    lines.resize(lines.size() - 2);
    return lines;
}

TEST(Damage, ParametricShapesKeepTheirOriginAndCompareNothing)
{
    // A square on its corner, 20 wide, whose frame starts at the origin.
    const auto polygon
        = [](void (*change)(VXRRegularPolygon&)) { return damageOf<VXRRegularPolygon>(change, 10.0f, 4); };
    EXPECT_EQ(polygon([](VXRRegularPolygon& p) { p.setRadius(20); }),
        (Lines { "damage -5 -5 30 30", "layer invalidate", "told", "damage -5 -5 50 50" }));
    EXPECT_EQ(polygon([](VXRRegularPolygon& p) { p.setNumberOfSides(4); }),
        (Lines { "damage -5 -5 30 30", "layer invalidate", "told", "damage -5 -5 30 30" }));

    // Two tips and two inner vertices: 20 wide, and 8 high until the inner radius changes.
    const auto star = [](void (*change)(VXRStar&)) { return damageOf<VXRStar>(change, 4.0f, 10.0f, 2); };
    EXPECT_EQ(star([](VXRStar& s) { s.setInnerRadius(6); }),
        (Lines { "damage -5 -5 30 18", "layer invalidate", "told", "damage -5 -5 30 22" }));
    EXPECT_EQ(star([](VXRStar& s) { s.setOuterRadius(10); }),
        (Lines { "damage -5 -5 30 18", "layer invalidate", "told", "damage -5 -5 30 18" }));

    EXPECT_EQ(damageOf<VXRShadowOnlyShape>([](VXRShadowOnlyShape& s) { s.setClip(13); }), Lines {});
}

TEST(Damage, LineEndsWidenWhatIsErased)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    VXRShape shape;
    auto line = Path::path();
    line->moveTo({ 20, 50 });
    line->lineTo({ 120, 50 });
    shape.setPath(line);
    shape.setCanvas(&canvas);
    lines.clear();
    // The stroke is 1 wide: half a unit around the line, and mitres add nothing.
    // The arrow's end point (3, 0.1) lies on (120, 50), its tip 5.9 to the right, its barbs 3 to the side.
    shape.setHeadLineEnd(VXRLineEnd::simpleArrow());
    EXPECT_EQ(lines, (Lines { "damage 14 44 112 12", "told", "damage 14 42 117 16" }));
    lines.clear();
    shape.setTailLineEnd(VXRLineEnd::simpleArrow());
    EXPECT_EQ(lines, (Lines { "damage 14 42 117 16", "told", "damage 9 42 122 16" }));
    shape.setCanvas(nullptr);
}

TEST(Damage, NoLayerIsMadeOnlyToBeInvalidated)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    canvas.compositor = true;
    Layered<VXRShape> shape(&lines);
    shape.setPath(Path::pathWithRect({ 0, 0, 10, 10 }));
    shape.setCanvas(&canvas);
    shape.setFill(Color::blackColor());
    shape.setNeedsDisplayInRect({ 0, 0, 1, 1 });
    recordingOf([&] { shape.renderLayeredIntoContext(currentDrawingPort()); });
    EXPECT_FALSE(shape.hasLayer());
    shape.prepareToDraw();
    EXPECT_TRUE(shape.hasLayer());
    shape.flushCompositorLayer();
    EXPECT_FALSE(shape.hasLayer());
    shape.setCanvas(nullptr);
}

} // namespace
