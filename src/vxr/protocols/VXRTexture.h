#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

namespace vxr {

/// The pixels of a layer, as an accelerated drawing road presents them.
class VXR_EXPORT VXRTexture {
public:
    virtual void drawAtOffset(Point offset, float scale, float opacity, bool highDetail) = 0;

protected:
    ~VXRTexture() = default;
};

} // namespace vxr
