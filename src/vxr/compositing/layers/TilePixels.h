#pragma once

#include <cstddef>
#include <cstdint>

namespace vxr {

/// Half-open box of pixels within a tile's bitmap.
struct TileBox {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    TileBox grown(int by) const { return { x0 - by, y0 - by, x1 + by, y1 + by }; }
    friend bool operator==(const TileBox&, const TileBox&) = default;
};

TileBox intersection(const TileBox& a, const TileBox& b);

/// Premultiplied ARGB32 pixels to be looked at.
struct TilePixels {
    const std::uint32_t* pixels = nullptr;
    std::ptrdiff_t rowLength = 0; ///< in pixels
};

/// The smallest box around all pixels of `within` that are not wholly transparent.
TileBox inkBox(const TilePixels&, const TileBox& within);

/// A box of opaque pixels within `within`: the largest of those that grow evenly up and down from the
/// middle row. Empty when the middle is not opaque.
TileBox opaqueBox(const TilePixels&, const TileBox& within);

/// Whether all pixels of `within` are wholly transparent.
bool isTransparent(const TilePixels&, const TileBox& within);

} // namespace vxr
