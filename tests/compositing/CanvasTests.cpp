#include <tests/compositing/LayerFakes.h>
#include <tests/compositing/PageScene.h>

#include <vxr/compositing/canvas/VXROffscreenCanvas.h>
#include <vxr/compositing/canvas/VXRTransformableViewRenderable.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/BitmapContext.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vxr;
using namespace vxr::test;
using ::testing::ElementsAre;

namespace {

/// Says what the canvas asks of it.
class SpyShape : public VXRShape {
public:
    std::vector<std::string>* calls = nullptr;
    std::string name;
    bool fails = false;

    void prepareToDraw() override
    {
        note("prepare");
        VXRShape::prepareToDraw();
    }
    void renderIntoContext(Context& context) override
    {
        note("render");
        if (fails) {
            VXRShape::renderIntoContext(context);
            context.saveState();
            context.beginTransparencyLayer();
            context.translate(7, 7);
            throw GenericException("The drawing failed.");
        }
        VXRShape::renderIntoContext(context);
    }
    void addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo& info) override
    {
        note("bitmaps");
        info.addBitmap(this, 10, 20);
    }

private:
    void note(const char* what)
    {
        if (calls)
            calls->push_back(std::string(what) + " " + name);
    }
};

std::shared_ptr<SpyShape> spy(std::vector<std::string>& calls, std::string name, const Rect& rect)
{
    auto shape = VXRShape::shapeWithRect<SpyShape>(rect);
    shape->calls = &calls;
    shape->name = std::move(name);
    shape->setStroke(nullptr);
    shape->setFill(Color::colorWithCalibratedRGB(1, 0, 0));
    return shape;
}

constexpr Size windowSize { 200, 150 };
constexpr Size pageSize { 400, 300 };

std::uint32_t pixelAt(const PageScene& scene, int x, int y)
{
    return scene.window.pixels()[y * scene.window.width() + x];
}

} // namespace

TEST(Canvas, AFreshOneCompositesOnWhite)
{
    VXRCanvas canvas({ 0, 0, 10, 10 });
    EXPECT_EQ(canvas.viewScale(), 1);
    EXPECT_EQ(canvas.renderingDestination(), VXRDestinationCompositor);
    EXPECT_TRUE(canvas.usesCompositor());
    EXPECT_EQ(canvas.backgroundColor(), Color::whiteColor());
    EXPECT_EQ(canvas.bitmapImageQuality(), 2);
    EXPECT_EQ(canvas.chartQuality(), 2);
    EXPECT_TRUE(canvas.objectsToRender().empty());
    EXPECT_FALSE(canvas.isOpaque());
}

TEST(Canvas, DestinationIsNotTheScreenWhileTheContextIsNone)
{
    VXRCanvas canvas({ 0, 0, 10, 10 });
    const auto paper = BitmapContext::createBitmap(4, 4);
    canvas.setUsesCompositor(false);
    EXPECT_EQ(canvas.renderingDestination(), VXRDestinationDirect);
    const CurrentContextScope scope(*paper, false, false);
    EXPECT_EQ(canvas.renderingDestination(), VXRDestinationNonScreen);
    canvas.setUsesCompositor(true);
    EXPECT_EQ(canvas.renderingDestination(), VXRDestinationNonScreen);
}

TEST(Canvas, ColoursPackWithTheirAlphaForgotten)
{
    const struct {
        std::shared_ptr<Color> color;
        std::uint32_t packed;
    } cases[] = {
        { Color::colorWithCalibratedRGB(1, 0, 0), 0xff0000ff },
        { Color::colorWithCalibratedWhite(1, 0.5f), 0xffffffff },
        { Color::colorWithCalibratedRGB(0.5f, 0.25f, 0.1f), 0x80401aff }, // 127.5 up, 63.75, 25.5 up
        { Color::blackColor(), 0x000000ff },
    };
    for (const auto& one : cases)
        EXPECT_EQ(VXRCanvas::_colorAsLong(*one.color), one.packed) << one.color->description();
}

