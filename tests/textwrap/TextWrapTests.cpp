#include <vxr/textwrap/VXRTextWrap.h>

#include <tests/support/EvenOddArea.h>
#include <tests/support/PlainWrap.h>
#include <tests/support/PolygonBuilder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace vxr::testing {
namespace {

using ::testing::ElementsAre;

constexpr int inside = 0, around = 1;

std::shared_ptr<Path> rects(std::initializer_list<Rect> list)
{
    auto path = Path::path();
    for (const Rect& r : list)
        path->appendRect(r);
    return path;
}

std::vector<Rect> wrapped(const Rect& line, const std::shared_ptr<Path>& path, int type)
{
    return VXRTextWrap::wrappedSubrectsForRectPathType(line, path, type);
}

/// The skip of the second form, whose pieces must be those of the first.
int skip(const Rect& line, const std::shared_ptr<Path>& path, int type)
{
    int hint = -1;
    EXPECT_EQ(VXRTextWrap::wrappedSubrectsForRectPathTypeSkipHint(line, path, type, hint),
        wrapped(line, path, type));
    return hint;
}

struct PieceCase {
    const char* name;
    std::shared_ptr<Path> path;
    int type;
    std::vector<Rect> pieces;
};
const Rect coverRect(-10, 0, 120, 100), midLine(0, 10, 100, 12);
const auto post = rects({ { 40, 0, 20, 100 } }), elsewhere = rects({ { 40, 200, 20, 100 } });
const auto twoPosts = rects({ { 70, 0, 50, 15 }, { 20, 0, 20, 100 } });
const PieceCase pieceCases[] = {
    { "AroundAPost", post, around, { { 0, 10, 40, 12 }, { 60, 10, 40, 12 } } },
    { "AnyOtherTypeIsAround", post, -7, { { 0, 10, 40, 12 }, { 60, 10, 40, 12 } } },
    { "InsideAPost", post, inside, { { 40, 10, 20, 12 } } },
    { "AroundTwoPosts", twoPosts, around, { { 0, 10, 20, 12 }, { 40, 10, 30, 12 } } },
    // The first post ends within the line: what is free below it hides its span.
    { "InsideTwoPosts", twoPosts, inside, { { 20, 10, 20, 12 } } },
    { "AroundWhatIsElsewhere", elsewhere, around, { midLine } },
    { "InsideWhatIsElsewhere", elsewhere, inside, {} },
    { "TouchingFromBelow", rects({ { 40, 22, 20, 100 } }), around, { midLine } },
    { "AroundACover", rects({ coverRect }), around, {} },
    { "InsideACover", rects({ coverRect }), inside, { midLine } },
    { "AroundNothing", rects({}), around, { midLine } },
    { "InsideNothing", rects({}), inside, {} },
    { "InsideNoPath", nullptr, inside, {} },
};

TEST(TextWrap, PiecesAreTheGapsThatTheClipLeaves)
{
    for (const PieceCase& c : pieceCases)
        EXPECT_EQ(wrapped(midLine, c.path, c.type), c.pieces) << c.name;
}

struct SkipCase {
    const char* name;
    std::shared_ptr<Path> path;
    Rect line;
    int type, skip;
};
const SkipCase skipCases[] = {
    { "NoPathAtFirst", nullptr, midLine, inside, 1 },
    { "SomethingIsFree", post, midLine, around, 1 },
    { "ToTheEndOfTheShape", rects({ coverRect }), midLine, around, 78 },
    { "ToAHoleBelow", rects({ coverRect, { 20, 50, 30, 10 } }), midLine, around, 28 },
    { "ToAHoleTwoBelow", rects({ coverRect, { 20, 24, 30, 10 } }), midLine, around, 2 },
    { "WholePartOnly", rects({ coverRect, { 20, 50.75f, 30, 10 } }), midLine, around, 28 },
    { "HoleBesideTheColumnIsNone", rects({ coverRect, { 102, 50, 5, 10 } }), midLine, around, 78 },
    { "HoleAboveIsNone", rects({ coverRect, { 20, 2, 30, 5 } }), midLine, around, 78 },
    { "InTheColumnByMoreThanAHundredth", rects({ coverRect, { 99.98f, 50, 5, 10 } }), midLine, around, 28 },
    { "InTheColumnByLessDoesNotCount", rects({ coverRect, { 99.995f, 50, 5, 10 } }), midLine, around, 78 },
    { "OneAtLeast", rects({ { 0, 0, 100, 15 } }), midLine, around, 1 },
    { "FreeRightBelow", rects({ { 0, 0, 100, 15 }, { 0, 60, 100, 9 } }), midLine, around, 1 },
    { "BelowTheShape", rects({ coverRect }), { 0, 100, 100, 12 }, inside, 1 },
    { "AboveTheShapeFreeMeansOutside", rects({ { 20, 50, 60, 40 } }), { 0, 0, 100, 12 }, inside, 1 },
};

TEST(TextWrap, SkipReachesTheFirstFreeAreaBelowTheLine)
{
    for (const SkipCase& c : skipCases)
        EXPECT_EQ(skip(c.line, c.path, c.type), c.skip) << c.name;
}

TEST(TextWrap, TheLastPathIsRetainedAndKnownByIdentityInEachFormSeparately)
{
    auto path = rects({ { 40, 0, 20, 100 } });
    const Rect before(0, 10, 40, 12), after(0, 10, 10, 12);
    EXPECT_EQ(wrapped(midLine, path, around).front(), before);
    path->removeAllPoints();
    path->appendRect({ 10, 0, 20, 100 });
    EXPECT_EQ(wrapped(midLine, path, around).front(), before) << "changed in place: still the old polygon";
    int hint = 0;
    EXPECT_EQ(VXRTextWrap::wrappedSubrectsForRectPathTypeSkipHint(midLine, path, around, hint).front(), after)
        << "the other form sees it for the first time";

    EXPECT_EQ(wrapped(midLine, path->copy(), around).front(), after);
    EXPECT_EQ(wrapped(midLine, path, around).front(), after) << "replaced, so converted anew";

    VXRTextWrap::wrappedSubrectsForRectPathTypeSkipHint(midLine, post, around, hint);
    const std::weak_ptr<Path> seen = path;
    path.reset();
    EXPECT_FALSE(seen.expired());
    wrapped(midLine, post, around);
    EXPECT_TRUE(seen.expired());
}

TEST(TextWrap, ContoursOfOneVertexLeaveTheOthersAlone)
{
    auto path = rects({ { 40, 0, 20, 100 } });
    for (int i = 0; i < 40; ++i) {
        path->moveTo({ 5, 200 });
        path->close();
    }
    EXPECT_EQ(wrapped(midLine, path, around), wrapped(midLine, post, around));
    EXPECT_EQ(wrapped(midLine, path, inside), wrapped(midLine, post, inside));
}

enum class Outline { Blob, Star, Tangle, Curves, Lattice };

std::shared_ptr<Path> randomPath(Outline outline, std::mt19937& random)
{
    std::uniform_real_distribution<float> unit(0, 1);
    auto path = Path::path();
    for (auto subpaths = 1 + random() % 3; subpaths > 0; --subpaths) {
        const float cx = 50 + 200 * unit(random), cy = 50 + 200 * unit(random);
        if (outline == Outline::Curves) {
            path->appendOvalInRect({ cx - 40, cy - 40, 20 + 80 * unit(random), 20 + 80 * unit(random) });
            continue;
        }
        const int count = outline == Outline::Blob ? 300 : 3 + int(random() % 20);
        for (int i = 0; i < count; ++i) {
            const float angle = 2 * float(M_PI) * float(i) / float(count);
            const float r = outline == Outline::Blob ? 60 + 30 * std::sin(5 * angle) : 20 + 80 * unit(random);
            Point p { cx + r * std::cos(angle), cy + r * std::sin(angle) };
            if (outline == Outline::Tangle)
                p = { 300 * unit(random), 300 * unit(random) };
            else if (outline == Outline::Lattice)
                p = { 12.0f * float(random() % 25), 12.0f * float(random() % 25) };
            i == 0 ? path->moveTo(p) : path->lineTo(p);
        }
        if (random() % 2)
            path->close();
    }
    return path;
}

TEST(TextWrap, AgreesWithClippingTheWholePolygon)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> unit(0, 1);
    std::size_t pieces = 0;
    for (const Outline outline :
        { Outline::Blob, Outline::Star, Outline::Tangle, Outline::Curves, Outline::Lattice }) {
        for (int i = 0; i < 40; ++i) {
            const auto path = randomPath(outline, random);
            for (int k = 0; k < 40; ++k) {
                const bool whole = k % 2; // on the lattice the edges then coincide
                const float height = whole ? 12 : 3 + 20 * unit(random);
                const float x = k % 3 ? -100 : 120 * unit(random);
                const float y = whole ? 12 * float(k - 5) : -50 + 400 * unit(random);
                const Rect line(x, y, k % 3 ? 600 : 100, height);
                for (const int type : { inside, around }) {
                    const auto expected = plainlyWrapped(line, *path, type);
                    const auto actual = wrapped(line, path, type);
                    ASSERT_TRUE(samePieces(actual, expected, 1e-4f))
                        << "outline " << int(outline) << " case " << i << " line " << line << " type "
                        << type;
                    pieces += actual.size();
                }
            }
        }
    }
    EXPECT_GT(pieces, 10000u);
}

