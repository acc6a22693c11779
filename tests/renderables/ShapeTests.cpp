#include <tests/renderables/ModelFakes.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/foundation/Exceptions.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/views/LayerInfo.h>
#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRShadowOnlyShape.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using namespace vxr::test;

namespace {

std::shared_ptr<Path> line(std::initializer_list<Point> points)
{
    auto path = Path::path();
    for (const Point p : points)
        path->isEmpty() ? path->moveTo(p) : path->lineTo(p);
    return path;
}

std::shared_ptr<VXRShape> square() { return VXRShape::shapeWithRect({ 0, 0, 10, 10 }); }

std::string drawn(VXRShape& shape)
{
    return recordingOf([&] { shape.renderIntoContext(currentDrawingPort()); });
}

/// A fill that writes down what it is told.
struct FakeFill final : VXRShapePainter {
    Lines told;

    void paintShape(VXRPaintedShape&) override { told.push_back("paint"); }
    void paintRect(const Rect&) override { }
    void setOwner(VXRPaintedShape* owner) override { told.push_back(owner ? "owned" : "free"); }
    void setDynamicallyTransforming(bool on) override { told.push_back(on ? "begins" : "ends"); }
};

} // namespace

TEST(Shape, TakesThePathItselfAndMovesItToItsFrame)
{
    const auto path = line({ { 10, 20 }, { 14, 26 } });
    VXRShape shape;
    shape.setTransform({ 2, 0, 0, 2, 1, 1 });
    shape.setPath(path);
    EXPECT_EQ(shape.path(), path);
    EXPECT_EQ(text(*path), "[M0 0 L4 6]") << "whoever keeps the path sees it moved";
    EXPECT_EQ(shape.naturalSize(), (Size { 4, 6 }));
    EXPECT_EQ(shape.transform(), (AffineTransform { 2, 0, 0, 2, 10, 20 }));
    EXPECT_EQ(text(*shape.transformedPath()), "[M10 20 L18 32]");

    shape.setPathPreserveOffset(line({ { 5, 5 }, { 6, 6 } }), false);
    EXPECT_EQ(shape.transform(), (AffineTransform { 2, 0, 0, 2, 10, 20 }));
    EXPECT_EQ(text(*shape.transformedPath()), "[M10 20 L12 22]");
}

TEST(Shape, RefusesToHaveNoPath)
{
    VXRShape shape;
    try {
        shape.setPath(nullptr);
        FAIL();
    } catch (const AssertionFailure& failure) {
        EXPECT_STREQ(failure.what(), "path must be non-nil");
        EXPECT_EQ(failure.subject(), "VXRShape");
        EXPECT_EQ(failure.line(), 81);
    }
    EXPECT_EQ(shape.alignmentBounds(), Rect());
    EXPECT_FALSE(shape.containsPoint({ 0, 0 }));
    drawn(shape);
}

TEST(Shape, PaintersMayChangeThePathTheyAreGiven)
{
    const auto shape = square();
    const auto first = shape->transformedPath();
    first->lineTo({ 99, 99 });
    first->setWindingRule(WindingRule::EvenOdd);
    EXPECT_NE(shape->transformedPath(), first);
    EXPECT_EQ(text(*shape->transformedPath()), text(*Path::pathWithRect({ 0, 0, 10, 10 })));
    EXPECT_EQ(shape->transformedPath()->windingRule(), WindingRule::NonZero);
}

TEST(Shape, BoundsTakeInWhatIsPaintedOutsideThePath)
{
    const auto shape = square();
    const auto stroke = VXRStroke::strokeWithColorWidth(Color::blackColor(), 4);
    shape->setStroke(stroke);
    EXPECT_EQ(shape->alignmentBounds(), Rect(-2, -2, 14, 14));
    EXPECT_EQ(shape->geometricBounds(), Rect(0, 0, 10, 10));
    shape->setWantsInteriorStroke(true);
    shape->invalidateBoundingBox();
    EXPECT_EQ(shape->alignmentBounds(), Rect(0, 0, 10, 10));
    shape->setWantsInteriorStroke(false);
    shape->setStroke(VXRStroke::emptyStroke());
    EXPECT_EQ(shape->alignmentBounds(), Rect(0, 0, 10, 10));
    shape->setStroke(nullptr);
    EXPECT_EQ(shape->alignmentBounds(), Rect(0, 0, 10, 10));

    // A right angle with its corner on the right: the mitre is half the width times the root of 2 long.
    const auto corner = VXRShape::shapeWithBezierPath(line({ { 0, -10 }, { 10, 0 }, { 0, 10 } }));
    corner->setStroke(stroke);
    EXPECT_NEAR(corner->alignmentBounds().maxX(), 10 + 2 * 1.41421356, 1e-5);
}

