#include <tests/compositing/LayerFakes.h>

#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/views/View.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vxr;
using namespace vxr::test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

namespace {

/// A renderable with its layer, ready at the canvas's zoom.
struct Layered {
    FakeRenderable renderable;
    std::shared_ptr<VXRRenderableLayer> role;
    VXRCompositorLayer& layer;

    Layered(FakeCanvas& canvas, const AffineTransform& t, Size size)
        : renderable(canvas, t, size)
        , role(VXRCompositorLayer::layerWithRenderable(renderable))
        , layer(static_cast<VXRCompositorLayer&>(*role))
    {
        renderable.paint = [size](Context& port) { paintPattern(port, size.width, size.height); };
    }
    void prepare()
    {
        layer.setZoom(renderable.shownOn->scale);
        layer.prepareToDraw();
    }
    std::vector<std::uint32_t> page()
    {
        prepare();
        return compositedPage(*renderable.shownOn, layer);
    }
    ::testing::AssertionResult looksFresh()
    {
        const FakeCanvas& canvas = *renderable.shownOn;
        return samePixels(page(), pageOfAFreshLayer(), int(canvas.visible.size.width * canvas.scale + 0.5f));
    }
    std::vector<std::uint32_t> pageOfAFreshLayer()
    {
        const auto fresh = VXRCompositorLayer::layerWithRenderable(renderable);
        auto& other = static_cast<VXRCompositorLayer&>(*fresh);
        other.setHasMixedContent(layer.hasMixedContent());
        other.setZoom(renderable.shownOn->scale);
        other.prepareToDraw();
        return compositedPage(*renderable.shownOn, other);
    }
};

constexpr float side = 1024; ///< of a tile, unless the user has set another

} // namespace

TEST(CompositorLayer, RectanglesHitTheTilesTheyOverlap)
{
    ASSERT_EQ(VXRTile::tileSize(), int(side));
    FakeCanvas canvas;
    Layered big(canvas, AffineTransform::makeTranslation(100, 50), { 3000, 2100 });
    big.renderable.paint = nullptr;
    big.prepare();
    ASSERT_TRUE(big.layer.isMultiTiled());
    EXPECT_EQ(big.layer.tilesWide(), 3);
    EXPECT_EQ(big.layer.tilesHigh(), 3);

    const struct {
        Rect rect; ///< from the renderable's corner
        std::vector<int> tiles;
    } cases[] = {
        { { 0, 0, side, side }, { 0 } },
        { { 0, 0, side + 1, side }, { 0, 1 } },
        { { 0, 0, side, side + 1 }, { 0, 3 } },
        { { side, side, 10, 10 }, { 4 } },
        { { -500, -500, 501, 501 }, { 0 } },
        { { 2999, 2099, 500, 500 }, { 8 } },
        { { 1000, 1000, 100, 100 }, { 0, 1, 3, 4 } },
        { { 3001, 0, 10, 10 }, {} },
    };
    for (const auto& one : cases)
        EXPECT_THAT(
            big.layer.tileIndicesHitByRect(offsetRect(one.rect, 100, 50)), ElementsAreArray(one.tiles))
            << one.rect;
}

TEST(CompositorLayer, ShadowsAreCutTowardsNeighbours)
{
    FakeCanvas canvas;
    Layered big(canvas, {}, { 3000, 3000 });
    big.renderable.paint = nullptr;
    big.prepare();
    // left 4, right 8, top 1, bottom 2: rows from the top
    const int expected[] = { 10, 14, 6, 11, 15, 7, 9, 13, 5 };
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(big.layer.shadowClipForIndex(i), expected[i]) << i;
    Layered small(canvas, {}, { 30, 30 });
    small.prepare();
    EXPECT_EQ(small.layer.shadowClipForIndex(0), 0);
    big.renderable.bounds = {}; // no tiles at all
    EXPECT_EQ(big.layer.shadowClipForIndex(0), 0);
}

