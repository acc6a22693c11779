#include <bench/Compare.h>

#include <vxr/compositing/canvas/VXRCanvas.h>
#include <vxr/compositing/layers/VXRCompositorLayer.h>
#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRShape.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

// Redraws of a canvas in a window of 1600 by 1200 pixels.

namespace vxr::bench {

namespace {

constexpr Size windowSize { 1600, 1200 };

class PageCanvas : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;
    RenderableList page;
    const RenderableList& objectsToRender() const override { return page; }
};

struct Scene {
    Window window { { { 0, 0 }, windowSize } };
    std::shared_ptr<ScrollView> scrollView = std::make_shared<ScrollView>(Rect { { 0, 0 }, windowSize });
    std::shared_ptr<PageCanvas> canvas;

    explicit Scene(Size pageSize, bool compositor = true)
        : canvas(std::make_shared<PageCanvas>(Rect { { 0, 0 }, pageSize }))
    {
        window.contentView()->addSubview(scrollView);
        scrollView->setDocumentView(canvas);
        canvas->setUsesCompositor(compositor);
    }
    std::shared_ptr<VXRShape> add(const Rect& rect)
    {
        auto shape = VXRShape::shapeWithRect(rect);
        shape->setStroke(nullptr);
        shape->setFill(Color::colorWithCalibratedRGB(0.2f, 0.4f, 0.6f));
        shape->setCanvas(canvas.get());
        canvas->page.push_back(shape);
        return shape;
    }
};

std::shared_ptr<VXRShadow> softShadow(int radius)
{
    return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
        45, 8, radius, 0.6f, Color::colorWithCalibratedRGB(0, 0, 0));
}

/// Shapes at the same density whatever their number, so that a dirty rectangle meets as many.
std::shared_ptr<Scene> pageOf(int count)
{
    constexpr int columns = 400;
    auto scene = std::make_shared<Scene>(Size { columns * 40, float(count / columns + 40) * 40 });
    for (int i = 0; i < count; ++i)
        scene->add({ float(i % columns) * 40, float(i / columns) * 40, 30, 30 });
    scene->window.display();
    return scene;
}

double dirtyRectangleTime(Scene& scene, const Rect& dirty)
{
    return nanosecondsPerCall([&] {
        scene.canvas->setNeedsDisplayInRect(dirty);
        scene.window.displayIfNeeded();
    });
}

constexpr Rect onShapes { 10, 10, 100, 100 };
[[maybe_unused]] const int walk = measure("DISPLAY/walk-nanoseconds-per-object", atMost(15), [] {
    const auto few = pageOf(1000), many = pageOf(100000);
    // Both redraws draw the same few shapes.
    return (dirtyRectangleTime(*many, onShapes) - dirtyRectangleTime(*few, onShapes)) / 99000;
});

