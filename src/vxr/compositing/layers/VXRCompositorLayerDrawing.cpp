#include <vxr/compositing/layers/VXRCompositorLayer.h>

#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/views/View.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <cmath>

// How a tile gets its pixels.

namespace vxr {

/// Sets a rendering mode for the length of a pass, however it ends.
class VXRCompositorLayer::RenderingMode {
public:
    RenderingMode(VXRCompositorLayer& layer, int mode)
        : mLayer(layer)
    {
        mLayer.setRenderingMode(mode);
    }
    ~RenderingMode() { mLayer.setRenderingMode(VXRRenderingModeNone); }
    RenderingMode(const RenderingMode&) = delete;
    RenderingMode& operator=(const RenderingMode&) = delete;

private:
    VXRCompositorLayer& mLayer;
};

void VXRCompositorLayer::_updateTile(VXRTile& tile)
{
    _renderable->drawWhereBoundsWereComputed([&] { drawTile(tile); });
}

void VXRCompositorLayer::drawTile(VXRTile& tile)
{
    const bool mixed = hasShadow() && hasMixedContent();
    tile.setArea(scaleRect(_renderable->alignmentBounds()));
    const bool wholly = _completelyInvalid || tile.isDirty() || _invalidRect == Rect {};
    tile.beginUpdate(wholly ? tile.bitmapRect() : invalidRows(tile), !wholly || shouldClearOnUpdate());
    try {
        const RenderingMode mode(*this, mixed ? VXRRenderingModeShadowed : VXRRenderingModeSingle);
        renderIntoTile(tile);
        tile.buildShadow(_renderable->shadow());
        tile.setShadowClip(shadowClipForIndex(tile.index()));
        if (mixed) {
            setRenderingMode(VXRRenderingModeShadowless);
            renderIntoTile(tile);
        } else {
            tile.freeShadowlessData();
        }
        if (_renderable->canvas() && _renderable->canvas()->isAccelerated())
            tile.updateTextures();
    } catch (...) {
        tile.abandonUpdate();
        throw;
    }
    tile.finishUpdate();
    _invalidShadow = false;
}

/// Rows of the tile's bitmap that the invalid part touches, counted from the tile's upper edge, with one
/// more on either side for smooth edges. Rows and not a box: the rasteriser cuts outlines where they leave
/// a clip at its sides, and samples a row with such a cut less finely, so that only whole rows come out
/// exactly as in a drawing of everything.
IntRect VXRCompositorLayer::invalidRows(const VXRTile& tile) const
{
    const Rect changed = boundsOfTransformedRect(_renderable->transform(), _invalidRect);
    const Point origin = _renderable->alignmentBounds().origin, offset = offsetForIndex(tile.index());
    const Rect scaled = scaleRect(offsetRect(changed, -origin.x, -origin.y));
    const Rect rows = integralRect(offsetRect(scaled, -offset.x, -offset.y));
    const int margin = int(tile.shadowBuffer().height);
    return { 0, pixelCoordinate(rows.minY()) + margin - 1, tile.pixelsWide(),
        pixelCoordinate(rows.maxY()) + margin + 1 };
}

void VXRCompositorLayer::renderIntoTile(VXRTile& tile)
{
    const bool shadowless = renderingMode() == VXRRenderingModeShadowless;
    drawIntoContext(tile, shadowless ? tile.shadowlessContext() : tile.shadowedContext());
}

namespace {

/// In pixels. The tiles of a layer are drawn through one as wide as it is, since the rasteriser samples less
/// finely in rows in which an outline leaves what is drawn into at a side. Where that would cost too much,
/// such rows come out up to 16 levels different from those of a single tile.
constexpr float widestDrawnWhole = 4096;

/// A distance in pixels that single precision has left a hair beside a whole number is taken as whole. The
/// rasteriser's own grid is coarser, but what falls on another of its points than without a layer would
/// come out a level different.
float wholeIfNearly(double pixels)
{
    constexpr double hair = 1.0 / 512;
    const double whole = std::round(pixels);
    return float(std::abs(pixels - whole) < hair ? whole : pixels);
}

} // namespace

void VXRCompositorLayer::drawIntoContext(VXRTile& tile, Context& context)
{
    const Rect bounds = _renderable->alignmentBounds();
    const Point offset = offsetForIndex(tile.index());
    const Size margin = tile.shadowBuffer();
    const StateSaver saved(context);
    context.translate(0, float(tile.pixelsHigh()));
    context.scale(1, -1);
    context.translate(margin.width, margin.height);

    const FocusLock focused(flippedView());
    const CurrentContextScope current(context, true, true);
    if (_renderable->canvas() && _renderable->canvas()->isAccelerated())
        tile.waitForPendingTextureCommands();

    // Now in pixels from the tile's upper left corner. Nothing is drawn further out of the alignment
    // bounds than what the layer shows.
    const auto out = float(tile.overflow());
    const Rect scaled = scaleRect(bounds);
    const Rect shown = insetRect(
        { -offset.x, -offset.y, std::ceil(scaled.size.width), std::ceil(scaled.size.height) }, -out, -out);
    context.clipToRect(shown);

    const double zoom = _zoomFactor;
    context.concatTransform(
        { _zoomFactor, 0, 0, _zoomFactor, wholeIfNearly(-(double(bounds.origin.x) * zoom + double(offset.x))),
            wholeIfNearly(-(double(bounds.origin.y) * zoom + double(offset.y))) });
    const Size area = tile.areaSize();
    const Rect part { bounds.origin.x + offset.x / _zoomFactor, bounds.origin.y + offset.y / _zoomFactor,
        area.width / _zoomFactor, area.height / _zoomFactor };
    if (!context.clipChangesPixels() || tilesWide() == 1 || shown.size.width > widestDrawnWhole) {
        _renderable->drawRect(part);
        return;
    }
    context.setLayerReach({ shown.minX() + margin.width, 0, shown.size.width, float(tile.pixelsHigh()) });
    context.beginTransparencyLayer();
    _renderable->drawRect(part);
    context.endTransparencyLayer();
}

} // namespace vxr
