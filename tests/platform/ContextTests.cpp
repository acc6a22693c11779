#include <tests/platform/ContextTestSupport.h>
#include <vxr/platform/foundation/Exceptions.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace vxr::test {

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

std::shared_ptr<CairoContext> bitmap(int width = 20, int height = 10)
{
    return CairoContext::createBitmap(width, height);
}

TEST(Context, OriginIsLowerLeftAndTheFirstRowInMemoryIsTheTopOne)
{
    const auto context = bitmap();
    paint(*context, red, { 0, 0, 1, 1 });
    paint(*context, blue, { 19, 9, 1, 1 });
    const std::uint32_t* bottomRow = context->pixels() + 9 * context->bytesPerRow() / 4;
    EXPECT_EQ(bottomRow[0], 0xffff0000u);
    EXPECT_EQ(context->pixels()[19], 0xff0000ffu);
    EXPECT_EQ(context->pixels()[0], 0u);
}

TEST(Context, TransformsApplyBeforeTheCurrentOneAndIncludeTheBase)
{
    const auto context = bitmap();
    context->setBaseTransform(AffineTransform::makeScale(2, 2));
    context->translate(3, 1);
    context->scale(1, 2);
    EXPECT_EQ(context->baseTransform(), AffineTransform::makeScale(2, 2));
    EXPECT_EQ(context->currentTransform(), (AffineTransform { 2, 0, 0, 4, 6, 2 }));
    paint(*context, red, { 0, 0, 1, 1 });
    auto expected = bitmap();
    paint(*expected, red, { 6, 2, 2, 4 });
    EXPECT_TRUE(samePixels(*context, *expected));

    const auto turned = bitmap();
    turned->translate(10, 2);
    turned->rotate(static_cast<float>(M_PI_2)); // counter-clockwise: x turns to y
    paint(*turned, red, { 0, 0, 4, 2 });
    EXPECT_EQ(pixelAt(*turned, 8, 5), redPixel);
    EXPECT_EQ(pixelAt(*turned, 10, 5), clearPixel);
}

TEST(Context, RestoreBringsTheWholeStateBack)
{
    const auto draw = [](CairoContext& c) {
        paint(c, red, { 1.5f, 1.5f, 6, 6 });
        c.strokePath(*Path::pathWithRect({ 3, 3, 10, 4 }), c.lineStyle());
        c.setFillColor(green);
        c.fillPath(*Path::pathWithOvalInRect({ 10, 1, 8, 8 }), WindingRule::NonZero);
    };
    const auto changed = bitmap(), plain = bitmap();
    changed->restoreState(); // nothing was saved
    changed->saveState();
    changed->setFillColor(blue);
    changed->setStrokeColor(blue);
    changed->setAlpha(0.25f);
    changed->setCompositeOperation(CompositeOperation::Clear);
    changed->setShouldAntialias(false);
    changed->setLineStyle({ .width = 7, .dash = { 2, 1 } });
    changed->setFlatness(50);
    changed->setShadow({ 3, 3 }, 2, black);
    changed->clipToRect({ 0, 0, 2, 2 });
    changed->concatTransform({ 3, 1, 0, 2, 5, 5 });
    changed->saveState();
    changed->scale(0, 0);
    changed->restoreState();
    changed->restoreState();
    changed->restoreState();
    draw(*changed);
    draw(*plain);
    EXPECT_TRUE(samePixels(*changed, *plain));
    EXPECT_EQ(changed->lineStyle(), LineStyle());
    EXPECT_EQ(changed->flatness(), plain->flatness());
}

