#pragma once

#include <vxr/platform/graphics/DrawingEngine.h>

namespace vxr {

/// Draws into the caller's pixels, which outlive the engine.
std::unique_ptr<DrawingEngine> makeRasterEngine(
    std::uint8_t* pixels, int width, int height, std::size_t bytesPerRow);

} // namespace vxr
