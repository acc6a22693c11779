#pragma once

#include <vxr/platform/polygons/gpc.h>

namespace vxr::testing {

/// Area of the points for which `operation` holds of "inside subject" and "inside clip" by the even-odd
/// rule. Independent of the clipper: long double trapezoids between all vertex and crossing heights.
/// Quadratic in the edges.
double areaOfOperation(gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip);

double evenOddArea(const gpc_polygon& polygon);

} // namespace vxr::testing
