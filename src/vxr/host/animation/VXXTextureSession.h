#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

/// The animation framework's session for which textures are built. The library only tells one session
/// from another and never owns one.
class VXR_EXPORT VXXTextureSession {
public:
    virtual ~VXXTextureSession() = default;
};

} // namespace vxr
