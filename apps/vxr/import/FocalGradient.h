#pragma once

#include <vxr/fills/VXRTransformGradient.h>

namespace app {

/// A radial gradient whose circles grow out of a point beside the centre. The library's radial gradients
/// are concentric; everything else about them is kept.
class FocalGradient final : public vxr::VXRTransformGradient {
public:
    /// Focus and its radius in units of the gradient's radius, measured from its centre.
    FocalGradient(std::shared_ptr<vxr::Color> first, std::shared_ptr<vxr::Color> last, vxr::Point focus,
        float focusRadius);
    ~FocalGradient() override;

    vxr::Point focus() const { return mFocus; }
    float focusRadius() const { return mFocusRadius; }

    void paintShape(vxr::VXRPaintedShape&) override;
    void paintRect(const vxr::Rect&) override;

private:
    void drawInto(vxr::Context&);

    vxr::Point mFocus;
    float mFocusRadius;
    std::shared_ptr<const vxr::Shading> mShading; ///< over a disc of radius 1 about the origin
};

} // namespace app
