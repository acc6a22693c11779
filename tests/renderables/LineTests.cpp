#include <tests/renderables/ModelFakes.h>
#include <tests/support/PathBuilder.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/geometry/curves/PathPlaces.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRStroke.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using namespace vxr::test;

namespace {

std::shared_ptr<VXRLine> line(Point start, Point end, float width = 2)
{
    auto made = VXRLine::lineFromPointToPoint(start, end);
    made->setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), width));
    return made;
}

double distanceFromOutline(const VXRShape& shape, Point p)
{
    return (*nearestPointOnPath(*shape.transformedPath(), p) - Vec2(p)).length();
}

} // namespace

TEST(Line, BoundsAreThoseOfItsEndsUnderEveryTransform)
{
    const auto slanting = line({ 10, 20 }, { 50, 60 });
    EXPECT_EQ(slanting->geometricBounds(), Rect(10, 20, 40, 40));
    // Turned flat: the frame's corners reach far beyond the line.
    slanting->rotateByRadiansPivot(float(-M_PI / 4), { 30, 40 });
    const Rect turned = slanting->geometricBounds();
    EXPECT_NEAR(turned.size.height, 0, 1e-4);
    EXPECT_NEAR(turned.size.width, 40 * M_SQRT2, 1e-4);
    EXPECT_NEAR(slanting->alignmentBounds().size.height, 2, 1e-3);
    EXPECT_TRUE(slanting->intersectsRect({ 25, 35, 10, 10 }));
    EXPECT_FALSE(slanting->intersectsRect({ 25, 41, 10, 10 }));
    EXPECT_FALSE(slanting->intersectsRect({ 25, 35, 0, 10 }));
    slanting->setEndPoint({ 90, 40 });
    EXPECT_NEAR(slanting->endPoint().x, 90, 1e-4);
    EXPECT_EQ(slanting->transform().m12, 0) << "a plain translation again";
}

TEST(Line, IsHitByDistanceFromTheLine)
{
    struct {
        float width;
        Point p;
        bool hit;
    } const cases[] = {
        { 1, { 50, 2.4f }, true },
        { 1, { 50, 2.6f }, false }, // 1 + 4 wide
        { 10, { 50, -4.9f }, true },
        { 10, { 50, -5.1f }, false },
        { 10, { -3.4f, 3.4f }, true },
        { 10, { -3.7f, 3.7f }, false }, // around the end
        { 1, { NAN, 0 }, false },
    };
    for (const auto& c : cases)
        EXPECT_EQ(line({ 0, 0 }, { 100, 0 }, c.width)->containsPoint(c.p), c.hit) << c.p;
    const auto arrow = line({ 0, 0 }, { 100, 0 }, 11);
    EXPECT_FALSE(arrow->containsPoint({ 96, 9 }));
    arrow->setHeadLineEnd(VXRLineEnd::filledSquare());
    EXPECT_TRUE(arrow->containsPoint({ 103, 9 })) << "a square 35 wide";
    EXPECT_TRUE(line({ 5, 5 }, { 5, 5 })->containsPoint({ 6, 6 })) << "a line without length is a dot";
}

TEST(Line, HandlesDragOneEndFreelyOrInEightDirections)
{
    const auto l = line({ 10, 10 }, { 50, 10 });
    EXPECT_EQ(l->handleAtPoint({ 12, 11 }, 4), VXRLine::startHandle);
    EXPECT_EQ(l->handleAtPoint({ 49, 8 }, 4), VXRLine::endHandle);
    EXPECT_EQ(l->handleAtPoint({ 30, 10 }, 4), VXRLine::noHandle);
    for (const Point to : { Point { 70, 13 }, { 70, 60 }, { 5, 14 }, { -30, -28 }, { 13, 90 } }) {
        l->dragHandleToPoint(VXRLine::endHandle, to, true);
        const Point expected
            = VXRAddPoints({ 10, 10 }, VXRShiftConstrainDelta(VXRSubtractPoints(to, { 10, 10 })));
        EXPECT_NEAR(l->endPoint().x, expected.x, 1e-4);
        EXPECT_NEAR(l->endPoint().y, expected.y, 1e-4);
        EXPECT_EQ(l->startPoint(), Point(10, 10));
    }
    l->dragHandleToPoint(VXRLine::startHandle, { 1, 2 }, false);
    EXPECT_EQ(l->startPoint(), Point(1, 2));
    l->dragHandleToPoint(VXRLine::startHandle, { NAN, 2 }, false);
    EXPECT_EQ(l->startPoint(), Point(1, 2));
}

TEST(Line, DrawsItsStrokeAndLineEndsAndNothingElse)
{
    const auto l = line({ 10, 20 }, { 50, 20 });
    l->setFill(Color::whiteColor());
    l->setWantsInteriorStroke(true);
    l->setHeadLineEnd(VXRLineEnd::simpleArrow());
    const auto context = std::make_shared<RecordingContext>();
    const CurrentContextScope scope(*context, true, true);
    l->renderIntoContext(*context);
    EXPECT_THAT(context->lines(), ::testing::Contains(::testing::StartsWith("stroke width=2")));
    EXPECT_THAT(context->lines(), ::testing::Not(::testing::Contains(::testing::StartsWith("clip"))));
    EXPECT_GT(l->alignmentBounds().size.height, 6);
}

