#include <tests/renderables/ModelFakes.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/host/animation/VXXTextureSession.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRRenderable.h>
#include <vxr/renderables/VXRTextureSet.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr float pi = 3.14159265f;

/// A frame of 30 by 40 that draws a mark.
class Box : public VXRRenderable {
public:
    Box() { setNaturalSize({ 30, 40 }); }

    bool quickdraw = false;
    std::vector<int> modes;
    std::function<void()> whileDrawing;

    void setRenderingMode(int mode) override
    {
        modes.push_back(mode);
        VXRRenderable::setRenderingMode(mode);
    }
    bool requiresQuickdraw() const override { return quickdraw; }
    void renderIntoContext(Context& context) override
    {
        context.fillRect({ 0, 0, 1, 1 });
        if (whileDrawing)
            whileDrawing();
    }
};

std::shared_ptr<VXRShadow> blackShadow(float angle, float offset, int radius)
{
    return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(angle, offset, radius, 1, Color::blackColor());
}

AffineTransform rotation(float degrees) { return AffineTransform::makeRotation(degrees / 180 * pi); }

} // namespace

TEST(Renderable, BoundsFollowFrameTransformAndShadow)
{
    Box box;
    box.setTransform({ 0, 1, -2, 0, 100, 50 }); // x' = 100 - 2y, y' = 50 + x
    EXPECT_EQ(box.geometricBounds(), Rect(20, 50, 80, 30));
    EXPECT_EQ(box.shadowBounds(), box.geometricBounds());
    EXPECT_EQ(box.erasableBounds(), box.geometricBounds());
    EXPECT_EQ(text(*box.geometricBoundsAsPath()), "[M100 50 L20 50 L20 80 L100 80 Z]") << "up the left side";

    box.setShadow(blackShadow(0, 10, 5));
    EXPECT_EQ(box.shadowBounds(), Rect(25, 45, 90, 40)) << "the shadow alone";
    EXPECT_EQ(box.erasableBounds(), Rect(20, 45, 95, 40));

    FakeCanvas canvas;
    canvas.shadowTransform = AffineTransform { 1, 0, 0, 1, 0, 100 };
    box.setCanvas(&canvas);
    EXPECT_EQ(box.shadowBounds(), Rect(25, 45, 90, 40)) << "without the canvas's extra transform";
    EXPECT_EQ(box.shadowBoundsForRect({ 0, 0, 10, 10 }), Rect(0, 0, 25, 115)) << "translation included";
    box.setCanvas(nullptr);
}

TEST(Renderable, MovesShiftTheCachesAndEverythingElseDropsThem)
{
    class Counting : public Box {
    public:
        mutable int computed = 0;
        bool optimizes = true;
        Rect computeGeometricBounds() const override { return ++computed, Box::computeGeometricBounds(); }
        bool shouldOptimizeTranslation() const override { return optimizes; }
    } box;
    box.geometricBounds();
    box.offsetBy(3, 4);
    EXPECT_EQ(box.geometricBounds(), Rect(3, 4, 30, 40));
    EXPECT_EQ(box.computed, 1);
    box.optimizes = false;
    box.offsetTo({ 0, 0 });
    box.geometricBounds();
    EXPECT_EQ(box.computed, 2);
    box.scaleXByYByPivot(2, 2, { 0, 0 });
    EXPECT_EQ(box.geometricBounds(), Rect(0, 0, 60, 80));
}

TEST(Renderable, TurnsAndScalesAboutAPivotAfterItsOwnTransform)
{
    Box box;
    box.setTransform(AffineTransform::makeScale(2, 1));
    box.rotateByRadiansPivot(pi / 2, { 10, 20 });
    box.scaleXByYByPivot(3, 5, { 7, 3 });
    // (1, 0) goes to (2, 0), by a quarter turn about (10, 20) to (30, 12), and what is 23 and 9 from the
    // pivot (7, 3) comes to lie 69 and 45 from it.
    const Point p = box.transform().map(Point { 1, 0 });
    EXPECT_NEAR(p.x, 76, 1e-4);
    EXPECT_NEAR(p.y, 48, 1e-4);
}

TEST(Renderable, AngleOfTurnedAndMirroredTransforms)
{
    Box box;
    for (const float degrees : { 0.0f, 30.0f, 89.0f, 91.0f, 179.0f, -45.0f, -120.0f }) {
        const float radians = degrees / 180 * pi;
        box.setTransform(rotation(degrees));
        EXPECT_NEAR(box.angle(), radians, 1e-6) << degrees;
        // Mirrored in its own x first: the frame's x axis points the other way.
        box.setTransform(concat(AffineTransform::makeScale(-1, 1), rotation(degrees)));
        EXPECT_NEAR(box.angleWithFlip(false), radians, 1e-6) << degrees;
        EXPECT_NEAR(box.angleWithFlip(true), radians + pi, 1e-6) << degrees;
    }
    for (const auto& [degrees, aligned] : { std::pair(0.0f, true), { 180.0f, true }, { -90.0f, true },
             { 45.0f, false }, { 90.4f, false }, { 1.0f, false } }) {
        box.setTransform(rotation(degrees));
        EXPECT_EQ(box.isAxisAligned(), aligned) << degrees;
    }
}

