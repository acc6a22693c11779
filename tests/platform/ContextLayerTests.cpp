#include <tests/platform/ContextTestSupport.h>
#include <tests/support/PathBuilder.h>

#include <cmath>

namespace vxr::test {

namespace {

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
    paint(*context, black, { 20, 0, 10, 20 }); // with the alpha of before
    EXPECT_EQ(pixelAt(*context, 35, 15).red, 127);
}

TEST(ContextLayer, CopiesReplaceTheClipAndClearsTakeAwayWhatIsCovered)
{
    struct Case {
        CompositeOperation operation;
        Pixel covered, free;
    };
    const Pixel whitePixel { 255, 255, 255, 255 };
    for (const Case& c : { Case { CompositeOperation::Copy, { 128, 0, 0, 128 }, clearPixel },
             { CompositeOperation::Clear, { 127, 127, 127, 127 }, whitePixel } }) {
        const auto context = whitePage();
        context->clipToRect({ 10, 10, 20, 20 });
        context->setCompositeOperation(c.operation);
        context->beginTransparencyLayer();
        paint(*context, ColorValue::rgb(1, 0, 0, 0.5f), { 0, 0, 22, 40 });
        context->clearRect({ 20, 0, 2, 40 }); // of the layer alone
        context->endTransparencyLayer();
        EXPECT_EQ(pixelAt(*context, 5, 15), whitePixel);
        EXPECT_EQ(pixelAt(*context, 15, 15), c.covered);
        EXPECT_EQ(pixelAt(*context, 21, 15), c.free);
        EXPECT_EQ(pixelAt(*context, 25, 15), c.free);
    }
}

/// The upper right corner of what is darker than the page, in default user space.
Point darkCorner(const BitmapContext& context)
{
    Point corner { 0, 0 };
    for (int y = 0; y < context.height(); ++y)
        for (int x = 0; x < context.width(); ++x)
            if (pixelAt(context, x, y).green < 250)
                corner = { std::max(corner.x, x + 1.0f), y + 1.0f };
    return corner;
}

TEST(ContextShadow, OffsetIsInBaseSpaceWithYUp)
{
    struct Case {
        const char* name;
        AffineTransform base, current;
        Point shadowCorner; ///< the far one of a square at (20, 10) to (30, 20), moved by whole pixels
    };
    const AffineTransform half = AffineTransform::makeScale(0.5f, 0.5f);
    const Case cases[] = {
        { "Plain", {}, {}, { 38, 28 } },
        { "CurrentTurnIsIgnored", {}, { 0, 1, -1, 0, 50, 0 }, { 48, 38 } },
        { "CurrentScaleIsIgnored", {}, half, { 23, 18 } },
        { "BaseScales", half, {}, { 19, 14 } },
        { "BaseFlips", { 1, 0, 0, -1, 0, 40 }, {}, { 38, 22 } },
        { "BaseTurns", { 0, 1, -1, 0, 50, 0 }, {}, { 32, 38 } },
    };
    for (const Case& c : cases) {
        const auto context = whitePage();
        context->setBaseTransform(c.base);
        context->concatTransform(c.current);
        context->setShadow({ 8.3f, 7.8f }, 0, black);
        paint(*context, ColorValue::gray(1), { 20, 10, 10, 10 });
        EXPECT_EQ(darkCorner(*context), c.shadowCorner) << c.name;
    }
}

TEST(ContextShadow, BlurEndsItsBaseLengthAwayAndFallsLikeAGaussian)
{
    const auto context = whitePage(100, 100);
    context->setBaseTransform(AffineTransform::makeScale(2, 2)); // scales the blur to 12 pixels
    context->setShadow({ 0, 0 }, 6, black);
    paint(*context, black, { -50, -50, 75, 150 }); // the left half
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
    const auto draw = [](BitmapContext& context) {
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
    paint(*context, blue, { 5, 10, 10, 10 });
    paint(*context, red, { 10, 10, 10, 10 }); // hides the blue beneath it
    context->endTransparencyLayer();
    EXPECT_EQ(pixelAt(*context, 12, 15), (Pixel { 255, 127, 127, 255 }));
    EXPECT_EQ(pixelAt(*context, 26, 15), (Pixel { 191, 191, 191, 255 })); // alpha counts for the shadow too
    EXPECT_EQ(pixelAt(*context, 32, 15), (Pixel { 191, 191, 191, 255 })); // no darker where both cast it
    EXPECT_EQ(pixelAt(*context, 42, 15).red, 255);
}

// A shadow shows through what is not opaque: red over grey over white.
TEST(ContextShadow, EveryOperationCastsItUnderItself)
{
    const auto redImage = [] {
        const auto source = bitmap(10, 10);
        paint(*source, red, { 0, 0, 10, 10 });
        return source->makeImage();
    };
    const Rect square { 5, 10, 10, 10 };
    const std::function<void(Context&)> operations[] = {
        [&](Context& c) { c.fillRect(square); },
        [&](Context& c) { c.fillPath(*Path::pathWithRect(square), WindingRule::EvenOdd); },
        [&](Context& c) { c.strokePath(pathOf("M5 15 L15 15"), { .width = 10 }); },
        [&](Context& c) { c.drawImage(square, *redImage()); },
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
    copied->setAlpha(0.5f);
    copied->setCompositeOperation(CompositeOperation::Copy);
    paint(*copied, red, square);
    EXPECT_EQ(pixelAt(*copied, 12, 15), (Pixel { 128, 0, 0, 128 }));
    EXPECT_EQ(pixelAt(*copied, 17, 15), (Pixel { 127, 127, 127, 255 }));
    EXPECT_EQ(pixelAt(*copied, 50, 15).red, 255);
    copied->clearShadow();
    paint(*copied, red, { 30, 10, 10, 10 });
    EXPECT_EQ(pixelAt(*copied, 42, 15).red, 255);
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
