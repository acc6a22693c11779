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
        Sharpen, ///< encoded: v + scale · (v - mean of the neighbourhood of `radius` pixels)
        Custom, ///< encoded: `custom` on `count` pixels at a time, a plane per colour
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
    static FilterOperation pixelLoop(CustomLoop loop)
    {
        return { Kind::Custom, 1, 0, 0, {}, std::move(loop) };
    }
};

} // namespace vxr