TEST(Shape, DrawsFillThenStrokeThenTailThenHead)
{
    const auto shape = VXRShape::shapeWithBezierPath(line({ { 0, 0 }, { 0, 10 } }));
    const auto dot = [](float side) {
        return VXRLineEnd::lineEndWithPathEndPointIsFilled(
            line({ { 0, 0 }, { side, 0 }, { 0, side } }), { 0, 0 }, true);
    };
    shape->setFill(Color::colorWithCalibratedRGB(1, 0, 0));
    shape->setHeadLineEnd(dot(1));
    shape->setTailLineEnd(dot(2));
    // Upwards: the head keeps its direction, the tail is turned by half a turn.
    EXPECT_EQ(drawn(*shape),
        "save\nset-color 1 0 0 1\nfill [M0 0 L0 10]\n"
        "set-color 0 0 0 1\nstroke width=1 miter=4 [M0 0 L0 10]\n"
        "fill [M0 0 L-2 0 L0 -2]\nfill [M0 10 L1 10 L0 11]\nrestore\n");

    shape->setPath(line({ { 0, 0 }, { 0, 10 }, { 0, 0 } }));
    shape->setFill(nullptr);
    shape->setStroke(nullptr);
    EXPECT_EQ(drawn(*shape), "save\nrestore\n") << "a path that ends where it began has no ends";
}

TEST(Shape, DrawsNothingInTheShadowlessPass)
{
    Lines calls;
    Layered<VXRShape> shape(&calls);
    shape.setPath(Path::pathWithRect({ 0, 0, 10, 10 }));
    for (const int mode : { 0, 1, 2 }) {
        shape.fakeLayer().mode = mode;
        EXPECT_NE(drawn(shape), "") << mode;
    }
    shape.fakeLayer().mode = VXRRenderingModeShadowless;
    EXPECT_EQ(drawn(shape), "");
}

TEST(Shape, BlackAndWhiteFillsWhiteAndOutlinesWhereAsked)
{
    FakeCanvas canvas;
    canvas.blackAndWhite = true;
    const auto shape = square();
    shape->setCanvas(&canvas);
    shape->setFill(Color::colorWithCalibratedRGB(1, 0, 0));
    const std::string fill = "save\nset-color 1 1 1 1\nfill [M0 0 L10 0 L10 10 L0 10 Z]\n";
    const std::string hairline = "set-color 0 0 0 1\nstroke width=1 [M0 0 L10 0 L10 10 L0 10 Z]\n";
    shape->setStroke(nullptr);
    EXPECT_EQ(drawn(*shape), fill + "restore\n");
    shape->setAlwaysStrokesWhenBlackAndWhite(true);
    EXPECT_EQ(drawn(*shape), fill + hairline + "restore\n");
    shape->setStroke(VXRStroke::emptyStroke());
    EXPECT_EQ(drawn(*shape), fill + hairline + "restore\n");
    shape->setStroke(VXRStroke::strokeWithColorWidth(Color::whiteColor(), 3));
    EXPECT_EQ(drawn(*shape),
        fill + "set-color 0 0 0 1\nstroke width=3 miter=4 [M0 0 L10 0 L10 10 L0 10 Z]\nrestore\n");
    canvas.blackAndWhite = false;
    shape->setStroke(nullptr);
    shape->setFill(nullptr);
    EXPECT_EQ(drawn(*shape), "save\nrestore\n");
    shape->setCanvas(nullptr);
}

