#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

class VXRCanvasRole;

/// Who uses an image renderer, a fill or a renderable, as the renderer sees it.
class VXR_EXPORT VXRImageRendererOwner {
public:
    virtual VXRCanvasRole* canvas() const = 0; ///< none while it is on no canvas
    virtual bool shouldAntialias() const { return true; } ///< whether edges of bitmaps are smoothed
    virtual bool isRenderable() const { return false; } ///< whether it is a `VXRRenderable` itself

protected:
    ~VXRImageRendererOwner() = default;
};

} // namespace vxr
