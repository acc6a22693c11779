#pragma once

#include <cstddef>
#include <cstdint>

namespace vxr {

/// How pixels of four bytes lie in memory.
enum class PixelForm {
    Native, ///< premultiplied ARGB32
    BytesOpaque, ///< a byte that is ignored, red, green, blue
    BytesStraight, ///< alpha, red, green, blue, not premultiplied
};

/// Pixels, top row first.
struct PixelSource {
    const std::uint32_t* pixels;
    std::ptrdiff_t stride; ///< in pixels
    int width, height;
    PixelForm form = PixelForm::Native;
};

/// An image and how places in it change from one device pixel to the next, in
/// fixed point.
struct ImageGrid {
    PixelSource source;
    int fractionBits = 0; ///< 8 at least
    std::int64_t columnU = 0, columnV = 0;
    std::int64_t boxWidth = 0,
                 boxHeight = 0; ///< what is averaged, in 1/256 of the image's pixels
};

/// Four weights of 2^14 together for each 1/256 of a pixel, for the pixels from
/// the one before on.
using CubicWeights = std::int16_t[256][4];

/// A stretch of an axis, in part over its outermost pixels. Weights are 256ths.
struct PixelStretch {
    std::int64_t first, last; ///< pixels, half open
    int firstWeight, lastWeight;
    std::int64_t total; ///< of all weights

    int weight(std::int64_t i) const { return i == first ? firstWeight : i == last - 1 ? lastWeight : 256; }
};

// Always inlined, since sources for several instruction sets share this header.
/// What `size` around `middle` covers of `count` pixels; the outermost one
/// where it covers none.
static inline __attribute__((always_inline)) PixelStretch stretchOf(
    const ImageGrid& grid, std::int64_t middle, std::int64_t size, int count)
{
    const std::int64_t limit = std::int64_t(count) << 8;
    std::int64_t begin = (middle >> (grid.fractionBits - 8)) - size / 2, end = begin + size;
    begin = end <= 0 ? 0 : begin >= limit ? limit - 256 : begin < 0 ? 0 : begin;
    end = end <= 0 ? 256 : end > limit ? limit : end;
    const std::int64_t first = begin >> 8, last = (end + 255) >> 8, next = (first + 1) << 8;
    return { first, last, int((next < end ? next : end) - begin), int(end - ((last - 1) << 8)), end - begin };
}

} // namespace vxr