TEST(Shape, TellsItsFillOfOwnerAndInteractiveTransforms)
{
    const auto fill = std::make_shared<FakeFill>();
    {
        const auto shape = square();
        shape->setFill(fill);
        shape->setDynamicallyTransforming(true);
        shape->setDynamicallyTransforming(false);
        shape->setFill(fill);
        EXPECT_EQ(shape->styles().size(), 2u);
        shape->setFill(nullptr);
        ASSERT_EQ(shape->styles().size(), 1u);
        EXPECT_TRUE(std::holds_alternative<std::shared_ptr<VXRStroke>>(shape->styles()[0]));
        shape->setFill(fill);
    }
    EXPECT_EQ(fill->told, (Lines { "owned", "begins", "ends", "free", "owned", "free", "owned", "free" }));
}

struct HitCase {
    const char* name;
    std::shared_ptr<VXRShape> shape;
    Point point;
    bool hit;
};

TEST(Shape, IsHitInsideOrOnItsOutline)
{
    const auto withStroke = [](std::shared_ptr<Path> path, float width, bool filled) {
        auto shape = VXRShape::shapeWithBezierPath(std::move(path));
        shape->setStroke(width > 0 ? VXRStroke::strokeWithColorWidth(Color::blackColor(), width) : nullptr);
        if (!filled)
            shape->setFill(nullptr);
        return shape;
    };
    const auto level = [] { return line({ { 0, 0 }, { 100, 0 } }); };
    const auto hook = [] { return line({ { 0, 0 }, { 100, 0 }, { 100, 100 } }); };
    const auto thin = withStroke(level(), 1, false), thick = withStroke(level(), 6, false);
    const auto bare = withStroke(level(), 0, false), below5 = withStroke(level(), 4.9f, false);
    const auto scaled = withStroke(level(), 1, false);
    scaled->scaleXByYByPivot(2, 2, {});
    const auto closed = withStroke(Path::pathWithRect({ 0, 0, 100, 100 }), 20, false);
    const auto triangle = withStroke(line({ { 0, 0 }, { 100, 0 }, { 50, 50 }, { 0, 0 } }), 1, false);
    const auto filledHook = withStroke(hook(), 1, true), openHook = withStroke(hook(), 1, false);
    const HitCase cases[] = {
        { "thin line, 2.5 away", thin, { 50, 2.4f }, true },
        { "thin line, beyond", thin, { 50, 2.6f }, false },
        { "6 wide, half of it", thick, { 50, -2.9f }, true },
        { "6 wide, beyond", thick, { 50, -3.1f }, false },
        { "4.9 wide, with the grace", below5, { 50, 4.4f }, true },
        { "no stroke, the grace alone", bare, { 50, 1.9f }, true },
        { "no stroke, beyond", bare, { 50, 2.1f }, false },
        { "in local units", scaled, { 100, 4.8f }, true },
        { "in local units, beyond", scaled, { 100, 5.2f }, false },
        { "inside a closed path without fill", closed, { 50, 50 }, true },
        { "stroke of a closed path does not count", closed, { 50, -5 }, false },
        { "inside a path that ends where it began", triangle, { 50, 20 }, true },
        { "inside an open path with a fill", filledHook, { 60, 40 }, true },
        { "inside an open path without", openHook, { 60, 40 }, false },
        { "on the open path's line", openHook, { 60, 1 }, true },
        { "on the side that is missing", openHook, { 50, 50 }, false },
    };
    for (const HitCase& c : cases)
        EXPECT_EQ(c.shape->containsPoint(c.point), c.hit) << c.name;
    closed->setTransform({ 0, 0, 0, 1, 0, 0 });
    EXPECT_FALSE(closed->containsPoint({ 0, 50 })) << "degenerate";
}