TEST(CompositorLayer, TileSizeComesFromTheDefaultsWithinLimits)
{
    const int cases[][2]
        = { { 1, 1 }, { 2048, 2048 }, { 2049, 1024 }, { 0, 1024 }, { -5, 1024 }, { 64, 64 } };
    for (const auto& [value, size] : cases)
        EXPECT_EQ(VXRTile::tileSizeForDefaultsValue(value), size);
}

TEST(CompositorLayer, ZoomInvalidatesOnlyWhenItChanges)
{
    FakeCanvas canvas;
    Layered shape(canvas, {}, { 30, 20 });
    EXPECT_EQ(shape.layer.zoomFactor(), -1);
    shape.layer.setNeedsDisplay(false);
    shape.layer.setZoom(1);
    EXPECT_TRUE(shape.layer.isInvalid());
    shape.layer.prepareToDraw();
    shape.layer.setZoom(1);
    EXPECT_FALSE(shape.layer.isInvalid());
    shape.layer.prepareToDraw();
    EXPECT_EQ(shape.renderable.drawn.size(), 1u);
    EXPECT_EQ(shape.renderable.drawn[0], Rect(0, 0, 30, 20));
}

TEST(CompositorLayer, PlaceIsRoundedWithANudgeAtBrokenZooms)
{
    const struct {
        float zoom, x, seenX;
        int left;
    } cases[] = {
        { 1, 10, 0, 10 }, { 1, 10.5f, 0, 11 }, { 1, 10.49f, 0, 10 }, { 2, 10.25f, 0, 21 },
        { 2, 10.24f, 0, 20 }, { 1.5f, 3.664f, 0, 6 }, // 5.496, and 0.01 makes it half
        { 1.5f, 3.65f, 0, 5 }, // 5.475 stays below
        { 1, 10, 40.5f, -30 }, // -30.5 goes up
    };
    for (const auto& one : cases) {
        FakeCanvas canvas;
        canvas.scale = one.zoom;
        canvas.visible.origin.x = one.seenX;
        Layered shape(canvas, AffineTransform::makeTranslation(one.x, 0), { 30, 20 });
        shape.renderable.paint = [](Context& port) { port.fillRect({ 0, 0, 30, 20 }); };
        shape.prepare();
        std::vector<LayerInfo*> infos;
        shape.layer.addLayerInfosToArray(infos);
        ASSERT_EQ(infos.size(), 1u);
        EXPECT_EQ(infos[0]->clipMinX, one.left) << one.zoom << " " << one.x;
        // The error says where the pixels would have to go.
        const float truth = (one.x - one.seenX) * one.zoom;
        EXPECT_NEAR(shape.layer.error().x * one.zoom, truth - float(one.left), 1e-4);
    }
}

TEST(CompositorLayer, OpaqueBoundsCoverAnAlignedRectangleAndNothingOfADisc)
{
    FakeCanvas canvas;
    Layered box(canvas, AffineTransform::makeTranslation(7, 9), { 40, 30 });
    box.renderable.paint = [](Context& port) { port.fillRect({ 0, 0, 40, 30 }); };
    box.prepare();
    std::vector<LayerInfo*> infos;
    box.layer.addLayerInfosToArray(infos);
    EXPECT_EQ(infos[0]->opaqueMinX, 7);
    EXPECT_EQ(infos[0]->opaqueMaxX, 47);
    EXPECT_EQ(infos[0]->opaqueMinY, 9);
    EXPECT_EQ(infos[0]->opaqueMaxY, 39);
    EXPECT_EQ(infos[0]->clipMaxX, 46); // the clip is inclusive

    box.renderable.paint = [](Context& port) {
        port.fillPath(*Path::pathWithOvalInRect({ 0, 0, 40, 30 }), WindingRule::NonZero);
    };
    box.layer.invalidateLayer();
    box.prepare();
    infos.clear();
    box.layer.addLayerInfosToArray(infos);
    const LayerInfo& disc = *infos[0];
    const auto* pixels = static_cast<const std::uint32_t*>(disc.colorData);
    EXPECT_GT(disc.opaqueMaxX - disc.opaqueMinX, 20);
    for (int y = disc.opaqueMinY; y < disc.opaqueMaxY; ++y)
        for (int x = disc.opaqueMinX; x < disc.opaqueMaxX; ++x)
            ASSERT_EQ(
                pixels[(y - disc.frameMinY) * (disc.colorBytesPerRow / 4) + x - disc.frameMinX] >> 24, 255u);
}

