#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

/// The animation framework's session that textures are built for. The library only compares sessions by
/// identity and never owns one.
class VXR_EXPORT VXXTextureSession {
public:
    virtual ~VXXTextureSession() = default;
};

} // namespace vxr
