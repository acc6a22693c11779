#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vxr {

/// RFC 4648, with padding and without line breaks.
std::string base64FromBytes(std::span<const std::byte>);

/// Throws `InvalidArgumentException` for what is no such text. White space is skipped.
std::vector<std::byte> bytesFromBase64(std::string_view);

} // namespace vxr
