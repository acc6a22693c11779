#include <tests/renderables/ModelFakes.h>
#include <tests/support/PathBuilder.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRShadowOnlyShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>

#include <gtest/gtest.h>

#include <utility>

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

/// What stands before the change.
using Prepare = void (*)(Stage&);
constexpr Prepare plain = [](Stage&) {};
constexpr Prepare zoomed = [](Stage& s) { s.canvas.scale = 1.5f; };
constexpr Prepare dragged = [](Stage& s) { s.shape.setDynamicallyTranslating(true); };
constexpr Prepare draggedZoomed = [](Stage& s) { zoomed(s), dragged(s); };
constexpr Prepare shadowed = [](Stage& s) { s.shape.setShadow(shadowAt(90)); };
constexpr Prepare silent = [](Stage& s) { s.shape.setAutoInvalidates(false); };

struct DamageCase {
    const char* name;
    Prepare prepare;
    void (*change)(VXRShape&);
    Lines expected;
};

const std::string before = "damage 4 14 43 53";

const DamageCase damageCases[] = {
    { "Opacity", plain, [](auto& s) { s.setOpacity(0.5f); }, { before } },
    { "OpacityEqual", plain, [](auto& s) { s.setOpacity(1); }, {} },
    { "PlainStores", plain,
        [](auto& s) {
            s.setNaturalSize(Size(5, 5));
            s.setClipRect(Rect(1, 2, 3, 4));
            s.setAllowsTiling(false);
            s.setAlwaysStrokesWhenBlackAndWhite(true);
            s.invalidateBoundingBox();
            s._setTransform(AffineTransform::makeScale(2, 2));
        },
        {} },
    { "TransformEqual", plain, [](auto& s) { s.setTransform(s.transform()); }, {} },
    { "MoveAtWholeZoom", plain, [](auto& s) { s.offsetBy(100, 7); }, { before, "damage 104 21 43 53" } },
    { "MoveToAtFractionalZoom", zoomed, [](auto& s) { s.offsetTo(Point(0, 0)); },
        { before, "layer invalidate", "told", "damage -6 -6 42 52" } },
    { "DragAtFractionalZoom", draggedZoomed, [](auto& s) { s.offsetBy(1, 0); },
        { before, "damage 5 14 43 53" } },
    { "DragEndsAtFractionalZoom", draggedZoomed, [](auto& s) { s.setDynamicallyTranslating(false); },
        { "layer invalidate", "told", before } },
    { "DragEndsAtWholeZoom", dragged, [](auto& s) { s.setDynamicallyTranslating(false); }, {} },
    { "NoDragEndsAtFractionalZoom", zoomed, [](auto& s) { s.setDynamicallyTranslating(false); }, {} },
    // The stroke is not scaled: it is drawn on the transformed path.
    { "Scale", plain, [](auto& s) { s.scaleXByYByPivot(2, 1, Point(10, 0)); },
        { before, "layer invalidate", "told", "damage 5 14 72 53" } },
    { "TransformingBegins", plain, [](auto& s) { s.setDynamicallyTransforming(true); }, {} },
    { "TransformingEnds", plain, [](auto& s) { s.setDynamicallyTransforming(false); },
        { "layer invalidate", "told", before } },
    // Grown by the radius 3 and moved down by 10: (6.5, 26.5, 38, 48), united to (6.5, 19.5, 38, 55).
    { "ShadowFirst", plain, [](auto& s) { s.setShadow(shadowAt(90)); },
        { before, "layer invalidate", "told", "damage 1 14 49 66" } },
    { "ShadowTurns", shadowed, [](auto& s) { s.setShadow(shadowAt(0)); },
        { "damage 1 14 49 66", "damage 4 11 56 59" } },
    { "ShadowSpreads", shadowed, [](auto& s) { s.setShadow(shadowAt(90, 4)); },
        { "damage 1 14 49 66", "layer invalidate", "told", "damage 0 14 51 67" } },
    { "ShadowNoneToNone", plain, [](auto& s) { s.setShadow(VXRShadow::nullShadow()); }, { before, before } },
    { "ShadowGoes", shadowed, [](auto& s) { s.setShadow(nullptr); },
        { "damage 1 14 49 66", "layer invalidate", "told", before } },
    { "FillEqual", plain, [](auto& s) { s.setFill(s.fill()); }, { "layer invalidate", "told", before } },
    { "StrokeWider", plain,
        [](auto& s) { s.setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), 10)); },
        { before, "layer invalidate", "told", "damage 0 10 51 61" } },
    { "InteriorStrokeEqual", plain, [](auto& s) { s.setWantsInteriorStroke(false); }, {} },
    { "InteriorStrokeKeepsBounds", plain, [](auto& s) { s.setWantsInteriorStroke(true); },
        { before, "layer invalidate", "told", before } },
    { "LineEndOnClosedPath", plain, [](auto& s) { s.setHeadLineEnd(VXRLineEnd::openArrow()); },
        { before, "layer invalidate", "told", before } },
    // The move to the new path's place comes first and still carries the old bounds.
    { "Path", plain, [](auto& s) { s.setPath(Path::pathWithRect(Rect(110, 20, 10, 10))); },
        { before, before, "damage 104 14 42 52", "layer invalidate", "told", "damage 104 14 22 22" } },
    { "PathInPlace", plain,
        [](auto& s) { s.setPathPreserveOffset(Path::pathWithRect(Rect(110, 20, 10, 10)), false); },
        { before, "layer invalidate", "told", "damage 4 14 23 23" } },
    { "NeedsDisplay", plain, [](auto& s) { s.setNeedsDisplay(true); }, { "layer display", before } },
    { "NeedsNoDisplay", plain, [](auto& s) { s.setNeedsDisplay(false); }, { "layer fresh" } },
    { "NeedsDisplayInRect", shadowed, [](auto& s) { s.setNeedsDisplayInRect(Rect(1, 2, 5, 5)); },
        { "layer display-in 1 2 5 5", "told-in 8.5 22.5 11 18", "damage 8.5 22.5 11 18" } },
    { "SameCanvas", plain, [](auto& s) { s.setCanvas(s.canvas()); }, {} },
    { "OtherCanvas", plain,
        [](auto& s) {
            FakeCanvas other(static_cast<FakeCanvas*>(s.canvas())->lines);
            s.setCanvas(&other);
            s.setCanvas(nullptr);
        },
        { "unregister", "layer clear", "register", "unregister", "layer clear" } },
    { "Silent", silent,
        [](auto& s) {
            s.setFill(nullptr);
            s.setStroke(nullptr);
            s.offsetBy(3, 3);
            s.scaleXByYByPivot(2, 2, {});
            s.setOpacity(0);
            s.setShadow(shadowAt(90));
            s.setDynamicallyTransforming(false);
            s.setPath(Path::pathWithRect({ 0, 0, 1, 1 }));
        },
        {} },
    { "SilentButAsked", silent, [](auto& s) { s.invalidate(); }, { "layer invalidate", "told", before } },
    { "WithoutCompositor", [](Stage& s) { s.canvas.compositor = false; }, [](auto& s) { s.setFill(nullptr); },
        { "told", before } },
    { "WithoutCanvas", [](Stage& s) { s.shape.setCanvas(nullptr); },
        [](auto& s) {
            s.setFill(nullptr);
            s.offsetBy(1, 1);
            s.setNeedsDisplay(true);
        },
        { "layer display" } },
};

