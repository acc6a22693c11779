#pragma once

#include <vxr/platform/graphics/raster/DeviceMatrix.h>

#include <functional>

namespace vxr {

/// Cuts centre lines that go so far away that a stroker's numbers would lose what is near. The cuts lie
/// beyond what any bitmap shows, and where they lie depends on the path and the transform alone.
class FarStroke {
public:
    /// Whether the path reaches so far.
    static bool isFar(const Path&, const DeviceMatrix& toDevice);

    /// Hands on each connected piece in user space with the length of the line before it. `reach` is how far
    /// a stroke extends from its centre line, in pixels. Curves become lines within `tolerance`, in pixels.
    static void cut(const Path&, const DeviceMatrix& toDevice, double reach, double tolerance,
        const std::function<void(const Path& piece, double distance)>& take);
};

} // namespace vxr
