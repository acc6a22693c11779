#include "PathBuilder.h"

#include <tests/support/RecordingContext.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/graphics/CairoContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using vxr::test::pathOf;

TEST(PathAdditions, ClosedAndOpen)
{
    struct {
        const char* elements;
        bool containsClose, closed, open;
    } const cases[] = {
        { "", false, false, false },
        { "M 1 1", false, false, false },
        { "M 0 0 L 1 0", false, false, true },
        { "M 0 0 L 1 0 Z", true, true, false },
        { "M 0 0 L 1 0 L 1 1 L 0 0", false, true, false },
        { "M 0 0 L 1 0 L 1 1 L 0 0.0001", false, false, true }, // exactly, not nearly
        { "M 0 0 C 1 0 1 1 0 0", false, true, false },
        { "M 0 0 L 1 0 M 5 5 L 6 6", false, false, false }, // several sub-paths are never open
        { "M 0 0 L 1 0 M 0 0", false, true, false },
        { "M 0 0 L 1 0 Z M 5 5 L 6 6", true, true, false },
    };
    for (const auto& c : cases) {
        const Path path = pathOf(c.elements);
        EXPECT_EQ(containsClosePathElement(path), c.containsClose) << c.elements;
        EXPECT_EQ(effectivelyClosed(path), c.closed) << c.elements;
        EXPECT_EQ(isOpen(path), c.open) << c.elements;
    }
}

TEST(PathAdditions, EqualityForgivesAHundredth)
{
    const char base[] = "M 0 0 L 10 0 C 1 2 3 4 5 6 Z";
    EXPECT_TRUE(isEqual(pathOf(base), pathOf(base)));
    EXPECT_TRUE(isEqual(pathOf(base), pathOf("M 0.009 0 L 10 0 C 1 2 3 4.009 5 6 Z")));
    for (const char* other : { "M 0.011 0 L 10 0 C 1 2 3 4 5 6 Z", "M 0 0 L 10 0.02 C 1 2 3 4 5 6 Z",
             "M 0 0 L 10 0 C 1.02 2 3 4 5 6 Z", "M 0 0 L 10 0 C 1 2 3 4.02 5 6 Z",
             "M 0 0 L 10 0 C 1 2 3 4 5 6", "M 0 0 L 10 0 L 5 6 Z", "M 0 0 L 10 0 Z C 1 2 3 4 5 6", "" })
        EXPECT_FALSE(isEqual(pathOf(base), pathOf(other))) << other;
    EXPECT_TRUE(isEqual(Path(), Path()));
    Path styled = pathOf(base);
    styled.setLineWidth(7);
    EXPECT_TRUE(isEqual(pathOf(base), styled));
    const Path nowhere = pathOf("M nan 0");
    EXPECT_TRUE(isEqual(nowhere, nowhere));
    EXPECT_FALSE(isEqual(nowhere, Path(nowhere)));
    EXPECT_FALSE(isEqual(Path(), *ColorSpace::deviceGray()));
}

TEST(PathAdditions, ClockwiseIsTheSignOfTheArea)
{
    EXPECT_TRUE(isClockwise(Path()));
    EXPECT_TRUE(isClockwise(pathOf("M 0 0 L 1 0 L 1 1 Z")));
    EXPECT_FALSE(isClockwise(pathOf("M 0 0 L 1 1 L 1 0 Z")));
    // Without a close the closing line is not counted, which moves the answer to where the origin lies.
    EXPECT_FALSE(isClockwise(pathOf("M 0 10 L 10 10 L 10 11")));
    EXPECT_TRUE(isClockwise(pathOf("M 0 10 L 10 10 L 10 11 Z")));
    // Far out the products need more digits than single precision has.
    EXPECT_FALSE(isClockwise(pathOf("M 100000 100000 L 100001 100001 L 100001 100000 Z")));
}

TEST(PathAdditions, CurvesInAFlatPathAreLoggedAndSkipped)
{
    std::vector<std::string> lines;
    const VXULogSink previous = VXUSetLogSink([&](int level, std::string_view, std::string_view message) {
        lines.push_back(std::to_string(level) + ' ' + std::string(message));
    });
    EXPECT_FALSE(isClockwise(pathOf("M 0 0 L 1 1 C 9 9 9 9 0 9 L 1 0 Z")));
    VXUSetLogSink(previous);
    EXPECT_THAT(lines,
        ::testing::ElementsAre("10 Warning: Path should be flat. Illegal NSCurveToBezierPathElement."));
}

