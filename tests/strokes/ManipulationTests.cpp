#include <tests/support/FakeShape.h>
#include <tests/support/PathBuilder.h>
#include <tests/support/RecordingContext.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/curves/PathPlaces.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/strokes/VXRManipulatedStroke.h>
#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>
#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>
#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>
#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>
#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace vxr;
using namespace vxr::test;

namespace {

using Manipulations = VXRManipulatedStroke::Manipulations;

/// One of each, the parameter being what differs most from kind to kind.
Manipulations everyKind(float parameter, std::uint32_t seed = 3)
{
    return { std::make_shared<VXROffsetOddWidthPathManipulation>(),
        std::make_shared<VXROutsetPathManipulation>(parameter),
        std::make_shared<VXROutsetPathManipulation>(-parameter),
        std::make_shared<VXROverstrokePathManipulation>(parameter, seed),
        std::make_shared<VXRRoundedPathManipulation>(parameter),
        std::make_shared<VXRVaryWidthPathManipulation>(parameter, 5, seed),
        std::make_shared<VXRWobblyPathManipulation>(parameter, 5, seed) };
}

std::vector<Path> outlines()
{
    return { pathOf("M 0 0 L 100 0 L 100 60 L 0 60 Z"), pathOf("M 0 0 L 80 40 L 0 60 L 50 -30"),
        pathOf("M 0 0 C 50 100 100 -100 150 0 L 150 50"), *Path::pathWithOvalInRect({ 10, 10, 90, 60 }),
        pathOf("M 0 0 L 90 0 L 90 90 L 0 90 Z M 30 30 L 30 60 L 60 60 L 60 30 Z") };
}

double furthestFrom(const Path& outline, const Path& result)
{
    double most = 0;
    const auto flat = result.bezierPathByFlatteningPath();
    for (const Point p : flat->points())
        most = std::max(most, (*nearestPointOnPath(outline, p) - Vec2(p)).length());
    return most;
}

VXRStrokeSetting setting(float width, float scale = 1) { return { width, scale, LineJoin::Miter }; }

} // namespace

TEST(PathManipulations, ReachNoFurtherThanTheySayAndGrowWithTheLine)
{
    for (const Path& outline : outlines()) {
        const auto large = outline.transformedBy(AffineTransform::makeScale(4, 4));
        for (const float parameter : { 0.3f, 1.0f, 4.0f }) {
            for (const auto& manipulation : everyKind(parameter)) {
                const VXRPaintedPath plain { outline.copy(), false, 1 };
                const VXRPaintedPath result = manipulation->manipulatedPath(plain, setting(2));
                const double edge = result.isArea ? 1 : 0; // half the width belongs to the line
                EXPECT_LE(
                    furthestFrom(outline, *result.path), edge + manipulation->reachForLineWidth(2) + 0.06)
                    << typeid(*manipulation).name() << " " << parameter;
                EXPECT_EQ(text(*plain.path), text(outline)) << "what it is given stays";
                if (dynamic_cast<VXROffsetOddWidthPathManipulation*>(manipulation.get()) || result.isArea)
                    continue;
                // Four times the outline and the width: four times the result, to the tolerance of offsets.
                const auto bigger = manipulation->manipulatedPath({ large, false, 1 }, setting(8)).path;
                const auto grown = result.path->transformedBy(AffineTransform::makeScale(4, 4));
                if (grown->isEmpty() || bigger->isEmpty())
                    EXPECT_EQ(grown->isEmpty(), bigger->isEmpty());
                else
                    EXPECT_LE(furthestFrom(*grown, *bigger), 0.5) << typeid(*manipulation).name();
            }
        }
    }
}

TEST(PathManipulations, AreValuesThatFollowFromTheirSeeds)
{
    const Path outline = outlines()[1];
    const auto result = [&](const VXRPathManipulation& m) {
        return text(*m.manipulatedPath({ outline.copy(), false, 1 }, setting(2)).path);
    };
    const auto all = everyKind(1), same = everyKind(1), others = everyKind(1.5f), seeded = everyKind(1, 4);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_TRUE(all[i]->isEqual(*same[i]));
        EXPECT_TRUE(all[i]->isEqual(*all[i]->copyWithZone()));
        EXPECT_EQ(result(*all[i]), result(*all[i]->copyWithZone()));
        EXPECT_FALSE(all[i]->isEqual(*all[(i + 1) % all.size()]));
        EXPECT_EQ(all[i]->isEqual(*others[i]), i == 0);
        const bool hasSeed = i == 3 || i >= 5;
        EXPECT_EQ(all[i]->isEqual(*seeded[i]), !hasSeed);
        EXPECT_EQ(result(*all[i]) == result(*seeded[i]), !hasSeed) << i;
    }
}

