#include <tests/platform/ContextTestSupport.h>
#include <tests/support/PathBuilder.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/raster/OutlineFeeder.h>

#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

// The bitmap engine's laws: coverage is area, and no pixel depends on what else is drawn of a picture.

namespace vxr::test {

namespace {

/// Coverage of pixels from 64 exact sample rows each, for the even-odd rule.
std::vector<double> sampledCoverage(const std::vector<Vec2>& polygon, int side)
{
    constexpr int rowsPerPixel = 64;
    std::vector<double> coverage(std::size_t(side) * std::size_t(side));
    for (int row = 0; row < side * rowsPerPixel; ++row) {
        const double y = (row + 0.5) / rowsPerPixel;
        std::vector<double> crossings;
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const Vec2 a = polygon[i], b = polygon[(i + 1) % polygon.size()];
            if ((a.y <= y) != (b.y <= y))
                crossings.push_back(a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y));
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
            for (int x = 0; x < side; ++x) {
                const double from = std::max<double>(x, crossings[i]),
                             to = std::min<double>(x + 1, crossings[i + 1]);
                coverage[std::size_t(row / rowsPerPixel * side + x)]
                    += std::max(0.0, to - from) / rowsPerPixel;
            }
    }
    return coverage;
}

/// Errors in levels, of the pixels that are covered in part.
class CoverageErrors {
public:
    void add(const Path& path, const std::vector<Vec2>& polygon, int side)
    {
        const auto context = BitmapContext::createBitmap(side, side, BitmapEngine::Raster);
        context->fillPath(path, WindingRule::EvenOdd);
        const auto expected = sampledCoverage(polygon, side);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                const double wanted = expected[std::size_t(y * side + x)];
                if (wanted > 0 && wanted < 1)
                    mErrors.push_back(std::abs(pixelAt(*context, x, y).alpha - 255 * wanted));
            }
    }
    double mean() const
    {
        return std::accumulate(mErrors.begin(), mErrors.end(), 0.0) / double(mErrors.size());
    }
    double percentile99()
    {
        std::sort(mErrors.begin(), mErrors.end());
        return mErrors[mErrors.size() * 99 / 100];
    }

private:
    std::vector<double> mErrors;
};

TEST(RasterCoverage, IsTheAreaOfStraightEdgesAndCircles)
{
    constexpr int side = 128;
    std::mt19937 random(5);
    std::uniform_real_distribution<double> unit(0, 1);
    CoverageErrors straight;
    for (int i = 0; i < 24; ++i) {
        const Vec2 middle { 64 + unit(random), 64 + unit(random) };
        const int corners = 2 * (3 + i);
        const double turn = unit(random);
        std::vector<Vec2> star;
        Path path;
        for (int k = 0; k < corners; ++k) {
            const double angle = turn + 2 * std::numbers::pi * k / corners, radius = k % 2 ? 60 : 25;
            const Point p
                = Vec2(middle.x + radius * std::cos(angle), middle.y + radius * std::sin(angle)).point();
            star.push_back(p);
            k == 0 ? path.moveTo(p) : path.lineTo(p);
        }
        straight.add(path, star, side);
    }
    EXPECT_LE(straight.mean(), 0.35);
    EXPECT_LE(straight.percentile99(), 1.05);
    for (const double radius : { 2.0, 5.0, 13.0, 40.0, 63.0 }) {
        const Vec2 middle { 64 + unit(random) / 2, 64 + unit(random) / 2 };
        const Rect square(
            float(middle.x - radius), float(middle.y - radius), float(2 * radius), float(2 * radius));
        const auto oval = Path::pathWithOvalInRect(square);
        oval->setFlatness(1e-5f);
        const auto flat = oval->bezierPathByFlatteningPath();
        const std::vector<Vec2> circle(flat->points().begin(), flat->points().end());
        CoverageErrors round;
        round.add(*oval, circle, side);
        EXPECT_LE(round.mean(), 2) << radius;
        EXPECT_LE(round.percentile99(), 7.5) << radius;
    }
}

