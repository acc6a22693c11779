#pragma once

#include <cstdint>
#include <span>

namespace vxr {

/// Loops of the filter pipeline over planes of floats from 0 to 1, or of 16-bit values.
/// Every set gives the same bytes; they differ in the instructions that they use.
struct FilterKernels {
    const char* name;

    // Colours of `count` pixels, in place. Results are clamped to [0, 1].
    void (*gain)(float* values, int count, float scale);
    void (*line)(float* values, int count, float scale, float offset);
    /// Rounds to 16 bits if told to.
    void (*colorMatrix)(
        float* red, float* green, float* blue, int count, const float (&matrix)[9], bool rounds);
    void (*clamp)(float* values, int count); ///< NaN becomes 0
    void (*round16)(float* values, int count); ///< to the nearest 65535th
    void (*to16)(const float* values, int count, std::uint16_t* out);
    void (*from16)(const std::uint16_t* values, int count, float* out);
    /// The sRGB transfer function and its inverse, within 6e-7 of the exact ones.
    void (*encode)(float* values, int count);
    void (*decode)(float* values, int count);

    // Premultiplied 32-bit pixels, alpha in the highest byte, to straight colours and back.
    void (*loadARGB)(
        const std::uint32_t* pixels, int count, float* red, float* green, float* blue, float* alpha);
    /// Four straight 16-bit components a pixel, red to alpha.
    void (*loadWide)(
        const std::uint16_t* pixels, int count, float* red, float* green, float* blue, float* alpha);
    void (*storeARGB)(const float* red, const float* green, const float* blue, const float* alpha, int count,
        std::uint32_t* pixels);

    bool (*isOpaque)(const std::uint32_t* pixels, int count);

    /// The luminance (ITU-R BT.709 of encoded values) of 16-bit colours.
    void (*luma)(const std::uint16_t* red, const std::uint16_t* green, const std::uint16_t* blue, int count,
        std::uint16_t* out);
    void (*multiply16)(std::uint16_t* values, const std::uint16_t* by, int count);
    /// v + amount · (luma - mean), the mean divided by that of alpha where there is one.
    void (*sharpen)(const std::uint16_t* const (&colors)[3], const std::uint16_t* mean,
        const std::uint16_t* meanAlpha, int count, float amount, float* const (&out)[3]);
    /// v + amount · (v - mean), likewise.
    void (*soften)(const std::uint16_t* color, const std::uint16_t* mean, const std::uint16_t* meanAlpha,
        int count, float amount, float* out);

    // Box filters, rounded: the mean of what lies between two prefix sums and a part of its neighbours ...
    void (*boxRow)(const std::uint32_t* from, const std::uint32_t* to, const std::uint16_t* before,
        const std::uint16_t* after, int count, float edge, float scale, std::uint16_t* out);
    /// ... and of a column's sums that lose `before`, gain `added`, and are followed by `after`.
    void (*boxColumns)(std::int32_t* sums, const std::uint16_t* before, const std::uint16_t* added,
        const std::uint16_t* after, int count, float edge, float scale, std::uint16_t* out);
};

const FilterKernels& filterKernels(); ///< the best set for this processor
std::span<const FilterKernels* const> availableFilterKernels(); ///< all that run here

} // namespace vxr
