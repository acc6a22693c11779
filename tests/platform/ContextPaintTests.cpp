#include <tests/platform/ContextTestSupport.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/Shading.h>

#include <cmath>

namespace vxr::test {

namespace {

/// Three columns and two rows, no two pixels alike.
Picture sixPixels()
{
    return { 3, 2, { 0xffff0000, 0xff00ff00, 0xff0000ff, 0xff101010, 0x80404040, 0xffffffff } };
}

std::shared_ptr<CairoContext> bitmap(int width, int height)
{
    return CairoContext::createBitmap(width, height);
}

TEST(ContextImage, FirstRowLiesAtTheLargestYPixelForPixel)
{
    struct Case {
        const char* name;
        AffineTransform transform;
        Rect rect;
        Picture expected;
    };
    const auto& p = sixPixels().pixels;
    const float quarter = static_cast<float>(M_PI_2);
    const Case cases[] = {
        { "Plain", {}, { 0, 0, 3, 2 }, sixPixels() },
        { "Flipped", { 1, 0, 0, -1, 0, 2 }, { 0, 0, 3, 2 },
            { 3, 2, { p[3], p[4], p[5], p[0], p[1], p[2] } } },
        { "Mirrored", { -1, 0, 0, 1, 3, 0 }, { 0, 0, 3, 2 },
            { 3, 2, { p[2], p[1], p[0], p[5], p[4], p[3] } } },
        { "TurnedAQuarter",
            concat(AffineTransform::makeRotation(quarter), AffineTransform::makeTranslation(2, 0)),
            { 0, 0, 3, 2 }, { 2, 3, { p[2], p[5], p[1], p[4], p[0], p[3] } } },
        { "ScaledBack", AffineTransform::makeScale(0.1f, 0.1f), { 0, 0, 30, 20 }, sixPixels() },
    };
    for (const Case& c : cases) {
        for (const auto quality : { InterpolationQuality::None, InterpolationQuality::High }) {
            const auto context = bitmap(c.expected.width, c.expected.height);
            context->setInterpolationQuality(quality);
            context->concatTransform(c.transform);
            context->drawImage(c.rect, *imageOf(sixPixels()));
            EXPECT_EQ(compare(pictureOf(*context), c.expected).largest, 0) << c.name;
        }
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

// One pixel lines a pixel apart average to grey when drawn at a sixth of their size.
TEST(ContextImage, HighQualityWeighsAllPixelsWhenShrinking)
{
    Picture stripes { 60, 60, {} };
    for (int i = 0; i < 3600; ++i)
        stripes.pixels.push_back(i % 2 ? 0xffffffff : 0xff000000);
    const auto context = bitmap(10, 10);
    context->setInterpolationQuality(InterpolationQuality::High);
    context->drawImage({ 0, 0, 10, 10 }, *imageOf(stripes));
    for (int x = 0; x < 10; ++x)
        EXPECT_NEAR(pixelAt(*context, x, 5).red, 127.5, 13) << x;
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
    return std::make_shared<ShadingFunction>(
        nullptr,
        [](void*, const float* t, float* out) {
            out[0] = 1 - *t;
            out[1] = 0;
            out[2] = *t;
            out[3] = 1;
        },
        nullptr);
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

/// One letter a pixel along the row y = 30: red and blue ends, the blend between, nothing.
std::string rowOf(const CairoContext& context, int step)
{
    std::string row;
    for (int x = step / 2; x < context.width(); x += step) {
        const Pixel p = pixelAt(context, x, 30);
        row += p.alpha < 128 ? '.' : p.red > 250 ? 'R' : p.blue > 250 ? 'B' : '-';
    }
    return row;
}

TEST(ContextShading, ExtendsOnTheSidesAskedFor)
{
    struct Case {
        const char* name;
        std::shared_ptr<const Shading> (*make)(bool, bool);
        const char *none, *start, *end, *both;
    };
    // 60 x 60, seen along y = 30 in steps of 4.
    const Case cases[] = {
        { "Axial",
            [](bool s, bool e) {
                return axial({ 20, 0 }, { 40, 0 }, s, e);
            },
            ".....-----.....", "RRRRR-----.....", ".....-----BBBBB", "RRRRR-----BBBBB" },
        { "Growing",
            [](bool s, bool e) {
                return radial({ 30, 30 }, 10, { 30, 30 }, 22, s, e);
            },
            "..---.....---..", "..---RRRRR---..", "BB---.....---BB", "BB---RRRRR---BB" },
        { "Shrinking",
            [](bool s, bool e) {
                return radial({ 30, 30 }, 22, { 30, 30 }, 10, s, e);
            },
            "..---.....---..", "RR---.....---RR", "..---BBBBB---..", "RR---BBBBB---RR" },
    };
    for (const Case& c : cases) {
        const std::tuple<bool, bool, const char*> sides[] = { { false, false, c.none },
            { true, false, c.start }, { false, true, c.end }, { true, true, c.both } };
        for (const auto& [start, end, expected] : sides) {
            const auto context = bitmap(60, 60);
            context->drawShading(*c.make(start, end));
            EXPECT_EQ(rowOf(*context, 4), expected) << c.name << start << end;
        }
    }
}

// Two equal circles side by side blend along a strip as wide as they are.
TEST(ContextShading, ConesExtendOnOneSide)
{
    const auto strip = bitmap(60, 60), ends = bitmap(60, 60), closing = bitmap(60, 60);
    strip->drawShading(*radial({ 20, 30 }, 8, { 40, 30 }, 8, false, true));
    EXPECT_EQ(pixelAt(*strip, 56, 30).blue, 255);
    EXPECT_EQ(pixelAt(*strip, 56, 45).alpha, 0);
    EXPECT_EQ(pixelAt(*strip, 5, 30).alpha, 0);
    ends->drawShading(*radial({ 20, 30 }, 8, { 40, 30 }, 8, true, false));
    EXPECT_EQ(pixelAt(*ends, 5, 30).red, 255);
    EXPECT_EQ(pixelAt(*ends, 56, 30).alpha, 0);
    closing->drawShading(*radial({ 10, 30 }, 8, { 30, 30 }, 4, false, true)); // a point at x = 50
    EXPECT_EQ(pixelAt(*closing, 44, 30).blue, 255);
    EXPECT_EQ(pixelAt(*closing, 53, 30).alpha, 0);
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

void fillWithQuarters(Context& context, const Rect& area, const Rect& cell, float xStep, float yStep)
{
    for (float y = area.minY(); y < area.maxY(); y += yStep) {
        for (float x = area.minX(); x < area.maxX(); x += xStep) {
            StateSaver saved(context);
            context.clipToRect({ x, y, cell.size.width, cell.size.height });
            paint(context, red, { x, y, cell.size.width / 2, cell.size.height });
            paint(context, blue, { x + cell.size.width / 2, y, cell.size.width / 2, cell.size.height / 2 });
        }
    }
}

TEST(ContextPattern, CellsRepeatInBaseSpaceWhateverTheTransform)
{
    const auto context = bitmap(60, 60), expected = bitmap(60, 60);
    int calls = 0;
    const auto pattern = quarters({ 0, 0, 6, 4 }, AffineTransform::makeTranslation(2, 3), 10, 8, &calls);
    context->setFillPattern(pattern, 1);
    context->translate(7, 7);
    context->scale(3, 2);
    context->fillRect({ 0, 0, 5, 50 });
    context->fillRect({ 5, 0, 50, 50 });
    EXPECT_EQ(calls, 1);
    expected->clipToRect({ 7, 7, 60, 60 });
    fillWithQuarters(*expected, { -8, -5, 80, 80 }, { 0, 0, 6, 4 }, 10, 8);
    EXPECT_TRUE(samePixels(*context, *expected));
}

// 80 steps of 2.5 pixels: drifting by a hundredth of a pixel a step would show.
TEST(ContextPattern, FractionalStepsDoNotDrift)
{
    const auto context = bitmap(200, 40), expected = bitmap(200, 40);
    context->setFillPattern(quarters({ 0, 0, 10, 10 }, AffineTransform::makeScale(0.25f, 0.25f), 10, 30), 1);
    context->fillRect({ 0, 0, 200, 40 });
    // Columns of 2.5 pixels, red in their left half: at the end as at the beginning.
    for (int x = 0; x < 5; ++x)
        for (const int y : { 0, 1, 8, 15 })
            EXPECT_EQ(pixelAt(*context, x, y), pixelAt(*context, 190 + x, y)) << x << ' ' << y;
    int differing = 0;
    for (int x = 0; x < 5; ++x)
        differing += pixelAt(*context, x, 1) != pixelAt(*context, x + 1, 1);
    EXPECT_GT(differing, 2);
}

TEST(ContextPattern, ManyTinyCellsAverageOut)
{
    const auto context = bitmap(100, 100);
    context->setFillPattern(quarters({ 0, 0, 1, 1 }, AffineTransform::makeScale(0.5f, 0.5f), 1, 1), 1);
    context->fillRect({ 0, 0, 100, 100 });
    const Pixel p = pixelAt(*context, 50, 50);
    EXPECT_NEAR(p.alpha, 191, 16) << p;
    EXPECT_NEAR(p.red, 128, 16) << p;
}

TEST(ContextPattern, OverlappingCellsAndNegativeStepsKeepTheLattice)
{
    const auto wide = [](float xStep, float yStep) {
        return std::make_shared<Pattern>(Rect(0, 0, 15, 5), AffineTransform(), xStep, yStep, [](Context& c) {
            paint(c, red, { 0, 0, 5, 5 });
            paint(c, blue, { 10, 0, 5, 5 }); // lies in the next cell
        });
    };
    for (const float sign : { 1.0f, -1.0f }) {
        const auto context = bitmap(40, 10);
        context->setFillPattern(wide(10 * sign, 10 * sign), 1);
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

TEST(ContextPattern, DegeneratePatternsDrawNothing)
{
    const auto context = bitmap(20, 20);
    for (const auto& pattern :
        { quarters({ 0, 0, 0, 5 }, {}, 5, 5), quarters({ 0, 0, 5, 5 }, { 0, 0, 0, 0, 0, 0 }, 5, 5),
            quarters({ 0, 0, 5, 5 }, { NAN, 0, 0, 1, 0, 0 }, 5, 5) }) {
        context->setFillPattern(pattern, 1);
        context->setStrokePattern(pattern, 1);
        context->fillRect({ 0, 0, 20, 20 });
        context->strokePath(*Path::pathWithRect({ 5, 5, 5, 5 }), { .width = 4 });
    }
    EXPECT_TRUE(isBlank(*context));
    for (const auto& pattern :
        { quarters({ 0, 0, 5, 5 }, {}, 0, NAN), quarters({ 0, 0, 1e-6f, 1e-6f }, {}, 1e-6f, 1e-6f),
            quarters({ -1e7f, -1e7f, 2e7f, 2e7f }, {}, 1, 1) }) {
        context->setFillPattern(pattern, 1);
        context->fillRect({ 0, 0, 20, 20 }); // ends
    }
}

} // namespace

} // namespace vxr::test