TEST(Context, ClipsIntersectAndBoundWhatIsSeen)
{
    const auto context = bitmap();
    EXPECT_EQ(context->clipBounds(), (Rect { 0, 0, 20, 10 }));
    context->scale(2, 2);
    context->clipToRect({ 1, 1, 5, 3 });
    EXPECT_EQ(context->clipBounds(), (Rect { 1, 1, 5, 3 }));
    const auto ring = Path::pathWithRect({ 0, 0, 4, 5 });
    ring->appendRect({ 2, 0, 1, 5 });
    context->clipToPath(*ring, WindingRule::EvenOdd);
    EXPECT_EQ(context->clipBounds(), (Rect { 1, 1, 3, 3 }));
    context->concatTransform({ 0.5f, 0, 0, 0.5f, 0, 0 });
    paint(*context, red, { -5, -5, 100, 100 });
    for (int x = 0; x < 20; ++x) {
        const bool inside = (x >= 2 && x < 4) || (x >= 6 && x < 8);
        EXPECT_EQ(pixelAt(*context, x, 5), inside ? redPixel : clearPixel) << x;
    }
    EXPECT_EQ(pixelAt(*context, 2, 1), clearPixel);
    EXPECT_EQ(pixelAt(*context, 2, 8), clearPixel);

    context->clipToRect({ 15, 0, 2, 2 });
    EXPECT_EQ(context->clipBounds(), Rect());
    context->restoreState(); // no save: nothing comes back
    EXPECT_EQ(context->clipBounds(), Rect());
}

TEST(Context, AnEmptyPathClipsEverythingAway)
{
    const auto context = bitmap();
    context->clipToPath(*Path::path(), WindingRule::NonZero);
    paint(*context, red, { 0, 0, 20, 10 });
    EXPECT_TRUE(isBlank(*context));
}

// Half a pixel of an opaque edge is 127 or 128 of 255.
TEST(Context, OperationsRespectTheClipsSmoothEdge)
{
    struct Case {
        CompositeOperation operation;
        ColorValue color;
        Pixel inside, edge;
    };
    const Case cases[] = {
        { CompositeOperation::SourceOver, ColorValue::rgb(0, 0, 1, 0.5f), { 127, 0, 128, 255 },
            { 191, 0, 64, 255 } },
        { CompositeOperation::Copy, ColorValue::rgb(0, 0, 1, 0.5f), { 0, 0, 128, 128 }, { 127, 0, 64, 191 } },
        { CompositeOperation::Clear, blue, {}, { 127, 0, 0, 127 } },
    };
    for (const Case& c : cases) {
        const auto context = bitmap();
        paint(*context, red, { 0, 0, 20, 10 });
        context->clipToRect({ 4.5f, 0, 10, 10 });
        context->setCompositeOperation(c.operation);
        paint(*context, c.color, { 0, 0, 12, 10 });
        EXPECT_LE(difference(pixelAt(*context, 6, 5), c.inside), 1) << pixelAt(*context, 6, 5);
        EXPECT_LE(difference(pixelAt(*context, 4, 5), c.edge), 1) << pixelAt(*context, 4, 5);
        EXPECT_EQ(pixelAt(*context, 13, 5), redPixel);
        EXPECT_EQ(pixelAt(*context, 3, 5), redPixel);
    }
}

TEST(Context, ClearRectClearsWhateverTheOperation)
{
    const auto context = bitmap();
    paint(*context, red, { 0, 0, 20, 10 });
    context->setAlpha(0.5f);
    context->setShadow({ 3, 0 }, 0, black);
    context->clearRect({ 5, 0, 5, 10 });
    EXPECT_EQ(pixelAt(*context, 5, 5), clearPixel);
    EXPECT_EQ(pixelAt(*context, 11, 5), redPixel);
}

TEST(Context, AlphaMultipliesEveryOperation)
{
    const auto image = [] {
        const auto source = bitmap(4, 4);
        paint(*source, red, { 0, 0, 4, 4 });
        return source->makeImage();
    }();
    const auto context = bitmap();
    context->setAlpha(0.5f);
    paint(*context, ColorValue::rgb(1, 0, 0, 0.5f), { 0, 0, 4, 4 });
    context->setStrokeColor(red);
    context->strokePath(*Path::pathWithRect({ 6, 2, 2, 0 }), { .width = 4 });
    context->drawImage({ 10, 0, 4, 4 }, *image);
    EXPECT_EQ(pixelAt(*context, 2, 2).alpha, 64);
    EXPECT_EQ(pixelAt(*context, 7, 2).alpha, 128);
    EXPECT_EQ(pixelAt(*context, 12, 2).alpha, 128);
}