/// Time of one redraw that finds nothing in the caches, as a redraw does after a walk that is longer than
/// they are.
double coldRedrawTime(Scene& scene, const Rect& dirty)
{
    static std::vector<std::uint64_t> others(std::size_t(1) << 22);
    for (std::uint64_t& other : others)
        ++other;
    scene.canvas->setNeedsDisplayInRect(dirty);
    const auto start = std::chrono::steady_clock::now();
    scene.window.displayIfNeeded();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

/// A quarter of the values is smaller: what the machine's other work disturbs lies in the upper part.
double lowerQuartile(std::vector<double>& values)
{
    const auto quarter = values.begin() + std::ptrdiff_t(values.size() / 4);
    std::nth_element(values.begin(), quarter, values.end());
    return *quarter;
}

/// What a redraw of some shapes costs more than one of a single pixel, which walks the page too: on a page
/// of 10,000 shapes against one of 1,000. The four kinds of redraw take turns, so that what slows the machine
/// down for a while slows all of them.
[[maybe_unused]] const int dirtyRectangle
    = measure("DISPLAY/dirty-rectangle-growth-with-the-page", atMost(1.5), [] {
          constexpr int redraws = 501;
          constexpr Rect pixel { 10, 10, 1, 1 };
          const std::shared_ptr<Scene> scenes[] = { pageOf(1000), pageOf(10000) };
          std::vector<double> shapes[2], walks[2];
          for (int i = 0; i < redraws; ++i) {
              for (int page : { 0, 1 }) {
                  shapes[page].push_back(coldRedrawTime(*scenes[page], onShapes));
                  walks[page].push_back(coldRedrawTime(*scenes[page], pixel));
              }
          }
          return (lowerQuartile(shapes[1]) - lowerQuartile(walks[1]))
              / (lowerQuartile(shapes[0]) - lowerQuartile(walks[0]));
      });

void moveAbout(Scene& scene, VXRShape& shape)
{
    for (int step = 0; step < 200; ++step) {
        shape.offsetBy(step < 100 ? 5 : -5, step % 100 < 50 ? 3 : -3);
        scene.window.displayIfNeeded();
    }
}

[[maybe_unused]] const int moving = compare("DISPLAY/move-a-soft-shadow", atLeast(5), [] {
    std::shared_ptr<Scene> scenes[2];
    std::shared_ptr<VXRShape> shapes[2];
    for (const bool compositor : { true, false }) {
        auto scene = std::make_shared<Scene>(windowSize, compositor);
        for (int i = 0; i < 60; ++i)
            scene->add({ float(i % 10) * 150, float(i / 10) * 180, 120, 140 });
        auto shape = VXRShape::shapeWithOvalInRect({ 100, 100, 300, 200 });
        shape->setCanvas(scene->canvas.get());
        shape->setShadow(softShadow(20));
        scene->canvas->page.push_back(shape);
        scene->window.display();
        scenes[compositor ? 0 : 1] = scene;
        shapes[compositor ? 0 : 1] = shape;
    }
    return Pair { [scene = scenes[0], shape = shapes[0]] { moveAbout(*scene, *shape); },
        [scene = scenes[1], shape = shapes[1]] { moveAbout(*scene, *shape); } };
});

void pan(Scene& scene)
{
    for (int step = 0; step < 100; ++step) {
        const Rect seen = scene.canvas->visibleRect();
        scene.canvas->scrollPoint({ seen.minX(), seen.minY() + (step < 50 ? 37.0f : -37.0f) });
        scene.window.displayIfNeeded();
    }
}

std::shared_ptr<Scene> gradientPage(bool compositor, int shadowRadius)
{
    auto scene = std::make_shared<Scene>(Size { 1600, 3200 }, compositor);
    for (int i = 0; i < 400; ++i) {
        auto shape
            = VXRShape::shapeWithOvalInRect({ float(i % 16) * 100 + 5, float(i / 16) * 126 + 5, 90, 110 });
        shape->setFill(VXRAngleGradient::linearGradientWithStartColorEndColor(
            Color::colorWithCalibratedRGB(1, 0.5f, float(i % 16) / 16),
            Color::colorWithCalibratedRGB(0, 0.2f, 0.9f)));
        shape->setShadow(softShadow(shadowRadius));
        shape->setCanvas(scene->canvas.get());
        scene->canvas->page.push_back(shape);
    }
    scene->window.display();
    return scene;
}

Pair panning(int shadowRadius, bool directCopies)
{
    const auto layered = gradientPage(true, shadowRadius), direct = gradientPage(false, shadowRadius);
    direct->scrollView->contentView().setCopiesOnScroll(directCopies);
    return { [layered] { pan(*layered); }, [direct] { pan(*direct); } };
}

// Both roads move what stays in sight; they differ in how they come by what comes into it. The wider the
// shadows, the more the direct road has to do for it.
[[maybe_unused]] const int panningSoft
    = compare("DISPLAY/pan-400-gradients-with-soft-shadows", atLeast(5), [] { return panning(20, true); });
[[maybe_unused]] const int panningNarrow
    = compare("DISPLAY/pan-400-gradients-with-narrow-shadows", atLeast(4), [] { return panning(6, true); });
/// Against a direct road that draws all that is in sight.
[[maybe_unused]] const int panningWhole
    = compare("DISPLAY/pan-400-gradients-against-drawing-all", atLeast(5), [] { return panning(6, false); });

/// Most bytes of a large page's tiles while it is scrolled across, over what the number of tiles that are
/// kept allows.
[[maybe_unused]] const int tileMemory = measure("DISPLAY/tile-memory-over-budget", atMost(1), [] {
    Scene scene({ 20000, 20000 });
    const auto page = scene.add({ 0, 0, 20000, 20000 });
    double most = 0;
    auto& layer = static_cast<VXRCompositorLayer&>(*page->layer());
    for (int step = 0; step <= 20; ++step) {
        scene.canvas->scrollPoint({ float(step) * 920, float(step) * 940 });
        scene.window.displayIfNeeded();
        double bytes = 0;
        for (const auto& tile : layer.tiles())
            bytes += double(tile->byteSize());
        most = std::max(most, bytes);
    }
    const VXRTile& tile = *layer.tiles().front();
    // One more than the number: a tile is reused once there are more.
    const double tiles = layer.maxNumberOfValidTiles() + 1;
    return most / (tiles * 4 * tile.pixelsWide() * tile.pixelsHigh());
});

} // namespace

} // namespace vxr::bench