TEST(Canvas, BackgroundLayerCoversAnyWindow)
{
    VXRCanvas canvas({ 0, 0, 10, 10 });
    const LayerInfo& layer = *canvas._backgroundLayer();
    EXPECT_EQ(layer.constantColor, 0xffffffffu);
    for (const std::int32_t right : { layer.clipMaxX, layer.frameMaxX, layer.opaqueMaxX })
        EXPECT_EQ(right, 11280);
    for (const std::int32_t bottom : { layer.clipMaxY, layer.frameMaxY, layer.opaqueMaxY })
        EXPECT_EQ(bottom, 11024);
    canvas.setBackgroundColor(nullptr);
    EXPECT_EQ(canvas._backgroundLayer(), nullptr);
}

TEST(Canvas, RegistrationFollowsTheRenderablesCanvas)
{
    auto shape = VXRShape::shapeWithRect({ 0, 0, 5, 5 });
    {
        VXRCanvas canvas({ 0, 0, 10, 10 }), other({ 0, 0, 10, 10 });
        shape->setCanvas(&canvas);
        EXPECT_TRUE(canvas.isRegistered(*shape));
        shape->setCanvas(&other);
        EXPECT_FALSE(canvas.isRegistered(*shape));
        EXPECT_TRUE(other.isRegistered(*shape));
    }
    EXPECT_EQ(shape->canvas(), nullptr); // the canvas is gone
}

TEST(Canvas, ScaleKeepsTheCentreAndGrowsTheFrame)
{
    PageScene scene(windowSize, pageSize);
    scene.canvas->scrollPoint({ 60, 40 });
    scene.canvas->setScale(2); // the centre was (160, 115)
    EXPECT_EQ(scene.canvas->frame().size, (Size { 800, 600 }));
    EXPECT_EQ(scene.canvas->bounds(), Rect(0, 0, 400, 300));
    EXPECT_EQ(scene.canvas->visibleRect(), Rect(110, 77.5f, 100, 75));

    PageScene still(windowSize, pageSize);
    still.canvas->scrollPoint({ 60, 40 });
    still.window.displayIfNeeded();
    still.canvas->setScaleScrollingToMaintainCenter(2, false);
    EXPECT_EQ(still.canvas->frame().size, pageSize);
    EXPECT_EQ(still.canvas->visibleRect(), Rect(30, 20, 100, 75));
    EXPECT_TRUE(still.canvas->needsDisplay());
}

TEST(Canvas, RefusesAScaleThatIsNoneAndKeepsItsOwn)
{
    PageScene scene(windowSize, pageSize);
    for (const float scale : { 0.0f, -1.0f, NAN, INFINITY }) {
        EXPECT_THROW(scene.canvas->setScale(scale), InvalidArgumentException) << scale;
        EXPECT_EQ(scene.canvas->viewScale(), 1);
        EXPECT_EQ(scene.canvas->bounds(), Rect({ 0, 0 }, pageSize));
    }
}

/// Where it is clipped to counts from there, whether or not there is a scroll view.
TEST(Canvas, KnowsWhatIsVisibleOfItsSuperview)
{
    Window window({ 0, 0, 100, 80 });
    auto canvas = std::make_shared<PageCanvas>(Rect { 20, 30, 200, 40 });
    window.contentView()->addSubview(canvas);
    EXPECT_EQ(canvas->visibleRect(), Rect(0, 0, 80, 40));
    EXPECT_EQ(canvas->superviewVisibleRect(), Rect(-20, -10, 100, 80));
    EXPECT_EQ(canvas->clipViewVisibleRect(), canvas->visibleRect());
}

TEST(Canvas, TheClipViewCopiesOnScrollOnTheDirectRoadOnly)
{
    PageScene scene(windowSize, pageSize);
    EXPECT_FALSE(scene.scrollView->contentView().copiesOnScroll());
    scene.canvas->setUsesCompositor(false);
    EXPECT_TRUE(scene.scrollView->contentView().copiesOnScroll());
    scene.canvas->setUsesCompositor(true);
    EXPECT_FALSE(scene.scrollView->contentView().copiesOnScroll());
}

