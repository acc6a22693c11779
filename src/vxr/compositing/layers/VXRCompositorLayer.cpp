#include <vxr/compositing/layers/VXRCompositorLayer.h>

#include <vxr/compositing/layers/LayerPlacement.h>
#include <vxr/compositing/layers/TilePainter.h>
#include <vxr/compositing/layers/VXRHackView.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/views/Window.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

std::shared_ptr<VXRRenderableLayer> VXRRenderableLayer::layerWithRenderable(VXRLayeredRenderable& renderable)
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

void VXRCompositorLayer::setNeedsDisplay(bool needs)
{
    _completelyInvalid = needs;
    _invalidShadow = needs;
    if (View* view = _renderable ? _renderable->view() : nullptr)
        view->setNeedsDisplay(needs);
    _invalidRect = {};
}

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

Rect VXRCompositorLayer::bounds() const { return boundsOfLayer(*_renderable, _zoomFactor); }

bool VXRCompositorLayer::needsMultipleTilesInView(const VXRCanvasRole&) const
{
    if (!_renderable->allowsTiling())
        return false;
    const Size size = bounds().size;
    const auto side = float(VXRTile::tileSize());
    return size.width * _zoomFactor > side || size.height * _zoomFactor > side;
}

TileGrid VXRCompositorLayer::grid() const
{
    return _multipleTiles ? TileGrid(scaleRect(bounds()).size, VXRTile::tileSize())
                          : TileGrid(VXRTile::tileSize());
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
    return grid().tilesHit(scaleRect(rect), scaleRect(bounds()));
}

std::shared_ptr<VXRTile> VXRCompositorLayer::tileContainingPoint(Point p)
{
    if (!_multipleTiles) {
        if (!_completelyInvalid && _tiles.front()->isDirty())
            _rebuild(); // its pixels were dropped
        return _tiles.front();
    }
    return tileWithIndex(grid().tileAt(p));
}

/// The invalid part in canvas coordinates.
Rect VXRCompositorLayer::invalidCanvasRect() const
{
    return boundsOfTransformedRect(_renderable->transform(), _invalidRect);
}

/// Whether something of the tile, or the shadow of something, is within the invalid part. A tile repeats its
/// neighbours' pixels as far as its margin goes.
bool VXRCompositorLayer::isPartlyInvalid(const VXRTile& tile) const
{
    if (_invalidRect == Rect {})
        return false;
    const Rect reached = _renderable->shadowBoundsForRect(invalidCanvasRect());
    const Point origin = bounds().origin;
    const auto margin = float(tile.margin());
    return tileContainsRect(
        tile, insetRect(scaleRect(offsetRect(reached, -origin.x, -origin.y)), -margin, -margin));
}

bool VXRCompositorLayer::isActive(const std::shared_ptr<VXRTile>& tile) const
{
    return std::find(_activeTiles.begin(), _activeTiles.end(), tile) != _activeTiles.end();
}

/// The oldest tile that this pass doesn't show.
std::shared_ptr<VXRTile> VXRCompositorLayer::tileToReuse() const
{
    if (int(_tiles.size()) <= maxNumberOfValidTiles())
        return nullptr;
    const auto found
        = std::find_if(_tiles.begin(), _tiles.end(), [this](const auto& tile) { return !isActive(tile); });
    return found == _tiles.end() ? nullptr : *found;
}

