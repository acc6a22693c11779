#pragma once

#include <vxr/geometry/curves/MeasuredRun.h>

namespace vxr {

/// Appends a drawing laid along a run: (x, y) comes to the place at `start + x * scaleX`, and `y * scaleY` to
/// the left of it. Edges are cut into pieces no longer than half of `scaleY` or a
/// 4096th of the run, so that they bend; pieces that
/// share a point go on doing so.
void appendBentDrawing(
    Path& target, const Path& drawing, const MeasuredRun& run, double start, double scaleX, double scaleY);

/// Appends a drawing unbent: its point (x, 0) comes to the place at `distance`, along the direction there.
void appendStiffDrawing(Path& target, const Path& drawing, const MeasuredRun& run, double distance, double x,
    double scaleX, double scaleY);

} // namespace vxr