TEST(Shape, RectanglesMeetTheOutlineNotTheInside)
{
    const auto shape = VXRShape::shapeWithOvalInRect({ 0, 0, 100, 100 });
    const struct {
        Rect rect;
        bool meets;
    } cases[] = {
        { { 45, 45, 10, 10 }, false }, // inside
        { { -10, -10, 120, 120 }, true }, // around
        { { 95, 45, 10, 10 }, true }, // across
        { { 0, 0, 10, 10 }, false }, // in the corner that the oval leaves out
        { { 100, 45, 10, 10 }, false }, // no common area with the bounds
        { { 50, 50, 0, 60 }, false }, // empty
    };
    for (const auto& c : cases)
        EXPECT_EQ(shape->intersectsRect(c.rect), c.meets) << c.rect;

    const auto ring = VXRShape::shapeWithRect({ 0, 0, 100, 100 });
    EXPECT_TRUE(ring->intersectsRect({ -5, 45, 10, 10 })) << "the closing side";
    const auto open = VXRShape::shapeWithBezierPath(line({ { 0, 0 }, { 100, 0 }, { 100, 100 } }));
    EXPECT_FALSE(open->intersectsRect({ 45, 45, 10, 10 })) << "the missing side";
}

TEST(LineEnd, SitsAtTheEndsAndGrowsSlowerThanTheStroke)
{
    const auto shape = VXRShape::shapeWithBezierPath(line({ { 0, 0 }, { 0, 100 } }));
    const auto covered = [&](const VXRLineEnd& end, float width) {
        shape->setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), width));
        return shape->alignmentBoundsForLineEndAtPointAngle(&end, shape->headPoint(), shape->headAngle());
    };
    const auto near = [](const Rect& a, const Rect& b) {
        return std::abs(a.minX() - b.minX()) < 1e-4 && std::abs(a.minY() - b.minY()) < 1e-4
            && std::abs(a.maxX() - b.maxX()) < 1e-4 && std::abs(a.maxY() - b.maxY()) < 1e-4;
    };
    EXPECT_PRED2(near, covered(*VXRLineEnd::simpleArrow(), 1), Rect(-3, 99.9f, 6, 6));
    EXPECT_PRED2(near, covered(*VXRLineEnd::simpleArrow(), 3), Rect(-6.6f, 100 - 0.22f, 13.2f, 13.2f));
    EXPECT_PRED2(near, covered(*VXRLineEnd::simpleArrow(), 0.5f), Rect(-1.5f, 99.95f, 3, 3));
    EXPECT_PRED2(near, covered(*VXRLineEnd::filledCircle(), 1), Rect(-2.5f, 97.5f, 5, 5));
    EXPECT_PRED2(near, covered(*VXRLineEnd::filledSquare(), 1), Rect(-2.5f, 99.9f, 5, 5));
    EXPECT_PRED2(near, covered(*VXRLineEnd::filledDiamond(), 1), Rect(-3, 99, 6, 6));
    EXPECT_PRED2(near, covered(*VXRLineEnd::filledArrow(), 1), Rect(-3, 98.5f, 6, 6));
    // Stroked: half the width around it, which is not scaled.
    EXPECT_PRED2(near, covered(*VXRLineEnd::openArrow(), 3), Rect(-8.1f, 87.5f, 16.2f, 14));
    EXPECT_EQ(shape->alignmentBoundsForLineEndAtPointAngle(nullptr, {}, 0), Rect());
}

TEST(LineEnd, FollowsTheTangentsOfACurve)
{
    auto curve = Path::path();
    curve->moveTo({ 0, 0 });
    curve->curveTo({ 10, 0 }, { 50, 20 }, { 50, 60 });
    const auto shape = VXRShape::shapeWithBezierPath(curve);
    EXPECT_EQ(shape->tailPoint(), (Point { 0, 0 }));
    EXPECT_EQ(shape->headPoint(), (Point { 50, 60 }));
    // Leaves to the right, so the tail points left; arrives upwards.
    EXPECT_NEAR(std::remainder(shape->tailAngle() - 1.57079633, 6.28318531), 0, 1e-5);
    EXPECT_NEAR(std::remainder(shape->headAngle(), 6.28318531), 0, 1e-5);
}