TEST(Canvas, AScrolledCompositeDrawsOnlyWhatComesIntoSight)
{
    PageScene scene(windowSize, pageSize);
    std::vector<std::string> calls;
    scene.canvas->add(spy(calls, "seen", { 20, 60, 30, 30 }));
    scene.canvas->add(spy(calls, "coming", { 80, 165, 30, 30 }));
    scene.window.displayIfNeeded();
    calls.clear();
    scene.canvas->scrollPoint({ 0, 40 });
    scene.window.displayIfNeeded();
    EXPECT_THAT(calls, ElementsAre("prepare coming", "render coming"));
    const auto scrolled = scene.pixels();
    EXPECT_TRUE(samePixels(scrolled, scene.redrawn(), scene.window.width()));
}

/// In single precision 0.49999997 - 16 is -15.5, so that the layer's place rounds the other way after the
/// scroll.
TEST(Canvas, ALayerWhosePlaceRoundsTheOtherWayIsComposedAnewAfterAScroll)
{
    PageScene scene(windowSize, pageSize);
    std::vector<std::string> calls;
    scene.canvas->add(spy(calls, "between pixels", { std::nextafter(0.5f, 0.0f), 20, 60, 60 }));
    scene.window.displayIfNeeded();
    scene.canvas->scrollPoint({ 16, 0 });
    scene.window.displayIfNeeded();
    const auto scrolled = scene.pixels();
    EXPECT_TRUE(samePixels(scrolled, scene.redrawn(), scene.window.width()));
}

TEST(Canvas, SettingTheBackgroundRedrawsNothing)
{
    PageScene scene(windowSize, pageSize);
    scene.window.displayIfNeeded();
    scene.canvas->setBackgroundColor(Color::blackColor());
    EXPECT_FALSE(scene.canvas->needsDisplay());
}

TEST(Canvas, TurningTheCompositorOnMakesLayersAnew)
{
    std::vector<std::string> calls;
    PageScene scene(windowSize, pageSize);
    scene.canvas->add(spy(calls, "a", { 10, 10, 20, 20 }));
    scene.window.displayIfNeeded();
    scene.window.display();
    EXPECT_THAT(calls, ElementsAre("prepare a", "render a", "prepare a"));
    calls.clear();
    scene.canvas->setUsesCompositor(true);
    scene.window.displayIfNeeded();
    EXPECT_THAT(calls, ElementsAre("prepare a", "render a"));
}

TEST(Canvas, OnlyWhatMeetsTheDirtyRectangleIsAskedInOrder)
{
    for (const bool compositor : { true, false }) {
        std::vector<std::string> calls;
        PageScene scene(windowSize, pageSize);
        scene.canvas->setUsesCompositor(compositor);
        scene.canvas->add(spy(calls, "back", { 10, 10, 30, 30 }));
        scene.canvas->add(spy(calls, "far", { 120, 100, 30, 30 }));
        scene.canvas->add(spy(calls, "front", { 20, 20, 30, 30 }));
        scene.window.displayIfNeeded();
        calls.clear();
        scene.canvas->setNeedsDisplayInRect({ 25, 25, 4, 4 });
        scene.window.displayIfNeeded();
        if (compositor)
            EXPECT_THAT(calls, ElementsAre("prepare front", "prepare back"));
        else
            EXPECT_THAT(calls, ElementsAre("render back", "render front"));
    }
}

TEST(Canvas, NothingOutsideTheDirtyRectangleChanges)
{
    for (const bool compositor : { true, false }) {
        std::vector<std::string> calls;
        PageScene scene(windowSize, pageSize);
        scene.canvas->setUsesCompositor(compositor);
        scene.canvas->add(spy(calls, "a", { 10, 10, 90, 90 }));
        scene.window.displayIfNeeded();
        auto* pixels = const_cast<std::uint32_t*>(scene.window.pixels());
        std::fill_n(pixels, 200 * 150, 0xff123456);
        scene.canvas->setNeedsDisplayInRect({ 95, 30, 11, 7 });
        scene.window.displayIfNeeded();
        for (int y = 0; y < 150; ++y)
            for (int x = 0; x < 200; ++x) {
                const bool dirty = x >= 95 && x < 106 && y >= 30 && y < 37;
                ASSERT_EQ(pixelAt(scene, x, y),
                    !dirty        ? 0xff123456u
                        : x < 100 ? 0xffff0000u
                                  : 0xffccffffu)
                    << x << " " << y;
            }
    }
}

