#include <vxr/compositing/layers/VXRCompositorLayer.h>

#include <vxr/compositing/layers/VXRHackView.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/views/Window.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

std::shared_ptr<VXRRenderableLayer> VXRCompositorLayer::layerWithRenderable(VXRLayeredRenderable& renderable)
{
    auto layer = std::make_shared<VXRCompositorLayer>();
    layer->setRenderable(&renderable);
    return layer;
}

VXRCompositorLayer::VXRCompositorLayer()
{
    _tiles.push_back(VXRTile::tileWithLayer(*this));
    invalidateLayer();
}

VXRCompositorLayer::~VXRCompositorLayer() = default;

View& VXRCompositorLayer::flippedView()
{
    struct OffscreenWindow {
        Window window { { 0, 0, 1, 1 } };
        std::shared_ptr<VXRHackView> view = std::make_shared<VXRHackView>(Rect { 0, 0, 1, 1 });
        OffscreenWindow() { window.contentView()->addSubview(view); }
    };
    static OffscreenWindow offscreen;
    return *offscreen.view;
}

void VXRCompositorLayer::setRenderable(VXRLayeredRenderable* renderable)
{
    _renderable = renderable;
    if (renderable)
        _shouldClearOnUpdate = renderable->layerShouldClearOnUpdate();
}

// Invalidation.

void VXRCompositorLayer::invalidateLayer() { setNeedsDisplay(true); }

void VXRCompositorLayer::setNeedsDisplay(bool needs)
{
    _completelyInvalid = needs;
    _invalidShadow = needs;
    if (View* view = _renderable ? _renderable->view() : nullptr)
        view->setNeedsDisplay(needs);
    _invalidRect = {};
}

void VXRCompositorLayer::setNeedsDisplayInRect(const Rect& rect)
{
    _invalidRect = unionRect(_invalidRect, rect);
}

bool VXRCompositorLayer::isInvalid() const { return _completelyInvalid || _invalidRect != Rect {}; }

void VXRCompositorLayer::setZoom(float zoom)
{
    if (zoom == _zoomFactor)
        return;
    _zoomFactor = zoom;
    for (const auto& tile : _tiles)
        tile->setZoom(zoom);
    invalidateLayer();
}

bool VXRCompositorLayer::hasShadow() const { return _renderable && _renderable->shadow(); }

void VXRCompositorLayer::setHasMixedContent(bool mixed)
{
    if (mixed == _hasMixedContent)
        return;
    _hasMixedContent = mixed;
    if (mixed) {
        if (hasShadow())
            invalidateLayer();
        return;
    }
    for (const auto& tile : _tiles)
        tile->freeShadowlessData();
}

int VXRCompositorLayer::renderingMode() const
{
    return _renderable ? _renderable->renderingMode() : VXRRenderingModeNone;
}

void VXRCompositorLayer::setRenderingMode(int mode)
{
    if (_renderable)
        _renderable->setRenderingMode(mode);
}

// The grid.

Rect VXRCompositorLayer::scaleRect(const Rect& r) const
{
    return { r.origin.x * _zoomFactor, r.origin.y * _zoomFactor, r.size.width * _zoomFactor,
        r.size.height * _zoomFactor };
}

bool VXRCompositorLayer::needsMultipleTilesInView(const VXRCanvasRole&) const
{
    if (!_renderable->allowsTiling())
        return false;
    const Size size = _renderable->alignmentBounds().size;
    const auto side = float(VXRTile::tileSize());
    return size.width * _zoomFactor > side || size.height * _zoomFactor > side;
}

int VXRCompositorLayer::tilesWide() const
{
    if (!_multipleTiles)
        return 1;
    return int(std::ceil(scaleRect(_renderable->alignmentBounds()).size.width / float(VXRTile::tileSize())));
}

int VXRCompositorLayer::tilesHigh() const
{
    if (!_multipleTiles)
        return 1;
    return int(std::ceil(scaleRect(_renderable->alignmentBounds()).size.height / float(VXRTile::tileSize())));
}

Point VXRCompositorLayer::offsetForIndex(int index) const
{
    const int wide = std::max(tilesWide(), 1);
    return { float((index % wide) * VXRTile::tileSize()), float((index / wide) * VXRTile::tileSize()) };
}

int VXRCompositorLayer::maxNumberOfValidTiles() const
{
    const VXRCanvasRole* canvas = _renderable->canvas();
    if (!canvas)
        return 0;
    // The visible size in canvas units, whatever the zoom.
    const Size seen = canvas->visibleRect().size;
    const auto side = float(VXRTile::tileSize());
    return (int(std::ceil(seen.width / side)) + 1) * (int(std::ceil(seen.height / side)) + 1) * 2;
}

