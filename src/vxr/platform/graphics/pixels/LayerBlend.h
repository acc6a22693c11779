#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vxr {

/// Row loops that blend layers, over premultiplied ARGB32 pixels, with the exact results of pixman's
/// source-over: each product of two bytes is rounded, sums saturate.
struct LayerBlendLoops {
    const char* name;
    void (*over)(std::uint32_t* destination, const std::uint32_t* source, std::size_t count);
    /// The source's pixels multiplied by `fade` first.
    void (*overFaded)(
        std::uint32_t* destination, const std::uint32_t* source, std::size_t count, std::uint8_t fade);
    void (*overColor)(std::uint32_t* destination, std::uint32_t color, std::size_t count);
    /// `color`, premultiplied, through an 8-bit coverage.
    void (*overMask)(
        std::uint32_t* destination, const std::uint8_t* mask, std::uint32_t color, std::size_t count);
};

/// The fastest loops that this processor runs, chosen once.
const LayerBlendLoops& layerBlendLoops();

/// All loops that this processor runs, the portable ones first.
std::span<const LayerBlendLoops* const> availableLayerBlendLoops();

/// The upper byte of a 16-bit channel, which is how the drawing engine takes components.
inline std::uint8_t channelByte(double component)
{
    return std::uint8_t(unsigned(std::clamp(component, 0.0, 1.0) * 65535 + 0.5) >> 8);
}

} // namespace vxr
