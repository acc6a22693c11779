#pragma once

#include <vxr/geometry/tracing/MaskOutlines.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <memory>

namespace vxr {

class Image;
class Path;

struct VXRTraceOptions {
    MaskOutlineOptions outlines { .leastArea = 3, .mostOutlines = 1 << 14 };
    /// In pixels. Below half a pixel the result is the exact outline of the pixels.
    double tolerance = 1;
    bool holes = true; ///< false leaves them out, and with them what lies in them
};

/// What of an image's pixels is inside.
enum class VXRTraceSource {
    Alpha, ///< opaque pixels; all of an image without alpha
    Darkness, ///< dark pixels: white and transparent count as 0, black as 255
};

struct VXRTrace {
    std::shared_ptr<Path> path; ///< never none; for either winding rule
    std::size_t outlines = 0; ///< sub-paths
    std::size_t dropped = 0; ///< outlines below the least area
    bool complete = true; ///< false when there were more outlines than the limit
};

/// Turns pictures into paths: the exact outline of the pixels inside, its corners found, curves and lines
/// fitted between them.
///
/// The path is no further than the tolerance and half a pixel from the exact outline, and the outline no
/// further from the path. What is inside lies to the right of the path where y points down. A placed
/// picture's text-wrap outline is `traceImageInRect` with the picture's frame.
class VXR_EXPORT VXRImageTracer {
public:
    /// In pixels of the mask, y down from the top row.
    static VXRTrace traceMask(const MaskView& mask, const VXRTraceOptions& options = {});
    /// The image fills `frame`, its top row at the frame's least y.
    static VXRTrace traceImageInRect(const Image& image, const Rect& frame,
        VXRTraceSource source = VXRTraceSource::Alpha, const VXRTraceOptions& options = {});
};

} // namespace vxr