std::vector<int> VXRCompositorLayer::tileIndicesHitByRect(const Rect& rect) const
{
    const Rect layer = scaleRect(_renderable->alignmentBounds());
    const Rect hit = intersectionRect(scaleRect(rect), layer);
    if (hit == Rect {})
        return {};
    const int side = VXRTile::tileSize();
    const int right = int(std::floor(hit.origin.x + hit.size.width - layer.origin.x));
    const int bottom = int(std::floor(hit.origin.y + hit.size.height - layer.origin.y));
    const int firstColumn = int(std::floor((hit.origin.x - layer.origin.x) / float(side)));
    const int firstRow = int(std::floor((hit.origin.y - layer.origin.y) / float(side)));
    // A rectangle that ends on a tile's edge doesn't touch the next one.
    const int lastColumn = right / side - (right % side == 0);
    const int lastRow = bottom / side - (bottom % side == 0);

    std::vector<int> indices;
    const int wide = tilesWide();
    for (int row = firstRow; row <= lastRow; ++row)
        for (int column = firstColumn; column <= lastColumn; ++column)
            indices.push_back(row * wide + column);
    return indices;
}

std::shared_ptr<VXRTile> VXRCompositorLayer::tileContainingPoint(Point p)
{
    if (!_multipleTiles) {
        if (!_completelyInvalid && _tiles.front()->isDirty())
            _rebuild(); // its pixels were dropped
        return _tiles.front();
    }
    const auto side = float(VXRTile::tileSize());
    return tileWithIndex(int(p.x / side) + int(p.y / side) * tilesWide());
}

bool VXRCompositorLayer::tileContainsRect(const VXRTile& tile, const Rect& rect) const
{
    const int wide = std::max(tilesWide(), 1), side = VXRTile::tileSize();
    const int column = tile.index() % wide, row = tile.index() / wide;
    return int(rect.origin.x) / side <= column && column <= int(rect.origin.x + rect.size.width) / side
        && int(rect.origin.y) / side <= row && row <= int(rect.origin.y + rect.size.height) / side;
}

int VXRCompositorLayer::shadowClipForIndex(int index) const
{
    const int wide = std::max(tilesWide(), 1), high = tilesHigh();
    int sides = VXRTileSideTop | VXRTileSideBottom | VXRTileSideLeft | VXRTileSideRight;
    if (index % wide == 0)
        sides &= ~VXRTileSideLeft;
    if ((index + 1) % wide == 0)
        sides &= ~VXRTileSideRight;
    if (index < wide)
        sides &= ~VXRTileSideTop;
    if (index >= wide * (high - 1))
        sides &= ~VXRTileSideBottom;
    return sides;
}

/// The invalid part and all that its shadow can reach, in layer pixels.
Rect VXRCompositorLayer::invalidLayerRect() const
{
    const Rect changed = boundsOfTransformedRect(_renderable->transform(), _invalidRect);
    const Rect reached = _renderable->shadowBoundsForRect(changed);
    const Point origin = _renderable->alignmentBounds().origin;
    return scaleRect(offsetRect(reached, -origin.x, -origin.y));
}

/// The oldest tile that this pass doesn't show.
std::shared_ptr<VXRTile> VXRCompositorLayer::tileToReuse() const
{
    if (int(_tiles.size()) <= maxNumberOfValidTiles())
        return nullptr;
    for (const auto& tile : _tiles)
        if (std::find(_activeTiles.begin(), _activeTiles.end(), tile) == _activeTiles.end())
            return tile;
    return nullptr;
}

std::shared_ptr<VXRTile> VXRCompositorLayer::tileWithIndex(int index)
{
    const auto found = std::find_if(
        _tiles.begin(), _tiles.end(), [index](const auto& tile) { return tile->index() == index; });
    std::shared_ptr<VXRTile> tile;
    if (found != _tiles.end()) {
        tile = *found;
        // A tile repeats its neighbours' pixels as far as its margin goes.
        const float margin = tile->shadowBuffer().width;
        if (_completelyInvalid || tile->isDirty()
            || (_invalidRect != Rect {}
                && tileContainsRect(*tile, insetRect(invalidLayerRect(), -margin, -margin))))
            _updateTile(*tile);
    } else {
        tile = tileToReuse();
        if (tile)
            std::erase(_tiles, tile);
        else
            tile = VXRTile::fixedTileWithLayerZoom(*this, _zoomFactor);
        _tiles.push_back(tile);
        tile->setIndex(index);
        tile->setDirty(true);
        _updateTile(*tile);
    }
    const Point origin = _originPosition(), offset = offsetForIndex(index);
    tile->offsetTo({ origin.x + offset.x, origin.y + offset.y });
    return tile;
}

