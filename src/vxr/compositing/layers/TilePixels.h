#pragma once

#include <vxr/platform/graphics/values/IntRect.h>

#include <cstddef>
#include <cstdint>

namespace vxr {

/// Premultiplied ARGB32 pixels to be looked at.
struct TilePixels {
    const std::uint32_t* pixels = nullptr;
    std::ptrdiff_t rowLength = 0; ///< in pixels
};

/// The smallest box around all pixels of `within` that are not wholly transparent.
IntRect inkBox(const TilePixels&, const IntRect& within);

/// A box of opaque pixels within `within`: the largest of those that grow evenly up and down from the
/// middle row. Empty when the middle is not opaque.
IntRect opaqueBox(const TilePixels&, const IntRect& within);

/// Whether all pixels of `within` are wholly transparent.
bool isTransparent(const TilePixels&, const IntRect& within);

} // namespace vxr
