#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

namespace vxr {

/// The largest absolute coordinate; infinity or NaN if one is not finite. Without its sign bit, a float's bit
/// pattern orders like its value, with infinity and NaN above all numbers.
inline float largestMagnitude(std::span<const Point> points)
{
    std::uint32_t largest = 0;
    for (const Point p : points) {
        const std::uint32_t x = std::bit_cast<std::uint32_t>(p.x) & 0x7fffffffu;
        const std::uint32_t y = std::bit_cast<std::uint32_t>(p.y) & 0x7fffffffu;
        largest = std::max(largest, std::max(x, y));
    }
    return std::bit_cast<float>(largest);
}

} // namespace vxr
