#pragma once

#include <vxr/renderables/VXRRenderable.h>

namespace vxr {

/// A renderable that shows a view. The local frame is the view's bounds, seen with y down; the view lives
/// in the canvas as a subview that draws nothing by itself.
class VXR_EXPORT VXRTransformableViewRenderable : public VXRRenderable {
public:
    explicit VXRTransformableViewRenderable(std::shared_ptr<View> view); ///< as large as the view
    ~VXRTransformableViewRenderable() override;

    View* view() const override { return mView.get(); }
    /// Whether the view has changed since the layer was last drawn. Set, makes the layer draw again what
    /// of the view is dirty.
    bool viewShouldRender() const { return mViewShouldRender; }
    void setViewShouldRender(bool) override;

    void setCanvas(VXRCanvasRole*) override; ///< takes the view along
    void renderIntoContext(Context&) override;

private:
    std::shared_ptr<View> mView;
    bool mViewShouldRender = true;
};

} // namespace vxr