TEST(Context, AntialiasingCanBeSwitchedOff)
{
    const auto context = bitmap();
    context->setShouldAntialias(false);
    context->setFillColor(red);
    context->fillPath(*Path::pathWithOvalInRect({ 0.3f, 0.3f, 9, 9 }), WindingRule::NonZero);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x)
            EXPECT_THAT(pixelAt(*context, x, y).alpha, testing::AnyOf(0, 255));
}

// A pen follows the user space in force: under a scale of (4, 1) vertical lines are four times as wide.
TEST(Context, StrokesInUserSpace)
{
    const auto context = bitmap(40, 20);
    context->setStrokeColor(red);
    context->scale(4, 1);
    context->strokePath(*Path::pathWithRect({ 3, 5, 4, 10 }), { .width = 2 });
    EXPECT_EQ(pixelAt(*context, 8, 10), redPixel);
    EXPECT_EQ(pixelAt(*context, 15, 10), redPixel);
    EXPECT_EQ(pixelAt(*context, 7, 10), clearPixel);
    EXPECT_EQ(pixelAt(*context, 17, 10), clearPixel);
    EXPECT_EQ(pixelAt(*context, 20, 5), redPixel);
    EXPECT_EQ(pixelAt(*context, 20, 3), clearPixel);
}

TEST(Context, DashesFollowThePhase)
{
    const auto context = bitmap();
    Path line;
    line.moveTo({ 0, 5 });
    line.lineTo({ 20, 5 });
    context->strokePath(line, { .width = 2, .dash = { 3, 2 }, .dashPhase = 1 });
    std::string drawn;
    for (int x = 0; x < 10; ++x)
        drawn += pixelAt(*context, x, 5).alpha ? '#' : '.';
    EXPECT_EQ(drawn, "##..###..#");

    for (const auto& dash : { std::vector<float> { 0, 0 }, { -1, 2 }, { nan, 1 }, { inf } }) {
        const auto solid = bitmap();
        solid->strokePath(line, { .width = 2, .dash = dash });
        EXPECT_EQ(pixelAt(*solid, 19, 5).alpha, 255);
    }
}

// Each point is taken in the space of its own moment.
TEST(Context, CurrentPathKeepsItsPlaceWhenTheTransformChanges)
{
    const auto context = bitmap();
    context->beginPath();
    context->moveTo({ 2, 2 });
    context->scale(2, 2);
    context->lineTo({ 4, 1 });
    context->translate(1, 1);
    context->lineTo({ 3, 3 });
    context->saveState();
    context->scale(0, 1);
    context->restoreState();
    context->lineTo({ 0, 3 });
    context->setFillColor(red);
    context->fillPath(WindingRule::NonZero);

    const auto expected = bitmap();
    Path path;
    path.moveTo({ 2, 2 });
    path.lineTo({ 8, 2 });
    path.lineTo({ 8, 8 });
    path.lineTo({ 2, 8 });
    expected->setFillColor(red);
    expected->fillPath(path, WindingRule::NonZero);
    EXPECT_TRUE(samePixels(*context, *expected));

    context->strokePath(); // the fill has emptied the path
    EXPECT_TRUE(samePixels(*context, *expected));
}

