#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <vector>

namespace vxr::test {

/// The published method as it stands, for comparison: chord-length parameters, tangents from neighbouring
/// points, up to four rounds of Newton's steps when the error is below four times the allowed square, else a
/// split at the worst point. `tolerance` is a distance.
std::vector<Cubic> schneiderFit(const std::vector<Vec2>& points, double tolerance);

} // namespace vxr::test
