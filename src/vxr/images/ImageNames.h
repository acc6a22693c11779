#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vxr {

inline constexpr std::uint32_t kHFSTypePDF = 0x50444620; ///< 'PDF '
inline constexpr std::uint32_t kHFSTypePICT = 0x50494354;
inline constexpr std::uint32_t kHFSTypeTIFF = 0x54494646;

std::string lowerCase(std::string_view); ///< of ASCII letters

// Parts of paths, as the platform cuts them: the extension without its dot.
std::string lastPathComponent(const std::string& path);
std::string pathExtension(const std::string& path);
std::string stringByDeletingPathExtension(const std::string& path);

} // namespace vxr