TEST(LineConnections, EndsKeepToTheOutlineWhateverHappensToIt)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    const auto box = VXRShape::shapeWithRect({ 100, 100, 60, 40 });
    const auto disc = VXRShape::shapeWithOvalInRect({ 300, 100, 50, 50 });
    const auto l = line({ 0, 0 }, { 10, 10 });
    for (VXRRenderable* each : std::initializer_list<VXRRenderable*> { box.get(), disc.get(), l.get() })
        each->setCanvas(&canvas);
    l->connectHandle(VXRLine::startHandle, *box, VXRLineConnectedAtPlace, { 170, 110 });
    EXPECT_NEAR(l->startPoint().x, 160, 1e-3);
    EXPECT_NEAR(l->startPoint().y, 110, 1e-3);
    l->connectHandle(VXRLine::endHandle, *disc, VXRLineConnectedTowardsCenter);

    const auto check = [&](const char* what) {
        EXPECT_LT(distanceFromOutline(*box, l->startPoint()), 1e-3) << what;
        EXPECT_LT(distanceFromOutline(*disc, l->endPoint()), 1e-3) << what;
        // The line leads on to the centre.
        const Vec2 way = Vec2(l->endPoint()) - Vec2(l->startPoint()),
                   rest = Vec2(disc->center()) - Vec2(l->endPoint());
        EXPECT_NEAR(cross(way, rest) / way.length(), 0, 0.01) << what;
        EXPECT_GT(dot(way, rest), 0) << what;
    };
    const Point inBox { l->startPoint().x - 100, l->startPoint().y - 100 };
    struct {
        const char* name;
        std::function<void()> change;
    } const changes[] = {
        { "moved", [&] { box->offsetBy(30, -20); } },
        { "turned", [&] { box->rotateByRadiansPivot(0.4f, box->center()); } },
        { "scaled", [&] { disc->scaleXByYByPivot(2, 0.5f, disc->center()); } },
        { "another path",
            [&] {
                disc->setPath(Path::pathWithRect({ 310, 160, 30, 90 }));
            } },
        { "the line moved", [&] { l->offsetBy(500, 500); } },
        { "the line turned",
            [&] {
                l->rotateByRadiansPivot(1, { 0, 0 });
            } },
    };
    for (const auto& c : changes) {
        const Rect before = l->erasableBounds();
        lines.clear();
        c.change();
        check(c.name);
        // What the line covered and covers is damaged.
        Rect damaged;
        for (const std::string& text : lines)
            if (float x, y, w, h; std::sscanf(text.c_str(), "damage %f %f %f %f", &x, &y, &w, &h) == 4)
                damaged = unionRect(damaged, { x, y, w, h });
        EXPECT_TRUE(rectContainsRect(damaged, before)) << c.name;
        EXPECT_TRUE(rectContainsRect(damaged, l->erasableBounds())) << c.name;
    }
    const Point mapped = box->transform().map(inBox);
    EXPECT_NEAR(l->startPoint().x, mapped.x, 1e-2) << "the same place of the box";
    EXPECT_NEAR(l->startPoint().y, mapped.y, 1e-2);

    l->dragHandleToPoint(VXRLine::startHandle, { 3, 4 }, false);
    EXPECT_EQ(l->connection(VXRLine::startHandle), VXRLineConnection());
    box->offsetBy(5, 5);
    EXPECT_NEAR(l->startPoint().x, 3, 1e-4);
    for (VXRRenderable* each : std::initializer_list<VXRRenderable*> { box.get(), disc.get(), l.get() })
        each->setCanvas(nullptr);
}

TEST(LineConnections, EndWithTheirRenderablesAndBearChainsAndCircles)
{
    const auto l = line({ 0, 0 }, { 10, 10 });
    {
        const auto box = VXRShape::shapeWithRect({ 100, 100, 60, 40 });
        l->connectHandle(VXRLine::endHandle, *box, VXRLineConnectedTowardsCenter);
        l->connectHandle(VXRLine::startHandle, *box, VXRLineConnectedTowardsCenter);
        l->connectHandle(VXRLine::endHandle, *l, VXRLineConnectedAtPlace);
    }
    EXPECT_EQ(l->connection(VXRLine::endHandle), VXRLineConnection());
    const auto box = VXRShape::shapeWithRect({ 100, 100, 60, 40 });
    {
        const auto brief = line({ 0, 0 }, { 10, 10 });
        brief->connectHandle(VXRLine::endHandle, *box, VXRLineConnectedAtPlace, { 100, 100 });
    }
    box->offsetBy(1, 1);

    std::vector<std::shared_ptr<VXRLine>> chain { line({ 0, 0 }, { 10, 0 }) };
    for (int i = 0; i < 20000; ++i) {
        chain.push_back(line({ 0, 5 }, { 10, 5 }));
        chain.back()->connectHandle(
            VXRLine::startHandle, *chain[chain.size() - 2], VXRLineConnectedAtPlace, { 10, 0 });
    }
    chain.front()->offsetBy(0, 7);
    EXPECT_NEAR(chain.back()->startPoint().y, chain[chain.size() - 2]->startPoint().y, 1)
        << "the last one has followed";
    const auto a = line({ 0, 0 }, { 50, 0 }), b = line({ 0, 50 }, { 60, 50 });
    a->connectHandle(VXRLine::endHandle, *b, VXRLineConnectedTowardsCenter);
    b->connectHandle(VXRLine::endHandle, *a, VXRLineConnectedTowardsCenter);
    a->setStartPoint({ -70, 10 });
    EXPECT_TRUE(std::isfinite(a->endPoint().x) && std::isfinite(b->endPoint().x));
    const auto flat = VXRShape::shapeWithRect({ 5, 5, 0, 0 });
    flat->scaleXByYByPivot(0, 0, { 5, 5 });
    a->connectHandle(VXRLine::endHandle, *flat, VXRLineConnectedAtPlace, { 1, 1 });
    EXPECT_TRUE(std::isfinite(a->endPoint().x));
}
