#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

/// The platform's version code. Code that has two versions of a branch takes the newer one from the
/// code that it names on.
VXR_EXPORT int GetSystemVersion();

/// Lets a host ask for the behaviour of another platform version. Returns the code before.
VXR_EXPORT int VXUSetSystemVersion(int code);

} // namespace vxr
