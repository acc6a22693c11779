#include <tests/platform/ContextTestSupport.h>

#include <cmath>

namespace vxr::test {

namespace {

/// Opaque, so that a shadow's darkness can be read from any channel.
std::shared_ptr<CairoContext> whitePage(int width = 60, int height = 40)
{
    const auto context = CairoContext::createBitmap(width, height);
    paint(*context, ColorValue::gray(1), { 0, 0, static_cast<float>(width), static_cast<float>(height) });
    return context;
}

TEST(ContextLayer, AlphaAppliesToTheLayerAsAWhole)
{
    const auto context = whitePage();
    context->setAlpha(0.5f);
    context->beginTransparencyLayer();
    paint(*context, red, { 10, 10, 20, 20 });
    paint(*context, blue, { 20, 10, 20, 20 }); // hides the red beneath it
    context->endTransparencyLayer();
    EXPECT_EQ(pixelAt(*context, 15, 15), (Pixel { 255, 127, 127, 255 }));
    EXPECT_EQ(pixelAt(*context, 25, 15), (Pixel { 127, 127, 255, 255 }));
    paint(*context, blue, { 50, 0, 5, 5 }); // the alpha of before is back
    EXPECT_EQ(pixelAt(*context, 52, 2), (Pixel { 127, 127, 255, 255 }));
}

TEST(ContextLayer, NestedAlphasMultiplyAndStatesComeBack)
{
    const auto context = whitePage();
    context->setAlpha(0.5f);
    context->translate(10, 10);
    context->clipToRect({ 0, 0, 30, 20 });
    const AffineTransform before = context->currentTransform();
    context->beginTransparencyLayer();
    context->setAlpha(0.5f);
    context->saveState();
    context->scale(2, 2);
    context->beginTransparencyLayer();
    context->setFillColor(black);
    context->saveState();
    context->clipToRect({ 0, 0, 5, 5 });
    context->restoreState();
    context->restoreState(); // not beyond the layer's own begin
    context->saveState();
    context->translate(1, 1);
    context->fillRect({ -1, -1, 5, 20 });
    context->endTransparencyLayer();
    context->endTransparencyLayer();
    EXPECT_EQ(context->currentTransform(), before);
    EXPECT_EQ(context->clipBounds(), (Rect { 0, 0, 30, 20 }));
    EXPECT_EQ(pixelAt(*context, 15, 15).red, 255 - 64);
    EXPECT_EQ(pixelAt(*context, 15, 35).red, 255); // outside of the clip
    context->endTransparencyLayer(); // none is open
    EXPECT_EQ(context->currentTransform(), before);
}

TEST(ContextLayer, ClearingInsideALayerLeavesWhatLiesBelowIt)
{
    const auto context = whitePage();
    context->beginTransparencyLayer();
    paint(*context, black, { 10, 10, 20, 20 });
    context->clearRect({ 15, 0, 5, 40 });
    context->endTransparencyLayer();
    EXPECT_EQ(pixelAt(*context, 12, 15).red, 0);
    EXPECT_EQ(pixelAt(*context, 17, 15), (Pixel { 255, 255, 255, 255 }));
}

TEST(ContextLayer, CopiesReplaceTheClipAndClearsTakeAwayWhatIsCovered)
{
    const auto copied = whitePage(), cleared = whitePage();
    for (const auto& context : { copied, cleared }) {
        context->saveState();
        context->clipToRect({ 10, 10, 20, 20 });
        context->setCompositeOperation(
            context == copied ? CompositeOperation::Copy : CompositeOperation::Clear);
        context->beginTransparencyLayer();
        paint(*context, ColorValue::rgb(1, 0, 0, 0.5f), { 0, 0, 20, 40 });
        context->endTransparencyLayer();
        context->restoreState();
        EXPECT_EQ(pixelAt(*context, 5, 15).alpha, 255);
    }
    EXPECT_EQ(pixelAt(*copied, 15, 15), (Pixel { 128, 0, 0, 128 }));
    EXPECT_EQ(pixelAt(*copied, 25, 15), clearPixel);
    EXPECT_EQ(pixelAt(*cleared, 15, 15), (Pixel { 127, 127, 127, 127 }));
    EXPECT_EQ(pixelAt(*cleared, 25, 15).alpha, 255);
}

// The scratch memory of one layer must not show in the next.
TEST(ContextLayer, LayersBeginEmpty)
{
    const auto context = whitePage();
    const auto path = Path::pathWithOvalInRect({ 3.3f, 3.3f, 50, 30 });
    for (int i = 0; i < 3; ++i) {
        context->beginTransparencyLayer();
        if (i != 1) {
            context->setFillColor(black);
            context->saveState();
            context->rotate(0.1f);
            context->strokePath(*path, { .width = 9 });
            context->restoreState();
        }
        context->clearRect({ 0, 0, 60, 40 });
        context->endTransparencyLayer();
    }
    for (const float side : { 60.0f, 13.0f }) {
        context->clipToRect({ 0, 0, side, side });
        context->beginTransparencyLayer();
        context->strokePath(*path, { .width = 2 });
        context->drawImage({ 5.5f, 5.5f, 3, 3 }, *whitePage(4, 4)->makeImage());
        context->clearRect({ 0, 0, 60, 40 });
        context->endTransparencyLayer();
    }
    EXPECT_TRUE(samePixels(*context, *whitePage()));
}

// What is darker than the page, as a rectangle of default user space.
Rect darkArea(const CairoContext& context)
{
    float x0 = 1e9f, y0 = 1e9f, x1 = -1, y1 = -1;
    for (int y = 0; y < context.height(); ++y)
        for (int x = 0; x < context.width(); ++x)
            if (pixelAt(context, x, y).green < 250) {
                x0 = std::min(x0, static_cast<float>(x));
                y0 = std::min(y0, static_cast<float>(y));
                x1 = std::max(x1, x + 1.0f);
                y1 = std::max(y1, y + 1.0f);
            }
    return { x0, y0, x1 - x0, y1 - y0 };
}

TEST(ContextShadow, OffsetIsInBaseSpaceWithYUp)
{
    struct Case {
        const char* name;
        AffineTransform base, current;
        Rect shadow;
    };
    const float quarter = static_cast<float>(M_PI_2);
    const Case cases[] = {
        { "Plain", {}, {}, { 28, 18, 10, 10 } },
        { "CurrentTransformIsIgnored", {}, { 0, 1, -1, 0, 50, 0 }, { 38, 28, 10, 10 } },
        { "CurrentScaleIsIgnored", {}, { 0.5f, 0, 0, 0.5f, 0, 0 }, { 18, 13, 5, 5 } },
        { "BaseScales", AffineTransform::makeScale(0.5f, 0.5f), {}, { 14, 9, 5, 5 } },
        { "BaseFlips", { 1, 0, 0, -1, 0, 40 }, {}, { 28, 12, 10, 10 } },
        { "BaseTurns",
            concat(AffineTransform::makeRotation(quarter), AffineTransform::makeTranslation(50, 0)), {},
            { 22, 28, 10, 10 } },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto context = whitePage();
        context->setBaseTransform(c.base);
        context->concatTransform(c.current);
        context->setShadow({ 8, 8 }, 0, black);
        paint(*context, ColorValue::rgb(1, 1, 1), { 20, 10, 10, 10 });
        context->setBaseTransform({});
        context->clearShadow();
        // The caster lies on its own shadow in part; what is compared is the rest of the rectangle.
        const Rect dark = darkArea(*context);
        EXPECT_EQ(Point({ dark.maxX(), dark.maxY() }), Point({ c.shadow.maxX(), c.shadow.maxY() }));
    }
}

TEST(ContextShadow, BlurEndsItsLengthAwayAndFallsLikeAGaussian)
{
    const auto context = whitePage(100, 100);
    context->setShadow({ 0, 0 }, 12, black);
    context->setFillColor(ColorValue::gray(0));
    context->fillRect({ -100, -100, 150, 300 }); // the left half
    // The shadow of an edge is the Gaussian's integral: 0.5 erfc(d / (sigma sqrt 2)).
    for (const int d : { 0, 2, 4, 8, 11 }) {
        const double darkness = 0.5 * std::erfc((d + 0.5) / (4 * M_SQRT2));
        EXPECT_NEAR(255 - pixelAt(*context, 50 + d, 50).red, 255 * darkness, 6) << d;
    }
    EXPECT_EQ(pixelAt(*context, 50 + 13, 50).red, 255);
}

TEST(ContextShadow, ClipShowsAShadowWhoseCasterLiesOutside)
{
    const auto whole = whitePage(), parts = whitePage();
    const auto draw = [](CairoContext& context) {
        context.setShadow({ 22, -6 }, 7, ColorValue::rgb(0, 0, 1, 0.8f));
        context.setFillColor(red);
        context.fillPath(*Path::pathWithOvalInRect({ 2, 12, 20, 22 }), WindingRule::NonZero);
    };
    draw(*whole);
    for (const Rect& part :
        { Rect { 0, 0, 25, 40 }, { 25, 0, 9, 40 }, { 34, 0, 26, 17 }, { 34, 17, 26, 23 } }) {
        StateSaver saved(*parts);
        parts->clipToRect(part);
        draw(*parts);
    }
    EXPECT_TRUE(samePixels(*whole, *parts));
    EXPECT_EQ(pixelAt(*whole, 34, 17).blue, 255);
    EXPECT_LT(pixelAt(*whole, 34, 17).red, 100);
}

TEST(ContextShadow, ALayerCastsOneShadow)
{
    const auto context = whitePage();
    context->setShadow({ 20, 0 }, 0, ColorValue::gray(0, 0.5f));
    context->setAlpha(0.5f);
    context->beginTransparencyLayer();
    paint(*context, red, { 5, 10, 10, 10 });
    paint(*context, red, { 10, 10, 10, 10 });
    context->endTransparencyLayer();
    EXPECT_EQ(pixelAt(*context, 12, 15), (Pixel { 255, 127, 127, 255 }));
    EXPECT_EQ(pixelAt(*context, 26, 15), (Pixel { 191, 191, 191, 255 })); // alpha counts for the shadow too
    EXPECT_EQ(pixelAt(*context, 32, 15), (Pixel { 191, 191, 191, 255 })); // no darker where both cast it
    EXPECT_EQ(pixelAt(*context, 42, 15).red, 255);
}

// A shadow shows through what is not opaque: red over grey over white.
TEST(ContextShadow, EveryOperationCastsItUnderItself)
{
    const auto image = [] {
        const auto source = CairoContext::createBitmap(10, 10);
        paint(*source, red, { 0, 0, 10, 10 });
        return source->makeImage();
    }();
    Path line;
    line.moveTo({ 5, 15 });
    line.lineTo({ 15, 15 });
    const std::function<void(Context&)> operations[] = {
        [](Context& c) {
            c.fillRect({ 5, 10, 10, 10 });
        },
        [](Context& c) {
            c.fillPath(*Path::pathWithRect({ 5, 10, 10, 10 }), WindingRule::EvenOdd);
        },
        [&](Context& c) { c.strokePath(line, { .width = 10 }); },
        [&](Context& c) {
            c.drawImage({ 5, 10, 10, 10 }, *image);
        },
    };
    for (const auto& draw : operations) {
        const auto context = whitePage();
        context->setFillColor(red);
        context->setStrokeColor(red);
        context->setShadow({ 5, 0 }, 0, black);
        context->setAlpha(0.5f);
        draw(*context);
        EXPECT_EQ(pixelAt(*context, 7, 15), (Pixel { 255, 127, 127, 255 }));
        EXPECT_LE(difference(pixelAt(*context, 12, 15), { 191, 64, 64, 255 }), 1)
            << pixelAt(*context, 12, 15);
        EXPECT_EQ(pixelAt(*context, 17, 15), (Pixel { 127, 127, 127, 255 }));
    }

    const auto copied = whitePage(); // replaces its own area, shadow included, and nothing else
    copied->setShadow({ 5, 0 }, 0, black);
    copied->setCompositeOperation(CompositeOperation::Copy);
    paint(*copied, ColorValue::rgb(1, 0, 0, 0.5f), { 5, 10, 10, 10 });
    EXPECT_EQ(pixelAt(*copied, 12, 15), (Pixel { 128, 0, 0, 128 }));
    EXPECT_EQ(pixelAt(*copied, 17, 15), (Pixel { 127, 127, 127, 255 }));
    EXPECT_EQ(pixelAt(*copied, 50, 15).red, 255);
}

TEST(ContextShadow, FarAndHugeShadowsCostNothingAndBreakNothing)
{
    for (const float far : { 1e3f, 1e5f, 1e9f, 1e38f, HUGE_VALF, NAN }) {
        for (const float length : { 0.0f, 3.0f, far }) {
            const auto context = whitePage();
            context->setShadow({ far, -far }, length, black);
            paint(*context, red, { 10, 10, 10, 10 });
            EXPECT_EQ(pixelAt(*context, 15, 15), redPixel) << far;
        }
    }
}

} // namespace

} // namespace vxr::test
