#include <tests/support/PathBuilder.h>
#include <tests/support/PictureCompare.h>
#include <tests/support/RecordingContext.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using namespace vxr::test;

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
    const Path base = pathOf("M 0 0 L 10 0 C 1 2 3 4 5 6 Z");
    Path near = pathOf("M 0.009 0 L 10 0 C 1 2 3 4.009 5 6 Z");
    near.setLineWidth(7);
    EXPECT_TRUE(isEqual(base, near));
    for (const char* other : { "M 0.011 0 L 10 0 C 1 2 3 4 5 6 Z", "M 0 0 L 10 0 C 1 2 3 4.02 5 6 Z",
             "M 0 0 L 10 0 C 1 2 3 4 5 6", "M 0 0 L 10 0 Z C 1 2 3 4 5 6", "" })
        EXPECT_FALSE(isEqual(base, pathOf(other))) << other;
    const Path nowhere = pathOf("M nan 0");
    EXPECT_TRUE(isEqual(nowhere, nowhere));
    EXPECT_FALSE(isEqual(nowhere, Path(nowhere)));
    EXPECT_FALSE(isEqual(Path(), *ColorSpace::deviceGray()));
}

TEST(PathAdditions, ClockwiseIsTheSignOfTheArea)
{
    const struct {
        const char* elements;
        bool clockwise;
    } cases[] = {
        { "", true }, { "M 0 0 L 1 0 L 1 1 Z", true }, { "M 0 0 L 1 1 L 1 0 Z", false },
        // Without a close the closing line is not counted, which moves the answer to where the origin lies.
        { "M 0 10 L 10 10 L 10 11", false }, { "M 0 10 L 10 10 L 10 11 Z", true },
        // Far out the products need more digits than single precision has.
        { "M 100000 100000 L 100001 100001 L 100001 100000 Z", false },
        { "M 0 0 L 1 1 C 9 9 9 9 0 9 L 1 0 Z", false }, // the curve is skipped
    };
    std::vector<std::string> logged;
    const VXULogSink previous = VXUSetLogSink([&](int level, std::string_view, std::string_view message) {
        logged.push_back(std::to_string(level) + ' ' + std::string(message));
    });
    for (const auto& c : cases)
        EXPECT_EQ(isClockwise(pathOf(c.elements)), c.clockwise) << c.elements;
    VXUSetLogSink(previous);
    EXPECT_THAT(logged,
        ::testing::ElementsAre("10 Warning: Path should be flat. Illegal NSCurveToBezierPathElement."));
}

TEST(PathAdditions, RectangularMeansOneClosedRectangleAlongTheAxes)
{
    for (const char* elements : { "M 0 0 L 10 0 L 10 5 L 0 5 Z", "M 0 0 L 0 5 L 10 5 L 10 0 L 0 0",
             "M 0 0 L 10 0 L 10 5 L 0 5 Z M 0 0", "M 0 0 L 10 0 L 10 0 L 10.005 5 L 0 5 Z" })
        EXPECT_TRUE(isRectangular(pathOf(elements))) << elements;
    for (const char* elements : { "", "M 0 0 L 10 0 L 10 5 L 0 5", "M 0 0 L 10 0 L 10 5 Z",
             "M 0 0 L 10 1 L 10 5 L 0 5 Z", "M 0 0 L 10 0 L 0 5 L 10 5 Z",
             "M 0 0 L 10 0 L 10 5 L 3 5 L 3 9 Z", "M 0 0 L 10 0 L 10 5 L 0 5 Z L 3 3",
             "M 0 0 L 10 0 L 10 5 L 0 5 Z M 1 1 L 2 2", "M 0 0 L 10 0 L 10 5 C 5 5 5 5 0 5 Z",
             "M 0 0 L 10 0 L 10 0 L 0 0 Z", "M nan 0 L 10 0 L 10 5 L 0 5 Z" })
        EXPECT_FALSE(isRectangular(pathOf(elements))) << elements;
}

TEST(PathAdditions, PointsAlongThePath)
{
    const auto at = [](const char* elements, float share) {
        return pointAlongPathAtPercentage(pathOf(elements), share);
    };
    const char square[] = "M 0 0 L 1 0 L 1 1 L 0 1 Z";
    EXPECT_EQ(at(square, 0.125f), (Point { 0.5f, 0 }));
    EXPECT_EQ(at(square, 0.875f), (Point { 0, 0.5f })) << "on the closing line";
    EXPECT_EQ(at(square, -3), (Point { 0, 0 }));
    EXPECT_EQ(at("M 5 5 L 6 5", 7), (Point { 6, 5 }));
    EXPECT_EQ(at("M 0 0 L 1 0 M 5 5 L 6 5", 0.75f), (Point { 5.5f, 5 })) << "moves have no length";
    EXPECT_EQ(at("M 3 4 L 3 4 L 9 4", 0), (Point { 3, 4 })) << "a first segment of no length";
    EXPECT_EQ(at(square, std::nanf("")), Point());
    // Half of a circle's length is opposite to its start on the right.
    const Point left = pointAlongPathAtPercentage(*Path::pathWithOvalInRect({ 0, 0, 100, 100 }), 0.5f);
    EXPECT_NEAR(left.x, 0, 0.1);
    EXPECT_NEAR(left.y, 50, 0.6);
}

