#pragma once

#include <vxr/platform/base/Export.h>

#include <functional>
#include <string_view>

namespace vxr {

/// Level for recoverable problems in documents and paths.
inline constexpr int VXULogLevelWarning = 10;

/// Receives log lines. Must not throw.
using VXULogSink = std::function<void(int level, std::string_view file, std::string_view message)>;

/// Passes one message to the sink; `file` is the name of the source file that logs it.
VXR_EXPORT void VXULog_Fn(int level, std::string_view file, std::string_view message);

/// Replaces the sink and returns the previous one. An empty sink restores the default, which writes
/// `file: message` lines to standard error.
VXR_EXPORT VXULogSink VXUSetLogSink(VXULogSink sink);

} // namespace vxr
