#pragma once

#include <vxr/platform/graphics/values/AffineTransform.h>

// Rounding to pixels, and arithmetic on points, sizes, rectangles and angles. In single precision
// throughout; "in double" means that operands are widened, combined, and the result narrowed.

namespace vxr {

inline constexpr double VXR_2PI = 6.283185307179586;

// Rounding.

/// To the nearest integer, halves towards positive infinity. NaN stays NaN.
VXR_EXPORT float VXRRound(float x);
VXR_EXPORT Point VXRIntegralPoint(Point p);
VXR_EXPORT Size VXRIntegralSize(Size s);
/// Rounds origin and size independently, so the far edges may differ from rounded edges.
VXR_EXPORT Rect VXRIntegralRect(const Rect& r);
/// Rounds the edges: the pixels of which `r` covers at least half along each axis.
VXR_EXPORT Rect VXRIntegralRectFor50PercentCoverage(const Rect& r);
VXR_EXPORT float VXRRoundedMinX(const Rect& r);
VXR_EXPORT float VXRRoundedMidX(const Rect& r); ///< the midpoint of the rounded edges, rounded
VXR_EXPORT float VXRRoundedMaxX(const Rect& r);
VXR_EXPORT float VXRRoundedMinY(const Rect& r);
VXR_EXPORT float VXRRoundedMidY(const Rect& r);
VXR_EXPORT float VXRRoundedMaxY(const Rect& r);
VXR_EXPORT float VXRFractionalPart(float x); ///< truncates towards zero; has the sign of `x`

// Points and sizes.

/// `min` wins if the limits cross; NaN is returned unchanged.
VXR_EXPORT float VXRClamp(float value, float min, float max);
VXR_EXPORT float VXRDistance(Point a, Point b);
VXR_EXPORT bool VXRNearlyEqualPoints(Point a, Point b); ///< each coordinate within 0.01, exclusive
VXR_EXPORT bool VXRNearlyEqualSizes(Size a, Size b);
VXR_EXPORT Point VXRAddPoints(Point a, Point b);
VXR_EXPORT Point VXRAddPointToPoint(Point a, Point b); ///< synonym of `VXRAddPoints`
VXR_EXPORT Point VXRSubtractPoints(Point a, Point b);
VXR_EXPORT Point VXRAveragePoints(Point a, Point b);
VXR_EXPORT Point VXRMultiplyPointScalar(Point p, float s);
VXR_EXPORT Size VXRMultiplySizeScalar(Size size, float s);
/// The largest size with the aspect ratio of `s` that fits `box`. A zero side gives infinities or NaN.
VXR_EXPORT Size VXRScaleSizeWithinSize(Size s, Size box);
/// `s` enlarged to the aspect ratio of `ratio`, with one side kept; `s` itself if a side of `ratio` is zero.
/// If a side of `ratio` equals that of `s`, that side is the one recomputed.
VXR_EXPORT Size VXRSizeWithAspectRatio(Size s, Size ratio);

// Rectangles.

VXR_EXPORT Rect VXRMultiplyRectScalar(const Rect& r, float s); ///< origin and size
VXR_EXPORT Point VXRCenterOfRect(const Rect& r); ///< in double
VXR_EXPORT Rect VXRCenterRectOverRect(const Rect& r, const Rect& over);
VXR_EXPORT Rect VXRRectWithPoints(Point a, Point b); ///< normalised
VXR_EXPORT Rect VXRGrowRectToPoint(const Rect& r, Point p);
/// Flips `r` vertically within `bounds`. Not symmetric: y becomes relative to the origin of `bounds`, while
/// x keeps its coordinates.
VXR_EXPORT Rect VXRFlipRect(const Rect& r, const Rect& bounds);
/// Whether `inner` lies strictly inside `outer`: despite the name, touching an edge or being equal is
/// not enough. Never true for an empty rectangle.
VXR_EXPORT bool VXRContainsOrMatchesRect(const Rect& outer, const Rect& inner);

// Angles, in radians unless the name says degrees.

VXR_EXPORT void VXROriginRotate(float radius, float angle, Point* out); ///< in double
VXR_EXPORT float VXRNormalizeAngleInDegrees(float a); ///< to [0, 360)
VXR_EXPORT float VXRNormalizeAngleInRadians(float a); ///< to [0, 2 pi)
/// Direction of (dx, dy) in (-pi, pi]. Components below 0.001 in magnitude count as zero, dx first: the
/// zero vector points up.
VXR_EXPORT float VXRAngleFromDelta(float dx, float dy);
/// Snaps a drag to one of eight directions; a NaN angle leaves it unchanged. The sectors are not
/// symmetric: the diagonals of the first and third quadrant take the signed extreme of the components,
/// the other two the larger magnitude.
VXR_EXPORT Point VXRShiftConstrainDelta(Point delta);

// Clipping a line against a rectangle.

/// Outcode of a point: bit 1 above the largest y, 2 below the smallest, 4 beyond the largest x, 8 below the
/// smallest; 0 inside or on the border, and for NaN.
VXR_EXPORT int _compute_outcode(float x, float y, const Rect& r);
/// Whether the segment touches the rectangle, including its border.
VXR_EXPORT bool VXRLineIntersectsRect(Point a, Point b, const Rect& r);

/// In [0, 1), from `random()`, which this library never seeds.
VXR_EXPORT float VXRRandom();

} // namespace vxr
