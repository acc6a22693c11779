#include "CurveSamples.h"

#include <vxr/geometry/tracing/VXRImageTracer.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/textwrap/VXRTextWrap.h>

#include <gtest/gtest.h>

#include <functional>
#include <numbers>

using namespace vxr;
using namespace vxr::test;

namespace {

/// A mask with some bytes between its rows.
struct Mask {
    int width, height;
    std::vector<std::uint8_t> bytes;

    Mask(int w, int h, const std::function<bool(double, double)>& isInside)
        : width(w)
        , height(h)
        , bytes(static_cast<std::size_t>((w + 5) * h), 255)
    {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                at(x, y) = isInside(x + 0.5, y + 0.5) ? 200 : 20;
    }

    std::uint8_t& at(int x, int y) { return bytes[static_cast<std::size_t>(y * (width + 5) + x)]; }
    MaskView view() const { return { bytes.data(), width, height, static_cast<std::size_t>(width + 5) }; }
};

bool inDisc(double x, double y, double cx, double cy, double r) { return std::hypot(x - cx, y - cy) < r; }

Mask noise(int w, int h, unsigned seed)
{
    std::mt19937 engine(seed);
    return { w, h, [&](double, double) { return engine() % 2 == 0; } };
}

std::shared_ptr<Path> exactly(const Mask& mask)
{
    VXRTraceOptions options;
    options.outlines.leastArea = 1;
    options.tolerance = 0;
    return VXRImageTracer::traceMask(mask.view(), options).path;
}

/// A ring, a star and a slanting bar.
Mask shapes()
{
    return { 200, 150, [](double x, double y) {
                const double angle = std::atan2(y - 50, x - 140), r = std::hypot(x - 140, y - 50);
                const bool star = r < 22 + 18 * std::cos(5 * angle);
                const bool bar = std::abs((x - 100) * 0.3 - (y - 120)) < 10 && x > 20 && x < 185;
                return star || bar || (inDisc(x, y, 45, 45, 40) && !inDisc(x, y, 50, 45, 20));
            } };
}

} // namespace

TEST(MaskOutlines, FillingThemGivesTheMaskBack)
{
    std::vector<Mask> masks { noise(130, 40, 1), noise(63, 20, 2), noise(64, 20, 3), noise(1, 9, 4), shapes(),
        { 65, 3, [](double, double) { return true; } }, { 70, 8, [](double, double) { return false; } } };
    for (std::size_t k = 0; k < masks.size(); ++k) {
        Mask& mask = masks[k];
        MaskOutlineOptions options;
        const MaskOutlines found = outlinesOfMask(mask.view(), options);
        EXPECT_TRUE(found.complete);
        std::int64_t area = 0, inside = 0;
        for (const auto& outline : found.outlines)
            area += outline.area;
        const auto path = exactly(mask);
        for (const WindingRule rule : { WindingRule::NonZero, WindingRule::EvenOdd }) {
            path->setWindingRule(rule);
            inside = 0;
            for (int y = 0; y < mask.height; ++y)
                for (int x = 0; x < mask.width; ++x) {
                    const bool expected = mask.at(x, y) >= 128;
                    inside += expected;
                    ASSERT_EQ(path->containsPoint({ float(x) + 0.5f, float(y) + 0.5f }), expected)
                        << k << ": " << x << ", " << y;
                }
        }
        EXPECT_EQ(area, inside) << k;
    }
}

TEST(MaskOutlines, LimitsAreKeptAndReported)
{
    const Mask mask = noise(300, 300, 7);
    const MaskOutlines all = outlinesOfMask(mask.view(), {});
    const MaskOutlines some = outlinesOfMask(mask.view(), { .mostOutlines = 50 });
    EXPECT_EQ(some.outlines.size(), 50u);
    EXPECT_FALSE(some.complete);
    EXPECT_EQ(some.corners.size(), some.outlines.back().first + some.outlines.back().count);
    const MaskOutlines large = outlinesOfMask(mask.view(), { .leastArea = 5 });
    EXPECT_EQ(large.outlines.size() + large.dropped, all.outlines.size());
    for (const auto& outline : large.outlines)
        EXPECT_GE(std::abs(outline.area), 5);
    EXPECT_FALSE(outlinesOfMask(mask.view(), { .mostCorners = 100 }).complete);
    EXPECT_TRUE(outlinesOfMask({ nullptr, 10, 10, 10 }, {}).outlines.empty());
    EXPECT_TRUE(outlinesOfMask({ mask.bytes.data(), 10, 10, 9 }, {}).outlines.empty());
    EXPECT_TRUE(outlinesOfMask({ mask.bytes.data(), -1, 10, 9 }, {}).outlines.empty());
}

