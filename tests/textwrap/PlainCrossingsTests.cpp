#include <vxr/textwrap/PlainCrossings.h>

#include <tests/support/PolygonBuilder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vxr::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Contour = TestPolygon::Contour;

const Rect line(0, 10, 100, 10);
constexpr double clearance = 1e-6;

struct PlainCase {
    const char* name;
    std::vector<Contour> contours;
    bool isPlain;
};
const PlainCase plainCases[] = {
    { "NothingAtTheLinesHeight", { square(0, 50, 10) }, true },
    { "Post", { square(30, 0, 40) }, true },
    { "EndsWithin", { square(30, 15, 40) }, false },
    { "EndsOnTheLinesEdge", { square(30, 20, 40) }, false },
    { "WhollyWithin", { square(30, 12, 4) }, false },
    { "SidesCrossElsewhere", { { { 30, 0 }, { 70, 80 }, { 30, 80 }, { 70, 0 } } }, true },
    { "SidesCrossWithin", { { { 30, 0 }, { 70, 30 }, { 30, 30 }, { 70, 0 } } }, false },
    { "OneAboveTheOtherInX", { { { 10, 0 }, { 40, 30 }, { 45, 30 }, { 15, 0 } } }, false },
    { "PostsTouch", { square(30, 0, 40), square(70, 0, 40) }, false },
    { "PostEndsAtTheLinesEnd", { square(60, 0, 40) }, false },
    { "PostRoundTheLinesEnd", { square(60, 0, 50) }, true },
    { "SideSlantsThroughTheLinesEnd", { { { 60, 0 }, { 60, 30 }, { 110, 30 }, { 95, 0 } } }, false },
    { "SidesWithVertices", { { { 30, 0 }, { 35, 13 }, { 28, 16 }, { 30, 30 }, { 70, 30 }, { 70, 0 } } },
        true },
    { "TurnsBackWithin", { { { 30, 0 }, { 35, 16 }, { 38, 13 }, { 40, 30 }, { 70, 30 }, { 70, 0 } } },
        false },
};

TEST(PlainCrossings, LeaveWhatIsNotPlainToTheClipper)
{
    for (const PlainCase& c : plainCases)
        EXPECT_EQ(PlainCrossings().find(TestPolygon(c.contours).set(), line, clearance), c.isPlain) << c.name;
}

std::vector<Rect> boxes(const TestPolygon& polygon, bool inside)
{
    PlainCrossings crossings;
    EXPECT_TRUE(crossings.find(polygon.set(), line, clearance));
    std::vector<Rect> found;
    crossings.appendBoxes(inside, found);
    return found;
}

TEST(PlainCrossings, BoxesReachToTheOutermostPointOfEachSide)
{
    // The left side goes from x = 35 at the line's top by (40, 15) to 35 again; the right one is straight.
    const TestPolygon polygon { { { 25, 0 }, { 40, 15 }, { 25, 30 }, { 70, 30 }, { 70, 0 } } };
    EXPECT_THAT(boxes(polygon, true), ElementsAre(Rect(35, 10, 35, 10)));
    EXPECT_THAT(boxes(polygon, false), ElementsAre(Rect(0, 10, 40, 10), Rect(70, 10, 30, 10)));
}

TEST(PlainCrossings, InsideAndOutsideTakeTurnsAcrossContours)
{
    // A ring round the line's left end with a post in it, and a post beyond the right end.
    const TestPolygon polygon { square(-50, -50, 100), square(20, 0, 40), square(120, 0, 40) };
    EXPECT_THAT(boxes(polygon, true), ElementsAre(Rect(0, 10, 20, 10), Rect(50, 10, 10, 10)));
    EXPECT_THAT(boxes(polygon, false), ElementsAre(Rect(20, 10, 30, 10), Rect(60, 10, 40, 10)));
    EXPECT_THAT(boxes({}, true), IsEmpty());
    EXPECT_THAT(boxes({}, false), ElementsAre(line));
}

} // namespace
} // namespace vxr::testing
