#pragma once

#include <vxr/compositing/layers/TilePlane.h>
#include <vxr/compositing/layers/TileShadow.h>
#include <vxr/compositing/layers/VXRLayerBudget.h>
#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/pixels/LayerInfo.h>

namespace vxr {

class VXRCompositorLayer;
class VXRShadow;
class VXRTexture;

/// Sides of a tile at which its shadow is cut, because another tile of the grid goes on there.
enum VXRTileSide : int {
    VXRTileSideTop = 1,
    VXRTileSideBottom = 2,
    VXRTileSideLeft = 4,
    VXRTileSideRight = 8,
};

/// One piece of a compositor layer's pixels: the content that casts the shadow, the content that does
/// not, and the shadow as a mask.
///
/// It is drawn in a bitmap with a margin on every side, the shadow buffer. On the outer sides of a layer the
/// margin holds what sticks out of the alignment bounds (caps, smooth edges) and room for the blur; towards
/// another tile it repeats what that tile shows, so that the shadow near the seam is blurred from everything
/// that is there, and only the tile's own square of it is shown.
class VXR_EXPORT VXRTile final : public Object {
public:
    /// Side of the squares that a large layer is split into, in pixels: the user default
    /// "VXRenderingTileSize" if it lies between 1 and 2048, else 1024. Read once.
    static int tileSize();
    /// As the user default's value gives it.
    static int tileSizeForDefaultsValue(int value);

    static std::shared_ptr<VXRTile> tileWithLayer(VXRCompositorLayer&); ///< as large as the layer
    static std::shared_ptr<VXRTile> fixedTileWithLayerZoom(VXRCompositorLayer&, float zoom);
    ~VXRTile() override;

    int index() const { return mIndex; } ///< in the layer's grid, row by row
    void setIndex(int index); ///< another one drops the pixels
    bool isDirty() const { return mDirty; } ///< none of its pixels is worth keeping
    void setDirty(bool dirty) { mDirty = dirty; }
    float zoom() const { return mZoom; }
    void setZoom(float zoom) { mZoom = zoom; }

    /// The scaled area that a layer-sized tile shows; a fixed tile keeps its size. The pixels are dropped
    /// when the size or the margin that the renderable's shadow needs has changed.
    void setArea(const Rect& scaled);
    Size areaSize() const; ///< in pixels, margin not counted
    int pixelsWide() const { return mWide; } ///< margin included
    int pixelsHigh() const { return mHigh; }
    int margin() const { return mMargin; } ///< in pixels, on every side
    Size shadowBuffer() const { return { float(mMargin), float(mMargin) }; }
    /// How far beyond the alignment bounds something may be drawn, in pixels.
    int overflow() const { return mOverflow; }
    std::size_t byteSize() const; ///< memory of all bitmaps

    // Drawing, between the begin and the end of an update.
    /// `part` of the bitmap, from its upper left corner, is what is drawn anew; nothing else can be changed.
    /// It is transparent at first, or as it was unless `clears`. What was never drawn is drawn wholly.
    void beginUpdate(const IntRect& part, bool clears);
    IntRect bitmapRect() const { return { 0, 0, mWide, mHigh }; }
    // y up, one unit one pixel, margin included, clipped to the part.
    Context& shadowedContext();
    Context& shadowlessContext();
    void freeShadowlessData();
    /// Blurs what has been drawn into the shadow's mask; none drops the mask.
    void buildShadow(const std::shared_ptr<VXRShadow>&);
    void setShadowClip(int sides) { mShadowClip = sides; } ///< bits of `VXRTileSide`
    void finishUpdate(); ///< keeps what was drawn
    void abandonUpdate() { dropPixels(); } ///< when drawing failed
    void dropPixels(); ///< the tile is empty and dirty
    bool isInSight() const; ///< whether the visible part of the canvas meets it or its shadow
    void noteComposed() { VXRLayerBudget::noteComposed(*this); }

    // What is blended. Valid until the next call or change of the tile; none where there is nothing.
    void offsetTo(Point upperLeft) { mPosition = upperLeft; } ///< pixels from the visible area's
    LayerInfo* layerInfo();
    LayerInfo* shadowInfo();
    LayerInfo* shadowlessInfo();

    // Nothing presents textures; the layer asks all the same.
    VXRTexture* texture() const { return nullptr; }
    VXRTexture* shadowTexture() const { return nullptr; }
    VXRTexture* shadowlessTexture() const { return nullptr; }
    void clearTextures() { }
    void updateTextures() { }
    void waitForPendingTextureCommands() { }

    /// In pixels from the tile's upper left corner. What lies outside is transparent; the shadow doesn't
    /// count.
    bool pixelIsTransparent(Point) const;
    bool rectIsTransparent(const Rect&) const;

    struct Key { }; ///< keeps the constructor for the class's own use
    VXRTile(Key, VXRCompositorLayer&, float zoom, bool fixed);

private:
    friend class VXRLayerBudget;

    void resize(int wide, int high);
    IntRect shownBox() const;
    LayerInfo* describePlane(TilePlane&, LayerInfo&);
    float shadowScale() const;
    int neededMargin() const;

    VXRCompositorLayer& mLayer;
    int mIndex = 0;
    bool mFixed;
    bool mDirty = true;
    float mZoom;
    int mAreaWide = 0, mAreaHigh = 0;
    int mOverflow = 0, mMargin = 0;
    int mWide = 0, mHigh = 0;
    IntRect mPart;
    bool mClears = true;
    TilePlane mShadowed, mShadowless;
    TileShadow mShadow; ///< of what is shadowed
    LayerInfo mShadowedInfo, mShadowlessInfo, mShadowInfo;
    Point mPosition;
    int mShadowClip = 0;
    // The budget's.
    std::size_t mAccounted = 0;
    std::uint32_t mDrawnIn = 0;
    VXRTile* mOlder = nullptr;
    VXRTile* mNewer = nullptr;
};

} // namespace vxr
