#include <vxr/compositing/layers/TilePainter.h>

#include <vxr/compositing/layers/VXRCompositorLayer.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/views/View.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <cmath>

namespace vxr {

namespace {

/// Sets a rendering mode for the length of a pass, however it ends.
class RenderingMode {
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

} // namespace

TilePainter::TilePainter(VXRCompositorLayer& layer, VXRTile& tile)
    : mLayer(layer)
    , mRenderable(*layer.renderable())
    , mTile(tile)
    , mZoom(layer.zoomFactor())
    , mOffset(layer.offsetForIndex(tile.index()))
{
}

void TilePainter::update(const std::optional<Rect>& part)
{
    mTile.setArea(mLayer.scaleRect(mLayer.bounds()));
    const bool wholly = !part || mTile.isDirty();
    mTile.beginUpdate(
        wholly ? mTile.bitmapRect() : pixelsTouchedBy(*part), !wholly || mLayer.shouldClearOnUpdate());
    try {
        drawPasses();
    } catch (...) {
        mTile.abandonUpdate();
        throw;
    }
    mTile.finishUpdate();
}

void TilePainter::drawPasses()
{
    const bool mixed = mLayer.hasShadow() && mLayer.hasMixedContent();
    const RenderingMode mode(mLayer, mixed ? VXRRenderingModeShadowed : VXRRenderingModeSingle);
    draw(mTile.shadowedContext());
    mTile.buildShadow(mRenderable.shadow());
    mTile.setShadowClip(mLayer.shadowClipForIndex(mTile.index()));
    if (mixed) {
        mLayer.setRenderingMode(VXRRenderingModeShadowless);
        draw(mTile.shadowlessContext());
    } else {
        mTile.freeShadowlessData();
    }
    if (mRenderable.canvas() && mRenderable.canvas()->isAccelerated())
        mTile.updateTextures();
}

/// In pixels from the tile's own upper left corner, its margin not counted.
Rect TilePainter::tileRect(const Rect& r) const
{
    const Point origin = mLayer.bounds().origin;
    return { (r.origin.x - origin.x) * mZoom - mOffset.x, (r.origin.y - origin.y) * mZoom - mOffset.y,
        r.size.width * mZoom, r.size.height * mZoom };
}

IntRect TilePainter::pixelsTouchedBy(const Rect& canvasRect) const
{
    const Rect r = tileRect(canvasRect);
    const int margin = mTile.margin();
    return touchedPixels(r.minX(), r.minY(), r.maxX(), r.maxY()).moved(margin, margin).grown(1);
}

void TilePainter::draw(Context& context) const
{
    const Rect bounds = mLayer.bounds();
    const StateSaver saved(context);
    context.translate(0, float(mTile.pixelsHigh()));
    context.scale(1, -1);
    context.translate(float(mTile.margin()), float(mTile.margin()));

    const FocusLock focused(VXRCompositorLayer::flippedView());
    const CurrentContextScope current(context, true, true);
    if (mRenderable.canvas() && mRenderable.canvas()->isAccelerated())
        mTile.waitForPendingTextureCommands();

    // Now in pixels from the tile's upper left corner. Nothing is drawn further out of the alignment bounds
    // than what the layer shows.
    const auto out = float(mTile.overflow());
    const Rect layer = tileRect(bounds);
    context.clipToRect(insetRect(
        { -mOffset.x, -mOffset.y, std::ceil(layer.size.width), std::ceil(layer.size.height) }, -out, -out));

    // Whole places stay whole: a layer shows what is drawn without one.
    const auto placed = [zoom = double(mZoom)](float origin, float offset) {
        return float(wholeIfNearly(-(double(origin) * zoom + double(offset))));
    };
    context.concatTransform(
        { mZoom, 0, 0, mZoom, placed(bounds.origin.x, mOffset.x), placed(bounds.origin.y, mOffset.y) });
    const Size area = mTile.areaSize();
    mRenderable.drawRect({ bounds.origin.x + mOffset.x / mZoom, bounds.origin.y + mOffset.y / mZoom,
        area.width / mZoom, area.height / mZoom });
}

} // namespace vxr
