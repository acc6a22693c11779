#pragma once

#include <vxr/platform/imaging/ImportedBitmap.h>

namespace vxr::importing {

/// Whether the picture lies on its side in the file.
inline bool swapsSides(std::uint32_t orientation) { return orientation >= 5; }

/// Puts row `y` of the stored picture where it belongs in the upright one.
void placeRow(const std::byte* row, std::uint32_t y, const BitmapInfo& stored, std::size_t pixelBytes,
    std::byte* upright, std::size_t bytesPerRow);

} // namespace vxr::importing