TEST(Canvas, WhatReachesBeyondItsBoundsSurvivesARedrawBesideThem)
{
    for (const bool compositor : { true, false }) {
        std::vector<std::string> calls;
        PageScene scene(windowSize, pageSize);
        scene.canvas->setUsesCompositor(compositor);
        // Its layer is put at 11 and ends at 20.5, half a pixel beyond the bounds.
        scene.canvas->add(spy(calls, "rounded", { 10.5f, 10, 9.5f, 20 }));
        // The joins stick out of bounds that count half the stroke's width.
        auto pointed = spy(calls, "pointed", { 60, 60, 30, 30 });
        auto path = Path::path();
        path->moveTo({ 60, 60 });
        path->lineTo({ 90, 65 });
        path->lineTo({ 60, 70 });
        path->close();
        pointed->setPath(path);
        pointed->setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), 3));
        scene.canvas->add(pointed);
        const auto full = scene.redrawn();
        scene.canvas->setNeedsDisplayInRect({ 20, 10, 5, 20 });
        scene.canvas->setNeedsDisplayInRect({ 92, 60, 5, 10 });
        scene.window.displayIfNeeded();
        EXPECT_TRUE(samePixels(scene.pixels(), full, scene.window.width())) << compositor;
    }
}

TEST(Canvas, NothingIsLockedOrPreparedOutOfSightOrWithoutAWindow)
{
    std::vector<std::string> calls;
    PageScene scene(windowSize, pageSize);
    scene.canvas->add(spy(calls, "a", { 0, 0, 400, 300 }));
    scene.canvas->scrollPoint({ 100, 80 });
    scene.window.displayIfNeeded();
    scene.window.takeDamage();
    calls.clear();
    for (const Rect& missed : { Rect { 10, 10, 80, 60 }, Rect { 310, 100, 20, 20 }, Rect { 120, 231, 30, 30 },
             Rect { 120, 100, 0, 10 } }) {
        scene.canvas->compositeRect(missed);
        EXPECT_TRUE(calls.empty()) << missed;
        EXPECT_TRUE(scene.window.takeDamage().empty()) << missed;
    }
    scene.canvas->compositeRect({ 90, 70, 20, 20 });
    EXPECT_THAT(calls, ElementsAre("prepare a"));
    EXPECT_FALSE(scene.window.isLocked());

    calls.clear();
    Window deferred({ 0, 0, 50, 50 }, true);
    auto lone = std::make_shared<PageCanvas>(Rect { 0, 0, 50, 50 });
    lone->add(spy(calls, "b", { 0, 0, 20, 20 }));
    lone->compositeRect({ 0, 0, 20, 20 });
    deferred.contentView()->addSubview(lone);
    lone->compositeRect({ 0, 0, 20, 20 });
    EXPECT_TRUE(calls.empty());
}

namespace {

/// A window whose pixels are 16-bit ones with a separate alpha plane.
class SixteenBitWindow : public Window {
public:
    using Window::Window;
    std::vector<std::uint16_t> colors = std::vector<std::uint16_t>(200 * 150, 0);
    std::vector<std::uint8_t> alphas = std::vector<std::uint8_t>(200 * 150, 7);

    std::optional<WindowBits> lockBits(const Rect& area) override
    {
        auto bits = Window::lockBits(area);
        bits->depthCode = 3;
        bits->colorBase = reinterpret_cast<std::uint8_t*>(colors.data());
        bits->colorBytesPerRow = 400;
        bits->alphaBase = alphas.data();
        bits->alphaBytesPerRow = 200;
        return bits;
    }
};

} // namespace

