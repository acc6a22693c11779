#pragma once

#include <vxr/platform/graphics/path/PathVector.h>
#include <vxr/platform/graphics/raster/DeviceMatrix.h>

#include <functional>
#include <span>

namespace vxr {

/// Coordinates of outlines lie within so many pixels of 0, or are cut first.
inline constexpr double nearRange = 1 << 20;

/// Cuts outlines that leave the near range, so that nothing within it changes. The arithmetic has 113 bits:
/// next to 1e30 it still tells 1/1000 of a pixel apart.
class FarOutline {
public:
    /// Device space; both are given with ends within the near range. Edges of an area that lie beyond its
    /// left and right sides run along them.
    struct Sink {
        std::function<void(Vec2, Vec2)> line;
        std::function<void(const Cubic&)> curve;
    };

    static void cutArea(const Path&, const DeviceMatrix& toDevice, const Sink&);
    static void cutContour(std::span<const Vec2>, const DeviceMatrix& toDevice, const Sink&);
};

} // namespace vxr