TEST(Damage, EachChangeErasesAndInvalidatesInItsOwnOrder)
{
    for (const DamageCase& c : damageCases) {
        Stage stage;
        c.prepare(stage);
        stage.lines.clear();
        c.change(stage.shape);
        EXPECT_EQ(stage.lines, c.expected) << c.name;
    }
}

TEST(Damage, ParametricShapesKeepTheirOriginAndCompareNothing)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    // A square on its corner, 20 wide, whose frame starts at the origin. Two tips and two inner vertices: 20
    // wide, and 8 high until the inner radius changes.
    VXRRegularPolygon polygon(10, 4);
    VXRStar star(4, 10, 2);
    VXRShadowOnlyShape shadowOnly;
    for (VXRShape* shape : std::initializer_list<VXRShape*> { &polygon, &star, &shadowOnly }) {
        shape->setStroke(nullptr);
        shape->setCanvas(&canvas);
        shape->erasableBounds(); // as they were drawn
    }
    lines.clear();
    polygon.setRadius(20);
    EXPECT_EQ(std::exchange(lines, {}), (Lines { "damage -5 -5 30 30", "told", "damage -5 -5 50 50" }));
    polygon.setNumberOfSides(4);
    EXPECT_EQ(std::exchange(lines, {}), (Lines { "damage -5 -5 50 50", "told", "damage -5 -5 50 50" }));
    star.setInnerRadius(6);
    EXPECT_EQ(std::exchange(lines, {}), (Lines { "damage -5 -5 30 18", "told", "damage -5 -5 30 22" }));
    star.setOuterRadius(10);
    EXPECT_EQ(std::exchange(lines, {}), (Lines { "damage -5 -5 30 22", "told", "damage -5 -5 30 22" }));
    shadowOnly.setClip(13);
    EXPECT_EQ(lines, Lines {});
}

TEST(Damage, LineEndsWidenWhatIsErased)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    VXRShape shape;
    shape.setPath(newPathOf("M 20 50 L 120 50"));
    shape.setCanvas(&canvas);
    lines.clear();
    // The stroke is 1 wide: half a unit around the line, and mitres add nothing.
    // The arrow's end point (3, 0.1) lies on (120, 50), its tip 5.9 to the right, its barbs 3 to the side.
    shape.setHeadLineEnd(VXRLineEnd::simpleArrow());
    shape.setTailLineEnd(VXRLineEnd::simpleArrow());
    EXPECT_EQ(lines,
        (Lines { "damage 14 44 112 12", "told", "damage 14 42 117 16", "damage 14 42 117 16", "told",
            "damage 9 42 122 16" }));
    shape.setCanvas(nullptr);
}

TEST(Damage, NoLayerIsMadeOnlyToBeInvalidated)
{
    Stage stage;
    VXRShape& shape = stage.shape;
    shape.flushCompositorLayer();
    shape.setFill(Color::blackColor());
    shape.setNeedsDisplayInRect({ 0, 0, 1, 1 });
    recordingOf([&] { shape.renderLayeredIntoContext(currentDrawingPort()); });
    EXPECT_FALSE(shape.hasLayer());
    shape.prepareToDraw();
    EXPECT_TRUE(shape.hasLayer());
}

} // namespace
