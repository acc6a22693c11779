#pragma once

#include <vxr/platform/graphics/values/AffineTransform.h>

#include <optional>

namespace vxr {

class VXRBitmapRenderingQualityInfo;
class VXRRenderable;

/// Where drawing ends up. The numbers are part of the contract.
enum VXRRenderingDestination : int {
    VXRDestinationDirect = 0, ///< renderables draw straight into the view's context
    VXRDestinationCompositor = 1, ///< layers are blended into the window
    VXRDestinationNonScreen = 2, ///< printing, or drawing into an image
};

/// The canvas as renderables, fills, strokes and compositor layers see it.
class VXR_EXPORT VXRCanvasRole {
public:
    // Registration, by identity; the canvas owns no renderable.
    virtual void registerRenderable(VXRRenderable&) = 0;
    virtual void unregisterRenderable(VXRRenderable&) = 0;

    // Damage, in canvas coordinates.
    virtual void setNeedsDisplayInRect(const Rect&) = 0;
    virtual void invalidateRenderable(VXRRenderable&) { } ///< the whole renderable needs redrawing
    virtual void renderableBoundsMayChange(const VXRRenderable&) { } ///< called before bounds are next read
    virtual void invalidateRenderableInRect(VXRRenderable&, const Rect&) { } ///< part of it needs redrawing

    // How things are to be drawn.
    virtual float viewScale() const = 0; ///< device pixels per canvas unit
    virtual bool usesCompositor() const = 0;
    virtual int renderingDestination() const = 0; ///< a `VXRRenderingDestination`
    virtual bool rendersBlackAndWhite() const = 0;
    virtual bool isStatic() const { return false; }
    virtual bool isAccelerated() const { return false; }
    /// Applied to shadow offsets when bounds are computed. Empty if there is no extra transform.
    virtual std::optional<AffineTransform> additionalShadowTransform() const { return std::nullopt; }
    virtual bool scaleShadowsWhenZooming() const { return true; }
    virtual VXRBitmapRenderingQualityInfo* bitmapRenderingQualityInfo() const { return nullptr; }

    // Geometry, for the layers.
    virtual bool isFlipped() const { return true; }
    /// The part shown by the enclosing clip view, in canvas coordinates; without a clip view, the canvas's
    /// own visible rectangle.
    virtual Rect clipViewVisibleRect() const = 0;
    virtual Rect visibleRect() const = 0; ///< canvas coordinates
    /// The visible part of the canvas's superview, in canvas coordinates.
    virtual Rect superviewVisibleRect() const { return clipViewVisibleRect(); }
    virtual Rect convertRectToWindow(const Rect&) const = 0; ///< canvas to window (y up) coordinates

protected:
    ~VXRCanvasRole() = default;
};

} // namespace vxr
