#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vxr {

struct ImageGrid;
struct RadialBlend;
using CubicWeights = std::int16_t[256][4];

/// How pixels or a colour meet what lies below, under a coverage of 0 to 255
/// (`c` below, over 255). Each operation leaves pixels of coverage 0 as they
/// are. Nothing but the given pixels is read or written. Sources and
/// destinations don't overlap.
struct SpanOperation {
    using Color
        = void (*)(std::uint32_t* destination, std::size_t count, std::uint32_t color, std::uint8_t coverage);
    using ColorMask = void (*)(
        std::uint32_t* destination, std::size_t count, std::uint32_t color, const std::uint8_t* coverage);
    using Pixels = void (*)(
        std::uint32_t* destination, std::size_t count, const std::uint32_t* source, std::uint8_t coverage);
    using PixelsMask = void (*)(std::uint32_t* destination, std::size_t count, const std::uint32_t* source,
        const std::uint8_t* coverage);

    Color color; ///< one colour through one coverage: 255 for full spans
    ColorMask colorMask; ///< one colour, a coverage per pixel
    Pixels pixels; ///< a span of source pixels through one coverage
    PixelsMask pixelsMask; ///< a span of source pixels, a coverage per pixel
};

/// Row loops over premultiplied ARGB32 pixels (alpha in the upper byte), 8-bit
/// coverage and the cells of a signed-area rasteriser. Any count is allowed, 0
/// too, and no pointer needs to be aligned. Every set of loops gives the same
/// bytes: each product of two bytes over 255 is rounded to the nearest.
struct SpanKernels {
    const char* name;

    /// By the numbers of `CompositeOperation`:
    /// 0 clear: d (1 - c); colour and source are not looked at.
    /// 1 copy: s c + d (1 - c), rounded once.
    /// 2 over: s c + d (1 - alpha of s c), each product rounded as in pixman;
    /// sums saturate.
    SpanOperation operations[3];

    const SpanOperation& over() const { return operations[2]; }

    /// Multiplies pixels by a factor over 255. `target` may be `source`.
    void (*fade)(std::uint32_t* target, const std::uint32_t* source, std::size_t count, std::uint8_t factor);
    /// Bytes in the order alpha, red, green, blue to native premultiplied pixels. `target` may be `source`.
    void (*toNative)(std::uint32_t* target, const std::uint32_t* source, std::size_t count, bool isOpaque);
    void (*limitToAlpha)(
        std::uint32_t* pixels, std::size_t count); ///< colours above their alpha become as large
    /// Multiplies a coverage by another, each over 255.
    void (*multiplyMask)(std::uint8_t* mask, const std::uint8_t* other, std::size_t count);
    void (*fadeMask)(std::uint8_t* mask, std::size_t count, std::uint8_t factor);

    /// Turns cells of signed area, in which `fullCell` is a whole pixel, into
    /// coverage: sums `carry` and the cells up to and with each pixel's, applies
    /// the fill rule, and sets the cells to 0. Returns the sum of all, which is
    /// the carry of the cells to the right. Sums wrap around.
    using Sum = std::int32_t (*)(
        std::int32_t* cells, std::size_t count, std::int32_t carry, std::uint8_t* coverage);
    Sum sumNonZero; ///< min(|sum|, full)
    Sum sumEvenOdd; ///< the distance to the next even number of full cells

    /// Colours of a radial blend from column `x` on; (u, v) are the coordinates
    /// of column 0 in the row.
    void (*radial)(const RadialBlend&, double u, double v, int x, std::size_t count, std::uint32_t* colors);

    // Samples of an image, from the place (u, v) on: mixtures of the four or
    // sixteen pixels from there, whose fractions are the weights, and averages of
    // boxes around it, of at most 253 columns. What a level has beyond a whole
    // one is cut off after `offsets[x & 7]` 128ths have been added.
    void (*linear)(
        const ImageGrid&, std::int64_t u, std::int64_t v, std::size_t count, std::uint32_t* pixels);
    void (*cubic)(const ImageGrid&, const CubicWeights& across, const CubicWeights& down,
        const std::uint8_t* offsets, std::int64_t u, std::int64_t v, int x, std::size_t count,
        std::uint32_t* pixels);
    void (*average)(const ImageGrid&, const std::uint8_t* offsets, std::int64_t u, std::int64_t v, int x,
        std::size_t count, std::uint32_t* pixels);
};

inline constexpr std::int32_t fullCell = 1 << 17;

/// The coverage of one sum, as the loops compute it: for constant runs between
/// marked cells.
inline std::uint8_t coverageNonZero(std::int32_t sum)
{
    const std::uint32_t area = sum < 0 ? -std::uint32_t(sum) : std::uint32_t(sum);
    const std::uint32_t inside = area < std::uint32_t(fullCell) ? area : std::uint32_t(fullCell);
    return std::uint8_t((inside * 255 + fullCell / 2) >> 17);
}

inline std::uint8_t coverageEvenOdd(std::int32_t sum)
{
    const std::uint32_t area = std::uint32_t(sum) & (2 * fullCell - 1);
    const std::uint32_t inside = area < std::uint32_t(fullCell) ? area : 2 * fullCell - area;
    return std::uint8_t((inside * 255 + fullCell / 2) >> 17);
}

/// The upper byte of a 16-bit channel, which is how colours with fractions become bytes.
inline std::uint8_t channelByte(double component)
{
    const double inside = component > 0 ? component < 1 ? component : 1 : 0;
    return std::uint8_t(unsigned(inside * 65535 + 0.5) >> 8);
}

/// The product of two bytes over 255, rounded.
inline constexpr std::uint8_t multiplyBytes(std::uint8_t a, std::uint8_t b)
{
    return std::uint8_t((unsigned(a) * b + 128) * 257 >> 16);
}

/// The loops to use on this processor: the fastest of all it runs, measured once.
const SpanKernels& spanKernels();

/// All loops that this processor runs, the portable ones first.
std::span<const SpanKernels* const> availableSpanKernels();

} // namespace vxr
