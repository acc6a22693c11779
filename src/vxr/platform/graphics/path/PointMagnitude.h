#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

namespace vxr {

/// The largest magnitude among the coordinates; infinity or NaN when one is not a finite number. The bits of
/// floats without their sign order like the numbers, with infinity and NaN above all.
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
