#include <tests/platform/ContextTestSupport.h>
#include <tests/support/PathBuilder.h>
#include <vxr/platform/base/Exceptions.h>

#include <functional>
#include <limits>

namespace vxr::test {

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

TEST(Context, RestoreBringsTheWholeStateBack)
{
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
    for (int i = 0; i < 3; ++i)
        changed->restoreState();
    for (const auto& c : { changed, plain }) {
        paint(*c, red, { 1.5f, 1.5f, 6, 6 });
        c->strokePath(*Path::pathWithRect({ 3, 3, 10, 4 }), c->lineStyle());
        c->setFillColor(green);
        c->fillPath(*Path::pathWithOvalInRect({ 10, 1, 8, 8 }), WindingRule::NonZero);
    }
    EXPECT_TRUE(samePixels(*changed, *plain));
    EXPECT_EQ(changed->flatness(), plain->flatness());
}

TEST(Context, ClipsIntersectAndBoundWhatIsSeen)
{
    const auto context = bitmap(), expected = bitmap();
    context->scale(2, 2);
    context->clipToRect({ 1, 1, 5, 3 });
    EXPECT_EQ(context->clipBounds(), (Rect { 1, 1, 5, 3 }));
    const auto ring = Path::pathWithRect({ 0, 0, 4, 5 });
    ring->appendRect({ 2, 0, 1, 5 });
    context->clipToPath(*ring, WindingRule::EvenOdd);
    EXPECT_EQ(context->clipBounds(), (Rect { 1, 1, 3, 3 }));
    paint(*context, red, { -5, -5, 100, 100 });
    paint(*expected, red, { 2, 2, 2, 6 });
    paint(*expected, red, { 6, 2, 2, 6 });
    EXPECT_TRUE(samePixels(*context, *expected));

    context->clipToRect({ 8, 0, 1, 1 });
    context->restoreState(); // no save: nothing comes back
    EXPECT_EQ(context->clipBounds(), Rect());

    const auto nothing = bitmap();
    nothing->clipToPath(*Path::path(), WindingRule::NonZero);
    paint(*nothing, red, { 0, 0, 20, 10 });
    EXPECT_TRUE(isBlank(*nothing));
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

TEST(Context, AntialiasingCanBeSwitchedOff)
{
    const auto context = bitmap();
    context->setShouldAntialias(false);
    context->fillPath(*Path::pathWithOvalInRect({ 0.3f, 0.3f, 9, 9 }), WindingRule::NonZero);
    for (const std::uint32_t pixel : pictureOf(*context).pixels)
        EXPECT_TRUE(pixel == 0 || pixel == 0xff000000u) << std::hex << pixel;
}

TEST(Context, DashesFollowThePhaseAndBadOnesAreSolid)
{
    const auto drawn = [](const LineStyle& style) {
        const auto context = bitmap(10, 10);
        context->strokePath(pathOf("M0 5 L20 5"), style);
        std::string row;
        for (int x = 0; x < 10; ++x)
            row += pixelAt(*context, x, 5).alpha ? '#' : '.';
        return row;
    };
    EXPECT_EQ(drawn({ .width = 2, .dash = { 3, 2 }, .dashPhase = 1 }), "##..###..#");
    for (const auto& dash : { std::vector<float> { 0, 0 }, { -1, 2 }, { nan, 1 }, { inf } })
        EXPECT_EQ(drawn({ .width = 2, .dash = dash }), "##########");
}

// Each point is taken in the space of its own moment.
TEST(Context, CurrentPathKeepsItsPlaceWhenTheTransformChanges)
{
    const auto context = bitmap(), expected = bitmap();
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
    context->strokePath(); // the fill has emptied the path
    paint(*expected, red, { 2, 2, 6, 6 });
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
        context->setBaseTransform({});
        context->fillRect({ 0, 0, 20, 10 });
        EXPECT_TRUE(transform.inverted() || isBlank(*context)) << transform;
        context->restoreState();
        paint(*context, red, { 0, 0, 20, 10 });
        EXPECT_EQ(pixelAt(*context, 10, 5), redPixel) << transform;
    }
}

// Whatever is out of the engine's range looks as if its numbers had no bounds.
TEST(Context, HugeCoordinatesDrawWhatCanBeSeenOfThem)
{
    const auto expected = bitmap();
    expected->fillRect({ 5, 0, 15, 10 });
    for (const float far : { 1e4f, 1e6f, 1e7f, 1e9f, 1e20f, 1e38f }) {
        const auto check = [&](const char* what, const std::function<void(Context&)>& draw) {
            const auto context = bitmap();
            draw(*context);
            EXPECT_LE(compare(pictureOf(*context), pictureOf(*expected)).largest, 1) << what << far;
        };
        const auto stroke = [](Context& c, Point from, Point to, float width) {
            Path line;
            line.moveTo(from);
            line.lineTo(to);
            c.strokePath(line, { .width = width });
        };
        const Rect half { 5, -far, far, 2 * far };
        check("rectangle", [&](Context& c) { c.fillRect(half); });
        check("clip", [&](Context& c) {
            c.clipToRect(half);
            c.fillRect({ 0, 0, 20, 10 });
        });
        check("curve", [&](Context& c) {
            Path path;
            path.moveTo({ 5, -far });
            path.curveTo({ 5, -far / 2 }, { 5, far / 2 }, { 5, far });
            path.lineTo({ far, 0 });
            c.fillPath(path, WindingRule::EvenOdd);
        });
        check("scale", [&](Context& c) {
            c.translate(5, 0);
            c.scale(far, far);
            c.fillRect({ 0, -1, 1, 2 });
        });
        check("line", [&](Context& c) { stroke(c, { 15, -far }, { 15, far }, 20); });
        const Point below { 5 + far / 2, 5 - far / 2 }, above { 5 + far / 2, 5 + far / 2 };
        if (far < 1e7f) // beyond, single precision can't tell 5 from 0
            check("pen", [&](Context& c) { stroke(c, below, above, far); });
    }
}

TEST(Context, HugeDashedLinesKeepTheirDashesInPlace)
{
    const auto near = bitmap(), far = bitmap();
    const LineStyle style { .width = 4, .dash = { 4, 4 } };
    near->strokePath(pathOf("M-8 5 L100 5"), style);
    far->strokePath(pathOf("M-8388608 5 L8388608 5"), style); // a whole number of dashes away
    EXPECT_TRUE(samePixels(*near, *far));
}

TEST(Context, SubPathsThatAreNotNumbersAreLeftOut)
{
    Path path = pathOf("M6 0 Lnan 5 L6 10 Z L20 10 L20 0 M8 0 C9 inf 10 0 11 0");
    path.appendRect({ 0, 0, 5, 10 });
    path.appendRect({ 15, 0, 5, 10 });
    const auto filled = bitmap(), stroked = bitmap(), expected = bitmap();
    filled->fillPath(path, WindingRule::NonZero);
    expected->fillRect({ 0, 0, 5, 10 });
    expected->fillRect({ 15, 0, 5, 10 });
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

TEST(Context, CallersPixelsAreDrawnInPlaceTopRowFirst)
{
    std::vector<std::uint32_t> pixels(7 * 3, 0xff00ff00u);
    const auto context = BitmapContext::createWithPixels(pixels.data(), 5, 3, 28);
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

    EXPECT_THROW(BitmapContext::createBitmap(0, 5), InvalidArgumentException);
    EXPECT_THROW(BitmapContext::createBitmap(5, 32768), InvalidArgumentException);
    EXPECT_THROW(BitmapContext::createWithPixels(pixels.data(), 5, 3, 16), InvalidArgumentException);
    EXPECT_THROW(BitmapContext::createWithPixels(pixels.data(), 5, 3, 22), InvalidArgumentException);
}

} // namespace

} // namespace vxr::test