TEST(Context, ClippingToTheStrokedPathShowsTheStrokeOnly)
{
    const auto outlined = bitmap(), stroked = bitmap();
    const LineStyle style { .width = 3 };
    outlined->setLineStyle(style);
    outlined->translate(2, 2);
    outlined->addRect({ 0, 0, 12, 6 });
    outlined->replacePathWithStrokedPath();
    outlined->clip(WindingRule::NonZero);
    outlined->setFillColor(black);
    outlined->fillRect({ -10, -10, 100, 100 });
    stroked->strokePath(*Path::pathWithRect({ 2, 2, 12, 6 }), style);
    EXPECT_LE(compare(pictureOf(*outlined), pictureOf(*stroked)).largest, 2);
}

TEST(Context, BadTransformsDrawNothingAndLeaveTheContextUsable)
{
    const AffineTransform bad[] = { { 0, 0, 0, 1, 0, 0 }, { 1, 2, 2, 4, 0, 0 }, { nan, 0, 0, 1, 0, 0 },
        { 1, 0, 0, 1, inf, 0 }, { 1e30f, 0, 0, 1e30f, 0, 0 }, { 1e-30f, 0, 0, 1e-30f, 0, 0 } };
    const auto image = bitmap(4, 4)->makeImage();
    for (const AffineTransform& transform : bad) {
        const auto context = bitmap();
        context->setFillColor(red);
        context->saveState();
        context->concatTransform(transform);
        context->clipBounds();
        context->strokePath(*Path::pathWithOvalInRect({ 1e-20f, 1, 1, 1 }), { .width = 3 });
        context->drawImage({ 0, 0, 4, 4 }, *image);
        context->addRect({ 5, 5, 1, 1 });
        context->replacePathWithStrokedPath();
        context->fillPath(WindingRule::NonZero);
        context->beginTransparencyLayer();
        context->strokePath(*Path::pathWithRect({ 1, 1, 1, 1 }), { .width = 3 });
        context->endTransparencyLayer();
        context->clipToRect({ 0, 0, 1, 1 });
        context->restoreState();
        paint(*context, red, { 0, 0, 20, 10 });
        EXPECT_EQ(pixelAt(*context, 10, 5), redPixel) << transform;
    }
}

// Whatever is out of the engine's range looks as if its numbers had no bounds.
TEST(Context, HugeCoordinatesDrawWhatCanBeSeenOfThem)
{
    const auto expected = bitmap();
    paint(*expected, red, { 5, 0, 15, 10 });
    for (const float far : { 1e4f, 1e6f, 1e7f, 1e9f, 1e20f, 1e38f }) {
        const auto rectangle = bitmap(), clipped = bitmap(), triangle = bitmap(), stroke = bitmap(),
                   pen = bitmap(), scaled = bitmap();
        paint(*rectangle, red, { 5, -far, far, 2 * far });
        EXPECT_TRUE(samePixels(*rectangle, *expected)) << far;

        clipped->clipToRect({ 5, -far, far, 2 * far });
        paint(*clipped, red, { 0, 0, 20, 10 });
        EXPECT_TRUE(samePixels(*clipped, *expected)) << far;

        Path path;
        path.moveTo({ 5, -far });
        path.curveTo({ 5, -far / 2 }, { 5, far / 2 }, { 5, far });
        path.lineTo({ far, 0 });
        triangle->setFillColor(red);
        triangle->fillPath(path, WindingRule::EvenOdd);
        EXPECT_TRUE(samePixels(*triangle, *expected)) << far;

        Path line;
        line.moveTo({ 15, -far });
        line.lineTo({ 15, far });
        stroke->setStrokeColor(red);
        stroke->strokePath(line, { .width = 20 });
        EXPECT_TRUE(samePixels(*stroke, *expected)) << far;

        Path middle;
        middle.moveTo({ 5 + far / 2, 5 - far / 2 });
        middle.lineTo({ 5 + far / 2, 5 + far / 2 });
        pen->setStrokeColor(red);
        if (far < 1e8f) { // beyond, single precision can't tell 5 from 0
            pen->strokePath(middle, { .width = far });
            EXPECT_LE(compare(pictureOf(*pen), pictureOf(*expected)).largest, far < 1e7f ? 1 : 255) << far;
        }

        scaled->translate(5, 0);
        scaled->scale(far, far);
        paint(*scaled, red, { 0, -1, 1, 2 });
        EXPECT_TRUE(samePixels(*scaled, *expected)) << far;
    }
}

