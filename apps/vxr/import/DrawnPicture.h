#pragma once

#include <apps/vxr/svg/Drawing.h>

#include <vxr/renderables/VXRImageRenderable.h>

namespace vxr {
class VXRImageBinary;
}

namespace app {

/// A picture that a drawing places.
class DrawnPicture final : public vxr::VXRImageRenderable {
public:
    vxr::Rect computeAlignmentBounds() const override;
};

/// The picture fitted to its viewport; `toCanvas` is from the viewport's corner. What is wanted and can't be
/// had (`binary` is null) shows as a broken picture.
std::shared_ptr<vxr::VXRRenderable> drawnPicture(
    const svg::Picture&, const std::shared_ptr<vxr::VXRImageBinary>& binary, const svg::Matrix& toCanvas);

} // namespace app