TEST(PathAdditions, PointsOnTheOutlineWithinATolerance)
{
    const Path corner = pathOf("M 0 0 L 10 0 L 10 10"), closed = pathOf("M 0 0 L 10 0 L 10 10 Z");
    EXPECT_TRUE(pointOnPathTolerance(corner, { 5, 1 }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { 5, 1.01f }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { 4, 4 }, 1)) << "the open side is no outline";
    EXPECT_TRUE(pointOnPathTolerance(closed, { 4, 4 }, 1));
    EXPECT_TRUE(pointOnPathTolerance(corner, { 10.7f, 10.7f }, 1)) << "round the end";
    EXPECT_FALSE(pointOnPathTolerance(corner, { 10.8f, 10.8f }, 1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { 5, 0 }, -1));
    EXPECT_FALSE(pointOnPathTolerance(corner, { std::nanf(""), 0 }, 1));
    // A curve is followed more closely than the path's own coarse flatness: the circle's point at an
    // eighth of the way.
    const auto circle = Path::pathWithOvalInRect({ -100, -100, 200, 200 });
    circle->setFlatness(50);
    const float eighth = 100 * std::sqrt(0.5f);
    EXPECT_TRUE(pointOnPathTolerance(*circle, { eighth, eighth }, 0.1f));
    EXPECT_FALSE(pointOnPathTolerance(*circle, { eighth - 1, eighth - 1 }, 0.5f));
}

TEST(PathAdditions, StrokeBoundsGrowByHalfTheWidthAndByMitreTips)
{
    // An angle of 2 atan(1/4) at (0, 40): the tip stands h / sin(half) = 4 sqrt(17) beyond the corner.
    const char spike[] = "M -10 0 L 0 40 L 10 0";
    const float tip = 40 + 4 * std::sqrt(17.0f);
    const struct {
        const char* name;
        const char* elements;
        float limit, top;
        LineJoin join = LineJoin::Miter;
    } cases[] = {
        { "Tip", spike, 10, tip },
        { "BelowTheLimit", spike, 4.2f, tip }, // sqrt(17) is 4.123
        { "LinesShorterThanAUnit", "M -0.1 0 L 0 0.4 L 0.1 0", 10, tip - 39.6f },
        { "AboveTheLimit", spike, 4.1f, 44 },
        { "NoMitre", spike, 10, 44, LineJoin::Round },
        { "AtTheClose", "M 0 40 L 10 0 L -10 0 Z", 10, tip },
        { "EndsThatMeetAreNoJoin", "M 0 40 L 10 0 L -10 0 L 0 40", 10, 44 },
    };
    for (const auto& c : cases) {
        Path path = pathOf(c.elements);
        path.setLineWidth(8);
        path.setMiterLimit(c.limit);
        path.setLineJoin(c.join);
        EXPECT_NEAR(boundsIncludingStroke(path).maxY(), c.top, 1e-4) << c.name;
    }
}

TEST(PathAdditions, EmitsEveryElementIntoTheContext)
{
    const Path path = pathOf("M 1 2 L 3 4 C 1 2 3 4 5 6 Z M 7 8 L 9 9");
    const auto emit = [&] {
        addPathToContext(path, currentDrawingPort());
        currentDrawingPort().fillPath(WindingRule::EvenOdd);
    };
    EXPECT_EQ(recordingOf(emit), "fill even-odd " + text(path) + '\n');
}

TEST(PathAdditions, ClearingTheStrokeErasesItsAreaAndNothingElse)
{
    const auto bitmap = BitmapContext::createBitmap(40, 40);
    bitmap->setFillColor(ColorValue::rgb(1, 0, 0));
    bitmap->fillRect({ 0, 0, 40, 40 });
    Path line = pathOf("M 10 20 L 30 20");
    line.setLineWidth(4);
    const LineStyle previous = bitmap->lineStyle();
    {
        const CurrentContextScope current(*bitmap, true, false);
        clearStroke(line);
    }
    EXPECT_EQ(bitmap->lineStyle(), previous) << "the state is restored";
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x) {
            const bool cleared = x >= 10 && x < 30 && y >= 18 && y < 22;
            ASSERT_EQ(pixelAt(*bitmap, x, y), cleared ? Pixel {} : (Pixel { 255, 0, 0, 255 }))
                << x << ' ' << y;
        }
}
