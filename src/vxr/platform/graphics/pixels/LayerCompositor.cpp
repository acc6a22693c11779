#include <vxr/platform/graphics/pixels/LayerCompositor.h>

#include <vxr/platform/graphics/pixels/PixelRegion.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <pixman.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace vxr {

namespace {

/// What a layer may touch.
IntRect touchedBox(const LayerInfo& layer) { return intersection(layer.frame(), layer.clip()); }

std::uint8_t fadeByte(float fade) { return fade > 0 ? channelByte(double(fade)) : 0; }

std::uint32_t premultipliedColor(std::uint32_t packed, float fade)
{
    const double alpha = (packed & 0xff) / 255.0 * std::min(double(fade), 1.0);
    const auto channel
        = [&](int shift) { return std::uint32_t(channelByte((packed >> shift & 0xff) / 255.0 * alpha)); };
    return std::uint32_t(channelByte(alpha)) << 24 | channel(24) << 16 | channel(16) << 8 | channel(8);
}

bool isBlendable(const LayerInfo& layer)
{
    switch (layer.bitmapType) {
    case LayerBitmapConstant:
        return true;
    case LayerBitmap32:
        return layer.colorData;
    case LayerBitmapMask:
        return layer.alphaData;
    default:
        return false;
    }
}

/// One box of one layer to be drawn.
struct Step {
    const LayerInfo* layer;
    IntRect box;
    std::uint32_t color; ///< premultiplied and faded, for layers that have one
    std::uint8_t fade;
    bool copies; ///< opaque: what lies below is not needed
};

/// A page of many opaque pieces would cut the visible area into ever smaller boxes; past this number
/// hidden pixels are cheaper to draw than to find.
constexpr int mostBoxes = 128;

/// Walks the chain from the top and finds what can be seen of each layer. The steps come top first.
std::vector<Step> visibleSteps(const IntRect& area, const LayerInfo* top)
{
    std::vector<Step> steps;
    PixelRegion visible(area);
    for (const LayerInfo* layer = top; layer && !visible.isEmpty(); layer = layer->next) {
        const IntRect touched = intersection(touchedBox(*layer), area);
        const std::uint8_t fade = fadeByte(layer->fade);
        if (touched.isEmpty() || !fade || !isBlendable(*layer))
            continue;

        Step step { layer, touched, 0, fade, false };
        IntRect opaque { 0, 0, 0, 0 };
        if (layer->bitmapType != LayerBitmap32) {
            step.color = premultipliedColor(layer->constantColor, layer->fade);
            if (!(step.color >> 24))
                continue;
        }
        if (layer->bitmapType == LayerBitmapConstant) {
            if (step.color >> 24 == 255)
                opaque = touched;
        } else if (layer->bitmapType == LayerBitmap32 && fade == 255) {
            opaque = intersection(touched, layer->opaque());
        }

        if (opaque.isEmpty() || visible.boxCount() > mostBoxes) {
            visible.forEachBoxWithin(touched, [&](const IntRect& box) {
                step.box = box;
                steps.push_back(step);
            });
            continue;
        }
        step.copies = true;
        visible.forEachBoxWithin(opaque, [&](const IntRect& box) {
            step.box = box;
            steps.push_back(step);
        });
        visible.subtract(opaque);
        step.copies = false;
        visible.forEachBoxWithin(touched, [&](const IntRect& box) {
            step.box = box;
            steps.push_back(step);
        });
    }
    return steps;
}

std::uint8_t* rowOf(void* data, std::ptrdiff_t bytesPerRow, const LayerInfo& frame, int y)
{
    return static_cast<std::uint8_t*>(data) + (std::ptrdiff_t(y) - frame.frameMinY) * bytesPerRow;
}

std::uint32_t* pixelAt(const LayerInfo& layer, int x, int y)
{
    return reinterpret_cast<std::uint32_t*>(rowOf(layer.colorData, layer.colorBytesPerRow, layer, y))
        + (std::ptrdiff_t(x) - layer.frameMinX);
}

std::uint8_t* coverageAt(const LayerInfo& layer, int x, int y)
{
    return rowOf(layer.alphaData, layer.alphaBytesPerRow, layer, y) + (std::ptrdiff_t(x) - layer.frameMinX);
}

void copy32(const LayerInfo& destination, const LayerInfo& layer, const IntRect& box)
{
    const std::size_t rowBytes = std::size_t(box.x1 - box.x0) * 4;
    if (std::ptrdiff_t(rowBytes) == destination.colorBytesPerRow
        && destination.colorBytesPerRow == layer.colorBytesPerRow) {
        std::memcpy(pixelAt(destination, box.x0, box.y0), pixelAt(layer, box.x0, box.y0),
            rowBytes * std::size_t(box.y1 - box.y0));
        return;
    }
    for (int y = box.y0; y < box.y1; ++y)
        std::memcpy(pixelAt(destination, box.x0, y), pixelAt(layer, box.x0, y), rowBytes);
}

void draw32(const LayerInfo& destination, const Step& step, const IntRect& box)
{
    const LayerInfo& layer = *step.layer;
    const std::size_t width = std::size_t(box.x1 - box.x0);
    if (step.copies && layer.bitmapType == LayerBitmap32) {
        copy32(destination, layer, box);
        return;
    }
    const SpanOperation& over = spanKernels().over();
    for (int y = box.y0; y < box.y1; ++y) {
        std::uint32_t* to = pixelAt(destination, box.x0, y);
        if (layer.bitmapType == LayerBitmapMask)
            over.colorMask(to, width, step.color, coverageAt(layer, box.x0, y));
        else if (layer.bitmapType == LayerBitmap32)
            over.pixels(to, width, pixelAt(layer, box.x0, y), step.fade);
        else
            over.color(to, width, step.color, 255);
    }
}

/// Steps from the bottom up, in bands low enough that the destination stays in the cache between them.
void composite32(const LayerInfo& destination, const IntRect& area, const std::vector<Step>& steps)
{
    constexpr int bandBytes = 1 << 18;
    const int bandHeight
        = steps.size() < 2 ? area.y1 - area.y0 : std::max(8, bandBytes / (4 * (area.x1 - area.x0)));
    for (int y = area.y0; y < area.y1; y += bandHeight) {
        const IntRect band { area.x0, y, area.x1, std::min(area.y1, y + bandHeight) };
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            const IntRect box = intersection(step->box, band);
            if (!box.isEmpty())
                draw32(destination, *step, box);
        }
    }
}

