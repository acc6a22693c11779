#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

/// The platform's version code. A branch that depends on the version uses its newer form from the code
/// that it names onwards.
VXR_EXPORT int GetSystemVersion();

/// Lets a host request the behaviour of another platform version. Returns the previous code.
VXR_EXPORT int VXUSetSystemVersion(int code);

} // namespace vxr
