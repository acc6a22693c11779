#pragma once

#include <vxr/platform/base/Export.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vxr {

/// The four-character type that a file carries in the extended attribute "hfs.type" (where the file system
/// has it) or "user.hfs.type", in single quotes: "'JPEG'". Empty when it has none.
VXR_EXPORT std::string HFSTypeStringOfFile(const std::string& path);

/// Four characters, the first in the highest bits. 0 unless there are four between single quotes.
VXR_EXPORT std::uint32_t HFSTypeCodeFromString(std::string_view quoted);

} // namespace vxr