struct ImageRelease {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using PixmanImage = std::unique_ptr<pixman_image_t, ImageRelease>;

PixmanImage solidImage(std::uint32_t premultiplied)
{
    const auto channel = [&](int shift) { return std::uint16_t((premultiplied >> shift & 0xff) * 0x101); };
    const pixman_color_t color { channel(16), channel(8), channel(0), channel(24) };
    return PixmanImage(pixman_image_create_solid_fill(&color));
}

/// One row of an image: rows of the records need not be whole words apart, as pixman wants them.
PixmanImage rowImage(pixman_format_code_t format, void* first, int width)
{
    return PixmanImage(pixman_image_create_bits_no_clear(
        format, width, 1, static_cast<std::uint32_t*>(first), (width * 4 + 3) & ~3));
}

/// Nothing measures this road: pixman converts, blends and rounds to 5 bits.
void draw16(const LayerInfo& destination, const Step& step)
{
    const LayerInfo& layer = *step.layer;
    const IntRect& box = step.box;
    const int width = box.x1 - box.x0;
    PixmanImage source = solidImage(step.color), mask;
    if (layer.bitmapType == LayerBitmap32 && step.fade != 255)
        mask = solidImage(std::uint32_t(step.fade) << 24);
    for (int y = box.y0; y < box.y1; ++y) {
        std::uint8_t* to = rowOf(destination.colorData, destination.colorBytesPerRow, destination, y)
            + (std::ptrdiff_t(box.x0) - destination.frameMinX) * 2;
        if (layer.bitmapType == LayerBitmap32)
            source = rowImage(PIXMAN_a8r8g8b8, pixelAt(layer, box.x0, y), width);
        else if (layer.bitmapType == LayerBitmapMask)
            mask = rowImage(PIXMAN_a8, coverageAt(layer, box.x0, y), width);
        const PixmanImage row = rowImage(PIXMAN_x1r5g5b5, to, width);
        pixman_image_composite32(
            PIXMAN_OP_OVER, source.get(), mask.get(), row.get(), 0, 0, 0, 0, 0, 0, width, 1);
    }
}

} // namespace

void LayerCompositor::composite(const LayerInfo& destination, const LayerInfo* top)
{
    const IntRect area = touchedBox(destination);
    if (!destination.colorData || area.isEmpty())
        return;
    if (destination.bitmapType != LayerBitmap32 && destination.bitmapType != LayerBitmap16)
        return;

    const std::vector<Step> steps = visibleSteps(area, top);
    if (destination.bitmapType == LayerBitmap32) {
        composite32(destination, area, steps);
        return;
    }
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
        draw16(destination, *step);
}

} // namespace vxr
