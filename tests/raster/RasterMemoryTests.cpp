#include <tests/platform/ContextTestSupport.h>
#include <tests/raster/AllocationHook.h>
#include <tests/support/PathBuilder.h>
#include <vxr/platform/graphics/Pattern.h>

#include <functional>
#include <random>

// What drawing into bitmaps asks of memory: nothing once warm, bounded amounts for hostile outlines, and no
// harm when there is none.

namespace vxr::test {

namespace {

constexpr int side = 300;

std::shared_ptr<BitmapContext> page(int height = side)
{
    return BitmapContext::createBitmap(side, height, BitmapEngine::Raster);
}

std::shared_ptr<const Image> picture()
{
    Picture ramp { 40, 40, {} };
    for (unsigned i = 0; i < 1600; ++i)
        ramp.pixels.push_back(0xff000000u | (i * 0x01351u & 0xffffffu));
    auto image = imageOf(ramp);
    image->prepare();
    return image;
}

struct Drawing {
    const char* name;
    std::function<void(Context&)> draw;
    bool usesPatterns = false;
};

/// One of every kind of operation. Whatever they draw from is made here.
std::vector<Drawing> everyKindOfDrawing()
{
    const auto blob = newPathOf("M40 40 C90 10 190 40 180 150 C170 240 60 250 50 160 Z");
    const auto line = newPathOf("M30 30 C60 200 140 10 200 220 L240 60");
    const auto image = picture();
    const auto shade = functionOf([](void*, const float* t, float* out) {
        out[0] = *t;
        out[1] = out[2] = 0.5f;
        out[3] = 1;
    });
    const auto rgb = ColorSpace::deviceRGB();
    const std::shared_ptr<const Shading> axial
        = Shading::createAxial(rgb, { 20, 20 }, { 200, 100 }, shade, true, true);
    const std::shared_ptr<const Shading> radial
        = Shading::createRadial(rgb, { 100, 100 }, 10, { 120, 110 }, 90, shade, true, true);
    const auto cells = std::make_shared<Pattern>(
        Rect(0, 0, 9, 9), AffineTransform::makeRotation(0.3f), 9.0f, 9.0f, [](Context& c) {
            paint(c, blue, { 1, 1, 3, 2 });
        });
    const auto under = [](float angle, float scale, const std::function<void(Context&)>& draw) {
        return [=](Context& context) {
            StateSaver saved(context);
            context.translate(130, 40);
            context.rotate(angle);
            context.scale(scale, scale);
            draw(context);
        };
    };
    const auto drawPicture = [=](Context& c) { c.drawImage({ 0, 0, 40, 40 }, *image); };
    const auto stroke
        = [=](const LineStyle& style) { return [=](Context& c) { c.strokePath(*line, style); }; };
    const auto shadeBlob = [=](const std::shared_ptr<const Shading>& shading) {
        return [=](Context& c) {
            StateSaver saved(c);
            c.clipToPath(*blob, WindingRule::EvenOdd);
            c.clipToPath(*line, WindingRule::NonZero);
            c.drawShading(*shading);
        };
    };
    const auto fill = [=](Context& c) { c.fillPath(*blob, WindingRule::NonZero); };
    return { { "Fill", fill },
        { "TurnedRectangle",
            under(0.3f, 1,
                [](Context& c) {
                    c.fillRect({ 0, 0, 90, 50 });
                }) },
        { "Rectangle",
            [](Context& c) {
                c.fillRect({ 3, 4.5f, 200, 77 });
            } },
        { "Stroke", stroke({ .width = 7 }) },
        { "RoundStroke", stroke({ .width = 7, .cap = LineCap::Round, .join = LineJoin::Round }) },
        { "Dashes", stroke({ .width = 4, .dash = { 7, 3, 2 } }) }, { "AxialShading", shadeBlob(axial) },
        { "RadialShading", shadeBlob(radial) }, { "Picture", under(0, 1, drawPicture) },
        { "EnlargedPicture", under(0, 2.3f, drawPicture) },
        { "TurnedPicture", under(0.4f, 1.7f, drawPicture) },
        { "ReducedPicture", under(0.4f, 0.61f, drawPicture) },
        { "Layer",
            [=](Context& c) {
                StateSaver saved(c);
                c.setAlpha(0.5f);
                c.beginTransparencyLayer();
                fill(c);
                c.endTransparencyLayer();
            } },
        { "Shadow",
            [=](Context& c) {
                StateSaver saved(c);
                c.setShadow({ 4, -5 }, 9, black);
                fill(c);
            } },
        { "CopiedShadow",
            [=](Context& c) {
                StateSaver saved(c);
                c.setShadow({ 4, -5 }, 9, black);
                c.setCompositeOperation(CompositeOperation::Copy);
                fill(c);
            } },
        { "Cleared",
            [=](Context& c) {
                StateSaver saved(c);
                c.setCompositeOperation(CompositeOperation::Clear);
                c.beginTransparencyLayer();
                fill(c);
                c.endTransparencyLayer();
            } },
        { "Pattern",
            [=](Context& c) {
                StateSaver saved(c);
                c.setFillPattern(cells, 0.5f);
                fill(c);
            },
            true } };
}

TEST(RasterMemory, NothingIsAllocatedOnceWarm)
{
    const auto context = page();
    for (const auto& [name, draw, usesPatterns] : everyKindOfDrawing()) {
        if (usesPatterns)
            continue; // their cells are drawn in a context of their own
        draw(*context);
        draw(*context);
        const std::size_t before = Allocations::count();
        draw(*context);
        EXPECT_EQ(Allocations::count() - before, 0u) << name;
    }
}

TEST(RasterMemory, AnOperationThatFindsNoneLeavesTheContextUsable)
{
    for (const auto& [name, draw, usesPatterns] : everyKindOfDrawing()) {
        constexpr int height = 60; // so that the many pages are soon drawn
        const auto expected = page(height);
        paint(*expected, green, { 0, 0, side, side });
        draw(*expected);
        bool hasFailed = true;
        for (std::size_t others = 0; hasFailed; ++others) {
            ASSERT_LT(others, 10000u) << name;
            const auto context = page(height);
            context->saveState();
            const std::size_t depth = context->stateDepth();
            Allocations::failAfter(others);
            bool hasThrown = false;
            try {
                draw(*context);
            } catch (const std::bad_alloc&) {
                hasThrown = true;
            }
            hasFailed = Allocations::stopFailing();
            EXPECT_TRUE(!hasThrown || hasFailed) << name;
            EXPECT_EQ(context->stateDepth(), depth) << name << " after " << others;
            context->restoreState();
            paint(*context, green, { 0, 0, side, side });
            draw(*context);
            ASSERT_TRUE(samePixels(*context, *expected)) << name << " after " << others;
        }
    }
}

/// Lines between random places, all over the page and beyond.
Path scribble(int lines)
{
    std::mt19937 random(3);
    const auto place = [&] { return float(random() % (2 * side * 16)) / 16 - side / 2; };
    Path path;
    path.reserve(std::size_t(lines) + 1);
    path.moveTo({ place(), place() });
    for (int i = 0; i < lines; ++i)
        path.lineTo({ place(), place() });
    return path;
}

TEST(RasterMemory, AMillionSegmentsTakeNoMoreThanAFewHundredThousand)
{
    constexpr std::size_t megabyte = 1 << 20;
    const auto context = page();
    const Path path = scribble(1000000);
    Allocations::watch();
    const std::size_t before = Allocations::bytesInUse();
    context->fillPath(path, WindingRule::EvenOdd);
    context->strokePath(scribble(60000), { .width = 0.5f, .join = LineJoin::Round });
    EXPECT_LT(Allocations::mostBytes() - before, 24 * megabyte);
    EXPECT_FALSE(isBlank(*context));
}

// Outlines of so many edges are summed up in another order, which must not be seen.
TEST(RasterMemory, EdgesThatAreNotKeptCoverTheSame)
{
    const Path path = scribble(300000);
    const auto whole = page(), part = page();
    whole->fillPath(path, WindingRule::EvenOdd);
    part->clipToRect({ 40, 50, 33, 31 });
    part->fillPath(path, WindingRule::EvenOdd);
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 33; ++x)
            ASSERT_EQ(pixelAt(*part, 40 + x, 50 + y), pixelAt(*whole, 40 + x, 50 + y));
    const auto next = page(), fresh = page();
    for (const auto& context : { whole, next }) {
        paint(*context, green, { 0, 0, side, side });
        context->fillPath(pathOf("M10 10 L200 30 L90 250 Z"), WindingRule::NonZero);
    }
    EXPECT_TRUE(samePixels(*whole, *next));
}

} // namespace

} // namespace vxr::test