TEST(PathManipulations, DoWhatTheyAreNamedFor)
{
    const auto square = newPathOf("M 0 0 L 100 0 L 100 100 L 0 100 Z");
    const auto run = [&](const VXRPathManipulation& m, float width, float scale = 1) {
        return m.manipulatedPath({ square, false, 1 }, setting(width, scale)).path;
    };
    EXPECT_EQ(run(VXROutsetPathManipulation(2), 3)->bounds(), Rect(-6, -6, 112, 112));
    EXPECT_EQ(run(VXROutsetPathManipulation(-2), 3)->bounds(), Rect(6, 6, 88, 88));
    EXPECT_TRUE(run(VXROutsetPathManipulation(-20), 3)->isEmpty()) << "shrinks to nothing";
    struct {
        float width, scale, shift;
    } const widths[] = { { 1, 1, 0.5f }, { 2, 1, 0 }, { 3, 1, 0.5f }, { 1, 2, 0 }, { 1, 3, 0.5f / 3 },
        { 1.5f, 2, 0.25f }, { 2, 0.5f, 0 }, { 2, NAN, 0 } };
    for (const auto& w : widths)
        EXPECT_FLOAT_EQ(
            run(VXROffsetOddWidthPathManipulation(), w.width, w.scale)->bounds().origin.x, w.shift)
            << w.width << " at " << w.scale;
    // Four lines, each longer than the side by one to two overshoots.
    const auto sketch = run(VXROverstrokePathManipulation(5), 2);
    EXPECT_EQ(std::count(sketch->kinds().begin(), sketch->kinds().end(), PathElementKind::MoveTo), 4);
    EXPECT_GE(sketch->bounds().size.width, 110);
    EXPECT_LE(sketch->bounds().size.width, 120);
    const auto round = run(VXRRoundedPathManipulation(10), 2);
    EXPECT_NEAR((*nearestPointOnPath(*round, Vec2(0, 0))).length(), 20 * (std::sqrt(2.0) - 1), 0.02);
    EXPECT_EQ(round->bounds(), Rect(0, 0, 100, 100));
    // An area twice as wide at its widest as at its narrowest, at most.
    const VXRPaintedPath swollen = VXRVaryWidthPathManipulation(1.0f / 3, 4, 9)
                                       .manipulatedPath({ newPathOf("M 0 0 L 300 0"), false, 1 }, setting(6));
    ASSERT_TRUE(swollen.isArea);
    for (float x = 1; x < 300; x += 0.5f) {
        EXPECT_TRUE(swollen.path->containsPoint({ x, 1.9f })) << x;
        EXPECT_FALSE(swollen.path->containsPoint({ x, 4.1f })) << x;
    }
    EXPECT_GT(swollen.path->bounds().size.height, 7);
}

TEST(PathStrokers, FillTheOutlineWithWholeRepeats)
{
    const VXRPaintedPath line { newPathOf("M 0 0 L 100 0"), false, 1 };
    for (const bool bends : { true, false }) {
        const VXRPatternedPathStroker boxes(Path::pathWithRect({ 0.25f, -1, 1, 2 }), 1.5f, bends);
        const auto painted = boxes.paintedPaths(line, setting(2));
        ASSERT_EQ(painted.size(), 1u);
        EXPECT_TRUE(painted[0].isArea);
        const auto& kinds = painted[0].path->kinds();
        EXPECT_EQ(std::count(kinds.begin(), kinds.end(), PathElementKind::MoveTo), 33) << "100 by 3";
        const Rect bounds = painted[0].path->bounds();
        EXPECT_NEAR(bounds.minX(), 100 - bounds.maxX(), 1e-3);
        EXPECT_NEAR(bounds.minY(), -2, 1e-4);
        EXPECT_NEAR(bounds.maxY(), 2, 1e-4);
    }
    // Bent around a corner, what touches its neighbours goes on doing so: no gap outside.
    const VXRPatternedPathStroker band(Path::pathWithRect({ 0, -0.5f, 3, 1 }), 3, true);
    const auto around
        = band.paintedPaths({ newPathOf("M 0 0 L 100 0 L 100 100 L 0 100 Z"), false, 1 }, setting(10));
    for (float t = 0; t < 1; t += 0.01f)
        for (const float y : { -4.0f, 0.0f, 4.0f })
            EXPECT_TRUE(around[0].path->containsPoint({ 100 * t, y })) << t << " " << y;
    const VXROutsetPathStroker parallels(3, 2, 0.5f);
    const auto lines
        = parallels.paintedPaths({ newPathOf("M 0 0 L 100 0 L 100 100 L 0 100 Z"), false, 1 }, setting(3));
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].path->bounds(), Rect(6, 6, 88, 88));
    EXPECT_EQ(lines[2].path->bounds(), Rect(-6, -6, 112, 112));
    EXPECT_EQ(lines[1].widthFactor, 0.5f);
    EXPECT_TRUE(parallels.isEqual(*parallels.copyWithZone()));
    EXPECT_FALSE(parallels.isEqual(band));
    EXPECT_TRUE(band.isEqual(VXRPatternedPathStroker(Path::pathWithRect({ 0, -0.5f, 3, 1 }), 3, true)));
    EXPECT_FALSE(band.isEqual(VXRPatternedPathStroker(Path::pathWithRect({ 0, -0.5f, 2, 1 }), 3, true)));
}

