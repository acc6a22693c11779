#include <tests/platform/ContextTestSupport.h>
#include <vxr/platform/graphics/Pattern.h>

#include <cmath>

namespace vxr::test {

namespace {

/// Three columns and two rows, no two pixels alike.
Picture sixPixels()
{
    return { 3, 2, { 0xffff0000, 0xff00ff00, 0xff0000ff, 0xff101010, 0x80404040, 0xffffffff } };
}

TEST(ContextImage, FirstRowLiesAtTheLargestYPixelForPixel)
{
    struct Case {
        const char* name;
        AffineTransform transform;
        Picture expected;
    };
    const auto& p = sixPixels().pixels;
    const Case cases[] = {
        { "Plain", {}, sixPixels() },
        { "Flipped", { 1, 0, 0, -1, 0, 2 }, { 3, 2, { p[3], p[4], p[5], p[0], p[1], p[2] } } },
        { "Turned", AffineTransform::makeTranslation(2, 0).rotate(static_cast<float>(M_PI_2)),
            { 2, 3, { p[2], p[5], p[1], p[4], p[0], p[3] } } },
    };
    for (const Case& c : cases) {
        const auto context = bitmap(c.expected.width, c.expected.height);
        context->concatTransform(c.transform);
        context->scale(0.1f, 0.1f);
        context->drawImage({ 0, 0, 30, 20 }, *imageOf(sixPixels()));
        EXPECT_EQ(compare(pictureOf(*context), c.expected).largest, 0) << c.name;
    }
}

// Stretching repeats pixels, blends neighbours or blends smoothly, and never fades out at the edge.
TEST(ContextImage, StretchedEdgesStayOpaqueAndQualityPicksTheFilter)
{
    const Picture halves { 2, 1, { 0xff000000, 0xffffffff } };
    for (const auto quality :
        { InterpolationQuality::None, InterpolationQuality::Low, InterpolationQuality::High }) {
        const auto context = bitmap(40, 20);
        context->setInterpolationQualityRange(InterpolationQuality::None, quality);
        context->drawImage({ 0, 0, 40, 20 }, *imageOf(halves));
        EXPECT_EQ(pixelAt(*context, 0, 0), (Pixel { 0, 0, 0, 255 }));
        EXPECT_EQ(pixelAt(*context, 39, 19), (Pixel { 255, 255, 255, 255 }));
        const int beside = pixelAt(*context, 17, 10).red;
        EXPECT_EQ(beside > 20, quality != InterpolationQuality::None) << beside;
    }
}

// One white line in six: two neighbours alone would all be black.
TEST(ContextImage, HighQualityWeighsAllPixelsWhenShrinking)
{
    Picture stripes { 60, 60, {} };
    for (int i = 0; i < 3600; ++i)
        stripes.pixels.push_back(i % 6 ? 0xff000000 : 0xffffffff);
    const auto context = bitmap(10, 10);
    context->setInterpolationQuality(InterpolationQuality::High);
    context->drawImage({ 0, 0, 10, 10 }, *imageOf(stripes));
    for (int x = 0; x < 10; ++x)
        EXPECT_NEAR(pixelAt(*context, x, 5).red, 255 / 6.0, 13) << x;
}

TEST(ContextImage, AbsurdSizesDrawNothingOrWhatCanBeSeen)
{
    const auto image = imageOf(sixPixels());
    for (const Rect& rect :
        { Rect { 0, 0, 0, 5 }, { NAN, 0, 5, 5 }, { 0, 0, HUGE_VALF, 5 }, { 0, 0, 1e-30f, 1e-30f } }) {
        const auto context = bitmap(20, 20);
        context->drawImage(rect, *image);
        EXPECT_TRUE(isBlank(*context)) << rect;
    }
    for (const float huge : { 1e4f, 1e6f, 1e8f }) {
        const auto context = bitmap(20, 20);
        context->setInterpolationQuality(InterpolationQuality::None);
        context->drawImage({ -huge / 6, -huge / 4, huge, huge }, *image); // its first column's lower pixel
        EXPECT_EQ(pixelAt(*context, 10, 10), (Pixel { 0x10, 0x10, 0x10, 255 })) << huge;
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

std::shared_ptr<const Shading> axial(Point from, Point to, bool extendStart, bool extendEnd)
{
    return Shading::createAxial(ColorSpace::deviceRGB(), from, to, redToBlue(), extendStart, extendEnd);
}

std::shared_ptr<const Shading> radial(
    Point from, float fromRadius, Point to, float toRadius, bool extendStart, bool extendEnd)
{
    return Shading::createRadial(
        ColorSpace::deviceRGB(), from, fromRadius, to, toRadius, redToBlue(), extendStart, extendEnd);
}

/// The row y = 30 of a 60 x 60 bitmap, a letter each 4 pixels: red and blue ends, the blend between, nothing.
std::string rowOf(const Shading& shading)
{
    const auto context = bitmap(60, 60);
    context->drawShading(shading);
    std::string row;
    for (int x = 2; x < 60; x += 4) {
        const Pixel p = pixelAt(*context, x, 30);
        row += p.alpha < 128 ? '.' : p.red > 250 ? 'R' : p.blue > 250 ? 'B' : '-';
    }
    return row;
}

TEST(ContextShading, ExtendsOnTheSidesAskedFor)
{
    struct Case {
        const char* name;
        Shading::Kind kind;
        Point from;
        float fromRadius;
        Point to;
        float toRadius;
        const char *none, *start, *end, *both;
    };
    using enum Shading::Kind;
    const Case cases[] = {
        { "Axial", Axial, { 20, 0 }, 0, { 40, 0 }, 0, //
            ".....-----.....", "RRRRR-----.....", ".....-----BBBBB", "RRRRR-----BBBBB" },
        { "Growing", Radial, { 30, 30 }, 10, { 30, 30 }, 22, //
            "..---.....---..", "..---RRRRR---..", "BB---.....---BB", "BB---RRRRR---BB" },
        { "Shrinking", Radial, { 30, 30 }, 22, { 30, 30 }, 10, //
            "..---.....---..", "RR---.....---RR", "..---BBBBB---..", "RR---BBBBB---RR" },
        // Of the circles through a point the one nearest to the end counts. Equal ones fill a strip, from
        // x = 12 to 48 unless it is extended.
        { "Strip", Radial, { 20, 30 }, 8, { 40, 30 }, 8, //
            "...---------...", "RRR---------...", "...-----BBBBBBB", "RRR-----BBBBBBB" },
        // From x = 4 to 36, and on to a point at 52.
        { "ClosingCone", Radial, { 12, 30 }, 8, { 32, 30 }, 4, //
            ".--------......", "R--------......", ".------BBBBB...", "R------BBBBB..." },
    };
    for (const Case& c : cases) {
        const auto row = [&](bool start, bool end) {
            return rowOf(c.kind == Axial ? *axial(c.from, c.to, start, end)
                                         : *radial(c.from, c.fromRadius, c.to, c.toRadius, start, end));
        };
        EXPECT_EQ(row(false, false), c.none) << c.name;
        EXPECT_EQ(row(true, false), c.start) << c.name;
        EXPECT_EQ(row(false, true), c.end) << c.name;
        EXPECT_EQ(row(true, true), c.both) << c.name;
    }
}

TEST(ContextShading, FillsTheClipInUserSpaceWithTheAlpha)
{
    const auto context = bitmap(60, 60);
    context->translate(10, 0);
    context->scale(0.5f, 1);
    context->clipToRect({ 0, 20, 80, 20 });
    context->setAlpha(0.5f);
    context->drawShading(*axial({ 0, 0 }, { 80, 0 }, true, true));
    EXPECT_EQ(pixelAt(*context, 30, 10).alpha, 0);
    EXPECT_EQ(pixelAt(*context, 30, 30).alpha, 128);
    EXPECT_NEAR(pixelAt(*context, 30, 30).blue, 65, 2); // half way of half of 255
    EXPECT_EQ(pixelAt(*context, 5, 30).alpha, 0);
}

TEST(ContextShading, WithoutALengthNothingIsDrawn)
{
    const std::shared_ptr<const Shading> shadings[] = { axial({ 5, 5 }, { 5, 5 }, true, true),
        radial({ 5, 5 }, 3, { 5, 5 }, 3, true, true), radial({ 5, 5 }, -3, { 5, 5 }, 3, true, true),
        axial({ NAN, 5 }, { 5, 5 }, true, true), radial({ 5, 5 }, 3, { HUGE_VALF, 5 }, 3, true, false) };
    const auto context = bitmap(10, 10);
    for (const auto& shading : shadings)
        context->drawShading(*shading);
    EXPECT_TRUE(isBlank(*context));
}

/// Red in its left half, and a blue lower right quarter.
std::shared_ptr<const Pattern> quarters(
    const Rect& cell, const AffineTransform& matrix, float xStep, float yStep, int* calls = nullptr)
{
    return std::make_shared<Pattern>(cell, matrix, xStep, yStep, [cell, calls](Context& context) {
        if (calls)
            ++*calls;
        paint(context, red, { cell.minX(), cell.minY(), cell.size.width / 2, cell.size.height * 2 });
        paint(context, blue, { cell.midX(), cell.minY(), cell.size.width, cell.size.height / 2 });
    });
}

TEST(ContextPattern, CellsAreDrawnOnceAndRepeatInBaseSpaceWhateverTheTransform)
{
    const auto context = bitmap(60, 60), expected = bitmap(60, 60);
    int calls = 0;
    const auto pattern = quarters({ 0, 0, 6, 4 }, AffineTransform::makeTranslation(2, 3), 10, 8, &calls);
    for (const auto& c : { context, expected })
        c->setFillPattern(pattern, 1);
    context->translate(7, 7);
    context->scale(3, 2);
    context->fillRect({ 0, 0, 5, 50 });
    context->fillRect({ 5, 0, 50, 50 });
    expected->fillRect({ 7, 7, 60, 60 });
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(samePixels(*context, *expected));
    const std::pair<int, Pixel> row[]
        = { { 11, clearPixel }, { 12, redPixel }, { 15, bluePixel }, { 18, clearPixel }, { 22, redPixel } };
    for (const auto& [x, pixel] : row)
        EXPECT_EQ(pixelAt(*context, x, 12), pixel) << x;
}

// 80 steps of 2.5 pixels, red in their left half: drifting by a hundredth of a pixel a step would show.
TEST(ContextPattern, FractionalStepsDoNotDrift)
{
    const auto context = bitmap(200, 40);
    context->setFillPattern(quarters({ 0, 0, 10, 10 }, AffineTransform::makeScale(0.25f, 0.25f), 10, 30), 1);
    context->fillRect({ 0, 0, 200, 40 });
    for (int x = 0; x < 5; ++x)
        for (const int y : { 0, 1, 8, 15 })
            EXPECT_EQ(pixelAt(*context, x, y), pixelAt(*context, 190 + x, y)) << x << ' ' << y;
    EXPECT_NE(pixelAt(*context, 0, 1), pixelAt(*context, 1, 1));
}

TEST(ContextPattern, ManyTinyCellsAverageOut)
{
    const auto context = bitmap(100, 100);
    context->setFillPattern(quarters({ 0, 0, 1, 1 }, AffineTransform::makeScale(0.5f, 0.5f), 1, 1), 1);
    context->fillRect({ 0, 0, 100, 100 });
    EXPECT_LE(difference(pixelAt(*context, 50, 50), { 128, 0, 64, 191 }), 16);
}

TEST(ContextPattern, OverlappingCellsAndNegativeStepsKeepTheLattice)
{
    for (const float step : { 10.0f, -10.0f }) {
        const auto context = bitmap(40, 10);
        const auto draw = [](Context& c) {
            paint(c, red, { 0, 0, 5, 5 });
            paint(c, blue, { 10, 0, 5, 5 }); // lies in the next cell
        };
        context->setFillPattern(
            std::make_shared<Pattern>(Rect(0, 0, 15, 5), AffineTransform(), step, step, draw), 1);
        context->fillRect({ 0, 0, 40, 10 });
        EXPECT_EQ(pixelAt(*context, 12, 2), redPixel); // the later cell lies on top
        EXPECT_EQ(pixelAt(*context, 17, 2), clearPixel);
        EXPECT_EQ(pixelAt(*context, 12, 7), clearPixel);
    }
}

TEST(ContextPattern, AlphaClearAndCopyTakeAPatternLikeAColour)
{
    const auto pattern = quarters({ 0, 0, 10, 10 }, {}, 10, 10);
    struct Case {
        CompositeOperation operation;
        Pixel onRed, onGap;
    };
    const Case cases[] = {
        { CompositeOperation::SourceOver, { 64, 191, 0, 255 }, greenPixel },
        { CompositeOperation::Copy, { 64, 0, 0, 64 }, clearPixel },
        { CompositeOperation::Clear, clearPixel, clearPixel },
    };
    for (const Case& c : cases) {
        const auto context = bitmap(40, 20);
        paint(*context, green, { 0, 0, 40, 20 });
        context->setAlpha(0.5f);
        context->setCompositeOperation(c.operation);
        context->setFillPattern(pattern, 0.5f);
        context->fillRect({ 0, 0, 30, 20 });
        EXPECT_LE(difference(pixelAt(*context, 2, 2), c.onRed), 1) << pixelAt(*context, 2, 2);
        EXPECT_LE(difference(pixelAt(*context, 7, 7), c.onGap), 1) << pixelAt(*context, 7, 7);
        EXPECT_EQ(pixelAt(*context, 35, 7), greenPixel);
    }
}

TEST(ContextPattern, DegeneratePatternsDrawNothingAndHugeOnesEnd)
{
    const auto context = bitmap(20, 20);
    const auto drawWith = [&](std::shared_ptr<const Pattern> pattern) {
        context->setFillPattern(pattern, 1);
        context->setStrokePattern(pattern, 1);
        context->fillRect({ 0, 0, 20, 20 });
        context->strokePath(*Path::pathWithRect({ 5, 5, 5, 5 }), { .width = 4 });
    };
    drawWith(quarters({ 0, 0, 0, 5 }, {}, 5, 5));
    drawWith(quarters({ 0, 0, 5, 5 }, { 0, 0, 0, 0, 0, 0 }, 5, 5));
    drawWith(quarters({ 0, 0, 5, 5 }, { NAN, 0, 0, 1, 0, 0 }, 5, 5));
    EXPECT_TRUE(isBlank(*context));
    drawWith(quarters({ 0, 0, 5, 5 }, {}, 0, NAN));
    drawWith(quarters({ 0, 0, 1e-6f, 1e-6f }, {}, 1e-6f, 1e-6f));
    drawWith(quarters({ -1e7f, -1e7f, 2e7f, 2e7f }, {}, 1, 1));
}

} // namespace

} // namespace vxr::test
