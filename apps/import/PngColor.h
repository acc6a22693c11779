#pragma once

#include <vxr/platform/imaging/ImportedBitmap.h>

#include <span>

namespace vxr::importing {

/// The gamma and chromaticities of a PNG that has no profile, as a profile. Empty when the file states none,
/// says that it is sRGB, or means the same by its numbers.
std::vector<std::byte> profileOfPNG(std::span<const std::byte> png, BitmapModel);

} // namespace vxr::importing
