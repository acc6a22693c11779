#include <tests/renderables/ModelFakes.h>
#include <tests/support/PathBuilder.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/pixels/LayerInfo.h>
#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRShadowOnlyShape.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>

#include <gmock/gmock.h>

#include <cmath>
#include <tuple>
#include <utility>

using namespace vxr;
using namespace vxr::test;

namespace {

std::shared_ptr<VXRShape> shapeOf(const char* elements)
{
    return VXRShape::shapeWithBezierPath(newPathOf(elements));
}

std::shared_ptr<VXRStroke> blackStroke(float width)
{
    return VXRStroke::strokeWithColorWidth(Color::blackColor(), width);
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
    const auto path = newPathOf("M 10 20 L 14 26");
    VXRShape shape;
    shape.setTransform({ 2, 0, 0, 2, 1, 1 });
    shape.setPath(path);
    EXPECT_EQ(shape.path(), path);
    EXPECT_EQ(text(*path), "[M0 0 L4 6]") << "whoever keeps the path sees it moved";
    EXPECT_EQ(shape.naturalSize(), (Size { 4, 6 }));
    EXPECT_EQ(text(*shape.transformedPath()), "[M10 20 L18 32]");
    shape.setPathPreserveOffset(newPathOf("M 5 5 L 6 6"), false);
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

TEST(Shape, BoundsTakeInWhatIsPaintedOutsideThePath)
{
    const auto shape = square();
    shape->setStroke(blackStroke(4));
    EXPECT_EQ(shape->alignmentBounds(), Rect(-2, -2, 14, 14));
    EXPECT_EQ(shape->geometricBounds(), Rect(0, 0, 10, 10));
    shape->setWantsInteriorStroke(true);
    shape->invalidateBoundingBox();
    EXPECT_EQ(shape->alignmentBounds(), Rect(0, 0, 10, 10));
    shape->setWantsInteriorStroke(false);
    shape->setStroke(VXRStroke::emptyStroke());
    EXPECT_EQ(shape->alignmentBounds(), Rect(0, 0, 10, 10));

    // A right angle with its corner on the right: the mitre is half the width times the root of 2 long.
    const auto corner = shapeOf("M 0 -10 L 10 0 L 0 10");
    corner->setStroke(blackStroke(4));
    EXPECT_NEAR(corner->alignmentBounds().maxX(), 10 + 2 * 1.41421356, 1e-5);
}

TEST(Shape, DrawsFillThenStrokeThenTailThenHead)
{
    const auto shape = shapeOf("M 0 0 L 0 10");
    const auto dot = [](const char* elements) {
        return VXRLineEnd::lineEndWithPathEndPointIsFilled(newPathOf(elements), { 0, 0 }, true);
    };
    shape->setFill(Color::colorWithCalibratedRGB(1, 0, 0));
    shape->setHeadLineEnd(dot("M 0 0 L 1 0 L 0 1"));
    shape->setTailLineEnd(dot("M 0 0 L 2 0 L 0 2"));
    // Upwards: the head keeps its direction, the tail is turned by half a turn.
    EXPECT_EQ(drawn(*shape),
        "save\nset-color 1 0 0 1\nfill [M0 0 L0 10]\n"
        "set-color 0 0 0 1\nstroke width=1 miter=4 [M0 0 L0 10]\n"
        "fill [M0 0 L-2 0 L0 -2]\nfill [M0 10 L1 10 L0 11]\nrestore\n");

    shape->setPath(newPathOf("M 0 0 L 0 10 L 0 0"));
    shape->setFill(nullptr);
    shape->setStroke(nullptr);
    EXPECT_EQ(drawn(*shape), "save\nrestore\n") << "a path that ends where it began has no ends";

    shape->path()->setFlatness(0.125f);
    shape->setFill(Color::colorWithCalibratedRGB(1, 0, 0));
    EXPECT_THAT(drawn(*shape), ::testing::HasSubstr("set-flatness 0.125\nfill"));
}

TEST(Shape, DrawsNothingInTheShadowlessPass)
{
    Lines calls;
    Layered<VXRShape> shape(&calls);
    shape.setPath(Path::pathWithRect({ 0, 0, 10, 10 }));
    for (const int mode : { 0, 1, 2 }) {
        shape.setRenderingMode(mode);
        EXPECT_NE(drawn(shape), "") << mode;
    }
    shape.setRenderingMode(VXRRenderingModeShadowless);
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

TEST(Shape, IsHitInsideOrOnItsOutline)
{
    const char level[] = "M 0 0 L 100 0", hook[] = "M 0 0 L 100 0 L 100 100";
    const char closed[] = "M 0 0 L 100 0 L 100 100 L 0 100 Z", back[] = "M 0 0 L 100 0 L 50 50 L 0 0";
    const struct {
        const char* name;
        const char* elements;
        float stroke;
        Point point;
        bool hit, filled = false;
        float scale = 1;
    } cases[] = {
        { "thin line, 2.5 away", level, 1, { 50, 2.4f }, true },
        { "thin line, beyond", level, 1, { 50, 2.6f }, false },
        { "6 wide, half of it", level, 6, { 50, -2.9f }, true },
        { "6 wide, beyond", level, 6, { 50, -3.1f }, false },
        { "4.9 wide, with the grace", level, 4.9f, { 50, 4.4f }, true },
        { "no stroke, the grace alone", level, 0, { 50, 1.9f }, true },
        { "no stroke, beyond", level, 0, { 50, 2.1f }, false },
        { "in local units", level, 1, { 100, 4.8f }, true, false, 2 },
        { "in local units, beyond", level, 1, { 100, 5.2f }, false, false, 2 },
        { "inside a closed path without fill", closed, 20, { 50, 50 }, true },
        { "stroke of a closed path does not count", closed, 20, { 50, -5 }, false },
        { "degenerate", closed, 20, { 0, 50 }, false, false, 0 },
        { "inside a path that ends where it began", back, 1, { 50, 20 }, true },
        { "inside an open path with a fill", hook, 1, { 60, 40 }, true, true },
        { "inside an open path without", hook, 1, { 60, 40 }, false },
        { "on the side that is missing", hook, 1, { 50, 50 }, false },
    };
    for (const auto& c : cases) {
        const auto shape = shapeOf(c.elements);
        shape->setStroke(c.stroke > 0 ? blackStroke(c.stroke) : nullptr);
        if (!c.filled)
            shape->setFill(nullptr);
        shape->setTransform(AffineTransform::makeScale(c.scale, c.scale));
        EXPECT_EQ(shape->containsPoint(c.point), c.hit) << c.name;
    }
}

TEST(Shape, RectanglesMeetTheOutlineNotTheInside)
{
    const auto oval = VXRShape::shapeWithOvalInRect({ 0, 0, 100, 100 });
    EXPECT_FALSE(oval->intersectsRect({ 45, 45, 10, 10 })) << "inside";
    EXPECT_TRUE(oval->intersectsRect({ -10, -10, 120, 120 })) << "around";
    EXPECT_TRUE(oval->intersectsRect({ 95, 45, 10, 10 })) << "across";
    EXPECT_FALSE(oval->intersectsRect({ 0, 0, 10, 10 })) << "in the corner that the oval leaves out";
    EXPECT_FALSE(oval->intersectsRect({ 100, 45, 10, 10 })) << "no common area with the bounds";
    EXPECT_TRUE(shapeOf("M 0 0 L 100 0 L 50 90 Z")->intersectsRect({ 20, 45, 10, 10 })) << "the closing side";
    EXPECT_FALSE(shapeOf("M 0 0 L 100 0 L 50 90")->intersectsRect({ 20, 45, 10, 10 })) << "the missing side";
}

TEST(LineEnd, SitsAtTheEndsAndGrowsSlowerThanTheStroke)
{
    const auto shape = shapeOf("M 0 0 L 0 100");
    const auto covered = [&](const std::shared_ptr<VXRLineEnd>& end, float width) {
        shape->setStroke(blackStroke(width));
        const Rect r
            = shape->alignmentBoundsForLineEndAtPointAngle(end.get(), shape->headPoint(), shape->headAngle());
        return text(r);
    };
    EXPECT_EQ(covered(VXRLineEnd::simpleArrow(), 1), "-3 99.9 6 6");
    EXPECT_EQ(covered(VXRLineEnd::simpleArrow(), 3), "-6.6 99.78 13.2 13.2");
    EXPECT_EQ(covered(VXRLineEnd::simpleArrow(), 0.5f), "-1.5 99.95 3 3");
    EXPECT_EQ(covered(VXRLineEnd::filledCircle(), 1), "-2.5 97.5 5 5");
    EXPECT_EQ(covered(VXRLineEnd::filledSquare(), 1), "-2.5 99.9 5 5");
    EXPECT_EQ(covered(VXRLineEnd::filledDiamond(), 1), "-3 99 6 6");
    EXPECT_EQ(covered(VXRLineEnd::filledArrow(), 1), "-3 98.5 6 6");
    // Stroked: half the width around it, which is not scaled.
    EXPECT_EQ(covered(VXRLineEnd::openArrow(), 3), "-8.1 87.5 16.2 14");
    EXPECT_EQ(covered(nullptr, 1), "0 0 0 0");
}

TEST(LineEnd, FollowsTheTangentsOfACurve)
{
    const auto shape = shapeOf("M 0 0 C 10 0 50 20 50 60");
    EXPECT_EQ(shape->tailPoint(), (Point { 0, 0 }));
    EXPECT_EQ(shape->headPoint(), (Point { 50, 60 }));
    // Leaves to the right, so the tail points left; arrives upwards.
    EXPECT_NEAR(std::remainder(shape->tailAngle() - 1.57079633, 6.28318531), 0, 1e-5);
    EXPECT_NEAR(std::remainder(shape->headAngle(), 6.28318531), 0, 1e-5);
}

TEST(LineEnd, IsAValueThatSharesItsPath)
{
    const auto arrow = VXRLineEnd::openArrow(), changed = arrow->copyWithZone();
    EXPECT_EQ(changed->path(), arrow->path());
    changed->setPath(newPathOf("M 0 0 L 3 5.005 L 6 0"));
    EXPECT_TRUE(changed->isEqual(*arrow)) << "paths within 0.01";
    changed->setPath(newPathOf("M 0 0 L 3 5.02 L 6 0"));
    EXPECT_FALSE(changed->isEqual(*arrow));
    const auto filled = arrow->copyWithZone(), moved = arrow->copyWithZone();
    filled->setIsFilled(true);
    EXPECT_FALSE(filled->isEqual(*arrow));
    moved->setEndPoint({ 3, 5.001f });
    EXPECT_FALSE(moved->isEqual(*arrow)) << "end points are compared exactly";

    struct OtherLineEnd final : VXRLineEnd {
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
    for (const auto& [zoom, offset, radius] :
        { std::tuple(2.0f, 2.5f, 2), { 0.3f, 16.666666f, 16 }, { 1.0f, 5.0f, 5 } }) {
        shape.fakeLayer().zoom = zoom;
        EXPECT_FLOAT_EQ(shape.shadow()->offset(), offset);
        EXPECT_EQ(shape.shadow()->radius(), radius);
    }
    EXPECT_EQ(shape.shadow()->angle(), 45);
    EXPECT_EQ(shape.shadow()->opacity(), 0.5f);
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

TEST(RegularPolygon, HasItsFirstVertexToTheRight)
{
    const auto polygon = VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(10, 4);
    EXPECT_EQ(text(*polygon->path()), "[M20 10 L10 20 L0 10 L10 0 Z]");
    const auto path = polygon->path();
    polygon->setRadius(5);
    EXPECT_EQ(polygon->path(), path) << "the path object is used again";
    EXPECT_EQ(text(*path), "[M10 5 L5 10 L0 5 L5 0 Z]");
}

TEST(Star, AlternatesBetweenTheRadiiCounterClockwise)
{
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(4, 10, 2);
    EXPECT_EQ(text(*star->path()), "[M20 4 L10 8 L0 4 L10 0 Z]");
    star->setTransform({ 2, 0, 0, 1, 100, 50 });
    EXPECT_EQ(star->center(), (Point { 120, 60 })) << "of the larger circle";
    star->setInnerRadius(20);
    EXPECT_EQ(star->transform(), (AffineTransform { 2, 0, 0, 1, 100, 50 }));
    EXPECT_EQ(star->center(), (Point { 140, 70 }));
}

TEST(Star, OptimizedEdgesContinueIntoTheNextTipButOne)
{
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(1, 100, 5);
    for (const auto& [points, inner] :
        { std::pair(3, 12.5), { 4, 20.0 }, { 5, 38.196601 }, { 6, 57.735027 } }) {
        star->setNumberOfPoints(points);
        star->optimize();
        EXPECT_NEAR(star->innerRadius(), inner, 1e-4) << points;
    }
}

TEST(Star, SettersClampTheCountThatInitialisersTakeAsItIs)
{
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(4, 10, 0);
    const auto polygon = VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(10, -1);
    EXPECT_EQ(star->numberOfPoints(), 0);
    EXPECT_EQ(star->naturalSize(), Size());
    EXPECT_EQ(polygon->numberOfSides(), -1);
    EXPECT_EQ(text(*polygon->path()), "[Z]");
    for (const int number : { 2, -4 }) {
        star->setNumberOfPoints(number);
        EXPECT_EQ(star->numberOfPoints(), 3);
        EXPECT_EQ(star->path()->elementCount(), 7u);
        polygon->setNumberOfSides(number);
        EXPECT_EQ(polygon->numberOfSides(), 3);
    }
}
