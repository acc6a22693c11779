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

void VXRCanvas::drawRect(const Rect& dirty)
{
    Window* const seen = window();
    draw({ dirty, currentDrawingPort(), nullptr,
        seen ? IntRect { 0, 0, seen->width(), seen->height() } : IntRect {} });
}

/// What is drawn is chosen by bounds, and the edges of a renderable reach a little beyond them; so a window's
/// redraw asks for more than is dirty, and only the dirty pixels change.
void VXRCanvas::draw(const DrawRequest& request)
{
    DrawRequest grown = request;
    const float slack = request.window ? erasingSlack + placementSlack / _scale : 0;
    grown.dirty = insetRect(request.dirty, -slack, -slack);
    FirstFailure failure;
    failure.attempt([&] {
        if (renderingDestination() == VXRDestinationCompositor)
            composite(grown.dirty, grown.pixels); // nothing accelerated to hand it to
        else
            drawDirectly(grown);
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

void VXRCanvas::drawDirectly(const DrawRequest& request)
{
    const RenderableList hit = objectsToRedraw(request.dirty);
    if (mBitmapImageQuality != 2)
        _adjustBitmapRenderingQualityInRenderablesUpdateRect(hit, request.dirty);
    FirstFailure failure;
    fillBackground(request);
    for (const auto& renderable : hit) {
        failure.attempt([&] {
            const StateSaver saved(request.context);
            if (request.window)
                redraw(*renderable, request.context);
            else
                renderable->renderLayeredIntoContext(request.context);
        });
    }
    failure.rethrow();
}

/// In a window the levels are those that the compositor's background has.
void VXRCanvas::fillBackground(const DrawRequest& request) const
{
    if (!_backgroundColor)
        return;
    VXRSetColor(*_backgroundColor);
    if (request.window && _backgroundColor->alphaComponent() >= 1) {
        const std::uint32_t packed = _colorAsLong(*_backgroundColor);
        const auto channel = [packed](int shift) { return float(packed >> shift & 0xff) / 255; };
        VXRSetColor(*Color::colorWithDeviceRGB(channel(24), channel(16), channel(8)));
    }
    request.context.fillRect(request.dirty);
}

/// Draws into the window as if all of the window were drawn, but nothing where the renderable would not erase
/// it. Changes the context's state.
void VXRCanvas::redraw(VXRRenderable& renderable, Context& context) const
{
    const float slack = paintingSlack(_scale) + placementSlack / _scale;
    const Rect area
        = integralRect(convertRectToWindow(insetRect(renderable.erasableBounds(), -slack, -slack)));
    const bool needsLayer = context.clipChangesPixels() && !renderable._shouldLayer();
    const AffineTransform transform = context.currentTransform();
    context.setBaseTransform({});
    context.clipToRect(area);
    context.setLayerReach(area);
    context.concatTransform(transform);
    if (needsLayer)
        context.beginTransparencyLayer();
    renderable.renderLayeredIntoContext(context);
    if (needsLayer)
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

namespace {

void compositeChain(const LayerInfo& destination, const std::vector<LayerInfo*>& layers)
{
    for (std::size_t i = 0; i < layers.size(); ++i)
        layers[i]->next = i + 1 < layers.size() ? layers[i + 1] : nullptr;
    if (!layers.empty())
        LayerCompositor::composite(destination, layers.front());
}

/// Appends the records of one renderable, none of them when drawing fails.
void collectLayersOf(VXRRenderable& renderable, std::vector<LayerInfo*>& layers, FirstFailure& failure)
{
    const std::size_t before = layers.size();
    const bool drawn = failure.attempt([&] {
        renderable.prepareToDraw();
        renderable.addLayersToArray(layers);
    });
    if (!drawn)
        layers.resize(before);
}

} // namespace

/// All at once, topmost first; false, and nothing drawn, when the layers' memory doesn't suffice for that.
bool VXRCanvas::compositeAtOnce(
    const LayerInfo& destination, const RenderableList& hit, FirstFailure& failure)
{
    std::vector<LayerInfo*> layers;
    for (auto place = hit.rbegin(); place != hit.rend(); ++place) {
        collectLayersOf(**place, layers, failure);
        if (VXRLayerBudget::isOverBySlack())
            return false;
    }
    if (LayerInfo* background = _backgroundLayer())
        layers.push_back(background);
    compositeChain(destination, layers);
    return true;
}

/// From the bottom up, a few layers at a time: what each adds is rounded in the same order.
void VXRCanvas::compositeInParts(const LayerInfo& destination, const RenderableList& hit,
    VXRLayerBudget::Composite& budget, FirstFailure& failure)
{
    std::vector<LayerInfo*> layers, parts;
    if (LayerInfo* background = _backgroundLayer())
        layers.push_back(background);
    mCompositesInParts = false;
    budget.trim();
    for (const auto& renderable : hit) {
        parts.clear();
        collectLayersOf(*renderable, parts, failure);
        layers.insert(layers.begin(), parts.begin(), parts.end());
        if (!VXRLayerBudget::isOverBySlack())
            continue;
        mCompositesInParts = true; // and so will the next one
        compositeChain(destination, layers);
        layers.clear();
        budget.trim();
    }
    compositeChain(destination, layers);
}

void VXRCanvas::compositeRect(const Rect& dirty)
{
    if (const Window* seen = window())
        composite(dirty, { 0, 0, seen->width(), seen->height() });
}

/// Changes no other pixels of the window than those.
void VXRCanvas::composite(const Rect& dirty, const IntRect& pixels)
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

    const IntRect changed = intersection(pixels,
        IntRect { area.clipMinX, area.clipMinY, area.clipMaxX + 1, area.clipMaxY + 1 }.moved(
            area.x0, area.y0));
    if (changed.isEmpty())
        return;
    const Rect inWindow { float(changed.x0), float(window()->height() - changed.y1), float(changed.width()),
        float(changed.height()) };
    const WindowLock lock(*window(), intersectionRect(inWindow, area.visible));
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
    destination.clipMinX = changed.x0 - area.x0;
    destination.clipMaxX = changed.x1 - 1 - area.x0;
    destination.clipMinY = changed.y0 - area.y0;
    destination.clipMaxY = changed.y1 - 1 - area.y0;
    destination.frameMaxX = area.frameWidth;
    destination.frameMaxY = area.frameHeight;
    destination.fade = 1;
    destination.bitmapType = bits.depthCode == 4 ? LayerBitmap32 : LayerBitmap16;
    FirstFailure failure;
    VXRLayerBudget::Composite budget;
    const RenderableList hit = objectsToRedraw(dirty);
    if (mCompositesInParts || !compositeAtOnce(destination, hit, failure))
        compositeInParts(destination, hit, budget, failure);
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
