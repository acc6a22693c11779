#pragma once

#include <cstdint>
#include <span>

namespace vxr {

/// Loops of the filter pipeline over planes of floats from 0 to 1, or rows of four 32-bit integers a pixel.
/// Every set gives the same bytes; they differ in the instructions that they use.
struct FilterKernels {
    const char* name;

    // Colours of `count` pixels, in place. Results are clamped to [0, 1].
    void (*gain)(float* values, int count, float scale);
    void (*line)(float* values, int count, float scale, float offset);
    void (*colorMatrix)(float* red, float* green, float* blue, int count, const float (&matrix)[9]);
    void (*clamp)(float* values, int count); ///< NaN becomes 0
    /// The sRGB transfer function and its inverse, within 6e-7 of the exact ones.
    void (*encode)(float* values, int count);
    void (*decode)(float* values, int count);

    // Premultiplied 32-bit pixels, alpha in the highest byte, to straight colours and back.
    void (*loadARGB)(
        const std::uint32_t* pixels, int count, float* red, float* green, float* blue, float* alpha);
    void (*storeARGB)(const float* red, const float* green, const float* blue, const float* alpha, int count,
        std::uint32_t* pixels);

    // Sums of rows, for box filters.
    void (*addRow)(std::int32_t* sums, const std::int32_t* added, const std::int32_t* removed, int count);
    /// (sums + (before + after) · edge) · scale, rounded.
    void (*boxRow)(std::int32_t* out, const std::int32_t* sums, const std::int32_t* before,
        const std::int32_t* after, int count, float edge, float scale);
};

const FilterKernels& filterKernels(); ///< the best set for this processor
std::span<const FilterKernels* const> availableFilterKernels(); ///< all that run here

} // namespace vxr
