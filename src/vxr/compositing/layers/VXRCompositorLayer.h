#pragma once

#include <vxr/compositing/layers/TileGrid.h>
#include <vxr/compositing/layers/VXRTile.h>
#include <vxr/protocols/VXRRenderableLayer.h>

#include <vector>

namespace vxr {

class View;
class VXRCanvasRole;
class VXRLayeredRenderable;

/// The rendered pixels of one renderable, at the canvas's zoom, in one tile or a grid of them.
///
/// Layer pixels are canvas units times the zoom, counted from the upper left corner of the renderable's
/// alignment bounds. Tiles are numbered row by row.
class VXR_EXPORT VXRCompositorLayer final : public Object, public VXRRenderableLayer {
public:
    VXRCompositorLayer();
    ~VXRCompositorLayer() override;

    /// The focused view while a renderable draws into a tile.
    static View& flippedView();

    void setRenderable(VXRLayeredRenderable*); ///< not owned; also takes over whether it is to be cleared
    VXRLayeredRenderable* renderable() const { return _renderable; }

    // What is to be drawn again.
    void invalidateLayer() override { setNeedsDisplay(true); } ///< everything
    void setNeedsDisplay(bool) override; ///< everything and the shadow, or nothing; the hosted view too
    void setNeedsDisplayInRect(const Rect& rect) override ///< in the renderable's local frame
    {
        _invalidRect = unionRect(_invalidRect, rect);
    }
    void invalidateShadow() { _invalidShadow = true; }
    bool isInvalid() const { return _completelyInvalid || _invalidRect != Rect {}; }
    bool isShadowInvalid() const { return _invalidShadow; }

    void setZoom(float) override; ///< another zoom than the present one invalidates the layer
    float zoomFactor() const override { return _zoomFactor; }
    bool hasShadow() const;
    void setHasMixedContent(bool) override;
    bool hasMixedContent() const override { return _hasMixedContent; }
    bool shouldClearOnUpdate() const { return _shouldClearOnUpdate; }
    void setShouldClearOnUpdate(bool clear) { _shouldClearOnUpdate = clear; }
    int renderingMode() const override; ///< the renderable's
    void setRenderingMode(int) override;
    Point error() const { return _error; } ///< canvas units; see computeErrorInView

    // Each composite: bring what is seen up to date, then collect the records of the active tiles.
    void prepareToDraw() override;
    void addLayerInfosToArray(std::vector<LayerInfo*>&) override;
    void addShadowInfosToArray(std::vector<LayerInfo*>&) override;
    void addShadowlessInfosToArray(std::vector<LayerInfo*>&) override;
    void addTexturesToArray(std::vector<VXRTexture*>&) override;
    void addShadowTexturesToArray(std::vector<VXRTexture*>&) override;
    void addShadowlessTexturesToArray(std::vector<VXRTexture*>&) override;
    void clearTextures() override;

    // The grid.
    Rect bounds() const; ///< of what the layer covers, in canvas coordinates
    const std::vector<std::shared_ptr<VXRTile>>& tiles() const { return _tiles; }
    const std::vector<std::shared_ptr<VXRTile>>& activeTiles() const { return _activeTiles; }
    bool isMultiTiled() const { return _multipleTiles; }
    bool needsMultipleTilesInView(const VXRCanvasRole&) const;
    int tilesWide() const { return grid().wide(); } ///< 1 without a grid
    int tilesHigh() const { return grid().high(); }
    Point offsetForIndex(int index) const { return grid().offset(index); } ///< layer pixels
    std::vector<int> tileIndicesHitByRect(const Rect&) const; ///< canvas coordinates
    std::shared_ptr<VXRTile> tileWithIndex(int index); ///< made or brought up to date, and placed
    std::shared_ptr<VXRTile> tileContainingPoint(Point layerPixel);
    bool tileContainsRect(const VXRTile& tile, const Rect& layerPixels) const
    {
        return grid().tileMeets(tile.index(), layerPixels);
    }
    int maxNumberOfValidTiles() const;
    /// Bits of `VXRTileSide`; 0 without a grid.
    int shadowClipForIndex(int index) const { return grid().neighbours(index); }
    Rect scaleRect(const Rect& r) const
    {
        return { r.origin.x * _zoomFactor, r.origin.y * _zoomFactor, r.size.width * _zoomFactor,
            r.size.height * _zoomFactor };
    }

    /// Difference between where the pixels are put and where the renderable lies, in canvas units.
    void computeErrorInView(const VXRCanvasRole&);

    // Hit testing against the pixels, in canvas coordinates.
    bool pixelIsTransparent(Point);
    bool rectIsTransparent(const Rect&);

private:
    /// The part of the renderable's bounds that the layer covers, and the whole; both zero when it covers
    /// all.
    using Cut = std::pair<Rect, Rect>;

    Point _originPosition() const;
    void _rebuild();
    void _updateTile(VXRTile&);
    TileGrid grid() const;
    Rect invalidCanvasRect() const;
    bool isPartlyInvalid(const VXRTile&) const;
    void prepareGrid(const Rect& visible);
    bool isActive(const std::shared_ptr<VXRTile>&) const;
    std::shared_ptr<VXRTile> tileToReuse() const;

    VXRLayeredRenderable* _renderable = nullptr;
    bool _hasMixedContent = false;
    bool _shouldClearOnUpdate = true;
    float _zoomFactor = -1; ///< -1 is no zoom yet, so that the first one counts as a change
    Point _error;
    std::vector<std::shared_ptr<VXRTile>> _activeTiles;
    std::vector<std::shared_ptr<VXRTile>> _tiles;
    bool _completelyInvalid = false;
    bool _invalidShadow = false;
    bool _multipleTiles = false;
    Rect _invalidRect;
    Cut _cut;
};

} // namespace vxr