TEST(Renderable, ContainsItsFrameWithTheEdgesUnlessDegenerate)
{
    Box box;
    box.setTransform({ 2, 0, 0, 1, 10, 20 });
    for (const Point inside : { Point { 10, 20 }, { 70, 60 }, { 40, 30 } })
        EXPECT_TRUE(box.containsPoint(inside)) << inside;
    for (const Point outside : { Point { 9.9f, 20 }, { 70.1f, 60 }, { 40, 60.1f }, { 40, 19.9f } })
        EXPECT_FALSE(box.containsPoint(outside)) << outside;
    for (const AffineTransform& flat : { AffineTransform { 0, 0, 0, 1, 0, 0 },
             AffineTransform { 1, 0, 0.9e-5f, -0.9e-5f, 0, 0 }, AffineTransform { 1, 1, 1, 1, 0, 0 } }) {
        box.setTransform(flat);
        EXPECT_FALSE(box.containsPoint({ 0, 0 })) << flat;
    }
    box.setTransform({ 1.1e-5f, 0, 0, 1, 0, 0 });
    EXPECT_TRUE(box.containsPoint({ 0, 0 })) << "just not degenerate";
}

TEST(Renderable, LayersOnlyWhereOpacityOrShadowNeedIt)
{
    struct Setting {
        float opacity = 1;
        bool shadow = false, quickdraw = false, blackAndWhite = false;
        int destination = VXRDestinationDirect;
    };
    const auto layers = [](const Setting& setting) {
        FakeCanvas canvas;
        canvas.destination = setting.destination;
        canvas.blackAndWhite = setting.blackAndWhite;
        Box box;
        box.setCanvas(&canvas);
        box.quickdraw = setting.quickdraw;
        box.setOpacity(setting.opacity);
        box.setShadow(setting.shadow ? blackShadow(0, 1, 1) : nullptr);
        const bool needed = box._shouldLayer();
        box.setCanvas(nullptr);
        return needed;
    };
    EXPECT_FALSE(layers({}));
    EXPECT_TRUE(layers({ .opacity = 0.5f }));
    EXPECT_TRUE(layers({ .shadow = true, .destination = VXRDestinationNonScreen }));
    EXPECT_FALSE(layers({ .opacity = 0.5f, .shadow = true, .blackAndWhite = true }));
    EXPECT_TRUE(layers({ .quickdraw = true, .blackAndWhite = true }));
    EXPECT_FALSE(layers({ .quickdraw = true, .destination = VXRDestinationCompositor }));
}

TEST(Renderable, DrawsInOneOrTwoPasses)
{
    Lines calls;
    FakeCanvas canvas;
    canvas.scale = 2;
    Layered<Box> box(&calls);
    box.setCanvas(&canvas);
    box.setShadow(blackShadow(0, 10, 5));
    box.setOpacity(0.5f);
    const auto drawn = [&] {
        box.modes.clear();
        return recordingOf([&] { box.renderLayeredIntoContext(currentDrawingPort()); });
    };
    const std::string once
        = "save\nset-alpha 0.5\nset-shadow offset=20 0 blur=10 color=0 0 0 1\nbegin-layer\n"
          "fill-rect 0 0 1 1\nend-layer\nclear-shadow\nrestore\n";
    EXPECT_EQ(drawn(), once) << "no layer yet";
    EXPECT_EQ(box.modes, (std::vector { 1, 0 }));

    box.fakeLayer().mixed = true;
    EXPECT_EQ(drawn(),
        "save\nset-alpha 0.5\nbegin-layer\nfill-rect 0 0 1 1\nend-layer\nclear-shadow\nrestore\n" + once);
    EXPECT_EQ(box.modes, (std::vector { 3, 2, 0 }));

    box.setShadow(nullptr);
    drawn();
    EXPECT_EQ(box.modes, (std::vector { 1, 0 })) << "without a shadow nothing is mixed";
    box.setCanvas(nullptr);
}

