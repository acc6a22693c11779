#pragma once

#include <vxr/platform/graphics/Image.h>

#include <cstddef>
#include <vector>

namespace vxr {

/// The pixels as r, g, b, a bytes with straight alpha, row after row.
std::vector<std::uint8_t> straightPixelsOfImage(const Image&);

/// An uncompressed TIFF file of these pixels.
std::vector<std::byte> tiffOfImage(const Image&);

} // namespace vxr