TEST(PathAdditions, RectangularMeansOneClosedRectangleAlongTheAxes)
{
    for (const char* elements : { "M 0 0 L 10 0 L 10 5 L 0 5 Z", "M 0 0 L 10 0 L 10 5 L 0 5 L 0 0",
             "M 0 0 L 0 5 L 10 5 L 10 0 L 0 0 Z", "M 0 0 L 10 0 L 10 5 L 0 5 Z M 0 0",
             "M 0 0 L 10 0 L 10 0 L 10.005 5 L 0 5 Z" })
        EXPECT_TRUE(isRectangular(pathOf(elements))) << elements;
    for (const char* elements : { "", "M 0 0", "M 0 0 L 10 0 L 10 5 L 0 5", "M 0 0 L 10 0 L 10 5 Z",
             "M 0 0 L 10 1 L 10 5 L 0 5 Z", "M 0 0 L 10 0 L 0 5 L 10 5 Z",
             "M 0 0 L 10 0 L 10 5 L 3 5 L 3 9 Z", "M 0 0 L 10 0 L 10 5 L 0 5 Z L 3 3",
             "M 0 0 L 10 0 L 10 5 L 0 5 Z M 1 1 L 2 2", "M 0 0 L 10 0 L 10 5 C 5 5 5 5 0 5 Z",
             "M 0 0 L 10 0 L 10 0 L 0 0 Z", "M nan 0 L 10 0 L 10 5 L 0 5 Z" })
        EXPECT_FALSE(isRectangular(pathOf(elements))) << elements;
    EXPECT_TRUE(isRectangular(*Path::pathWithRect({ 1, 2, 3, 4 })));
    EXPECT_FALSE(isRectangular(*Path::pathWithOvalInRect({ 1, 2, 3, 4 })));
}

TEST(PathAdditions, PointsAlongThePath)
{
    const Path square = pathOf("M 0 0 L 1 0 L 1 1 L 0 1 Z");
    EXPECT_EQ(pointAlongPathAtPercentage(square, 0.5f), (Point { 1, 1 }));
    EXPECT_EQ(pointAlongPathAtPercentage(square, 0.125f), (Point { 0.5f, 0 }));
    EXPECT_EQ(pointAlongPathAtPercentage(square, 0.875f), (Point { 0, 0.5f })) << "on the closing line";
    EXPECT_EQ(pointAlongPathAtPercentage(square, -3), (Point { 0, 0 }));
    EXPECT_EQ(pointAlongPathAtPercentage(pathOf("M 5 5 L 6 5"), 7), (Point { 6, 5 }));
    EXPECT_EQ(pointAlongPathAtPercentage(pathOf("M 0 0 L 1 0 M 5 5 L 6 5"), 0.75f), (Point { 5.5f, 5 }))
        << "moves have no length";
    EXPECT_EQ(pointAlongPathAtPercentage(pathOf("M 3 4 L 3 4 L 9 4"), 0), (Point { 3, 4 }))
        << "a first segment of no length";
    EXPECT_EQ(pointAlongPathAtPercentage(Path(), 0.5f), Point());
    EXPECT_EQ(pointAlongPathAtPercentage(square, std::nanf("")), Point());
    // Half of a circle's length is opposite to its start on the right.
    const Point left = pointAlongPathAtPercentage(*Path::pathWithOvalInRect({ 0, 0, 100, 100 }), 0.5f);
    EXPECT_NEAR(left.x, 0, 0.1);
    EXPECT_NEAR(left.y, 50, 0.6);
}

TEST(PathAdditions, PointsOnTheOutlineWithinATolerance)
{
    const Path corner = pathOf("M 0 0 L 10 0 L 10 10");
    EXPECT_TRUE(pointOnPathTolerance(corner, { 5, 1 }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { 5, 1.01f }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { 4, 4 }, 1)) << "the open side is no outline";
    Path closed = corner;
    closed.close();
    EXPECT_TRUE(pointOnPathTolerance(closed, { 4, 4 }, 1));
    EXPECT_TRUE(pointOnPathTolerance(corner, { 10.7f, 10.7f }, 1)) << "round the end";
    EXPECT_FALSE(pointOnPathTolerance(corner, { 10.8f, 10.8f }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { 5, 0 }, -1));
    EXPECT_FALSE(pointOnPathTolerance(pathOf("M 5 5"), { 5, 5 }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { std::nanf(""), 0 }, 1));
    // A curve is followed more closely than the path's own coarse flatness: the circle's point at an
    // eighth of the way.
    auto circle = Path::pathWithOvalInRect({ -100, -100, 200, 200 });
    circle->setFlatness(50);
    const float eighth = 100 * std::sqrt(0.5f);
    EXPECT_TRUE(pointOnPathTolerance(*circle, { eighth, eighth }, 0.1f));
    EXPECT_FALSE(pointOnPathTolerance(*circle, { eighth - 1, eighth - 1 }, 0.5f));
}