TEST(Canvas, CompositesIntoSixteenBitWindows)
{
    std::vector<std::string> calls;
    SixteenBitWindow window({ 0, 0, 200, 150 });
    auto canvas = std::make_shared<PageCanvas>(Rect { 20, 30, 100, 80 });
    window.contentView()->addSubview(canvas);
    canvas->add(spy(calls, "a", { 10, 10, 20, 20 }));
    window.displayIfNeeded();
    const auto at = [&](int x, int y) { return window.colors[std::size_t(y * 200 + x)]; };
    // The canvas's upper left corner is at x 20, 110 up: row 40.
    EXPECT_EQ(at(19, 40), 0);
    EXPECT_EQ(at(20, 40), 0x7fff);
    EXPECT_EQ(at(30, 50), 0x7c00);
    EXPECT_EQ(at(49, 69), 0x7c00);
    EXPECT_EQ(at(50, 70), 0x7fff);
    EXPECT_EQ(window.alphas, std::vector<std::uint8_t>(200 * 150, 7));
}

TEST(Canvas, ARenderableThatFailsLeavesTheOthersDrawnAndNothingOpen)
{
    for (const bool compositor : { true, false }) {
        std::vector<std::string> calls;
        PageScene scene(windowSize, pageSize);
        scene.canvas->setUsesCompositor(compositor);
        scene.canvas->add(spy(calls, "back", { 0, 0, 30, 30 }));
        const auto bad = spy(calls, "bad", { 20, 20, 30, 30 });
        bad->setShadow(blackShadow(0, 3, 3));
        bad->fails = true;
        scene.canvas->add(bad);
        scene.canvas->add(spy(calls, "front", { 40, 40, 30, 30 }));
        EXPECT_THROW(scene.window.displayIfNeeded(), GenericException);
        EXPECT_EQ(pixelAt(scene, 10, 10), 0xffff0000u) << compositor;
        EXPECT_EQ(pixelAt(scene, 60, 60), 0xffff0000u) << compositor;
        EXPECT_EQ(pixelAt(scene, 35, 35), 0xffccffffu) << compositor; // nothing half drawn
        EXPECT_FALSE(scene.window.isLocked());
        EXPECT_EQ(View::focusView(), nullptr);
        EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
        bad->fails = false;
        bad->invalidate();
        scene.window.displayIfNeeded();
        EXPECT_EQ(pixelAt(scene, 35, 35), 0xffff0000u) << compositor;
    }
}

namespace {

/// Says how much memory the layers use after each has been brought up to date.
class MeasuringShape : public SpyShape {
public:
    static inline std::size_t most = 0;
    void prepareToDraw() override
    {
        SpyShape::prepareToDraw();
        most = std::max(most, VXRLayerBudget::bytesUsed());
    }
};

} // namespace

TEST(Canvas, APageThatDoesNotFitIsDrawnInPartsAndKeepsSomeOfItsLayers)
{
    constexpr std::size_t megabyte = 1 << 20, limit = 3 * megabyte;
    constexpr int count = 12;
    PageScene scene({ 600, 600 }, { 600, 600 });
    std::vector<std::string> calls;
    for (int i = 0; i < count; ++i) {
        auto shape = VXRShape::shapeWithOvalInRect<MeasuringShape>({ float(i), float(2 * i), 510, 510 });
        shape->calls = &calls;
        shape->setFill(Color::colorWithCalibratedRGB(float(i) / count, 0.5f, 0.2f, 0.5f));
        scene.canvas->add(shape);
    }
    const auto whole = scene.redrawn();
    const auto renderings = [&] {
        return std::count_if(calls.begin(), calls.end(), [](const auto& call) { return call == "render "; });
    };
    for (const std::size_t allowed : { limit, std::size_t(0) }) {
        VXRLayerBudget::setLimit(allowed);
        EXPECT_LE(VXRLayerBudget::bytesUsed(), allowed);
        MeasuringShape::most = 0;
        EXPECT_TRUE(samePixels(scene.redrawn(), whole, 600)) << allowed;
        calls.clear();
        EXPECT_TRUE(samePixels(scene.redrawn(), whole, 600)) << allowed;
        EXPECT_LE(renderings(), allowed ? count - 2 : count) << "those that were kept are not drawn again";
        EXPECT_LE(MeasuringShape::most, allowed + std::max(allowed, megabyte) + megabyte + megabyte / 8);
        EXPECT_LE(VXRLayerBudget::bytesUsed(), allowed);
    }
    VXRLayerBudget::setLimit(VXRLayerBudget::defaultLimit);
}

