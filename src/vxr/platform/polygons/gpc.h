#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

/// Boolean operations on areas, in the records and calls of the General Polygon Clipper. Operands are
/// read with the even-odd rule; contours may cross themselves and each other.
///
/// A polygon set is a plain C record: zero it before the first `gpc_add_contour`, release its contents
/// with `gpc_free_polygon`. Arrays come from malloc. Running out of memory throws std::bad_alloc and
/// leaves every polygon set as it was.

enum gpc_op { GPC_DIFF = 0, GPC_INT = 1, GPC_XOR = 2, GPC_UNION = 3 };

struct gpc_vertex {
    double x;
    double y;
};

/// One contour; the last vertex is joined to the first.
struct gpc_vertex_list {
    int num_vertices;
    gpc_vertex* vertex;
};

struct gpc_polygon {
    int num_contours;
    int* hole; ///< per contour: 1 when it bounds a hole. Informative: clipping does not read it.
    gpc_vertex_list* contour;
};

/// Limits of the work that one clip accepts, so that hostile input costs seconds at most: vertices of both
/// operands, and points in which the edges of large operands cross. A clip beyond them throws a
/// `GenericException` that names the limit. Below them cost follows vertices and crossings.
constexpr double gpcMaximumVertices = 1 << 22;
constexpr double gpcMaximumCrossings = 1 << 22;

/// Appends a copy of `contour`, which stays the caller's.
VXR_EXPORT void gpc_add_contour(gpc_polygon* polygon, const gpc_vertex_list* contour, int hole);

/// `result` = `subject` `operation` `clip`. What `result` held is overwritten, not freed; it may be one
/// of the operands.
///
/// Coordinates are rounded to a grid of 2^45 steps across both operands, or where more than thousands of
/// edges lie side by side of 2^30 across what lies together. A step is a power of two wide, so whole numbers
/// and dyadic fractions come back exactly. The result's area is right under the even-odd rule; contours may
/// touch. A hole flag says that the contour lies within an odd number of others. Empty operands and a NaN or
/// infinite vertex in either operand give the empty set (a union with the empty set is the other operand with
/// its crossings resolved). Throws for work beyond the limits above and then leaves `result` as it was.
VXR_EXPORT void gpc_polygon_clip(
    gpc_op operation, const gpc_polygon* subject, const gpc_polygon* clip, gpc_polygon* result);

/// `result` = the area of `polygon` under the nonzero rule, as contours for the even-odd rule. Otherwise like
/// `gpc_polygon_clip`.
VXR_EXPORT void gpc_unite_nonzero(const gpc_polygon* polygon, gpc_polygon* result);

/// Frees the contents and leaves an empty set; the record itself stays the caller's.
VXR_EXPORT void gpc_free_polygon(gpc_polygon* polygon);

} // namespace vxr