struct TilingCase {
    const char* name;
    float zoom;
    Rect visible;
    int radius; ///< of the shadow, none below 0
    bool slants = false;
};

/// Long slanting edges that cross the seams.
void paintStar(Context& port)
{
    Path star;
    for (int i = 0; i < 46; ++i) {
        const float radius = i % 2 ? 250 : 640, angle = float(i) * float(M_PI) / 23;
        const Point p { 750 + radius * std::cos(angle), 650 + radius * std::sin(angle) };
        i ? star.lineTo(p) : star.moveTo(p);
    }
    star.close();
    port.fillPath(star, WindingRule::NonZero);
}

class CompositorLayerTiling : public ::testing::TestWithParam<TilingCase> { };

TEST_P(CompositorLayerTiling, ATiledLayerLooksLikeAWholeOne)
{
    FakeCanvas canvas;
    canvas.scale = GetParam().zoom;
    canvas.visible = GetParam().visible;
    const auto place = AffineTransform::makeTranslation(60, 40);
    Layered tiled(canvas, place, { 1500, 1300 }), whole(canvas, place, { 1500, 1300 });
    whole.renderable.tiles = false;
    for (Layered* one : { &tiled, &whole }) {
        if (GetParam().radius >= 0)
            one->renderable.cast = blackShadow(30, 12, GetParam().radius); // seams between the stripes
        if (GetParam().slants)
            one->renderable.paint = paintStar;
    }
    EXPECT_TRUE(samePixels(tiled.page(), whole.page(), int(canvas.visible.size.width * canvas.scale + 0.5f)));
    EXPECT_TRUE(tiled.layer.isMultiTiled());
    EXPECT_FALSE(whole.layer.isMultiTiled());
}

INSTANTIATE_TEST_SUITE_P(Places, CompositorLayerTiling,
    ::testing::Values(TilingCase { "Plain", 1, { 900, 900, 400, 300 }, -1 },
        TilingCase { "Slanting", 1, { 900, 800, 400, 300 }, -1, true },
        TilingCase { "SlantingShadow", 1, { 900, 800, 400, 300 }, 12, true },
        TilingCase { "ShadowOverASeam", 1, { 900, 900, 400, 300 }, 12 },
        TilingCase { "HardShadow", 1, { 900, 900, 400, 300 }, 0 },
        TilingCase { "ZoomedShadow", 1.5f, { 30, 600, 400, 300 }, 20 },
        TilingCase { "OuterCorner", 1, { 1400, 1200, 300, 250 }, 20 },
        // Only the shadow of the last row is in sight.
        TilingCase { "CasterOutOfSight", 1, { 300, 1350, 300, 100 }, 12 }),
    [](const auto& one) { return one.param.name; });

TEST(CompositorLayer, PartialChangesEqualAFreshLayer)
{
    for (const bool shadowed : { false, true }) {
        for (const bool turned : { false, true }) {
            FakeCanvas canvas;
            canvas.scale = turned ? 1.37f : 1;
            canvas.visible = { 700, 500, 500, 600 };
            AffineTransform place = AffineTransform::makeTranslation(60, 40);
            if (turned)
                place = AffineTransform::makeTranslation(400, 40).rotate(0.4f);
            Layered shape(canvas, place, { 1500, 1100 });
            if (shadowed)
                shape.renderable.cast = blackShadow(200, 150, 15);
            Rect patch;
            shape.renderable.paint = [&patch](Context& port) {
                paintPattern(port, 1500, 1100);
                port.setFillColor(ColorValue::rgb(0, 0, 1, 0.6f));
                port.fillRect(patch);
            };
            shape.page();
            const std::size_t passes = shape.renderable.drawn.size();
            for (const Rect& next :
                { Rect { 900, 880, 200, 200.5f }, Rect { 20, 20, 40, 40 }, Rect { 700, 500, 333, 77 } }) {
                shape.layer.setNeedsDisplayInRect(patch);
                shape.layer.setNeedsDisplayInRect(next);
                patch = next;
                EXPECT_TRUE(shape.looksFresh()) << shadowed << turned << next;
                // Tiles out of sight have changed too.
                canvas.visible.origin.x = canvas.visible.origin.x > 400 ? 80 : 700;
                EXPECT_TRUE(shape.looksFresh()) << shadowed << turned << next;
            }
            EXPECT_GT(shape.renderable.drawn.size(), passes);
        }
    }
}

