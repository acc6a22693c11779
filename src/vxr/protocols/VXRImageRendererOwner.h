#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

class VXRCanvasRole;

/// The fill or renderable that owns an image renderer, as the renderer sees it.
class VXR_EXPORT VXRImageRendererOwner {
public:
    virtual VXRCanvasRole* canvas() const = 0; ///< null while it is on no canvas
    virtual bool shouldAntialias() const { return true; } ///< whether bitmap edges are antialiased
    virtual bool isRenderable() const { return false; } ///< whether the owner is itself a `VXRRenderable`

protected:
    ~VXRImageRendererOwner() = default;
};

} // namespace vxr
