#pragma once

#include <vxr/platform/base/Export.h>

#include <string>

namespace vxr {

/// Resolves an alias (a symbolic link), through any number of links. Returns the path itself if it is not
/// an alias or the link is broken.
VXR_EXPORT std::string VXUHFSPathByResolvingAlias(const std::string& path);

} // namespace vxr
