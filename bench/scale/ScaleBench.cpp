#include <bench/Compare.h>
#include <bench/scale/ProcessMemory.h>
#include <bench/scale/ScalePage.h>

#include <vxr/compositing/layers/VXRLayerBudget.h>
#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/pixels/LayerCompositor.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

// Pages of up to a million objects: redraws cost what the damage is, whatever the page's size.

namespace vxr::bench {

namespace {

constexpr int pageSizes[] = { 1000, 10'000, 100'000, 1'000'000 };

/// A square page of small ovals, at the same density whatever their number.
std::shared_ptr<ScalePage> pageOfOvals(int count, bool layers)
{
    const int columns = int(std::ceil(std::sqrt(double(count))));
    const float side = float(columns) * 40;
    auto page = std::make_shared<ScalePage>(
        Size { std::max(side, scaleWindow.width), std::max(side, scaleWindow.height) }, layers);
    for (int i = 0; i < count; ++i) {
        auto oval
            = VXRShape::shapeWithOvalInRect({ float(i % columns) * 40, float(i / columns) * 40, 30, 30 });
        oval->setStroke(nullptr);
        oval->setFill(Color::colorWithCalibratedRGB(0.2f, 0.4f, float(i % 256) / 256));
        page->canvas->add(oval);
    }
    page->window.display();
    return page;
}

double growthWithThePage(bool layers, const std::function<void(ScalePage&)>& redraw)
{
    std::vector<Work> works;
    for (const int count : pageSizes)
        works.push_back([page = pageOfOvals(count, layers), &redraw] { redraw(*page); });
    return growth(works);
}

void redrawRectangle(ScalePage& page)
{
    page.canvas->setNeedsDisplayInRect({ 410, 410, 100, 100 });
    page.window.displayIfNeeded();
}

void moveOne(ScalePage& page)
{
    const auto& object = page.canvas->objectsToRender()[330];
    for (const float step : { 2.0f, -2.0f }) {
        object->offsetBy(step, 0);
        page.window.displayIfNeeded();
    }
}

/// A redraw of rectangles with gradients, all in sight, layers off.
Pair gradients()
{
    constexpr int columns = 40, rows = 25;
    const auto pageOf = [](bool distinct) {
        auto page = std::make_shared<ScalePage>(scaleWindow, false);
        for (int i = 0; i < columns * rows; ++i) {
            const float part = distinct ? float(i) / (columns * rows) : 0;
            auto shape = VXRShape::shapeWithRect({ float(i % columns) * 40, float(i / columns) * 48,
                16 + float(i * 7 % 56), 16 + float(i * 11 % 56) });
            shape->setStroke(nullptr);
            shape->setFill(VXRAngleGradient::linearGradientWithStartColorEndColor(
                Color::colorWithCalibratedRGB(1 - part, 0.3f, 0),
                Color::colorWithCalibratedRGB(0, part, 0.8f)));
            page->canvas->add(shape);
        }
        page->window.display();
        return page;
    };
    return { [page = pageOf(true)] { page->window.display(); },
        [page = pageOf(false)] { page->window.display(); } };
}

/// Adds objects until the index knows them, each time on a page of its own that stays until the end.
double buildingGrowth()
{
    constexpr int few = 1000, many = 100'000;
    const auto build = [](int count) {
        auto page = std::make_shared<ScalePage>(scalePageSize(count), true);
        const auto objects = scaleObjects(few, scaleWindow);
        const double seconds = processorSeconds([&] {
            for (int i = 0; i < count; ++i) {
                const auto shape = shapeOf(objects[std::size_t(i % few)]);
                shape->offsetBy(float(i / few % 10) * 1600, float(i / few / 10) * 1200);
                page->canvas->add(shape);
            }
            page->canvas->objectAtPoint({ -100, -100 });
        });
        return seconds / count;
    };
    std::vector<double> ratios;
    for (int round = 0; round < 5; ++round) {
        double least = 1;
        for (int i = 0; i < 20; ++i)
            least = std::min(least, build(few));
        ratios.push_back(build(many) / least);
    }
    return median(ratios);
}

/// Of closed outlines of eight curves, each with a stroke of its own, in the colours of a palette.
double bytesPerObject()
{
    constexpr int count = 20'000, colors = 64;
    std::vector<std::shared_ptr<Color>> palette;
    for (int i = 0; i < colors; ++i)
        palette.push_back(Color::colorWithCalibratedRGB(float(i) / colors, 0.5f, 0.2f));
    ScalePage page({ 8000, 8000 }, false);
    const auto addOutlines = [&](int number) {
        const auto objects = scaleObjects(8, scaleWindow);
        for (int i = 0; i < number; ++i) {
            auto path = Path::path();
            path->appendPath(*objects[std::size_t(i % 8)].path);
            const auto shape = VXRShape::shapeWithBezierPath(path);
            shape->setFill(palette[std::size_t(i % colors)]);
            shape->setStroke(
                VXRStroke::strokeWithColorWidth(palette[std::size_t(i * 7 % colors)], 1 + float(i % 5)));
            shape->offsetBy(float(i % 200) * 40, float(i / 200) * 80);
            page.canvas->add(shape);
        }
        page.window.display();
    };
    page.canvas->reserve(count + 100); // the list is the host's
    addOutlines(100);
    const std::size_t before = allocatedBytes();
    addOutlines(count);
    return double(allocatedBytes() - before) / count;
}

/// What a first paint of 1,000 objects needs at its height beside the window, the objects and their layers'
/// pixels.
double scratchMegabytes(bool layers)
{
    ScalePage page(scaleWindow, layers);
    page.show(scaleObjects(1000, scaleWindow));
    const std::size_t before = residentBytes();
    resetPeak();
    page.window.display();
    return (double(peakBytes()) - double(before) - double(VXRLayerBudget::bytesUsed())) / (1 << 20);
}

/// From which side on a layer of one opaque colour is composed faster without its pixels: the least of the
/// powers of two for which, and for all above, it is.
double sideFromWhichColorsAreCheaper()
{
    constexpr int width = 1600, height = 1200;
    std::vector<std::uint32_t> window(std::size_t { width } * height);
    LayerInfo destination;
    destination.bitmapType = LayerBitmap32;
    destination.colorData = reinterpret_cast<std::uint8_t*>(window.data());
    destination.colorBytesPerRow = width * 4;
    destination.setFrame({ 0, 0, width, height });
    destination.setClip({ 0, 0, width, height });
    double least = 1024;
    for (int side = 1024; side >= 4; side /= 2) {
        // As many layers as a page might have, so that their pixels come from memory.
        const int count = std::clamp((1 << 24) / (side * side), 8, 1000);
        std::vector<std::uint32_t> pixels(
            std::size_t(count) * std::size_t(side) * std::size_t(side), 0xff336699);
        const auto compose = [&](bool keepsPixels) {
            return [&, keepsPixels] {
                for (int i = 0; i < count; ++i) {
                    const int x = i * 389 % (width - side), y = i * 263 % (height - side);
                    const IntRect box { x, y, x + side, y + side };
                    LayerInfo layer;
                    layer.fade = 1;
                    layer.bitmapType = keepsPixels ? LayerBitmap32 : LayerBitmapConstant;
                    layer.constantColor = 0x336699ff;
                    layer.colorData
                        = reinterpret_cast<std::uint8_t*>(pixels.data() + std::ptrdiff_t(i) * side * side);
                    layer.colorBytesPerRow = side * 4;
                    layer.setFrame(box);
                    layer.setClip(box);
                    layer.setOpaque(box);
                    LayerCompositor::composite(destination, &layer);
                }
            };
        };
        if (growth({ compose(true), compose(false) }) > 1)
            break;
        least = side;
    }
    return least;
}

// A page whose layers would take four times the budget, from top to bottom and back.

struct LimitRestored {
    ~LimitRestored() { VXRLayerBudget::setLimit(VXRLayerBudget::defaultLimit); }
};

constexpr int tallPageCount = 20'000;

std::shared_ptr<ScalePage> tallPage()
{
    const Size size { scaleWindow.width, scaleWindow.height * float(tallPageCount) / 1000 };
    auto page = std::make_shared<ScalePage>(size, true);
    page->show(scaleObjects(tallPageCount, size));
    return page;
}

void scrollThrough(ScalePage& page)
{
    const float last = page.canvas->frame().size.height - scaleWindow.height;
    for (float y = 0; y < last; y += 100)
        page.scrollTo({ 0, y });
    for (float y = last; y > 0; y -= 100)
        page.scrollTo({ 0, y });
}

/// The bytes that the layers of all of the page take.
std::size_t layerBytes(ScalePage& page)
{
    VXRLayerBudget::setLimit(std::size_t(4) << 30);
    scrollThrough(page);
    return VXRLayerBudget::bytesUsed();
}

double overfullAgainstFitting()
{
    const LimitRestored restored;
    const auto page = tallPage();
    const std::size_t all = layerBytes(*page);
    std::vector<double> ratios;
    for (int round = 0; round < 3; ++round) {
        double times[2];
        for (const bool fits : { true, false }) {
            VXRLayerBudget::setLimit(fits ? 2 * all : all / 4);
            scrollThrough(*page);
            times[fits] = processorSeconds([&] { scrollThrough(*page); });
        }
        ratios.push_back(times[0] / times[1]);
    }
    return median(ratios);
}

/// What the process has grown by at its peak over what it may.
double overfullPeak()
{
    const LimitRestored restored;
    const auto page = tallPage();
    const std::size_t limit = layerBytes(*page) / 4;
    VXRLayerBudget::setLimit(0);
    returnFreeMemory();
    const std::size_t before = residentBytes();
    resetPeak();
    VXRLayerBudget::setLimit(limit);
    scrollThrough(*page);
    return double(peakBytes() - before) / double(limit + (std::size_t(40) << 20));
}

const int registered[] = {
    measure("SCALE/dirty-rectangle-growth-layers", atMost(1.5),
        [] { return growthWithThePage(true, redrawRectangle); }),
    measure("SCALE/dirty-rectangle-growth-direct", atMost(1.5),
        [] { return growthWithThePage(false, redrawRectangle); }),
    measure("SCALE/move-growth-layers", atMost(2), [] { return growthWithThePage(true, moveOne); }),
    measure("SCALE/move-growth-direct", atMost(2), [] { return growthWithThePage(false, moveOne); }),
    compare("SCALE/1000-gradients-against-one", atMost(1.5), gradients, TimeOf::Processor),
    measure("SCALE/page-over-budget", atMost(4), overfullAgainstFitting),
    measure("SCALE/peak-over-budget", atMost(1),
        [] { return inFreshProcess("SCALE/peak-over-budget", overfullPeak); }),
    measure("SCALE/scratch-MB-layers", atMost(12),
        [] { return inFreshProcess("SCALE/scratch-MB-layers", [] { return scratchMegabytes(true); }); }),
    measure("SCALE/scratch-MB-direct", atMost(12),
        [] { return inFreshProcess("SCALE/scratch-MB-direct", [] { return scratchMegabytes(false); }); }),
    measure("SCALE/one-colour-cheaper-from-side", atMost(8), sideFromWhichColorsAreCheaper),
    measure("SCALE/bytes-per-object", atMost(800), bytesPerObject),
    measure("SCALE/building-growth", atMost(1.5), buildingGrowth),
};

} // namespace

} // namespace vxr::bench