TEST(Renderable, HandsOverLayersTopmostFirstAndTexturesBottomFirst)
{
    Lines calls;
    FakeCanvas canvas;
    Layered<Box> box(&calls);
    const auto handedOver = [&] {
        std::vector<LayerInfo*> infos;
        std::vector<VXRTexture*> textures;
        calls.clear();
        box.addLayersToArray(infos);
        box.addTexturesToArray(textures);
        return std::exchange(calls, {});
    };
    EXPECT_EQ(handedOver(), (Lines { "infos", "textures" }));
    box.setShadow(blackShadow(0, 10, 5));
    EXPECT_EQ(handedOver(),
        (Lines { "infos", "shadow infos", "shadowless infos", "shadow textures", "shadowless textures",
            "textures" }));

    box.setCanvas(&canvas);
    box.prepareToDraw();
    EXPECT_EQ(std::exchange(calls, {}), (Lines { "layer clear" })) << "nothing more without a compositor";
    canvas.compositor = true;
    canvas.scale = 1.5f;
    box.blit();
    box._blitShadow();
    EXPECT_EQ(calls,
        (Lines { "layer zoom 1.5", "layer prepare", "shadow textures", "shadowless textures", "textures",
            "shadow textures" }));
    box.setCanvas(nullptr);
}

TEST(Renderable, KeepsATextureSetUntilSessionOrContentChangeAndLeavesItAndTheCanvasAtItsEnd)
{
    Lines calls;
    FakeCanvas canvas(&calls);
    canvas.compositor = true;
    VXXTextureSession session;
    std::shared_ptr<VXRTextureSet> kept;
    {
        Box box;
        box.setCanvas(&canvas);
        EXPECT_EQ(box.texture(nullptr), nullptr);
        const auto first = box.texture(&session);
        ASSERT_EQ(first->entries().size(), 1u);
        EXPECT_EQ(first->entries()[0].renderable, &box);
        box.offsetBy(1, 0);
        EXPECT_EQ(box.texture(&session), first) << "moved at a whole zoom";
        box.setShadow(blackShadow(0, 10, 5));
        const auto shadowed = box.texture(&session);
        EXPECT_NE(shadowed, first);
        box.setShadow(blackShadow(90, 10, 5));
        EXPECT_NE(box.texture(&session), shadowed) << "even where nothing is rebuilt";
        box.invalidate();
        kept = box.texture(&session);
        EXPECT_NE(kept, first);
    }
    EXPECT_TRUE(kept->entries().empty());
    EXPECT_EQ(calls.back(), "unregister");
}

TEST(Renderable, LeavesEverySetThatAHostHolds)
{
    VXXTextureSession sessions[2];
    auto box = std::make_unique<Box>();
    const auto former = box->texture(&sessions[0]), present = box->texture(&sessions[1]);
    const auto own
        = VXRTextureSet::initWithSessionAllowActiveCollapseFinalTextureSource(&sessions[0], false, box.get());
    own->addRenderableZOrderChunkStage(*box, 3, 0);
    VXRTextureSet::initWithSessionAllowActiveCollapseFinalTextureSource(&sessions[0], false, box.get());
    box = nullptr;
    for (const auto& set : { former, present, own })
        EXPECT_TRUE(set->texturesForChunkStage(0).empty() && set->entries().empty());
    EXPECT_EQ(own->finalTextureSource(), nullptr);
}

TEST(Renderable, NoRenderingModeOutlivesADrawingInWhichTheLayerWasMadeOrFlushed)
{
    Lines calls;
    Layered<Box> box(&calls);
    for (const bool flushes : { false, true }) {
        box.whileDrawing = [&] {
            EXPECT_EQ(box.renderingMode(), VXRRenderingModeSingle);
            box.layer();
            if (flushes)
                box.flushCompositorLayer();
        };
        recordingOf([&] { box.renderLayeredIntoContext(currentDrawingPort()); });
        box.flushCompositorLayer();
        EXPECT_EQ(box.renderingMode(), VXRRenderingModeNone) << flushes;
    }
}

TEST(Renderable, MayLoseItsCanvasWhileItTellsItOfDamage)
{
    class LettingGo : public FakeCanvas {
    public:
        using FakeCanvas::FakeCanvas;
        void invalidateRenderable(VXRRenderable& renderable) override { renderable.setCanvas(nullptr); }
        void invalidateRenderableInRect(VXRRenderable& renderable, const Rect&) override
        {
            renderable.setCanvas(nullptr);
        }
    };
    LettingGo canvas;
    Box box;
    for (const bool whole : { false, true }) {
        box.setCanvas(&canvas);
        if (whole)
            box.invalidate();
        else
            box.setNeedsDisplayInRect({ 0, 0, 5, 5 });
        EXPECT_EQ(box.canvas(), nullptr);
    }
}

TEST(Renderable, ErasesWhatAnOverrideSaysOfItsShadowEvenWithoutOne)
{
    class Glowing : public Box {
    public:
        Rect shadowBoundsForRect(const Rect& r) const override { return insetRect(r, -7, -7); }
    };
    EXPECT_EQ(Glowing().erasableBounds(), Rect(-7, -7, 44, 54));
}