// Placement.

Point VXRCompositorLayer::placeOfLayer(const Rect& bounds, const Rect& seen, float zoom, bool isFlipped)
{
    const float dx = bounds.origin.x - seen.origin.x;
    const float dy = isFlipped ? bounds.origin.y - seen.origin.y
                               : (seen.origin.y + seen.size.height) - (bounds.origin.y + bounds.size.height);
    // A small nudge at broken zooms, where places meant to be half pixels come out a little below.
    const float bias = VXRFractionalPart(zoom) > 0 ? 0.01f : 0;
    return { VXRRound(dx * zoom + bias), VXRRound(dy * zoom + bias) };
}

Point VXRCompositorLayer::_originPosition() const
{
    const VXRCanvasRole* canvas = _renderable->canvas();
    return placeOfLayer(_renderable->alignmentBounds(), canvas ? canvas->clipViewVisibleRect() : Rect {},
        _zoomFactor, !canvas || canvas->isFlipped());
}

void VXRCompositorLayer::computeErrorInView(const VXRCanvasRole& canvas)
{
    const Rect seen = canvas.convertRectToWindow(canvas.visibleRect());
    const Rect bounds = _renderable->alignmentBounds();
    const float scaledHeight = _zoomFactor * bounds.size.height;
    const Point origin = _originPosition();
    const Point place = canvas.convertRectToWindow({ bounds.origin, {} }).origin;
    _error.x = (place.x - seen.origin.x - origin.x) / canvas.viewScale();
    float down = (seen.origin.y + seen.size.height) - place.y;
    down = canvas.isFlipped() ? down - origin.y : -(down - (origin.y + std::trunc(scaledHeight)));
    _error.y = down / canvas.viewScale();
}

// A pass.

/// The tile of a shadow in sight may itself be out of sight. And where the layer's place has to be rounded
/// to whole pixels, a pixel more of it may come into sight.
Rect VXRCompositorLayer::rectWhoseTilesShow(const Rect& visible) const
{
    Rect showing = visible;
    if (hasShadow()) {
        // What lies at `visible` casts its shadow somewhere within this; the same distances the other way
        // round lead to all that casts one into `visible`.
        const Rect cast = _renderable->shadowBoundsForRect(visible);
        showing = { visible.minX() - (cast.maxX() - visible.maxX()),
            visible.minY() - (cast.maxY() - visible.maxY()), cast.size.width, cast.size.height };
    }
    const Point origin = _renderable->alignmentBounds().origin;
    if (isNearlyWhole((origin.x - visible.minX()) * _zoomFactor)
        && isNearlyWhole((origin.y - visible.minY()) * _zoomFactor))
        return showing;
    return insetRect(showing, -1 / _zoomFactor, -1 / _zoomFactor);
}

void VXRCompositorLayer::prepareGrid(const Rect& visible)
{
    if (!_multipleTiles || _completelyInvalid)
        _tiles.clear();
    _multipleTiles = true;
    for (const int index : tileIndicesHitByRect(rectWhoseTilesShow(visible)))
        _activeTiles.push_back(tileWithIndex(index));
    markStaleTilesDirty();
    _completelyInvalid = false;
}

/// Tiles out of sight have missed a partial change: they are drawn wholly when they come back.
void VXRCompositorLayer::markStaleTilesDirty()
{
    if (_invalidRect == Rect {})
        return;
    for (const auto& tile : _tiles) {
        const float margin = tile->shadowBuffer().width;
        const bool isActive = std::find(_activeTiles.begin(), _activeTiles.end(), tile) != _activeTiles.end();
        if (!isActive && tileContainsRect(*tile, insetRect(invalidLayerRect(), -margin, -margin)))
            tile->setDirty(true);
    }
}

void VXRCompositorLayer::prepareToDraw()
{
    const VXRCanvasRole* canvas = _renderable ? _renderable->canvas() : nullptr;
    if (!canvas)
        return;
    const bool multiple = needsMultipleTilesInView(*canvas);
    if (_completelyInvalid)
        computeErrorInView(*canvas);
    _activeTiles.clear();
    if (multiple) {
        prepareGrid(canvas->superviewVisibleRect());
    } else {
        if (_multipleTiles) {
            _multipleTiles = false;
            _tiles = { VXRTile::tileWithLayer(*this) };
        }
        VXRTile& tile = *_tiles.front();
        if (isInvalid() || tile.isDirty())
            _rebuild();
        tile.offsetTo(_originPosition());
        _activeTiles.push_back(_tiles.front());
    }
    _invalidRect = {};
    _renderable->setViewShouldRender(false);
}