/// A scene of everything that a context draws, the same for one seed.
void drawAnything(Context& context, unsigned seed, float side)
{
    std::mt19937 random(seed);
    const auto between
        = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); };
    const auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
    const auto place = [&] {
        return Point { between(-0.3f * side, 1.3f * side), between(-0.3f * side, 1.3f * side) };
    };
    const auto color = [&] {
        return ColorValue::rgb(between(0, 1), between(0, 1), between(0, 1), below(3) ? between(0, 1) : 1);
    };
    const auto outline = [&] {
        Path path;
        for (int k = 0, n = 2 + below(5); k < n; ++k) {
            if (k == 0)
                path.moveTo(place());
            else if (below(2))
                path.lineTo(place());
            else
                path.curveTo(place(), place(), place());
        }
        if (below(2))
            path.close();
        return path;
    };
    const auto rule = [&] { return below(2) ? WindingRule::NonZero : WindingRule::EvenOdd; };
    Picture ramp { 16, 12, {} };
    for (unsigned i = 0; i < 16 * 12; ++i)
        ramp.pixels.push_back(0xff000000u | (i * 0x01351u & 0xffffffu));
    const auto image = imageOf(ramp);
    const auto shade = functionOf([](void*, const float* t, float* out) {
        out[0] = *t < 0.4f ? 1 : 0;
        out[1] = *t;
        out[2] = 1 - *t;
        out[3] = 1 - *t / 2;
    });
    for (int i = 0; i < 12; ++i) {
        StateSaver saved(context);
        if (below(3) == 0)
            context.rotate(between(-1, 1));
        if (below(3) == 0)
            context.scale(between(0.3f, 2), between(0.3f, 2));
        if (below(3) == 0)
            context.clipToPath(outline(), rule());
        if (below(4) == 0)
            context.setShadow({ between(-9, 9), between(-9, 9) }, between(0, 12), color());
        context.setAlpha(below(2) ? 1 : between(0, 1));
        context.setShouldAntialias(below(5) != 0);
        context.setCompositeOperation(static_cast<CompositeOperation>(below(6) ? 2 : below(3)));
        context.setInterpolationQuality(static_cast<InterpolationQuality>(below(4)));
        context.setFillColor(color());
        context.setStrokeColor(color());
        const bool layered = below(4) == 0;
        if (layered)
            context.beginTransparencyLayer();
        const LineStyle line { .width = between(0.2f, 20),
            .cap = static_cast<LineCap>(below(3)),
            .join = static_cast<LineJoin>(below(3)),
            .dash = below(2) ? std::vector<float> {} : std::vector<float> { between(1, 20), between(1, 9) } };
        switch (below(6)) {
        case 0:
            context.strokePath(outline(), line);
            break;
        case 1:
            context.drawImage({ place(), { between(3, side), between(3, side) } }, *image);
            break;
        case 2: {
            context.clipToPath(outline(), rule());
            const auto rgb = ColorSpace::deviceRGB();
            const Point from = place(), to = place();
            const bool before = below(2), behind = below(2);
            if (below(2))
                context.drawShading(*Shading::createAxial(rgb, from, to, shade, before, behind));
            else
                context.drawShading(*Shading::createRadial(
                    rgb, from, between(0, 20), to, between(0, 60), shade, before, behind));
            break;
        }
        case 3:
            context.setFillPattern(std::make_shared<Pattern>(Rect(0, 0, 5, 4),
                                       AffineTransform::makeRotation(below(2) ? between(-1, 1) : 0),
                                       between(2, 12), between(2, 12),
                                       [](Context& c) {
                                           paint(c, blue, { 1, 1, 3, 2 });
                                       }),
                below(2) ? 1 : 0.5f);
            context.fillRect({ place(), { between(3, side), between(3, side) } });
            break;
        default:
            context.fillPath(outline(), rule());
        }
        if (layered)
            context.endTransparencyLayer();
    }
}

// Whatever part is drawn, and at whichever whole pixel it lies in a bitmap, the bytes are the same.
TEST(RasterLaw, APixelDependsOnWhatIsDrawnAloneNotOnTheClip)
{
    constexpr int side = 90;
    std::mt19937 random(11);
    for (unsigned seed = 0; seed < 300; ++seed) {
        const auto whole = BitmapContext::createBitmap(side, side, BitmapEngine::Raster);
        drawAnything(*whole, seed, side);
        const int x = int(random() % 60), y = int(random() % 60), width = 1 + int(random() % 30),
                  height = 1 + int(random() % 30);
        const auto clipped = BitmapContext::createBitmap(side, side, BitmapEngine::Raster);
        clipped->clipToRect({ float(x), float(y), float(width), float(height) });
        drawAnything(*clipped, seed, side);
        const auto moved = BitmapContext::createBitmap(width, height, BitmapEngine::Raster);
        moved->setBaseTransform(AffineTransform::makeTranslation(float(-x), float(-y)));
        drawAnything(*moved, seed, side);
        int differing = 0, differingMoved = 0;
        for (int j = 0; j < height; ++j)
            for (int i = 0; i < width; ++i) {
                const Pixel wanted = pixelAt(*whole, x + i, y + j);
                differing += !(pixelAt(*clipped, x + i, y + j) == wanted);
                differingMoved += !(pixelAt(*moved, i, j) == wanted);
            }
        ASSERT_EQ(differing, 0) << "seed " << seed;
        EXPECT_EQ(differingMoved, 0) << "moved, seed " << seed;
    }
}