TEST(PathAdditions, StrokeBoundsGrowByHalfTheWidthAndByMitreTips)
{
    Path corner = pathOf("M 0 0 L 10 0 L 10 10");
    corner.setLineWidth(2);
    EXPECT_EQ(boundsIncludingStroke(corner), Rect(-1, -1, 12, 12)) << "a right angle's tip is the corner";

    // An angle of 2 atan(1/4) at (0, 40): the tip stands h / sin(half) = 4 sqrt(17) beyond the corner.
    Path spike = pathOf("M -10 0 L 0 40 L 10 0");
    spike.setLineWidth(8);
    spike.setMiterLimit(10);
    EXPECT_NEAR(boundsIncludingStroke(spike).maxY(), 40 + 4 * std::sqrt(17.0), 1e-4);
    spike.setMiterLimit(4.1f); // sqrt(17) is 4.123
    EXPECT_EQ(boundsIncludingStroke(spike).maxY(), 44);
    spike.setMiterLimit(4.2f);
    EXPECT_GT(boundsIncludingStroke(spike).maxY(), 56);
    spike.setLineJoin(LineJoin::Round);
    EXPECT_EQ(boundsIncludingStroke(spike).maxY(), 44);

    Path closed = pathOf("M 0 40 L 10 0 L -10 0 Z");
    closed.setLineWidth(8);
    EXPECT_NEAR(boundsIncludingStroke(closed).maxY(), 40 + 4 * std::sqrt(17.0), 1e-4) << "at the close";
    Path open = pathOf("M 0 40 L 10 0 L -10 0 L 0 40");
    open.setLineWidth(8);
    EXPECT_EQ(boundsIncludingStroke(open).maxY(), 44) << "ends that meet are no join";
}

TEST(PathAdditions, StrokeBoundsHoldWhatAStrokerDraws)
{
    // Two routes to one rectangle: the tips found here, and the outline of the platform's stroker.
    for (int degrees = 15; degrees < 180; degrees += 15) {
        const float a = static_cast<float>(degrees) * 3.14159265f / 180;
        Path path = pathOf("M 100 0 L 0 0");
        path.curveTo({ 60 * std::cos(a), 60 * std::sin(a) }, { 80, 90 }, { 30, 200 });
        path.setLineWidth(12);
        path.setMiterLimit(20);
        path.setLineCap(LineCap::Butt);
        const Rect ours = boundsIncludingStroke(path);
        const Rect outline = path.strokedOutline(path.lineStyle(), 0.01f)->bounds();
        EXPECT_TRUE(rectContainsRect(insetRect(ours, -1e-3f, -1e-3f), outline)) << degrees;
        if (degrees < 90) { // the tip, and no control point, is what reaches furthest
            EXPECT_NEAR(ours.minX(), outline.minX(), 1e-3) << degrees;
        }
    }
}

TEST(PathAdditions, EmitsEveryElementIntoTheContext)
{
    const Path path = pathOf("M 1 2 L 3 4 C 1 2 3 4 5 6 Z M 7 8 L 9 9");
    EXPECT_EQ(test::recordingOf([&] {
        Context& port = currentDrawingPort();
        port.beginPath();
        addPathToContext(path, port);
        port.fillPath(WindingRule::EvenOdd);
    }),
        "fill even-odd " + test::text(path) + '\n');
}

TEST(PathAdditions, ClearingTheStrokeErasesItsAreaAndNothingElse)
{
    const auto bitmap = CairoContext::createBitmap(40, 40);
    bitmap->setFillColor(ColorValue::rgb(1, 0, 0));
    bitmap->fillRect({ 0, 0, 40, 40 });
    Path line = pathOf("M 10 20 L 30 20");
    line.setLineWidth(4);
    LineStyle previous = bitmap->lineStyle();
    {
        const CurrentContextScope current(std::make_shared<GraphicsContext>(bitmap, true, false));
        clearStroke(line);
    }
    EXPECT_EQ(bitmap->lineStyle(), previous) << "the state is restored";
    const std::uint32_t red = 0xffff0000u;
    const auto pixel = [&](int x, int yUp) { return bitmap->pixels()[(39 - yUp) * 40 + x]; };
    EXPECT_EQ(pixel(10, 18), 0u);
    EXPECT_EQ(pixel(29, 21), 0u);
    EXPECT_EQ(pixel(9, 20), red);
    EXPECT_EQ(pixel(30, 20), red);
    EXPECT_EQ(pixel(20, 17), red);
    EXPECT_EQ(pixel(20, 22), red);
}