TEST(ImageTracer, StaysWithinTheToleranceAndHalfAPixelOfTheExactOutline)
{
    for (const Mask& mask : { shapes(), noise(20, 20, 3) }) {
        const auto exact = segmentsOf(*exactly(mask));
        for (const double tolerance : { 0.5, 2.0 }) {
            VXRTraceOptions options;
            options.tolerance = tolerance;
            options.outlines.leastArea = 1;
            const auto traced = segmentsOf(*VXRImageTracer::traceMask(mask.view(), options).path);
            for (const auto& [from, to] : { std::pair(&traced, &exact), std::pair(&exact, &traced) })
                for (const Cubic& c : *from)
                    for (const double t : { 0.0, 0.3, 0.5, 0.8 })
                        ASSERT_LE(distanceToCurves(pointAt(c, t), *to), tolerance + 0.5) << tolerance;
        }
    }
}

TEST(ImageTracer, FindsCornersAndCurves)
{
    const Mask square(60, 60, [](double x, double y) { return x > 10 && x < 50 && y > 20 && y < 40; });
    const auto box = VXRImageTracer::traceMask(square.view()).path;
    EXPECT_EQ(box->elementCount(), 5u);
    EXPECT_EQ(box->bounds(), Rect(10, 20, 40, 20));
    // A turned square: four lines again, each corner within a pixel.
    const Mask turned(100, 100, [](double x, double y) {
        const double u = (x - 50) * 0.8 + (y - 50) * 0.6, v = (y - 50) * 0.8 - (x - 50) * 0.6;
        return std::abs(u) < 30 && std::abs(v) < 30;
    });
    const auto slanting = VXRImageTracer::traceMask(turned.view()).path;
    EXPECT_EQ(slanting->elementCount(), 5u);
    for (const Point corner : { Point { 56, 92 }, Point { 92, 44 }, Point { 44, 8 }, Point { 8, 56 } }) {
        double least = INFINITY;
        for (const Point p : slanting->points())
            least = std::min(least, (Vec2(p) - Vec2(corner)).length());
        EXPECT_LT(least, 1.5);
    }
    const Mask disc(200, 200, [](double x, double y) { return inDisc(x, y, 100, 100, 80); });
    const auto round = VXRImageTracer::traceMask(disc.view()).path;
    EXPECT_LE(round->elementCount(), 10u);
    for (const Cubic& c : segmentsOf(*round))
        for (const double t : { 0.0, 0.5 })
            EXPECT_NEAR((pointAt(c, t) - Vec2(100, 100)).length(), 80, 1);
    VXRTraceOptions solid;
    solid.holes = false;
    EXPECT_EQ(VXRImageTracer::traceMask(shapes().view()).outlines, 4u);
    EXPECT_EQ(VXRImageTracer::traceMask(shapes().view(), solid).outlines, 3u);
}

TEST(ImageTracer, ReadsEveryLayoutAndServesAsTextWrapOutline)
{
    // Two pixels wide and one high, the left one half transparent black, the right one opaque grey 100.
    struct {
        AlphaFormat alpha;
        bool native;
        std::vector<std::uint8_t> bytes;
    } const cases[] = {
        { AlphaFormat::Last, false, { 0, 0, 0, 100, 100, 100, 100, 255 } },
        { AlphaFormat::First, false, { 100, 0, 0, 0, 255, 100, 100, 100 } },
        { AlphaFormat::PremultipliedFirst, true, { 0, 0, 0, 100, 100, 100, 100, 255 } }, // little endian
        { AlphaFormat::PremultipliedLast, false, { 0, 0, 0, 100, 100, 100, 100, 255 } },
    };
    VXRTraceOptions options;
    options.outlines.leastArea = 1;
    for (const auto& c : cases) {
        ImageLayout layout = ImageLayout::nativeARGB(2, 1, 8);
        layout.alpha = c.alpha;
        layout.nativeOrder = c.native;
        const auto image = Image::createWithCopy(layout, c.bytes.data(), c.bytes.size());
        ASSERT_TRUE(image);
        const Rect frame(10, 20, 40, 30);
        const auto opaque = VXRImageTracer::traceImageInRect(*image, frame, VXRTraceSource::Alpha, options);
        EXPECT_EQ(opaque.path->bounds(), Rect(30, 20, 20, 30));
        const auto dark = VXRImageTracer::traceImageInRect(*image, frame, VXRTraceSource::Darkness, options);
        EXPECT_EQ(dark.path->bounds(), Rect(30, 20, 20, 30)) << "darkness 155 and 100";
        const auto pieces = VXRTextWrap::wrappedSubrectsForRectPathType({ 0, 30, 100, 8 }, opaque.path, 1);
        ASSERT_EQ(pieces.size(), 2u);
        EXPECT_FLOAT_EQ(pieces[0].maxX(), 30);
        EXPECT_FLOAT_EQ(pieces[1].minX(), 50);
    }
}
