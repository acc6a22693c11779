#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/AffineTransform.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vxr {

class Context;
class Path;
class RenderableFollowers;
class VXRBitmapRenderingQualityInfo;
class VXRRenderableFollower;
class VXRRenderableLayer;
class VXRTexture;
class VXRTextureSet;
class VXXTextureSession;
struct LayerInfo;

/// Base of every drawable object: its placement, opacity and shadow, two kinds of cached bounds, the canvas
/// that shows it and the compositor layer through which a canvas may draw it.
///
/// All bounds and rectangles are in canvas coordinates unless they are said to be local. The local frame
/// runs from the origin to the natural size; the transform maps it into the canvas.
///
/// A change erases the old area, changes the state, and invalidates the new area. While `autoInvalidates`
/// is off it does neither, and whoever switched it off erases and invalidates. An operation that a subclass
/// overrides keeps that order.
class VXR_EXPORT VXRRenderable : public Object, public VXRLayeredRenderable {
public:
    VXRRenderable();
    ~VXRRenderable() override; ///< leaves the canvas
    VXRRenderable(const VXRRenderable&) = delete;
    VXRRenderable& operator=(const VXRRenderable&) = delete;

    // State.
    VXRCanvasRole* canvas() const override { return mCanvas; } ///< not owned; none while detached
    virtual void setCanvas(VXRCanvasRole*); ///< registers with the new canvas; erases nothing
    /// Made on first use: most shapes that are only drawn directly never need one.
    const std::shared_ptr<VXRRenderableLayer>& layer() const;
    bool hasLayer() const { return presentLayer() != nullptr; }
    std::shared_ptr<VXRShadow> shadow() const override { return mShadow; }
    virtual void setShadow(std::shared_ptr<VXRShadow>); ///< the null shadow is stored as none
    bool hasShadow() const; ///< a shadow is set and is not the null shadow
    float opacity() const override { return mOpacity; }
    virtual void setOpacity(float); ///< erases, but never has layer textures rebuilt
    AffineTransform transform() const override { return mTransform; }
    virtual void setTransform(const AffineTransform&); ///< nothing happens for an equal one
    void _setTransform(const AffineTransform& t) { mTransform = t; } ///< a plain store
    virtual Size naturalSize() const { return mNaturalSize; }
    virtual void setNaturalSize(Size); ///< drops the bounds; the caller erases and invalidates
    bool autoInvalidates() const { return mAutoInvalidates; }
    void setAutoInvalidates(bool flag) { mAutoInvalidates = flag; }
    bool allowsTiling() const override { return mAllowsTiling; }
    void setAllowsTiling(bool flag) { mAllowsTiling = flag; }
    bool dynamicallyTransforming() const { return mDynamicallyTransforming; }
    virtual void setDynamicallyTransforming(bool); ///< turned off, invalidates
    bool dynamicallyTranslating() const { return mDynamicallyTranslating; }
    void setDynamicallyTranslating(bool); ///< invalidates what a drag at a fractional zoom left behind
    Rect clipRect() const { return mRare ? mRare->clipRect : Rect {}; } ///< the zero rectangle for none
    void setClipRect(const Rect&); ///< a plain store
    bool hasClipRect() const { return clipRect() != Rect {}; }

    // Placement, each through `setTransform`.
    virtual void offsetBy(float dx, float dy);
    virtual void offsetTo(Point translation); ///< keeps the linear part
    virtual void rotateByRadiansPivot(float radians, Point pivot);
    virtual void scaleXByYByPivot(float sx, float sy, Point pivot);

    // Bounds.
    Rect geometricBounds() const; ///< of the transformed local frame. Cached.
    Rect alignmentBounds() const override; ///< for snapping and the shadow's place. Cached.
    Rect shadowBounds() const; ///< the shadow alone; the alignment bounds without one
    Rect shadowBoundsForRect(const Rect&) const override; ///< with the canvas's extra shadow transform
    virtual Rect erasableBounds() const; ///< everything that may have been painted
    float paintedOutset() const override; ///< of the content, in canvas units. Cached.
    /// Encloses the erasable bounds and all points that `containsPoint` accepts.
    virtual Rect hitBounds() const { return erasableBounds(); }
    /// Whether the bounds change by nothing that the canvas isn't told of: the operations of this class,
    /// those of its shadow, and `erase`. A canvas asks all others for their bounds at each redraw, so that
    /// classes in the library say yes only for themselves, and a subclass that keeps to this says so for
    /// itself.
    virtual bool tellsOfChangedBounds() const { return false; }
    virtual Rect computeGeometricBounds() const; ///< never reads the cache
    virtual Rect computeAlignmentBounds() const;
    virtual void invalidateBoundingBox(); ///< has both computed anew when next asked for
    void _translateBoundingBox(Size delta); ///< moves both caches, valid or not

    // Geometry.
    float angleWithFlip(bool flip) const; ///< radians; half a turn more for a mirroring transform if `flip`
    virtual float angle() const; ///< `angleWithFlip(true)`
    virtual bool isAxisAligned() const; ///< turned by whole quarter turns
    virtual Point center() const;
    virtual bool containsPoint(Point) const; ///< within the local frame, edges included
    virtual bool intersectsRect(const Rect&) const; ///< overlaps the geometric bounds
    std::shared_ptr<Path> geometricBoundsAsPath() const; ///< the transformed local frame
    static std::shared_ptr<Path> pathWithRectUnderTransform(const Rect&, const AffineTransform&);

