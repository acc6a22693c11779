#pragma once

#include <vxr/platform/graphics/values/AffineTransform.h>

#include <functional>
#include <memory>

namespace vxr {

class VXRCanvasRole;
class VXRShadow;
class View;

/// A renderable as its compositor layer sees it.
class VXR_EXPORT VXRLayeredRenderable {
public:
    virtual VXRCanvasRole* canvas() const = 0;
    virtual Rect alignmentBounds() const = 0; ///< canvas coordinates
    virtual float paintedOutset() const { return 0; } ///< by which it paints beyond the alignment bounds
    virtual AffineTransform transform() const = 0;
    virtual std::shared_ptr<VXRShadow> shadow() const = 0; ///< none for no shadow
    virtual Rect shadowBoundsForRect(const Rect&) const = 0; ///< canvas coordinates
    virtual bool allowsTiling() const = 0;
    virtual bool layerShouldClearOnUpdate() const = 0;
    virtual bool requiresQuickdraw() const = 0;
    virtual float opacity() const { return 1; } ///< fades the whole layer, without a redraw
    /// Draws into the current graphics context, in canvas coordinates.
    virtual void drawRect(const Rect&) = 0;
    /// Calls `draw`, meanwhile standing where its bounds were last computed: moves since then have made
    /// both inexact, and a layer drawn after a move is to be the one that was drawn before.
    virtual void drawWhereBoundsWereComputed(const std::function<void()>& draw) { draw(); }
    /// Which pass is being drawn, a `VXRRenderingMode`; kept here for the renderable and its layer alike.
    virtual int renderingMode() const = 0;
    virtual void setRenderingMode(int) = 0;

    // What only some renderables answer.
    virtual View* view() const { return nullptr; } ///< the hosted view, if there is one
    virtual void setViewShouldRender(bool) { }

protected:
    ~VXRLayeredRenderable() = default;
};

} // namespace vxr