TEST(LineEnd, IsAValueThatSharesItsPath)
{
    const auto arrow = VXRLineEnd::openArrow();
    EXPECT_TRUE(arrow->isEqual(*VXRLineEnd::openArrow()));
    const auto copy = arrow->copyWithZone();
    EXPECT_EQ(copy->path(), arrow->path());
    EXPECT_TRUE(copy->isEqual(*arrow));
    copy->setIsFilled(true);
    EXPECT_FALSE(copy->isEqual(*arrow));
    const auto moved = arrow->copyWithZone();
    moved->setEndPoint({ 3, 5.001f });
    EXPECT_FALSE(moved->isEqual(*arrow)) << "end points are compared exactly";
    const auto bent = arrow->copyWithZone();
    bent->setPath(line({ { 0, 0 }, { 3, 5.005f }, { 6, 0 } }));
    EXPECT_TRUE(bent->isEqual(*arrow)) << "paths within 0.01";
    bent->setPath(line({ { 0, 0 }, { 3, 5.02f }, { 6, 0 } }));
    EXPECT_FALSE(bent->isEqual(*arrow));

    class OtherLineEnd final : public VXRLineEnd {
    public:
        using VXRLineEnd::VXRLineEnd;
    };
    const auto other
        = VXRLineEnd::lineEndWithPathEndPointIsFilled<OtherLineEnd>(arrow->path(), arrow->endPoint(), false);
    EXPECT_FALSE(arrow->isEqual(*other)) << "exactly the same class";
}

TEST(ShadowOnlyShape, KeepsItsShadowTheSameOnTheScreen)
{
    Lines calls;
    Layered<VXRShadowOnlyShape> shape(&calls);
    const struct {
        float zoom, offset;
        int radius;
    } cases[] = { { 2, 2.5f, 2 }, { 0.3f, 16.666666f, 16 }, { 1, 5, 5 } };
    for (const auto& c : cases) {
        shape.fakeLayer().zoom = c.zoom;
        EXPECT_FLOAT_EQ(shape.shadow()->offset(), c.offset);
        EXPECT_EQ(shape.shadow()->radius(), c.radius);
        EXPECT_EQ(shape.shadow()->angle(), 45);
        EXPECT_EQ(shape.shadow()->opacity(), 0.5f);
    }
    EXPECT_FALSE(shape.allowsTiling());

    shape.setStroke(nullptr);
    shape.setPath(Path::pathWithRect({ 100, 100, 10, 10 }));
    const float away = 5 / 1.41421356f; // the shadow's distance in each direction, its radius is 5
    const Rect erased = shape.erasableBounds();
    EXPECT_FLOAT_EQ(erased.minX(), 100 - 5 + away - 20);
    EXPECT_FLOAT_EQ(erased.maxY(), 110 + 5 + away + 20);
}

TEST(ShadowOnlyShape, ClipsItsRecordsAtTheEdgesAskedFor)
{
    Lines calls;
    FakeCanvas canvas;
    canvas.visible = { 10, 20, 500, 500 };
    Layered<VXRShadowOnlyShape> shape(&calls);
    shape.setStroke(nullptr);
    shape.setPath(Path::pathWithRect({ 50, 60, 100, 40 }));
    shape.setCanvas(&canvas);
    LayerInfo record;
    shape.fakeLayer().shadowInfos = { &record };
    std::vector<LayerInfo*> infos;
    const auto clipAt = [&](float zoom, int bits) {
        record = {};
        infos.clear();
        shape.fakeLayer().zoom = zoom;
        shape.setClip(bits);
        shape.addLayersToArray(infos);
        return std::vector<int> { record.clipMinX, record.clipMaxX, record.clipMinY, record.clipMaxY };
    };
    // Right edge 150 - 10, bottom edge 100 - 20 in canvas units.
    EXPECT_EQ(clipAt(1, 0), (std::vector { 0, 0, 0, 0 }));
    EXPECT_EQ(clipAt(1, 1), (std::vector { 0, 0, 80, 0 }));
    EXPECT_EQ(clipAt(1, 4), (std::vector { 140, 0, 0, 0 }));
    EXPECT_EQ(clipAt(2.25f, 8), (std::vector { 0, 314, 0, 0 }));
    EXPECT_EQ(clipAt(1.01f, 13), (std::vector { 141, 140, 80, 0 })) << "less one off the quarters";
    EXPECT_EQ(infos, (std::vector { &record }));
    EXPECT_EQ(shape.absoluteClip(), 13);

    calls.clear();
    std::vector<VXRTexture*> textures;
    shape.addTexturesToArray(textures);
    EXPECT_EQ(calls, (Lines { "shadow infos", "shadow textures" }));
    shape.setCanvas(nullptr);
}