TEST(TextWrap, LinesThatAreNotProperRectanglesAreFree)
{
    const auto cover = rects({ { -1000, -1000, 5000, 5000 } });
    for (const Rect& line : { Rect(0, 0, 100, 0), Rect(0, 0, 0, 12) })
        EXPECT_THAT(wrapped(line, cover, around), ElementsAre(line));
    EXPECT_EQ(wrapped({ NAN, 0, 100, 12 }, cover, around).size(), 1u);

    const auto broken = rects({ { 0, 0, 50, 50 } });
    broken->moveTo({ 0, 500 });
    broken->lineTo({ NAN, 510 });
    broken->lineTo({ 50, 520 });
    EXPECT_THAT(wrapped(midLine, broken, around), ElementsAre(midLine));
}

struct SpanCase {
    const char* name;
    Rect span;
    float containerHeight, y;
};
// The obstacle is (20, 10, 30, 40).
const SpanCase spanCases[] = {
    { "FreeFromTheStart", { 60, 0, 40, 12 }, 200, 0 },
    { "EndsAboveTheObstacle", { 0, 0, 100, 10 }, 200, 0 },
    // 0: occupied 10 to 12, so 13; then 26, 39; there occupied 39 to 50, so 51.
    { "OneBelowEachObstruction", { 0, 0, 100, 12 }, 200, 51 },
    { "StartsWithin", { 0, 45, 100, 12 }, 200, 51 },
    { "ObstructionThinnerThanOneIsIgnored", { 0, 49.5f, 100, 12 }, 200, 49.5f },
    { "ObstructionOfOneCounts", { 0, 49, 100, 12 }, 200, 51 },
    { "BeyondTheContainerWhenAllIsObstructed", { 0, 0, 100, 12 }, 45, 46 },
    { "AtTheContainersBottom", { 0, 38, 100, 12 }, 50, 51 },
};

