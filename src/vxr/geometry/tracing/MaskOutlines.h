#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {

/// One byte a pixel, first row on top. Refers to somebody's bytes.
struct MaskView {
    const std::uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    std::size_t bytesPerRow = 0;
};

/// A corner of pixels: the pixel at column x of row y has its own corners at (x, y) and (x + 1, y + 1).
struct PixelCorner {
    std::int32_t x = 0;
    std::int32_t y = 0;

    friend bool operator==(const PixelCorner&, const PixelCorner&) = default;
};

struct MaskOutlineOptions {
    std::uint8_t threshold = 128; ///< pixels at least as high are inside; at 0 all are
    std::int64_t leastArea = 1; ///< outlines around fewer pixels are dropped, holes of fewer filled
    std::size_t mostOutlines = 1 << 16;
    std::size_t mostCorners = 1 << 24; ///< of all outlines together
};

/// Exact outlines of the pixels inside a mask: closed polygons along the edges of pixels, the inside to the
/// right where y points down. Pixels that only touch at a corner are apart. No outline crosses another or
/// itself, though two corners of pixels may coincide.
struct MaskOutlines {
    struct Outline {
        std::size_t first = 0; ///< in `corners`
        std::size_t count = 0;
        std::int64_t area = 0; ///< in pixels, holes within not taken off; negative for a hole
    };

    std::vector<PixelCorner> corners; ///< where outlines turn
    std::vector<Outline> outlines; ///< by their top left corners, rows from the top
    std::size_t dropped = 0; ///< below the least area
    bool complete = true; ///< false when a limit ended the search: what lies below was not looked at
};

/// Time grows with the number of pixels, of which 64 are looked at together, and the length of all outlines.
/// A mask without pixels, or whose rows are shorter than its width, has no outlines.
VXR_EXPORT MaskOutlines outlinesOfMask(const MaskView& mask, const MaskOutlineOptions& options);

} // namespace vxr
