#pragma once

#include <vxr/platform/base/Export.h>

#include <functional>
#include <string_view>

namespace vxr {

/// Level at which recoverable oddities in documents and paths are logged.
inline constexpr int VXULogLevelWarning = 10;

/// Where log lines go. Must not throw.
using VXULogSink = std::function<void(int level, std::string_view file, std::string_view message)>;

/// Hands one message to the sink; `file` is the source file that speaks.
VXR_EXPORT void VXULog_Fn(int level, std::string_view file, std::string_view message);

/// Replaces the sink and returns the one before. An empty sink stands for the first one, which writes
/// `file: message` lines to the standard error stream.
VXR_EXPORT VXULogSink VXUSetLogSink(VXULogSink sink);

} // namespace vxr
