#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <utility>
#include <vector>

// Measures and questions of one Bezier segment. Parameters run from 0 at the start to 1 at the end.
//
// A segment with a coordinate that is not finite has the length 0, empty bounds, no inflections, cusps or
// intersections; its nearest point is its start at an infinite distance.

namespace vxr {

VXR_EXPORT bool isFinite(const Cubic& curve);

// Points and parts.

VXR_EXPORT Vec2 pointAt(const Cubic& curve, double t);
VXR_EXPORT Vec2 derivativeAt(const Cubic& curve, double t);
VXR_EXPORT Vec2 secondDerivativeAt(const Cubic& curve, double t);
/// The unit vector along which the pen moves. Where the derivative vanishes, that of the curve beside it,
/// towards the middle of the segment; zero for a single point.
VXR_EXPORT Vec2 directionAt(const Cubic& curve, double t);
/// Positive where the curve bends to the left; infinite at a cusp.
VXR_EXPORT double curvatureAt(const Cubic& curve, double t);
VXR_EXPORT std::pair<Cubic, Cubic> splitAt(const Cubic& curve, double t);
VXR_EXPORT Cubic partBetween(const Cubic& curve, double from, double to);
VXR_EXPORT Cubic reversed(const Cubic& curve);
/// A straight segment run through evenly.
VXR_EXPORT Cubic cubicFromLine(Vec2 start, Vec2 end);
/// Whether a line may take the segment's place: no point is further than `tolerance` from the line between
/// the ends, or beyond them.
VXR_EXPORT bool isStraight(const Cubic& curve, double tolerance);

// Lengths.

/// The error of a length, as a part of it.
inline constexpr double lengthPrecision = 1e-8;

/// Gauss-Legendre quadrature with 8 or 16 nodes, on pieces that get shorter towards where the pen slows down.
VXR_EXPORT double lengthOf(const Cubic& curve);
/// Of the part between two parameters; negative when they stand the other way round.
VXR_EXPORT double lengthBetween(const Cubic& curve, double from, double to);
/// The parameter at which the curve is `length` long, clamped to [0, 1]. Within the precision above of the
/// whole length.
VXR_EXPORT double parameterAtLength(const Cubic& curve, double length);

// Places.

struct NearestPoint {
    double t = 0;
    double distance = 0;
};
/// The first of the nearest points when there are several.
VXR_EXPORT NearestPoint nearestPoint(const Cubic& curve, Vec2 p);

/// Least and largest coordinates.
struct Extent {
    Vec2 least, most;
};
/// Of the curve itself, from its extrema; a single point has a zero extent.
VXR_EXPORT Extent extentOf(const Cubic& curve);

/// Parameters strictly within the segment at which it changes from bending one way to the other. At most two.
VXR_EXPORT std::vector<double> inflectionsOf(const Cubic& curve);
/// Parameters at which the pen stops, ends included, so that the direction may change. At most two.
VXR_EXPORT std::vector<double> cuspsOf(const Cubic& curve);

} // namespace vxr