std::shared_ptr<VXRTile> VXRCompositorLayer::tileWithIndex(int index)
{
    const auto found = std::find_if(
        _tiles.begin(), _tiles.end(), [index](const auto& tile) { return tile->index() == index; });
    std::shared_ptr<VXRTile> tile;
    if (found != _tiles.end()) {
        tile = *found;
        if (_completelyInvalid || tile->isDirty() || isPartlyInvalid(*tile))
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

// A pass.

Point VXRCompositorLayer::_originPosition() const
{
    const VXRCanvasRole* canvas = _renderable->canvas();
    return placeOfLayer(bounds(), canvas ? canvas->clipViewVisibleRect() : Rect {}, _zoomFactor,
        !canvas || canvas->isFlipped());
}

void VXRCompositorLayer::computeErrorInView(const VXRCanvasRole& canvas)
{
    _error = errorOfPlace(_originPosition(), bounds(), _zoomFactor, canvas);
}

void VXRCompositorLayer::prepareGrid(const Rect& visible)
{
    if (!_multipleTiles || _completelyInvalid)
        _tiles.clear();
    _multipleTiles = true;
    const float outset = (_renderable->paintedOutset() + paintingSlack(_zoomFactor)) * _zoomFactor;
    const Rect shown = scaleRect(rectThatShows(*_renderable, visible, _zoomFactor));
    for (const int index : grid().tilesThatShow(shown, scaleRect(bounds()), outset))
        _activeTiles.push_back(tileWithIndex(index));
    // Those out of sight have missed a partial change: they are drawn wholly when they come back.
    for (const auto& tile : _tiles)
        if (isPartlyInvalid(*tile) && !isActive(tile))
            tile->setDirty(true);
    _completelyInvalid = false;
}

void VXRCompositorLayer::prepareToDraw()
{
    const VXRCanvasRole* canvas = _renderable ? _renderable->canvas() : nullptr;
    if (!canvas)
        return;
    const Rect whole = _renderable->alignmentBounds(), part = bounds();
    const Cut cut = part == whole ? Cut {} : Cut { part, whole };
    if (cut != _cut) {
        _cut = cut;
        _completelyInvalid = true;
    }
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
    _updateTile(*_tiles.front());
    _completelyInvalid = false;
    _invalidRect = {};
}

void VXRCompositorLayer::_updateTile(VXRTile& tile)
{
    const bool wholly = _completelyInvalid || _invalidRect == Rect {};
    _renderable->drawWhereBoundsWereComputed(
        [&] { TilePainter(*this, tile).update(wholly ? std::nullopt : std::optional(invalidCanvasRect())); });
    _invalidShadow = false;
}

// Records and textures.

namespace {

template <class T> void append(T* one, std::vector<T*>& list)
{
    if (one)
        list.push_back(one);
}

/// Records of no width or height are not worth a texture.
VXRTexture* textureFor(const LayerInfo* info, VXRTexture* texture)
{
    return info && info->clipMinX != info->clipMaxX && info->clipMinY != info->clipMaxY ? texture : nullptr;
}

} // namespace

void VXRCompositorLayer::addLayerInfosToArray(std::vector<LayerInfo*>& infos)
{
    for (const auto& tile : _activeTiles) {
        tile->noteComposed();
        append(tile->layerInfo(), infos);
    }
}

void VXRCompositorLayer::addShadowInfosToArray(std::vector<LayerInfo*>& infos)
{
    for (const auto& tile : _activeTiles)
        append(tile->shadowInfo(), infos);
}

void VXRCompositorLayer::addShadowlessInfosToArray(std::vector<LayerInfo*>& infos)
{
    for (const auto& tile : _activeTiles)
        append(tile->shadowlessInfo(), infos);
}

void VXRCompositorLayer::addTexturesToArray(std::vector<VXRTexture*>& textures)
{
    for (const auto& tile : _activeTiles)
        append(textureFor(tile->layerInfo(), tile->texture()), textures);
}

void VXRCompositorLayer::addShadowTexturesToArray(std::vector<VXRTexture*>& textures)
{
    for (const auto& tile : _activeTiles)
        append(textureFor(tile->shadowInfo(), tile->shadowTexture()), textures);
}

void VXRCompositorLayer::addShadowlessTexturesToArray(std::vector<VXRTexture*>& textures)
{
    for (const auto& tile : _activeTiles)
        append(textureFor(tile->shadowlessInfo(), tile->shadowlessTexture()), textures);
}

void VXRCompositorLayer::clearTextures()
{
    for (const auto& tile : _tiles)
        tile->clearTextures();
}

// Hit testing.

bool VXRCompositorLayer::pixelIsTransparent(Point p)
{
    const Point origin = bounds().origin;
    const Point q { (p.x - origin.x) * _zoomFactor, (p.y - origin.y) * _zoomFactor };
    const Rect layer = scaleRect(bounds());
    if (!(q.x >= 0 && q.y >= 0 && q.x < layer.size.width && q.y < layer.size.height))
        return true;
    const auto tile = tileContainingPoint(q);
    const Point offset = offsetForIndex(tile->index());
    return tile->pixelIsTransparent({ q.x - offset.x, q.y - offset.y });
}

bool VXRCompositorLayer::rectIsTransparent(const Rect& rect)
{
    const Point origin = bounds().origin;
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