TEST(Context, HugeDashedLinesKeepTheirDashesInPlace)
{
    const auto near = bitmap(), far = bitmap();
    const auto draw = [](CairoContext& context, float from, float to) {
        Path line;
        line.moveTo({ from, 5 });
        line.lineTo({ to, 5 });
        context.strokePath(line, { .width = 4, .dash = { 4, 4 } });
    };
    draw(*near, -8, 100);
    draw(*far, -8388608, 8388608); // a whole number of dashes away
    EXPECT_TRUE(samePixels(*near, *far));
}

TEST(Context, SubPathsThatAreNotNumbersAreLeftOut)
{
    Path path;
    path.appendRect({ 0, 0, 5, 10 });
    path.moveTo({ 6, 0 });
    path.lineTo({ nan, 5 });
    path.lineTo({ 6, 10 });
    path.close();
    path.lineTo({ 20, 10 });
    path.lineTo({ 20, 0 });
    path.moveTo({ 8, 0 });
    path.curveTo({ 9, inf }, { 10, 0 }, { 11, 0 });
    path.appendRect({ 15, 0, 5, 10 });
    const auto filled = bitmap(), stroked = bitmap(), expected = bitmap();
    filled->setFillColor(red);
    filled->fillPath(path, WindingRule::NonZero);
    paint(*expected, red, { 0, 0, 5, 10 });
    paint(*expected, red, { 15, 0, 5, 10 });
    EXPECT_TRUE(samePixels(*filled, *expected));

    stroked->strokePath(path, { .width = 2 });
    EXPECT_EQ(pixelAt(*stroked, 9, 5), clearPixel);
    EXPECT_EQ(pixelAt(*stroked, 15, 5).alpha, 255);
    stroked->strokePath(path, { .width = nan });
    stroked->strokePath(path, { .width = 1, .miterLimit = nan, .dash = { 1 }, .dashPhase = nan });
    stroked->fillRect({ nan, 0, 5, 5 });
    stroked->clipToRect({ 0, nan, 5, 5 });
    EXPECT_EQ(stroked->clipBounds(), Rect());
}

TEST(Context, CallersPixelsAreDrawnInPlace)
{
    std::vector<std::uint32_t> pixels(7 * 3, 0xff00ff00u);
    const auto context = CairoContext::createWithPixels(pixels.data(), 5, 3, 28);
    paint(*context, red, { 0, 0, 5, 1 });
    EXPECT_EQ(context->pixels(), pixels.data());
    EXPECT_EQ(pixels[14], 0xffff0000u);
    EXPECT_EQ(pixels[14 + 5], 0xff00ff00u); // between the rows
    EXPECT_EQ(pixels[0], 0xff00ff00u);

    PixelAccess* access = context->pixelAccess();
    ASSERT_TRUE(access && access->lock());
    EXPECT_EQ(access->pixels(), reinterpret_cast<std::uint8_t*>(pixels.data()));
    EXPECT_EQ(access->bytesPerRow(), 28u);
    EXPECT_TRUE(access->transform().isIdentity());
    access->unlock();

    EXPECT_THROW(CairoContext::createBitmap(0, 5), InvalidArgumentException);
    EXPECT_THROW(CairoContext::createBitmap(5, 32768), InvalidArgumentException);
    EXPECT_THROW(CairoContext::createWithPixels(pixels.data(), 5, 3, 16), InvalidArgumentException);
    EXPECT_THROW(CairoContext::createWithPixels(pixels.data(), 5, 3, 22), InvalidArgumentException);
}

} // namespace

} // namespace vxr::test
