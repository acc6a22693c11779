#include <vxr/compositing/canvas/VXRCanvas.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/platform/base/FirstFailure.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/pixels/LayerCompositor.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>
#include <cmath>

// The two roads of a redraw.

namespace vxr {

namespace {

constexpr std::size_t prefetchDistance = 16;
constexpr std::size_t prefetchedBytes = 128; ///< of a renderable, up to its cached bounds

/// Where a walk will look next: objects lie all over the memory, and asking one for its bounds touches
/// its first lines.
inline void prefetchObject(const VXRRenderable* renderable)
{
    const char* bytes = reinterpret_cast<const char*>(renderable);
    for (std::size_t line = 0; line < prefetchedBytes; line += 64)
        __builtin_prefetch(bytes + line);
}

} // namespace

void VXRCanvas::drawRect(const Rect& dirty)
{
    FirstFailure failure;
    failure.attempt([&] {
        if (renderingDestination() == VXRDestinationCompositor)
            compositeRect(dirty); // nothing accelerated to hand it to
        else
            drawDirectly(dirty);
    });
    clearSubviewCache();
    failure.rethrow();
}

void VXRCanvas::_adjustBitmapRenderingQualityInRenderablesUpdateRect(
    const RenderableList& renderables, const Rect& updateRect)
{
    mBitmapRenderingQualityInfo = std::make_shared<VXRBitmapRenderingQualityInfo>(mBitmapImageQuality);
    for (const auto& renderable : renderables)
        if (rectsIntersect(renderable->erasableBounds(), updateRect))
            renderable->addBitmapsToRenderingQualityInfo(*mBitmapRenderingQualityInfo);
}

void VXRCanvas::drawDirectly(const Rect& dirty)
{
    const RenderableList& renderables = objectsToRender();
    if (mBitmapImageQuality != 2)
        _adjustBitmapRenderingQualityInRenderablesUpdateRect(renderables, dirty);
    std::vector<VXRRenderable*> hit;
    for (std::size_t i = 0; i < renderables.size(); ++i) {
        if (i + prefetchDistance < renderables.size())
            prefetchObject(renderables[i + prefetchDistance].get());
        if (rectsIntersect(renderables[i]->erasableBounds(), dirty))
            hit.push_back(renderables[i].get());
    }
    FirstFailure failure;
    Context& context = currentDrawingPort();
    const bool isRedraw = window() && window()->redrawnPixels() && focusView() == this;
    fillBackground(context, dirty, isRedraw);
    for (VXRRenderable* renderable : hit) {
        failure.attempt([&] {
            const StateSaver saved(context);
            if (isRedraw)
                redraw(*renderable, context);
            else
                renderable->renderLayeredIntoContext(context);
        });
    }
    failure.rethrow();
}

/// In a window the levels are those that the compositor's background has.
void VXRCanvas::fillBackground(Context& context, const Rect& rect, bool isRedraw) const
{
    if (!_backgroundColor)
        return;
    VXRSetColor(*_backgroundColor);
    if (isRedraw && _backgroundColor->alphaComponent() >= 1) {
        const std::uint32_t packed = _colorAsLong(*_backgroundColor);
        const auto channel = [packed](int shift) { return float(packed >> shift & 0xff) / 255; };
        VXRSetColor(*Color::colorWithDeviceRGB(channel(24), channel(16), channel(8)));
    }
    context.fillRect(rect);
}

/// Draws into the window as if all of the window were drawn, and a layer at a time: the parts of a renderable
/// meet each other before they meet what lies below, as they do in a compositor layer. Every paint over
/// another rounds to whole levels, and so both roads round alike. Nothing is drawn where the renderable
/// would not erase it. Changes the context's state.
void VXRCanvas::redraw(VXRRenderable& renderable, Context& context) const
{
    const float slack = paintingSlack(_scale) + placementSlack / _scale;
    const Rect area
        = integralRect(convertRectToWindow(insetRect(renderable.erasableBounds(), -slack, -slack)));
    const bool isLayered = renderable._shouldLayer(); // by itself
    const AffineTransform transform = context.currentTransform();
    context.setBaseTransform({});
    context.clipToRect(area);
    context.setLayerReach(area);
    context.concatTransform(transform);
    if (!isLayered)
        context.beginTransparencyLayer();
    renderable.renderLayeredIntoContext(context);
    if (!isLayered)
        context.endTransparencyLayer();
}

VXRCanvas::CompositeArea VXRCanvas::compositeArea(const Rect& dirty) const
{
    CompositeArea area {};
    if (ScrollView* scrollView = enclosingScrollView())
        area.visible
            = scrollView->contentView().convertRectToView(scrollView->contentView().bounds(), nullptr);
    else
        area.visible = convertRectToWindow(visibleRect());
    const Rect& seen = area.visible;
    const float windowHeight = window() ? window()->frame().size.height : 0;
    area.frameWidth = int(lrintf(seen.size.width));
    area.frameHeight = int(seen.size.height);
    area.x0 = int(seen.origin.x);
    // The window's coordinates grow upwards, its rows of pixels downwards.
    area.y0 = int(windowHeight - (seen.size.height + seen.origin.y));

    const Rect r = integralRect(VXRFlipRect(convertRectToWindow(dirty), seen));
    area.clipMinX = int(std::trunc(r.origin.x) - seen.origin.x);
    area.clipMinY = int(r.origin.y);
    area.clipMaxX = int(std::trunc(r.origin.x + r.size.width) - seen.origin.x - 1);
    area.clipMaxY = int(std::trunc(r.origin.y + r.size.height) - 1);
    return area;
}

void VXRCanvas::collectLayers(const Rect& dirty, std::vector<LayerInfo*>& layers, FirstFailure& failure)
{
    const RenderableList& renderables = objectsToRender();
    for (std::size_t n = renderables.size(); n > 0; --n) {
        if (n > prefetchDistance)
            prefetchObject(renderables[n - 1 - prefetchDistance].get());
        VXRRenderable& renderable = *renderables[n - 1];
        if (!rectsIntersect(renderable.erasableBounds(), dirty))
            continue;
        const std::size_t before = layers.size();
        const bool drawn = failure.attempt([&] {
            renderable.prepareToDraw();
            renderable.addLayersToArray(layers);
        });
        if (!drawn)
            layers.resize(before);
    }
}

void VXRCanvas::compositeRect(const Rect& dirty)
{
    CompositeArea area = compositeArea(dirty);
    if (area.clipMinX > area.clipMaxX || area.clipMinY > area.clipMaxY)
        return;
    area.clipMaxX = std::min(area.clipMaxX, area.frameWidth - 1);
    // Out of sight: nothing to lock for.
    if (area.clipMinX > area.clipMaxX || area.clipMaxX < 0 || area.clipMinY >= area.frameHeight
        || area.clipMaxY < 0)
        return;
    if (!window() || window()->windowNumber() <= 0)
        return;

    const WindowLock lock(*window(), area.visible);
    if (!lock)
        return;
    const WindowBits& bits = lock.bits();
    const int pixelBytes = bits.depthCode == 4 ? 4 : 2;
    LayerInfo destination;
    destination.layerInfoVersion = 1;
    destination.colorData = bits.colorBase + std::ptrdiff_t(area.x0) * pixelBytes
        + std::ptrdiff_t(area.y0) * bits.colorBytesPerRow;
    if (bits.alphaBase)
        destination.alphaData = bits.alphaBase + std::ptrdiff_t(area.y0) * bits.alphaBytesPerRow + area.x0;
    destination.colorBytesPerRow = bits.colorBytesPerRow;
    destination.alphaBytesPerRow = bits.alphaBytesPerRow;
    destination.clipMinX = area.clipMinX;
    destination.clipMaxX = area.clipMaxX;
    destination.clipMinY = area.clipMinY;
    destination.clipMaxY = area.clipMaxY;
    destination.frameMaxX = area.frameWidth;
    destination.frameMaxY = area.frameHeight;
    destination.fade = 1;
    destination.bitmapType = bits.depthCode == 4 ? LayerBitmap32 : LayerBitmap16;
    // A redraw in progress keeps to the window's pixels that are dirty.
    destination.clipMinX = std::max(destination.clipMinX, int(bits.writable.minX()) - area.x0);
    destination.clipMaxX = std::min(destination.clipMaxX, int(bits.writable.maxX()) - 1 - area.x0);
    destination.clipMinY = std::max(destination.clipMinY, int(bits.writable.minY()) - area.y0);
    destination.clipMaxY = std::min(destination.clipMaxY, int(bits.writable.maxY()) - 1 - area.y0);

    FirstFailure failure;
    std::vector<LayerInfo*> layers;
    collectLayers(dirty, layers, failure);
    if (LayerInfo* background = _backgroundLayer())
        layers.push_back(background);
    for (std::size_t i = 0; i < layers.size(); ++i)
        layers[i]->next = i + 1 < layers.size() ? layers[i + 1] : nullptr;
    if (!layers.empty())
        LayerCompositor::composite(destination, layers.front());
    failure.rethrow();
}

LayerInfo* VXRCanvas::_backgroundLayer()
{
    if (!_backgroundColor)
        return nullptr;
    // Limits that cover any window.
    constexpr std::int32_t right = 11280, bottom = 11024;
    LayerInfo& layer = mBackgroundLayer;
    layer = {};
    layer.layerInfoVersion = 1;
    layer.fade = 1;
    layer.constantColor = _colorAsLong(*_backgroundColor);
    layer.clipMaxX = layer.frameMaxX = layer.opaqueMaxX = right;
    layer.clipMaxY = layer.frameMaxY = layer.opaqueMaxY = bottom;
    return &layer;
}

std::uint32_t VXRCanvas::_colorAsLong(Color& color)
{
    const auto rgb = color.colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    if (!rgb)
        return 255;
    const auto channel
        = [](float component) { return std::uint32_t(std::int32_t(VXRRound(component * 255.0f))); };
    return channel(rgb->redComponent()) << 24 | channel(rgb->greenComponent()) << 16
        | channel(rgb->blueComponent()) << 8 | 255;
}

} // namespace vxr