/// What is out of sight goes first, whatever was composed last.
TEST(Canvas, LayersOutOfSightGoFirst)
{
    PageScene scene(windowSize, pageSize);
    std::vector<std::string> calls;
    scene.canvas->add(spy(calls, "seen", { 150, 10, 150, 140 }));
    scene.canvas->add(spy(calls, "left", { 10, 10, 20, 140 }));
    for (const auto& object : scene.canvas->page)
        object->setOpacity(0.5f); // what fades keeps its pixels, even those of one colour
    scene.window.displayIfNeeded();
    scene.canvas->scrollPoint({ 100, 0 });
    scene.canvas->setNeedsDisplayInRect({ 25, 10, 10, 10 });
    scene.window.displayIfNeeded();
    calls.clear();
    EXPECT_GT(VXRLayerBudget::bytesUsed(), 150u * 140 * 4);
    VXRLayerBudget::setLimit(150 * 140 * 4);
    scene.window.display();
    EXPECT_THAT(calls, ElementsAre("prepare seen"));
    VXRLayerBudget::setLimit(VXRLayerBudget::defaultLimit);
}

TEST(Canvas, BitmapQualityIsGatheredOnlyForOtherLevels)
{
    std::vector<std::string> calls;
    PageScene scene(windowSize, pageSize);
    scene.canvas->setUsesCompositor(false);
    scene.canvas->add(spy(calls, "a", { 10, 10, 20, 20 }));
    scene.canvas->add(spy(calls, "far", { 300, 200, 20, 20 }));
    scene.window.displayIfNeeded();
    EXPECT_EQ(scene.canvas->bitmapRenderingQualityInfo(), nullptr);
    calls.clear();
    scene.canvas->setBitmapImageQuality(1);
    scene.window.display();
    EXPECT_THAT(calls, ElementsAre("bitmaps a", "render a"));
    EXPECT_EQ(scene.canvas->bitmapRenderingQualityInfo()->totalPixels(), 200);
}

TEST(Canvas, AccelerationIsRefusedWithAWord)
{
    std::vector<std::string> lines;
    const auto old = VXUSetLogSink([&](int level, std::string_view, std::string_view message) {
        lines.push_back(std::to_string(level) + " " + std::string(message));
    });
    VXRCanvas canvas({ 0, 0, 10, 10 });
    canvas.setAccelerated(true);
    canvas.setAccelerated(false);
    VXUSetLogSink(old);
    EXPECT_THAT(lines, ElementsAre("10 WARNING, no accelerated road is built in."));
    EXPECT_FALSE(canvas.isAccelerated());
}

TEST(Canvas, MiniaturePictureIsTakenOnceAndDropped)
{
    std::vector<std::string> calls;
    PageScene scene(windowSize, pageSize);
    scene.canvas->add(spy(calls, "a", { 0, 0, 50, 40 }));
    scene.window.displayIfNeeded();
    scene.canvas->windowWillMiniaturize({ NSWindowWillMiniaturizeNotification, nullptr }); // another window
    EXPECT_EQ(scene.canvas->minimizedImage(), nullptr);
    scene.canvas->windowWillMiniaturize({ NSWindowWillMiniaturizeNotification, &scene.window });
    const auto image = scene.canvas->minimizedImage();
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width(), 200);
    EXPECT_EQ(image->height(), 150);
    const auto* bytes = image->pixels();
    EXPECT_THAT(std::vector<int>(bytes, bytes + 4), ElementsAre(255, 0, 0, 255));
    EXPECT_FALSE(scene.window.areScreenUpdatesDisabled());
    scene.canvas->_buildMinimizedImage();
    EXPECT_EQ(scene.canvas->minimizedImage(), image);
    scene.canvas->windowDidDeminiaturize({ NSWindowDidDeminiaturizeNotification, &scene.window });
    EXPECT_EQ(scene.canvas->minimizedImage(), nullptr);
    scene.canvas->setIsStatic(true);
    scene.canvas->windowWillMiniaturize({ NSWindowWillMiniaturizeNotification, &scene.window });
    EXPECT_EQ(scene.canvas->minimizedImage(), nullptr);
}