TEST(CompositorLayer, AShadowMovesWithoutBeingDrawnAgain)
{
    FakeCanvas canvas;
    Layered shape(canvas, AffineTransform::makeTranslation(50, 50), { 60, 40 });
    for (const float angle : { 0.0f, 45.0f, 90.0f, 217.0f, 359.0f }) {
        shape.renderable.cast = blackShadow(angle, 12.3f, 9);
        EXPECT_TRUE(shape.looksFresh()) << angle;
        shape.renderable.drawn.resize(1);
    }
    shape.renderable.drawn.clear();
    shape.renderable.cast = blackShadow(10, 30, 9);
    shape.renderable.fade = 0.5f;
    shape.page();
    EXPECT_TRUE(shape.renderable.drawn.empty());
}

TEST(CompositorLayer, ShadowsScaleWithTheZoomUnlessTheCanvasSaysNo)
{
    FakeCanvas canvas;
    canvas.scale = 2;
    for (const bool scales : { true, false }) {
        canvas.scalesShadows = scales;
        Layered shape(canvas, {}, { 10, 10 });
        shape.renderable.paint = [](Context& port) { port.fillRect({ 0, 0, 10, 10 }); };
        shape.renderable.cast = blackShadow(90, 7, 0);
        shape.prepare();
        std::vector<LayerInfo*> shadows;
        shape.layer.addShadowInfosToArray(shadows);
        ASSERT_EQ(shadows.size(), 1u);
        EXPECT_EQ(shadows[0]->clipMinY, scales ? 14 : 7);
        EXPECT_EQ(shadows[0]->clipMaxY, scales ? 33 : 26);
    }
}

TEST(CompositorLayer, MixedContentCastsTheShadowOfItsOwnPartsOnly)
{
    FakeCanvas canvas;
    Layered mixed(canvas, AffineTransform::makeTranslation(20, 20), { 60, 40 });
    mixed.renderable.cast = blackShadow(90, 30, 0, 1);
    mixed.renderable.paint = [&](Context& port) {
        const int mode = mixed.renderable.modes.back();
        port.setFillColor(ColorValue::rgb(mode == 2 ? 1 : 0, mode == 3 ? 1 : 0, 0));
        port.fillRect(mode == 2 ? Rect { 0, 0, 20, 20 } : Rect { 10, 0, 50, 20 });
    };
    mixed.layer.setHasMixedContent(true);
    const auto page = mixed.page();
    EXPECT_THAT(mixed.renderable.modes, ElementsAre(2, 3, 0));
    const auto at = [&](int x, int y) { return page[std::size_t(y * 200 + x)]; };
    EXPECT_EQ(at(25, 30), 0xffff0000u);
    EXPECT_EQ(at(35, 30), 0xffff0000u); // the part that casts lies above the one that doesn't
    EXPECT_EQ(at(70, 30), 0xff00ff00u);
    EXPECT_EQ(at(30, 60), 0xff000000u); // its shadow, as wide as itself
    EXPECT_EQ(at(70, 60), 0xffffffffu);
    EXPECT_EQ(mixed.layer.tiles().size(), 1u);

    mixed.layer.setHasMixedContent(false);
    std::vector<LayerInfo*> shadowless;
    mixed.layer.addShadowlessInfosToArray(shadowless);
    EXPECT_TRUE(shadowless.empty());
}