TEST(ManipulatedStroke, PaintsWhatItsStepsMakeOfTheOutlineInItsStyle)
{
    auto stroke = VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(Color::blackColor(), 4,
        { std::make_shared<VXROutsetPathManipulation>(0.5f),
            std::make_shared<VXROffsetOddWidthPathManipulation>() });
    const auto paint = [&](bool interior = false) {
        FakeShape shape(Size { 40, 20 });
        shape.interiorStroke = interior;
        RecordingContext context;
        const CurrentContextScope scope(context, true, true);
        stroke->paintShape(shape);
        return context.lines();
    };
    EXPECT_THAT(paint(), ::testing::Contains("stroke width=4 miter=4 [M-2 -2 L42 -2 L42 22 L-2 22 Z]"));
    EXPECT_THAT(paint(true), ::testing::Contains("clip [M0 0 L40 0 L40 20 L0 20 Z]"));
    stroke->setWidth(3);
    EXPECT_THAT(paint(), ::testing::Contains("stroke width=3 miter=4 [M-1 -1 L42 -1 L42 22 L-1 22 Z]"));
    EXPECT_FLOAT_EQ(stroke->reach(), 3 + 0.70710678f);
    EXPECT_TRUE(stroke->isEqual(*stroke->copyWithZone()));
    auto other = std::static_pointer_cast<VXRManipulatedStroke>(stroke->copyWithZone());
    other->setManipulations({ stroke->manipulations()[1], stroke->manipulations()[0] });
    EXPECT_FALSE(stroke->isEqual(*other)) << "the order counts";
    EXPECT_FALSE(stroke->isEqual(*VXRStroke::stroke()));
    stroke->setManipulations({ std::make_shared<VXRVaryWidthPathManipulation>() });
    EXPECT_THAT(paint(), ::testing::Contains(::testing::StartsWith("fill [")));
    EXPECT_THAT(paint(), ::testing::Not(::testing::Contains(::testing::StartsWith("stroke"))));
}

TEST(ManipulatedStroke, HostileOutlinesAndParametersEndInBoundedWork)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(), inf = INFINITY;
    std::vector<Path> bad { Path(), pathOf("M 5 5"), pathOf("M 5 5 L 5 5 Z"), pathOf("M nan 0 L 1 1"),
        pathOf("M 0 0 L 3e38 3e38 L -3e38 3e38 Z"), pathOf("M 0 0 C 0 0 0 0 0 0 L 1e-30 0"),
        pathOf("M 0 0 L 10 0 L 0 0 L 10 0") };
    bad.push_back(outlines()[2]);
    Manipulations all;
    for (const float parameter : { 0.0f, 1e-30f, 1.0f, 1e30f, nan, inf, -inf }) {
        for (auto& m : everyKind(parameter))
            all.push_back(m);
        all.push_back(std::make_shared<VXRWobblyPathManipulation>(1.0f, parameter));
        all.push_back(std::make_shared<VXRVaryWidthPathManipulation>(1.0f, parameter));
    }
    std::vector<std::shared_ptr<VXRPathStroker>> strokers { std::make_shared<VXROutsetPathStroker>(
                                                                1 << 30, 1.0f, nan),
        std::make_shared<VXRPatternedPathStroker>(),
        std::make_shared<VXRPatternedPathStroker>(Path::pathWithRect({ 0, 0, 1, 1 }), 1e-30f, true),
        std::make_shared<VXRPatternedPathStroker>(nullptr, 1.0f, true) };
    const auto check = [](const Path& outline, Manipulations steps, std::shared_ptr<VXRPathStroker> stroker) {
        for (const float width : { 1.0f, 1e-20f }) {
            const auto stroke = VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(
                Color::blackColor(), width, steps, stroker);
            std::size_t elements = 0;
            for (const VXRPaintedPath& painted : stroke->paintedPathsForOutlineScale(outline, 1, false))
                elements += painted.path->elementCount();
            ASSERT_LT(elements, 2000000u);
        }
    };
    for (const Path& outline : bad) {
        for (const auto& m : all)
            check(outline, { m }, nullptr);
        for (const auto& stroker : strokers)
            check(outline, { all[6] }, stroker);
    }
}