void VXRCompositorLayer::_rebuild()
{
    VXRTile& tile = *_tiles.front();
    tile.setArea(scaleRect(_renderable->alignmentBounds()));
    _updateTile(tile);
    _completelyInvalid = false;
    _invalidRect = {};
}

// Records and textures.

namespace {

/// Records of no width or height are not worth a texture.
bool layerHasDimension(const LayerInfo& info)
{
    return info.clipMinX != info.clipMaxX && info.clipMinY != info.clipMaxY;
}

using Tiles = std::vector<std::shared_ptr<VXRTile>>;

void appendInfos(const Tiles& tiles, LayerInfo* (VXRTile::*info)(), std::vector<LayerInfo*>& infos)
{
    for (const auto& tile : tiles)
        if (LayerInfo* record = ((*tile).*info)())
            infos.push_back(record);
}

void appendTextures(const Tiles& tiles, LayerInfo* (VXRTile::*info)(),
    VXRTexture* (VXRTile::*texture)() const, std::vector<VXRTexture*>& textures)
{
    for (const auto& tile : tiles) {
        const LayerInfo* record = ((*tile).*info)();
        VXRTexture* found = ((*tile).*texture)();
        if (record && layerHasDimension(*record) && found)
            textures.push_back(found);
    }
}

} // namespace

void VXRCompositorLayer::addLayerInfosToArray(std::vector<LayerInfo*>& infos)
{
    for (const auto& tile : _activeTiles)
        tile->noteComposed();
    appendInfos(_activeTiles, &VXRTile::layerInfo, infos);
}

void VXRCompositorLayer::addShadowInfosToArray(std::vector<LayerInfo*>& infos)
{
    appendInfos(_activeTiles, &VXRTile::shadowInfo, infos);
}

void VXRCompositorLayer::addShadowlessInfosToArray(std::vector<LayerInfo*>& infos)
{
    appendInfos(_activeTiles, &VXRTile::shadowlessInfo, infos);
}

void VXRCompositorLayer::addTexturesToArray(std::vector<VXRTexture*>& textures)
{
    appendTextures(_activeTiles, &VXRTile::layerInfo, &VXRTile::texture, textures);
}

void VXRCompositorLayer::addShadowTexturesToArray(std::vector<VXRTexture*>& textures)
{
    appendTextures(_activeTiles, &VXRTile::shadowInfo, &VXRTile::shadowTexture, textures);
}

void VXRCompositorLayer::addShadowlessTexturesToArray(std::vector<VXRTexture*>& textures)
{
    appendTextures(_activeTiles, &VXRTile::shadowlessInfo, &VXRTile::shadowlessTexture, textures);
}

void VXRCompositorLayer::clearTextures()
{
    for (const auto& tile : _tiles)
        tile->clearTextures();
}

// Hit testing.

bool VXRCompositorLayer::pixelIsTransparent(Point p)
{
    const Point origin = _renderable->alignmentBounds().origin;
    const Point q { (p.x - origin.x) * _zoomFactor, (p.y - origin.y) * _zoomFactor };
    const Rect layer = scaleRect(_renderable->alignmentBounds());
    if (!(q.x >= 0 && q.y >= 0 && q.x < layer.size.width && q.y < layer.size.height))
        return true;
    const auto tile = tileContainingPoint(q);
    const Point offset = offsetForIndex(tile->index());
    return tile->pixelIsTransparent({ q.x - offset.x, q.y - offset.y });
}

bool VXRCompositorLayer::rectIsTransparent(const Rect& rect)
{
    const Point origin = _renderable->alignmentBounds().origin;
    const Rect scaled = scaleRect(offsetRect(rect, -origin.x, -origin.y));
    if (!_multipleTiles)
        return tileContainingPoint({})->rectIsTransparent(scaled);
    const auto side = float(VXRTile::tileSize());
    for (const int index : tileIndicesHitByRect(rect)) {
        const Point offset = offsetForIndex(index);
        const Rect part = intersectionRect({ offset, { side, side } }, scaled);
        if (!tileWithIndex(index)->rectIsTransparent(offsetRect(part, -offset.x, -offset.y)))
            return false;
    }
    return true;
}

} // namespace vxr
