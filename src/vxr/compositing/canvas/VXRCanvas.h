#pragma once

#include <vxr/compositing/canvas/CanvasBackground.h>
#include <vxr/compositing/canvas/VXRSubviewAbsolverView.h>
#include <vxr/host/utility/VXUMutablePointerSet.h>
#include <vxr/protocols/VXRCanvasRole.h>

namespace vxr {

class Image;
class RenderableIndex;
class VXXSessionContext;
struct Notification;

/// The view on which renderables are shown.
///
/// It keeps what belongs to the view of a document: the scale, the background, the rendering destination
/// and the quality levels, and answers what renderables ask while they draw. A redraw takes the direct
/// road, on which each renderable draws itself, or the compositor road, on which their layers are blended
/// into the window's pixels. The bounds are in document units at every scale, y down.
class VXR_EXPORT VXRCanvas : public VXRSubviewAbsolverView, public VXRCanvasRole {
public:
    using RenderableList = std::vector<std::shared_ptr<VXRRenderable>>;

    explicit VXRCanvas(const Rect& frame);
    ~VXRCanvas() override; ///< renderables that are still registered lose their canvas

    /// What is drawn, back to front; for a subclass to answer. Valid until the subclass changes it. What
    /// is registered only belongs to the canvas.
    virtual const RenderableList& objectsToRender() const;
    /// Another number whenever the list has changed; a redraw then needn't compare it with the former one. 0,
    /// which never spares it, for a subclass that doesn't count.
    virtual std::uint64_t objectsToRenderVersion() const { return 0; }

    // Hits among the objects to render, in canvas coordinates.
    /// The topmost one that contains the point; none where there is nothing.
    std::shared_ptr<VXRRenderable> objectAtPoint(Point);
    /// All that the rectangle meets (`intersectsRect`), back to front.
    RenderableList objectsMeetingRect(const Rect&);

    // Settings. None of the plain ones redraws anything.
    bool usesCompositor() const override { return _usesCompositor; }
    /// Turned on, has every renderable make its layer anew; turned off, turns acceleration off too. Sets
    /// the destination, and whether the clip view moves pixels when it scrolls.
    virtual void setUsesCompositor(bool);
    /// `VXRDestinationNonScreen` whenever the current context doesn't draw to the screen, else as set.
    int renderingDestination() const override;
    void setRenderingDestination(int destination) { _destination = destination; }
    const std::shared_ptr<Color>& backgroundColor() const { return mBackground.color(); }
    void setBackgroundColor(std::shared_ptr<Color> color) { mBackground.setColor(std::move(color)); }
    bool rendersBlackAndWhite() const override { return mRenderBlackAndWhite; }
    void setRendersBlackAndWhite(bool flag) { mRenderBlackAndWhite = flag; }
    bool isStatic() const override { return mIsStatic; }
    void setIsStatic(bool flag) { mIsStatic = flag; }
    int bitmapImageQuality() const { return mBitmapImageQuality; }
    void setBitmapImageQuality(int level) { mBitmapImageQuality = level; }
    int chartQuality() const { return mChartQuality; }
    void setChartQuality(int level) { mChartQuality = level; }
    VXRBitmapRenderingQualityInfo* bitmapRenderingQualityInfo() const override;
    VXXSessionContext* sessionContext() const { return mSession; }
    bool isAccelerated() const override { return mAccelerated; }
    void setAccelerated(bool); ///< there is no accelerated road: turning it on is logged and has no effect
    bool isOpaque() const override { return isAccelerated(); }
    std::optional<AffineTransform> additionalShadowTransform() const override { return std::nullopt; }
    bool scaleShadowsWhenZooming() const override { return true; }

    // Registration.
    void registerRenderable(VXRRenderable&) override;
    void unregisterRenderable(VXRRenderable&) override;
    bool isRegistered(const VXRRenderable& renderable) const
    {
        return mRegisteredRenderables.containsObject(renderable);
    }

    // Scale.
    float viewScale() const override { return _scale; }
    /// Throws `InvalidArgumentException`, and changes nothing, unless the scale is positive and finite.
    void setScale(float scale) { setScaleScrollingToMaintainCenter(scale, true); }
    /// With `keepCenter` the frame grows with the scale and the visible centre stays in the middle.
    void setScaleScrollingToMaintainCenter(float scale, bool keepCenter);

    // Damage.
    void setNeedsDisplayInRect(const Rect&) override;
    void invalidateRenderableInRect(VXRRenderable&, const Rect&) override;
    void renderableBoundsMayChange(const VXRRenderable&) override;

    // Drawing.
    void drawRect(const Rect& dirty) override; ///< into the current context
    void draw(const DrawRequest&) override;
    /// The compositor road, for one dirty rectangle.
    void compositeRect(const Rect& dirty);
    /// The constant-colour layer that closes every composite; none without a background colour.
    LayerInfo* _backgroundLayer();
    /// red << 24 | green << 16 | blue << 8 | 255; the colour's own alpha doesn't count.
    static std::uint32_t _colorAsLong(Color&);

    // The window and its miniature.
    void _registerForWindowNotifications(Window*);
    void windowWillMiniaturize(const Notification&);
    void windowDidDeminiaturize(const Notification&);
    void windowWillClose(const Notification&) { }
    void _buildMinimizedImage(); ///< does nothing when there is one
    const std::shared_ptr<const Image>& minimizedImage() const { return mMinimizedImage; } ///< y down
    /// Pixels of the visible area, opaque; the rectangle counts from its lower left corner. None for an
    /// empty rectangle and without a window.
    std::shared_ptr<const Image> imageRepFromFrame(const Rect& pixels);

    // Geometry.
    bool isFlipped() const override { return true; }
    Rect visibleRect() const override { return View::visibleRect(); }
    Rect clipViewVisibleRect() const override;
    Rect superviewVisibleRect() const override;
    Rect convertRectToWindow(const Rect& rect) const override { return convertRectToView(rect, nullptr); }

protected:
    void _propagateDirtyRectsToOpaqueAncestors() override;
    bool keepsPixelsOnScroll(const Rect& seenBefore) override;
    void viewWillMoveToWindow(Window*) override;
    void viewDidMoveToWindow() override;

private:
    void composite(const Rect& dirty, const IntRect& pixels);
    void drawDirectly(const DrawRequest&);
    void _adjustBitmapRenderingQualityInRenderablesUpdateRect(const RenderableList&, const Rect&);
    const RenderableList& indexedObjects();
    RenderableList objectsToRedraw(const Rect&);
    void disableScreenUpdates();
    void enableScreenUpdatesIfNeeded();

    VXXSessionContext* mSession = nullptr; ///< of an accelerated road
    float _scale = 1;
    int _destination = VXRDestinationCompositor;
    bool _usesCompositor = true;
    CanvasBackground mBackground;
    bool mRenderBlackAndWhite = false;
    bool mIsStatic = false;
    int mBitmapImageQuality = 2; ///< at 2 no quality info is built
    int mChartQuality = 2;
    std::shared_ptr<VXRBitmapRenderingQualityInfo> mBitmapRenderingQualityInfo;
    bool mAccelerated = false;
    std::shared_ptr<const Image> mMinimizedImage;
    VXUMutablePointerSet<VXRRenderable> mRegisteredRenderables;
    std::unique_ptr<RenderableIndex> mIndex;
    bool mScreenUpdatesDisabled = false;
    bool mCompositesInParts = false; ///< what is in sight was more than the layers may keep
};

} // namespace vxr
