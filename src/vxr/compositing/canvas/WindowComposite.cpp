#include <vxr/compositing/canvas/WindowComposite.h>

#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/base/FirstFailure.h>
#include <vxr/platform/graphics/pixels/LayerCompositor.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRRenderable.h>

#include <cmath>

namespace vxr {

// The window's coordinates grow upwards, its rows of pixels downwards.
CompositeArea::CompositeArea(const Window& window, const Rect& visible)
    : x0(pixelCoordinate(visible.origin.x))
    , y0(pixelCoordinate(window.frame().size.height - (visible.size.height + visible.origin.y)))
    , wide(pixelCoordinate(std::nearbyint(visible.size.width)))
    , high(pixelCoordinate(visible.size.height))
    , mVisible(visible)
{
}

IntRect CompositeArea::pixelsTouchedBy(const Rect& inWindow) const
{
    const Rect r = integralRect(VXRFlipRect(inWindow, mVisible));
    const auto column = [this](float x) { return pixelCoordinate(std::trunc(x) - mVisible.origin.x); };
    const auto row = [](float y) { return pixelCoordinate(y); };
    const IntRect touched { column(r.minX()), row(r.minY()), column(r.maxX()), row(r.maxY()) };
    return intersection(touched, { 0, 0, wide, high }).moved(x0, y0);
}

WindowComposite::WindowComposite(const WindowBits& bits, const CompositeArea& area, const IntRect& changed,
    LayerInfo* background, FirstFailure& failure)
    : mBackground(background)
    , mFailure(failure)
{
    const int pixelBytes = bits.depthCode == 4 ? 4 : 2;
    mDestination.layerInfoVersion = 1;
    mDestination.fade = 1;
    mDestination.bitmapType = bits.depthCode == 4 ? LayerBitmap32 : LayerBitmap16;
    mDestination.colorData = bits.colorBase + std::ptrdiff_t(area.x0) * pixelBytes
        + std::ptrdiff_t(area.y0) * bits.colorBytesPerRow;
    if (bits.alphaBase)
        mDestination.alphaData = bits.alphaBase + std::ptrdiff_t(area.y0) * bits.alphaBytesPerRow + area.x0;
    mDestination.colorBytesPerRow = bits.colorBytesPerRow;
    mDestination.alphaBytesPerRow = bits.alphaBytesPerRow;
    mDestination.setClip(changed.moved(-area.x0, -area.y0));
    mDestination.setFrame({ 0, 0, area.wide, area.high });
}

/// Appends the records of one renderable, none of them when drawing fails.
void WindowComposite::collectLayersOf(VXRRenderable& renderable, std::vector<LayerInfo*>& layers)
{
    const std::size_t before = layers.size();
    const bool drawn = mFailure.attempt([&] {
        renderable.prepareToDraw();
        renderable.addLayersToArray(layers);
    });
    if (!drawn)
        layers.resize(before);
}

void WindowComposite::blend(const std::vector<LayerInfo*>& layers)
{
    for (std::size_t i = 0; i < layers.size(); ++i)
        layers[i]->next = i + 1 < layers.size() ? layers[i + 1] : nullptr;
    if (!layers.empty())
        LayerCompositor::composite(mDestination, layers.front());
}

bool WindowComposite::drawAtOnce(const RenderableList& hit)
{
    std::vector<LayerInfo*> layers;
    for (auto place = hit.rbegin(); place != hit.rend(); ++place) {
        collectLayersOf(**place, layers);
        if (VXRLayerBudget::isOverBySlack())
            return false;
    }
    if (mBackground)
        layers.push_back(mBackground);
    blend(layers);
    return true;
}

bool WindowComposite::drawInParts(const RenderableList& hit, VXRLayerBudget::Composite& budget)
{
    std::vector<LayerInfo*> layers, parts;
    if (mBackground)
        layers.push_back(mBackground);
    bool atOnce = true;
    budget.trim();
    for (const auto& renderable : hit) {
        parts.clear();
        collectLayersOf(*renderable, parts);
        layers.insert(layers.begin(), parts.begin(), parts.end());
        if (!VXRLayerBudget::isOverBySlack())
            continue;
        atOnce = false;
        blend(layers);
        layers.clear();
        budget.trim();
    }
    blend(layers);
    return atOnce;
}

} // namespace vxr
