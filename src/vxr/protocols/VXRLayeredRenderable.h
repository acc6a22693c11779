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
    virtual float paintedOutset() const { return 0; } ///< how far it paints beyond the alignment bounds
    virtual AffineTransform transform() const = 0;
    virtual std::shared_ptr<VXRShadow> shadow() const = 0; ///< null if it has no shadow
    virtual Rect shadowBoundsForRect(const Rect&) const = 0; ///< canvas coordinates
    virtual bool allowsTiling() const = 0;
    virtual bool layerShouldClearOnUpdate() const = 0;
    virtual bool requiresQuickdraw() const = 0;
    virtual float opacity() const { return 1; } ///< applied to the whole layer; needs no redraw
    /// Draws into the current graphics context, in canvas coordinates.
    virtual void drawRect(const Rect&) = 0;
    /// Calls `draw` with the renderable at the position where its bounds were last computed. Moves since then
    /// accumulate rounding in both, and a layer drawn after a move must equal the one drawn before it.
    virtual void drawWhereBoundsWereComputed(const std::function<void()>& draw) { draw(); }
    /// The pass being drawn, a `VXRRenderingMode`. The renderable and its layer share this one copy.
    virtual int renderingMode() const = 0;
    virtual void setRenderingMode(int) = 0;

    // Overridden by some renderables only.
    virtual View* view() const { return nullptr; } ///< the hosted view, if any
    virtual void setViewShouldRender(bool) { }

protected:
    ~VXRLayeredRenderable() = default;
};

} // namespace vxr