TEST(CompositorLayer, TilesAreKeptUpToTheBudgetAndReusedOldestFirst)
{
    FakeCanvas canvas;
    canvas.visible = { 0, 0, 800, 600 };
    Layered page(canvas, {}, { 20000, 20000 });
    page.renderable.paint = [](Context& port) { port.fillRect({ 0, 0, 20000, 20000 }); };
    page.prepare();
    EXPECT_EQ(page.layer.maxNumberOfValidTiles(), 8); // (1 + 1) * (1 + 1) * 2
    EXPECT_EQ(page.layer.tiles().size(), 1u);
    std::size_t most = 0;
    for (int i = 0; i < 19; ++i) {
        canvas.visible.origin = { float(i) * 1000, float(i) * 1000 };
        page.prepare();
        most = std::max(most, page.layer.tiles().size());
    }
    EXPECT_LE(most, 9u + 3u); // one more than the budget, and what a single pass needs

    const std::size_t drawn = page.renderable.drawn.size();
    canvas.visible.origin = { 17000, 17000 };
    page.prepare();
    EXPECT_EQ(page.renderable.drawn.size(), drawn); // still there
    canvas.visible.origin = { 0, 0 };
    page.prepare();
    EXPECT_EQ(page.renderable.drawn.size(), drawn + 1);
}

/// Tiles of the last column come from those of others, and are narrower.
TEST(CompositorLayer, ReusedTilesKeepNothingBeyondTheLayersEdge)
{
    FakeCanvas canvas;
    canvas.visible = { 0, 0, 300, 200 };
    Layered wide(canvas, {}, { 10340, 300 });
    wide.renderable.paint = [](Context& port) { port.fillRect({ 0, 0, 10340, 300 }); };
    for (const float x :
        { 0.0f, 1100.0f, 2100.0f, 3100.0f, 4200.0f, 5200.0f, 6200.0f, 7200.0f, 8300.0f, 10240.0f }) {
        canvas.visible.origin.x = x;
        EXPECT_TRUE(wide.looksFresh()) << x;
    }
}

/// Memory goes with what is drawn, whatever the tiles.
TEST(CompositorLayer, TilesKeepNoPixelsWhereNothingIsDrawn)
{
    FakeCanvas canvas;
    canvas.visible = { 0, 0, 4000, 4000 };
    const auto bytesOf = [&](float length) {
        Layered line(canvas, {}, { length, length });
        line.renderable.paint = [length](Context& port) {
            Path path;
            path.moveTo({ 0, 0 });
            path.lineTo({ length, length });
            port.strokePath(path, {});
        };
        line.prepare();
        std::size_t bytes = 0;
        for (const auto& tile : line.layer.tiles())
            bytes += tile->byteSize();
        return double(bytes);
    };
    const double one = 4 * double(side) * double(side);
    EXPECT_LE(bytesOf(1030), 1.02 * one); // into four tiles
    EXPECT_LE(bytesOf(3000), 3 * one); // three of nine

    Layered wide(canvas, {}, { side + 6, 100 });
    wide.renderable.paint = [](Context& port) {
        port.fillRect({ 0, 0, side + 6, 50 });
        port.setFillColor(ColorValue::rgb(1, 0, 0));
        port.fillRect({ 0, 50, side + 6, 50 });
    };
    wide.prepare();
    ASSERT_EQ(wide.layer.tiles().size(), 2u);
    EXPECT_EQ(wide.layer.tiles()[1]->byteSize(), 4u * 6 * 100);
}