TEST(OffscreenCanvas, ShowsItsRenderableAlone)
{
    Window window({ 0, 0, 60, 40 });
    auto canvas = std::make_shared<VXROffscreenCanvas>(Rect { 0, 0, 60, 40 });
    window.contentView()->addSubview(canvas);
    window.displayIfNeeded();
    EXPECT_EQ(window.pixels()[0], 0xffffffffu);
    std::vector<std::string> calls;
    auto shape = spy(calls, "a", { 0, 0, 10, 10 });
    shape->setCanvas(canvas.get());
    canvas->setRenderable(shape);
    window.display();
    EXPECT_EQ(window.pixels()[0], 0xffff0000u);
    canvas->setRenderable(nullptr);
    EXPECT_TRUE(canvas->objectsToRender().empty());
}

namespace {

/// A hosted view of one colour.
class ColoredView : public View {
public:
    using View::View;
    bool flipped = true;
    std::array<float, 3> color { 1, 0, 0 };
    int drawn = 0;
    bool isFlipped() const override { return flipped; }
    void drawRect(const Rect&) override
    {
        ++drawn;
        Context& port = currentDrawingPort();
        port.setFillColor(ColorValue::rgb(color[0], color[1], color[2]));
        port.fillRect(bounds());
        port.setFillColor(ColorValue::rgb(0, 0, 0)); // the upper left corner
        port.fillRect({ 0, flipped ? 0 : bounds().maxY() - 5, 5, 5 });
    }
};

} // namespace

TEST(ViewRenderable, ItsViewIsDrawnByTheCanvasAndRedrawnWhenItChanges)
{
    for (const bool compositor : { true, false }) {
        for (const bool flipped : { true, false }) {
            PageScene scene(windowSize, pageSize);
            scene.canvas->setUsesCompositor(compositor);
            auto view = std::make_shared<ColoredView>(Rect { 0, 0, 40, 30 });
            view->flipped = flipped;
            auto hosting = std::make_shared<VXRTransformableViewRenderable>(view);
            hosting->offsetTo({ 50, 20 });
            scene.canvas->add(hosting);
            EXPECT_EQ(view->superview(), scene.canvas.get());
            scene.window.displayIfNeeded();
            EXPECT_EQ(pixelAt(scene, 51, 21), 0xff000000u) << compositor << flipped;
            EXPECT_EQ(pixelAt(scene, 60, 40), 0xffff0000u) << compositor << flipped;
            EXPECT_EQ(pixelAt(scene, 5, 5), 0xffccffffu); // not where the view itself lies

            view->drawn = 0;
            scene.window.displayIfNeeded();
            EXPECT_EQ(view->drawn, 0);
            view->color = { 0, 1, 0 };
            view->setNeedsDisplay(true);
            scene.window.displayIfNeeded();
            EXPECT_EQ(pixelAt(scene, 60, 40), 0xff00ff00u) << compositor << flipped;
            EXPECT_FALSE(view->needsDisplay());
            scene.canvas->remove(0);
            EXPECT_EQ(view->superview(), nullptr);
        }
    }
}

TEST(BitmapQuality, LevelOneSavesOnLargeAmounts)
{
    int a = 0, b = 0;
    VXRBitmapRenderingQualityInfo info(1);
    info.addBitmap(&a, 4096, 4096);
    info.addBitmap(&a, 4096, 4096);
    EXPECT_EQ(info.interpolationQuality(), InterpolationQuality::Low);
    info.addBitmap(&b, 4096, 4097);
    EXPECT_EQ(info.interpolationQuality(), InterpolationQuality::None);
}
