#include <vxr/compositing/layers/LayerPlacement.h>

#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/values/IntRect.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

// Cut at multiples of a power of two, so that the part is a different one after far scrolling only.
Rect boundsOfLayer(const VXRLayeredRenderable& renderable, float zoom)
{
    const Rect bounds = renderable.alignmentBounds();
    const float farthest = std::max({ std::abs(bounds.minX()), std::abs(bounds.minY()),
        std::abs(bounds.maxX()), std::abs(bounds.maxY()) });
    const VXRCanvasRole* canvas = renderable.canvas();
    if (farthest * zoom <= 0x1p22f || !canvas)
        return bounds;
    const Rect seen = canvas->clipViewVisibleRect();
    const float step = std::exp2(std::ceil(std::log2(0x1p19f / zoom)));
    const Rect around { (std::floor(seen.minX() / step) - 1) * step,
        (std::floor(seen.minY() / step) - 1) * step, 4 * step, 4 * step };
    const Rect part = intersectionRect(bounds, around);
    return part == Rect {} ? bounds : part;
}

Point placeOfLayer(const Rect& bounds, const Rect& seen, float zoom, bool isFlipped)
{
    const float dx = bounds.origin.x - seen.origin.x;
    const float dy = isFlipped ? bounds.origin.y - seen.origin.y
                               : (seen.origin.y + seen.size.height) - (bounds.origin.y + bounds.size.height);
    // A small nudge at broken zooms, where places meant to be half pixels come out a little below.
    const float bias = VXRFractionalPart(zoom) > 0 ? 0.01f : 0;
    return { VXRRound(dx * zoom + bias), VXRRound(dy * zoom + bias) };
}

Point errorOfPlace(Point place, const Rect& bounds, float zoom, const VXRCanvasRole& canvas)
{
    const Rect seen = canvas.convertRectToWindow(canvas.visibleRect());
    const Point corner = canvas.convertRectToWindow({ bounds.origin, {} }).origin;
    const float right = corner.x - seen.origin.x - place.x;
    const float down = (seen.origin.y + seen.size.height) - corner.y;
    const float below
        = canvas.isFlipped() ? down - place.y : -(down - (place.y + std::trunc(zoom * bounds.size.height)));
    return { right / canvas.viewScale(), below / canvas.viewScale() };
}

Rect rectThatShows(const VXRLayeredRenderable& renderable, const Rect& visible, float zoom)
{
    Rect showing = visible;
    if (renderable.shadow()) {
        // What lies at `visible` casts its shadow somewhere within this; the same distances the other way
        // round lead to all that casts one into `visible`.
        const Rect cast = renderable.shadowBoundsForRect(visible);
        showing = { visible.minX() - (cast.maxX() - visible.maxX()),
            visible.minY() - (cast.maxY() - visible.maxY()), cast.size.width, cast.size.height };
    }
    const Point origin = boundsOfLayer(renderable, zoom).origin;
    if (isNearlyWhole((origin.x - visible.minX()) * zoom)
        && isNearlyWhole((origin.y - visible.minY()) * zoom))
        return showing;
    return insetRect(showing, -1 / zoom, -1 / zoom);
}

} // namespace vxr
