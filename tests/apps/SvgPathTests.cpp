#include "OutlineText.h"

#include <apps/vxr/svg/Values.h>

#include <gtest/gtest.h>

namespace app::svg {
namespace {

TEST(SvgPathData, ReadsCommands)
{
    const struct {
        const char* name;
        const char* data;
        const char* outline;
    } cases[] = {
        { "Lines", "M1 2L3 4l5 6", "M1 2 L3 4 L8 10" },
        { "PairsAfterAMoveAreLines", "M1 2 3 4m1 1 2 2", "M1 2 L3 4 M4 5 L6 7" },
        { "HorizontalAndVertical", "M1 1H5h-2V9v-3", "M1 1 L5 1 L3 1 L3 9 L3 6" },
        { "CompactNumbers", "M.5.5L1-2-.5.25e1", "M0.5 0.5 L1 -2 L-0.5 2.5" },
        { "Cubic", "M0 0C1 2 3 4 5 6c1 1 2 2 3 3", "M0 0 C1 2 3 4 5 6 C6 7 7 8 8 9" },
        { "SmoothCubicMirrors", "M0 0C0 1 2 3 4 3S8 1 8 0", "M0 0 C0 1 2 3 4 3 C6 3 8 1 8 0" },
        { "SmoothCubicAfterALine", "M0 0L4 3S8 1 8 0", "M0 0 L4 3 C4 3 8 1 8 0" },
        { "SmoothQuadraticAfterACubic", "M0 0C0 0 3 3 3 3T6 6", "M0 0 C0 0 3 3 3 3 C3 3 4 4 6 6" },
        { "SmoothQuadraticTwice", "M0 0Q3 6 6 0T12 0 18 0",
            "M0 0 C2 4 4 4 6 0 C8 -4 10 -4 12 0 C14 4 16 4 18 0" },
        { "CloseReturnsToTheStart", "M1 1L5 1 5 5zl1 1", "M1 1 L5 1 L5 5 Z M1 1 L2 2" },
        { "RelativeMoveAfterClose", "m1 1h4zm2 2h1", "M1 1 L5 1 Z M3 3 L4 3" },
        { "ArcOfNoRadiusIsALine", "M0 0A0 5 0 0 1 10 0", "M0 0 L10 0" },
        { "ArcToItsStartIsNothing", "M0 0A5 5 0 0 1 0 0L1 1", "M0 0 L1 1" },
        { "HalfCircleOfFlagsWithoutSpaces", "M0 0a5 5 0 0110 0",
            "M0 0 C0 -2.761 2.239 -5 5 -5 C7.761 -5 10 -2.761 10 0" },
        { "RadiiTooSmallAreGrown", "M0 0A1 1 0 0 1 10 0",
            "M0 0 C0 -2.761 2.239 -5 5 -5 C7.761 -5 10 -2.761 10 0" },
        { "SpaceAndCommas", " M 1 , 2 \n L 3,4\t5 , 6 ", "M1 2 L3 4 L5 6" },
    };

    for (const auto& c : cases) {
        const PathData path = parsePathData(c.data);
        EXPECT_TRUE(path.isComplete) << c.name;
        EXPECT_EQ(textOf(path.outline), c.outline) << c.name;
    }
}

TEST(SvgPathData, DrawsUpToTheError)
{
    const struct {
        const char* data;
        const char* outline; ///< what is drawn all the same
        std::size_t offset;
    } cases[] = {
        { "L1 1", "", 0 },
        { "M1 1L2", "M1 1", 5 },
        { "M1 1L2 2 3", "M1 1 L2 2", 9 },
        { "M1 1L2 2X3 3", "M1 1 L2 2", 8 },
        { "M1 1 L2 2,,3 3", "M1 1 L2 2", 10 },
        { "M1 1A5 5 0 2 0 9 9", "M1 1", 5 },
        { "M1 1C1 1 2 2 3", "M1 1", 5 },
        { "M1 1L1e99 1", "M1 1", 5 },
        { "M1 1Z5", "M1 1 Z", 5 },
        { "M", "", 1 },
    };
    for (const auto& c : cases) {
        const PathData path = parsePathData(c.data);
        EXPECT_FALSE(path.isComplete) << c.data;
        EXPECT_EQ(textOf(path.outline), c.outline) << c.data;
        EXPECT_EQ(path.errorOffset, c.offset) << c.data;
    }
}

TEST(SvgPathData, PointListsEndAtAnOddCoordinate)
{
    EXPECT_TRUE(parsePoints("", true).outline.isEmpty());
    EXPECT_EQ(textOf(parsePoints("0 0-5-5", true).outline), "M0 0 L-5 -5 Z");
    const PathData odd = parsePoints("0,0 10,0 10", false);
    EXPECT_FALSE(odd.isComplete);
    EXPECT_EQ(textOf(odd.outline), "M0 0 L10 0");
}

Vec cubicPoint(const Vec* p, double t)
{
    const double s = 1 - t;
    return p[0] * (s * s * s) + p[1] * (3 * s * s * t) + p[2] * (3 * s * t * t) + p[3] * (t * t * t);
}

TEST(SvgArc, LiesOnItsEllipseOnTheAskedSide)
{
    // Ellipse about (0, 0) with radii 10 and 5, turned by 30 degrees, between its points at 20 and 100
    // degrees. By way of the other side the same two points make a large arc, in the other direction.
    const Matrix place = *parseTransform("rotate(30) scale(10 5)");
    const double degree = 3.14159265358979 / 180;
    const auto at = [&](double degrees) {
        return place.map({ std::cos(degrees * degree), std::sin(degrees * degree) });
    };
    for (const bool large : { false, true }) {
        Outline outline;
        outline.moveTo(at(20));
        outline.arcTo({ 10, 5 }, 30, large, !large, at(100));
        const std::size_t pieces = outline.verbs().size() - 1;
        ASSERT_EQ(pieces, large ? 4u : 1u); // 280 and 80 degrees in pieces of at most 90
        for (std::size_t i = 0; i < pieces; ++i) {
            for (double t : { 0.0, 0.3, 0.5, 0.8, 1.0 }) {
                const Vec unit = place.inverse().map(cubicPoint(&outline.points()[3 * i], t));
                EXPECT_NEAR(std::hypot(unit.x, unit.y), 1, 3e-4);
            }
        }
        EXPECT_NEAR(std::hypot(outline.points().back().x - at(100).x, outline.points().back().y - at(100).y),
            0, 1e-9);
        const Vec middle = place.inverse().map(cubicPoint(&outline.points()[large ? 3 : 0], large ? 1 : 0.5));
        EXPECT_NEAR(std::atan2(middle.y, middle.x) / degree, large ? -120 : 60, 0.1); // half way round each
    }
}

TEST(SvgOutline, BoundsAreThoseOfTheCurveNotOfItsControls)
{
    const auto bounds
        = [](const char* data, const Matrix& m = {}) { return parsePathData(data).outline.bounds(m); };
    const Box arch = bounds("M0 0C0 4 6 4 6 0");
    EXPECT_NEAR(arch.maxY, 3, 1e-12);
    EXPECT_EQ(arch.minX, 0);
    EXPECT_EQ(arch.maxX, 6);
    // Extremes of the curve x = 9 t (1 - t) (1 - 2 t): at t = (3 -+ sqrt 3) / 6 it is +- sqrt(3) / 2.
    const Box wave = bounds("M0 0C3 1 -3 2 0 3");
    EXPECT_NEAR(wave.maxX, std::sqrt(3) / 2, 1e-12);
    EXPECT_NEAR(wave.minX, -std::sqrt(3) / 2, 1e-12);
    // A lone move draws nothing.
    EXPECT_EQ(bounds("M100 100M1 1L2 3").maxX, 2);
    EXPECT_TRUE(bounds("M1 1").isNone());
    const Box turned = bounds("M0 0H1V1H0Z", *parseTransform("rotate(45)"));
    EXPECT_NEAR(turned.width(), std::sqrt(2), 1e-12);
    EXPECT_NEAR(turned.minX, -std::sqrt(0.5), 1e-12);
}

TEST(SvgOutline, GivesDotsALengthAndLeavesTheRestAlone)
{
    const auto dotted
        = [](const char* data) { return textOf(parsePathData(data).outline.withDotsOfLength(2)); };
    EXPECT_EQ(dotted("M1 1Z"), "M1 1 L3 1");
    EXPECT_EQ(dotted("M1 1h0zM5 5L5 6M7 7C7 7 7 7 7 7M9 9"), "M1 1 L3 1 M5 5 L5 6 M7 7 L9 7 M9 9");
    EXPECT_EQ(dotted("M0 0C0 1 1 1 0 0z"), "M0 0 C0 1 1 1 0 0 Z");
}

TEST(SvgOutline, ReversedAndSignedAreaTellTheSenseOfRotation)
{
    const Outline outline = parsePathData("M0 0H2V3H0ZM1 1V2H2").outline; // a hole of 1 / 2, left open
    EXPECT_EQ(outline.signedArea(), 11);
    EXPECT_EQ(outline.reversed().signedArea(), -11);
    EXPECT_EQ(textOf(parsePathData("M0 0C1 0 2 1 2 2L0 2ZM5 5L6 5").outline.reversed()),
        "M0 2 L2 2 C2 1 1 0 0 0 Z M6 5 L5 5");
}

TEST(SvgOutline, RoundedRectanglesLimitTheirRadii)
{
    EXPECT_EQ(textOf(Outline::rectangle(1, 2, 3, 4, 0, 5)), "M1 2 L4 2 L4 6 L1 6 Z");
    const Outline pill = Outline::rectangle(0, 0, 10, 4, 2, 50);
    EXPECT_NEAR(pill.bounds().width(), 10, 1e-9);
    EXPECT_NEAR(pill.bounds().height(), 4, 1e-9);
    EXPECT_EQ(pill.points().front(), (Vec { 2, 0 }));
}

} // namespace
} // namespace app::svg
