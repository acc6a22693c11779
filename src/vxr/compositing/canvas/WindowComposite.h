#pragma once

#include <vxr/compositing/layers/VXRLayerBudget.h>
#include <vxr/platform/graphics/pixels/LayerInfo.h>

#include <memory>
#include <vector>

namespace vxr {

class FirstFailure;
class VXRRenderable;
class Window;
struct WindowBits;

/// Where a window shows a canvas: the visible area in whole pixels of the window.
struct CompositeArea {
    /// `visible` in window coordinates, y up.
    CompositeArea(const Window&, const Rect& visible);

    int x0, y0; ///< its upper left corner, y down
    int wide, high;

    /// The pixels of the window that a rectangle of window coordinates touches. Empty out of sight.
    IntRect pixelsTouchedBy(const Rect& inWindow) const;

private:
    Rect mVisible;
};

/// Blends the layers of renderables into a window's locked pixels.
class WindowComposite {
public:
    using RenderableList = std::vector<std::shared_ptr<VXRRenderable>>;

    /// Changes no pixels of the window but `changed`. `background` closes the chain of layers; none for what
    /// the window shows already.
    WindowComposite(const WindowBits&, const CompositeArea&, const IntRect& changed, LayerInfo* background,
        FirstFailure&);

    /// All at once, topmost first; false, and nothing drawn, when the layers' memory doesn't suffice for
    /// that.
    bool drawAtOnce(const RenderableList&);
    /// From the bottom up, a few layers at a time: what each adds is rounded in the same order. Whether a
    /// single composite would have sufficed.
    bool drawInParts(const RenderableList&, VXRLayerBudget::Composite&);

private:
    void collectLayersOf(VXRRenderable&, std::vector<LayerInfo*>&);
    void blend(const std::vector<LayerInfo*>& topmostFirst);

    LayerInfo mDestination;
    LayerInfo* mBackground;
    FirstFailure& mFailure;
};

} // namespace vxr
