#pragma once

#include <vxr/platform/graphics/DeviceBox.h>
#include <vxr/platform/graphics/cairo/CairoHandles.h>
#include <vxr/platform/graphics/path/Path.h>

namespace vxr {

// What follows hands cairo paths that its numbers can't hold. Points are mapped in double, curves are
// flattened where they can be seen, and nothing outside of `visible` is passed on. A sub-path with a
// coordinate that is not finite is left out.

/// Appends an area of device space that looks the same within `visible`. The context's matrix is the
/// identity.
void appendClippedArea(
    cairo_t*, const Path&, const cairo_matrix_t& toDevice, const DeviceBox& visible, double tolerance);

/// Strokes the parts of the centre line that lie within `visible`, with the line style and matrix
/// (`toUser` device space) set on the context. Dashes keep their place along the line.
void strokeClippedLine(
    cairo_t*, const Path&, const cairo_matrix_t& toDevice, const DeviceBox& visible, double tolerance);

} // namespace vxr
