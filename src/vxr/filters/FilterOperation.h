#pragma once

#include <vxr/platform/base/Export.h>

#include <array>
#include <functional>

namespace vxr {

/// One operation on pixels. Colours are sRGB values, not premultiplied, from 0 to 1: encoded ones as they
/// stand in files, or linear ones in proportion to light. Every operation clamps its result to [0, 1], so
/// that it makes no difference whether operations run in one pass or in several. Alpha is never changed.
struct FilterOperation {
    enum class Kind {
        Gain, ///< linear: v · scale
        Line, ///< encoded: v · scale + offset
        Matrix, ///< linear: rows of `matrix` times (red, green, blue)
        /// Encoded: v + scale · (Y - mean of Y in the neighbourhood of `radius` pixels), Y the luma; with
        /// negative scales v in the place of Y.
        Sharpen,
        Custom, ///< encoded: `custom` on `count` pixels at a time, a plane per colour
        Lines, ///< encoded: v · matrix[c] + matrix[3 + c] for colour c
        Round, ///< either: to 16 bits, as after each layer of a stack
    };
    using CustomLoop = std::function<void(float* red, float* green, float* blue, int count)>;

    Kind kind = Kind::Gain;
    float scale = 1;
    float offset = 0;
    float radius = 0;
    std::array<float, 9> matrix {};
    CustomLoop custom {}; ///< any function of a pixel's own colour

    static FilterOperation gain(float scale) { return { Kind::Gain, scale, 0, 0, {}, {} }; }
    static FilterOperation line(float scale, float offset)
    {
        return { Kind::Line, scale, offset, 0, {}, {} };
    }
    static FilterOperation colorMatrix(const std::array<float, 9>& m)
    {
        return { Kind::Matrix, 1, 0, 0, m, {} };
    }
    static FilterOperation sharpen(float amount, float radius)
    {
        return { Kind::Sharpen, amount, 0, radius, {}, {} };
    }
    static FilterOperation lines(const std::array<float, 3>& scales, const std::array<float, 3>& offsets)
    {
        return { Kind::Lines, 1, 0, 0,
            { scales[0], scales[1], scales[2], offsets[0], offsets[1], offsets[2], 0, 0, 0 }, {} };
    }
    static FilterOperation round() { return { Kind::Round, 1, 0, 0, {}, {} }; }
    static FilterOperation pixelLoop(CustomLoop loop)
    {
        return { Kind::Custom, 1, 0, 0, {}, std::move(loop) };
    }
};

} // namespace vxr