// A triangle with corners anywhere shows what the half planes of its edges have in common.
TEST(RasterFar, WhatCanBeSeenOfFarCoordinatesIsExact)
{
    for (const float far : { 1e3f, 1e5f, 7.7e5f, 5e7f, 1e12f, 1e30f }) {
        const auto seen = BitmapContext::createBitmap(40, 40, BitmapEngine::Raster);
        const auto expected = BitmapContext::createBitmap(40, 40, BitmapEngine::Raster);
        Path triangle; // its long edge runs through (0, 0) and (40, 40), however far its corners lie
        triangle.moveTo({ -far, -far });
        triangle.lineTo({ far, -far });
        triangle.lineTo({ far, far });
        seen->fillPath(triangle, WindingRule::NonZero);
        expected->fillPath(pathOf("M-50 -50 L90 -50 L90 90 Z"), WindingRule::NonZero);
        EXPECT_TRUE(samePixels(*seen, *expected)) << far;

        Path curve;
        curve.moveTo({ 0, -far });
        curve.curveTo({ 0, -far / 3 }, { 0, far / 3 }, { 0, far });
        curve.lineTo({ 20.5f, far });
        curve.curveTo({ 20.5f, far / 3 }, { 20.5f, -far / 3 }, { 20.5f, -far });
        const auto bent = BitmapContext::createBitmap(40, 40, BitmapEngine::Raster);
        bent->fillPath(curve, WindingRule::NonZero);
        EXPECT_EQ(pixelAt(*bent, 19, 20).alpha, 255) << far;
        EXPECT_EQ(pixelAt(*bent, 20, 20).alpha, 128) << far;
        EXPECT_EQ(pixelAt(*bent, 21, 20).alpha, 0) << far;
    }
}

TEST(RasterStroke, ThinLinesTint)
{
    const auto one = bitmap(10, 10), hatched = bitmap(40, 40);
    one->strokePath(pathOf("M0 5.5 L10 5.5"), { .width = 0.02f });
    EXPECT_NEAR(pixelAt(*one, 5, 5).alpha, 5, 1);
    for (int i = 0; i < 400; ++i)
        hatched->strokePath(
            *pathOf("M0 0 L40 0").transformedBy(AffineTransform::makeTranslation(0, 0.05f + i * 0.1f)),
            { .width = 0.05f });
    EXPECT_NEAR(pixelAt(*hatched, 20, 20).alpha, 104, 12); // ten lines a pixel, each over the others
}

// Corners out of sight don't take the dashes in sight with them.
TEST(RasterStroke, DashesOfATriangleAreAllThereInAPart)
{
    for (const LineJoin join : { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel }) {
        const LineStyle style { .width = 7, .join = join, .dash = { 22, 1 }, .dashPhase = 2 };
        const auto whole = bitmap(128, 96), part = bitmap(128, 96);
        const auto triangle = pathOf("M31 39 L96 4 L38 80 Z");
        whole->strokePath(triangle, style);
        part->clipToRect({ 0, 52, 128, 12 });
        part->strokePath(triangle, style);
        whole->clearRect({ 0, 0, 128, 52 });
        whole->clearRect({ 0, 64, 128, 40 });
        EXPECT_TRUE(samePixels(*whole, *part));
    }
}

std::shared_ptr<const ShadingFunction> redToBlue()
{
    return functionOf([](void*, const float* t, float* out) {
        out[0] = 1 - *t;
        out[1] = 0;
        out[2] = *t;
        out[3] = 1;
    });
}

TEST(RasterShading, AnAxisOfAnyLengthHasItsEndColoursAndLeavesTheContextUsable)
{
    for (const float length : { 3.0f, 0.3f, 1e-3f, 1e-6f, 1e-20f }) {
        const auto context = bitmap(1000, 4);
        context->drawShading(*Shading::createAxial(
            ColorSpace::deviceRGB(), { 1, 0 }, { 1 + std::max(length, 2e-7f), 0 }, redToBlue(), true, true));
        EXPECT_EQ(pixelAt(*context, 0, 2), redPixel) << length;
        EXPECT_EQ(pixelAt(*context, 999, 2), bluePixel) << length;
        {
            StateSaver saved(*context);
            context->scale(length, length);
            context->drawShading(
                *Shading::createAxial(ColorSpace::deviceRGB(), { 0, 0 }, { 1, 0 }, redToBlue(), true, true));
        }
        paint(*context, green, { 0, 0, 10, 4 });
        EXPECT_EQ(pixelAt(*context, 5, 2), greenPixel) << length;
    }
}

} // namespace

} // namespace vxr::test