TEST(CompositorLayer, LargeBoxesOfOneColourKeepNoPixelsUntilTheyFadeOrChange)
{
    FakeCanvas canvas;
    canvas.visible = { 0, 0, 500, 400 };
    Layered box(canvas, AffineTransform::makeTranslation(20, 20), { 400, 300 });
    Rect hole;
    box.renderable.paint = [&](Context& port) {
        port.setFillColor(ColorValue::rgb(0.2f, 0.4f, 0.6f));
        port.fillRect({ 0, 0, 400, 300 });
        port.clearRect(hole);
    };
    const auto plain = box.page();
    EXPECT_EQ(box.layer.tiles().front()->byteSize(), 0u);
    EXPECT_FALSE(box.layer.pixelIsTransparent({ 100, 100 }));
    hole = { 100, 100, 50, 50 };
    box.layer.setNeedsDisplayInRect(hole);
    EXPECT_TRUE(box.looksFresh());
    EXPECT_TRUE(box.layer.pixelIsTransparent({ 145, 145 }));
    box.layer.setNeedsDisplayInRect(std::exchange(hole, {}));
    EXPECT_EQ(box.page(), plain);
    EXPECT_EQ(box.layer.tiles().front()->byteSize(), 0u);
    box.renderable.fade = 0.3f;
    EXPECT_TRUE(box.looksFresh());
    box.renderable.cast = blackShadow(30, 12, 5);
    box.layer.invalidateLayer();
    EXPECT_TRUE(box.looksFresh());
}

TEST(CompositorLayer, AViewLargerThanTheBudgetStillShowsEveryTile)
{
    FakeCanvas canvas;
    canvas.scale = 16; // the budget counts canvas units, the tiles pixels
    canvas.visible = { 100, 100, 250, 150 };
    Layered page(canvas, {}, { 600, 600 });
    page.renderable.paint = [](Context& port) {
        port.setFillColor(ColorValue::rgb(1, 0, 0));
        port.fillRect({ 0, 0, 600, 600 });
    };
    const auto pixels = page.page();
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xffff0000u), std::ptrdiff_t(pixels.size()));
}

TEST(CompositorLayer, TransparencyIsThatOfThePixels)
{
    FakeCanvas canvas;
    canvas.scale = 2;
    Layered shape(canvas, AffineTransform::makeTranslation(50, 50), { 60, 40 });
    shape.renderable.paint = [](Context& port) { port.fillRect({ 20, 10, 10, 10 }); };
    shape.renderable.cast = blackShadow(0, 20, 0);
    shape.prepare();
    EXPECT_TRUE(shape.layer.pixelIsTransparent({ 69.9f, 65 }));
    EXPECT_FALSE(shape.layer.pixelIsTransparent({ 70, 65 }));
    EXPECT_FALSE(shape.layer.pixelIsTransparent({ 79.9f, 65 }));
    EXPECT_TRUE(shape.layer.pixelIsTransparent({ 95, 65 })); // the shadow doesn't count
    EXPECT_TRUE(shape.layer.rectIsTransparent({ 50, 50, 20, 40 }));
    EXPECT_FALSE(shape.layer.rectIsTransparent({ 50, 50, 20.5f, 40 }));

    Layered big(canvas, {}, { 1000, 1000 });
    big.renderable.paint = [](Context& port) { port.fillRect({ 700, 700, 1, 1 }); };
    canvas.visible = { 600, 600, 200, 150 };
    big.prepare();
    ASSERT_TRUE(big.layer.isMultiTiled());
    EXPECT_FALSE(big.layer.pixelIsTransparent({ 700.5f, 700.5f }));
    EXPECT_TRUE(big.layer.rectIsTransparent({ 0, 0, 700, 1000 }));
    EXPECT_FALSE(big.layer.rectIsTransparent({ 0, 0, 701, 1000 }));
}

TEST(CompositorLayer, AFailedRedrawLeavesNothingOpenAndIsTriedAgain)
{
    FakeCanvas canvas;
    Layered shape(canvas, AffineTransform::makeTranslation(50, 50), { 60, 40 });
    const auto paint = shape.renderable.paint;
    shape.renderable.paint = [](Context& port) {
        port.beginTransparencyLayer();
        throw GenericException("The drawing failed.");
    };
    EXPECT_THROW(shape.prepare(), GenericException);
    EXPECT_EQ(shape.layer.renderingMode(), 0);
    EXPECT_EQ(View::focusView(), nullptr);
    EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
    shape.renderable.paint = paint;
    EXPECT_TRUE(shape.looksFresh());
}