float firstFree(const Path& path, const Rect& span, const Rect& container)
{
    return VXRTextWrap::unobstructedSpanForPathStartingSpanContainerBounds(path, span, container);
}

TEST(UnobstructedSpan, IsTheFirstFreePosition)
{
    const auto obstacle = rects({ { 20, 10, 30, 40 } });
    for (const SpanCase& c : spanCases)
        EXPECT_EQ(firstFree(*obstacle, c.span, { 0, 0, 100, c.containerHeight }), c.y) << c.name;

    obstacle->removeAllPoints();
    EXPECT_EQ(firstFree(*obstacle, { 0, 0, 100, 50 }, { 0, 0, 100, 200 }), 0) << "changed in place";

    const auto tall = rects({ { 0, 0, 10, 2e9f } });
    EXPECT_EQ(firstFree(*tall, { 0, 1e8f, 10, 1 }, { 0, 0, 10, 1e9f }), 1e8f) << "a step lost in rounding";

    // Steps of 2 from 0 to the end of the bar, however many there are.
    const auto bar = rects({ { 0, 0, 10, 600000 } });
    EXPECT_EQ(firstFree(*bar, { 0, 0, 10, 1 }, { 0, 0, 10, 1e6f }), 600000);
    // A notch that no step meets is passed over, one that a step falls into is found.
    bar->appendRect({ 10, 0, 10, 400001 });
    bar->appendRect({ 10, 400002, 10, 200000 });
    EXPECT_EQ(firstFree(*bar, { 12, 0, 5, 1 }, { 0, 0, 20, 1e6f }), 600002);
    EXPECT_EQ(firstFree(*bar, { 12, 1, 5, 1 }, { 0, 0, 20, 1e6f }), 400001);
}

