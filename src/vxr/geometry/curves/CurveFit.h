#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <span>
#include <vector>

// Curves through sequences of points.

namespace vxr {

/// A point that a curve has to pass within the tolerance.
struct FitPoint {
    Vec2 p;
    Vec2 direction {}; ///< unit vector along which the curve passes, where that is known; else zero
    bool corner = false; ///< the curve may turn sharply here, and passes through the point itself
};

struct CurveFitOptions {
    double tolerance = 0.5; ///< how far from the curve a point may be; not a number counts as 0
    bool closed = false; ///< the last point is followed by the first
    /// The line through the points is the outline itself: the curve stays within the tolerance of it between
    /// the points too.
    bool keepsToLine = false;
    /// Points where the line through the points turns by more, seen at a distance of some tolerances, become
    /// corners, unless fewer segments do without; in radians. None but those given when it is pi or more.
    double cornerAngle = 1.0;
};

/// Segments that follow each other from the first point to the last (to the first again when closed), each
/// point within the tolerance of the segment it belongs to, neighbours with one tangent except at corners.
///
/// Least squares on arc-length parameters that are improved by Newton's steps, after Philip J. Schneider, "An
/// Algorithm for Automatically Fitting Digitized Curves", Graphics Gems (1990); other than there, each
/// segment is made as long as the tolerance allows before the next one begins. Time grows with n log n at
/// most.
///
/// Points that are not finite or repeat the one before are left out; fewer than two others give no segments.
/// At tolerance 0 the result is the line through the points.
VXR_EXPORT std::vector<Cubic> fitCurves(std::span<const FitPoint> points, const CurveFitOptions& options);
VXR_EXPORT std::vector<Cubic> fitCurves(std::span<const Vec2> points, const CurveFitOptions& options);

/// Appends segments that follow each other as one sub-path: lines where a segment is straight within
/// `straightness`, closed with a close element on demand.
VXR_EXPORT void appendCurves(Path& path, std::span<const Cubic> curves, bool closed, double straightness = 0);

} // namespace vxr
