#pragma once

#include <cstddef>
#include <cstdint>

namespace vxr {

/// Moves an 8-bit mask to the right and down by less than a pixel, exactly as the drawing engine does
/// when it paints through the mask at such a place. The target has one column and row more than the
/// source, and rows of `targetStride` bytes, a multiple of 4.
void shiftMask(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, double right,
    double down, std::uint8_t* target, std::ptrdiff_t targetStride);

} // namespace vxr