TEST(WrappedSubrects, SpansComeFromTheContoursBounds)
{
    const Rect line(0, 10, 100, 12);
    const auto pieces
        = [&](const TestPolygon& polygon) { return wrappedSubrectsFromPolygon(&polygon.set(), line); };
    EXPECT_THAT(pieces({}), ElementsAre(line));
    EXPECT_THAT(pieces({ square(40, 0, 10), square(50, 0, 10) }),
        ElementsAre(Rect(0, 10, 40, 12), Rect(50, 10, 0, 12), Rect(60, 10, 40, 12)))
        << "touching spans leave a piece without width";
    EXPECT_THAT(pieces({ square(60, 0, 10), square(40, 0, 15), square(54, 0, 2) }),
        ElementsAre(Rect(0, 10, 40, 12), Rect(56, 10, 4, 12), Rect(70, 10, 30, 12)));
    EXPECT_THAT(pieces({ square(-5, 0, 10), square(95, 0, 10) }), ElementsAre(Rect(5, 10, 90, 12)));
}

struct MergeCase {
    const char* name;
    std::vector<Rect> sorted, merged;
};
const MergeCase mergeCases[] = {
    { "Empty", {}, {} },
    { "One", { { 1, 2, 3, 4 } }, { { 1, 2, 3, 4 } } },
    { "OverlappingSpanBothInY", { { 0, 0, 10, 5 }, { 9, 20, 10, 5 } }, { { 0, 0, 19, 25 } } },
    { "TouchingStayApart", { { 0, 0, 10, 5 }, { 10, 0, 10, 5 } }, { { 0, 0, 10, 5 }, { 10, 0, 10, 5 } } },
    { "ChainsGrow", { { 0, 0, 10, 1 }, { 5, 0, 10, 1 }, { 14, 0, 6, 1 } }, { { 0, 0, 20, 1 } } },
    { "ContainedChangesNothing", { { 0, 0, 30, 1 }, { 5, 0, 5, 1 }, { 29, 0, 5, 1 } }, { { 0, 0, 34, 1 } } },
    { "NoWidthIsSkipped", { { 0, 0, 10, 1 }, { 5, 50, 0, 1 }, { 20, 0, 0, 1 } }, { { 0, 0, 10, 1 } } },
    { "NoWidthInFrontStays", { { 0, 0, 0, 1 }, { 0, 0, 5, 1 } }, { { 0, 0, 0, 1 }, { 0, 0, 5, 1 } } },
};

TEST(MergeRects, UnitesHorizontalOverlaps)
{
    for (const MergeCase& c : mergeCases)
        EXPECT_EQ(mergeRects(c.sorted), c.merged) << c.name;
}

TEST(OverlapsHorizontally, MeansASharedStretchWhateverTheHeights)
{
    const Rect a(0, 0, 10, 1);
    const std::pair<Rect, bool> others[] = { { { 9, 500, 10, 0 }, true }, { { 10, 0, 10, 1 }, false },
        { { 0, 0, 3, 1 }, true }, { { 5, 0, 0, 1 }, false }, { { 5, 0, -2, 1 }, false } };
    for (const auto& [b, overlaps] : others) {
        EXPECT_EQ(VXROverlapsRectHorizontally(a, b), overlaps) << b;
        EXPECT_EQ(VXROverlapsRectHorizontally(b, a), overlaps) << b << " turned round";
    }
}

TEST(PolygonForSegment, IsTheWidenedSegmentWithARoundStart)
{
    const VXRPolygonOwner plain(_polygonForSegment({ 1, 2 }, { 1, 12 }, 4, false));
    ASSERT_EQ(plain->num_contours, 1);
    // Along +y the first corner lies on the side of -x.
    const std::pair<double, double> expected[] = { { -1, 12 }, { 3, 12 }, { 3, 2 }, { -1, 2 } };
    ASSERT_EQ(plain->contour[0].num_vertices, 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(std::pair(plain->contour[0].vertex[i].x, plain->contour[0].vertex[i].y), expected[i]) << i;
    EXPECT_EQ(_polygonForSegment({ 3, 4 }, { 3, 4 }, 10, true), nullptr);

    const VXRPolygonOwner rounded(_polygonForSegment({ 0, 0 }, { 100, 0 }, 40, true));
    ASSERT_EQ(rounded->num_contours, 1);
    const Rect bounds = boundsForVertexList(rounded->contour[0]);
    EXPECT_NEAR(bounds.minX(), -20, 0.7);
    EXPECT_EQ(bounds.maxX(), 100);
    EXPECT_NEAR(evenOddArea(*rounded), 100 * 40 + M_PI * 20 * 20 / 2, 40);
}

} // namespace
} // namespace vxr::testing