    // Damage. `auto…` does its work only while `autoInvalidates` is on.
    void erase(); ///< marks the erasable bounds with five units of slack, whole numbers outward
    void autoErase();
    virtual void invalidate(); ///< has the layer rendered anew, tells the canvas and erases
    void autoInvalidate();
    void invalidateShadow();
    virtual void setNeedsDisplay(bool);
    virtual void setNeedsDisplayInRect(const Rect& local);
    bool shouldInvalidateOnTranslation() const; ///< whether a move changes pixel alignment, not mid-drag

    // Drawing into the current graphics context, whose drawing port `context` is.
    void renderLayeredIntoContext(Context& context); ///< with opacity and shadow
    virtual void renderIntoContext(Context& context); ///< without them
    void drawRect(const Rect&) override; ///< `renderIntoContext` with the current port
    void drawWhereBoundsWereComputed(const std::function<void()>& draw) override;
    bool _shouldLayer() const;
    void beginLayer(Context& context);
    void endLayer(Context& context);

    // Compositor and accelerated road.
    virtual void prepareToDraw();
    void setZoom(float);
    virtual void addLayersToArray(std::vector<LayerInfo*>&);
    virtual void addTexturesToArray(std::vector<VXRTexture*>&);
    virtual void blit();
    void _blitShadow();
    void flushCompositorLayer(); ///< starts over with a new layer
    virtual void willChangeGraphicsContext() { }
    /// This renderable's textures alone, for the animation framework; kept until the session or the
    /// content changes.
    std::shared_ptr<VXRTextureSet> texture(VXXTextureSession*);

    // Followers are told of each change of the transform or natural size, after it, and are not owned. A
    // change that a follower makes in turn reaches its own followers once the present ones are told.
    void addFollower(VXRRenderableFollower&);
    void removeFollower(VXRRenderableFollower&); ///< does nothing for one that is none
    /// Tells one round of changes that follow from each other from the next.
    static unsigned followRound();

    // What subclasses answer.
    virtual bool shouldOptimizeTranslation() const { return true; } ///< a move only shifts the bounds
    bool requiresQuickdraw() const override { return false; }
    bool layerShouldClearOnUpdate() const override { return true; }
    int renderingMode() const final { return mRenderingMode; }
    void setRenderingMode(int mode) override; ///< an override passes it on
    virtual void addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo&) { }

protected:
    /// Called when the transform or the natural size has changed. Tells the followers.
    virtual void outlineDidChange();
    /// The compositor layer for this renderable.
    virtual std::shared_ptr<VXRRenderableLayer> makeLayer();
    /// `point` in the local frame. None under a degenerate transform, where nothing is hit.
    std::optional<Point> localPointForHitTest(Point point) const;
    /// How far painting reaches beyond the alignment bounds; asked when these are computed, kept with them.
    virtual float computePaintedOutset() const { return 0; }

private:
    friend class RenderableIndex;
    friend class VXRGroup;
    friend class VXRTextureSet;

    bool layerCanWait() const;
    void tellOfBounds() const;
    void renderPass(Context& context, int mode);
    void drawTextures(const std::vector<VXRTexture*>&) const;

    /// What most objects of a large page never have, since they are drawn directly or lie out of sight.
    struct Rare {
        std::shared_ptr<VXRRenderableLayer> layer;
        Rect clipRect;
        VXXTextureSession* textureSession = nullptr;
        std::shared_ptr<VXRTextureSet> texture;
        std::vector<VXRTextureSet*> textureSets; ///< all that hold this renderable
        std::unique_ptr<RenderableFollowers> followers;
    };
    Rare& rare() const;
    VXRRenderableLayer* presentLayer() const { return mRare ? mRare->layer.get() : nullptr; }
    void forgetTextureSession();

    // What a canvas reads of every renderable at each redraw stands together in front.
    std::shared_ptr<VXRShadow> mShadow;
    mutable Rect mGeometricBounds;
    mutable Rect mAlignmentBounds;
    mutable float mPaintedOutset = 0; ///< valid with mAlignmentBounds
    mutable Point mPlaceOfBounds; ///< the translation under which mAlignmentBounds was computed
    mutable std::uint32_t mIndexEntry
        = UINT32_MAX; ///< in the index of the canvas or group; it knows whether to trust it
    VXRCanvasRole* mCanvas = nullptr;
    mutable std::unique_ptr<Rare> mRare;
    float mOpacity = 1;
    AffineTransform mTransform;
    Size mNaturalSize;
    mutable bool mGeometricBoundsInvalid = true;
    mutable bool mAlignmentBoundsInvalid = true;
    bool mAutoInvalidates = true;
    bool mDynamicallyTransforming = false;
    bool mAllowsTiling = true;
    bool mDynamicallyTranslating = false;
    std::int8_t mRenderingMode = 0;
};

} // namespace vxr
