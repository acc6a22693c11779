#pragma once

#include <vxr/platform/base/Export.h>

#include <string>

namespace vxr {

/// The path of what an alias (a symbolic link) stands for, through any number of them; the path itself when
/// it is no alias or leads nowhere.
VXR_EXPORT std::string VXUHFSPathByResolvingAlias(const std::string& path);

} // namespace vxr
