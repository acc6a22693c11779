#pragma once

#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/polygons/gpc.h>

#include <cstdint>
#include <memory>
#include <vector>

// Additions to Path: queries, segments, outlines and areas.

namespace vxr {

class Context;

// Queries.

/// Whether any element after the first is a close.
VXR_EXPORT bool containsClosePathElement(const Path& path);
/// Whether the path has a close or ends exactly where it started.
VXR_EXPORT bool effectivelyClosed(const Path& path);
/// Whether the path is a single sub-path without a close whose end differs from its start. A path with
/// several sub-paths is never open.
VXR_EXPORT bool isOpen(const Path& path);
/// Whether `other` is a path with the same elements and points within 0.01 per coordinate. Styles are
/// ignored.
VXR_EXPORT bool isEqual(const Path& path, const Object& other);
/// By the sign of the area under the flattened path: >= 0 is clockwise. True for an empty path, and for
/// counter-clockwise outlines where y points up.
VXR_EXPORT bool isClockwise(const Path& path);
/// Whether the path is a single closed rectangle with axis-aligned sides, within 0.01.
VXR_EXPORT bool isRectangular(const Path& path);
/// Whether the outline comes within `tolerance` of `point`. Open sub-paths stay open. False for an empty
/// path and for a negative tolerance.
VXR_EXPORT bool pointOnPathTolerance(const Path& path, Point point, float tolerance);
/// The point at a fraction of the flattened path's length, ignoring moves; the fraction is clamped to
/// [0, 1]. The zero point if the path has no segment.
VXR_EXPORT Point pointAlongPathAtPercentage(const Path& path, float percentage);
/// Bounds (control points included) grown by half the line width and, with mitre joins, by the mitre
/// tips.
VXR_EXPORT Rect boundsIncludingStroke(const Path& path);

// Drawing.

/// Appends every element to the context's current path.
VXR_EXPORT void addPathToContext(const Path& path, Context& context);
/// Makes the area covered by the path's stroke transparent in the current context.
VXR_EXPORT void clearStroke(const Path& path);

// Segments.

/// A cubic from `start` to `end`. The pen leaves towards `out` and arrives from `in`: the control points,
/// except that one which lies on its end gives way to the next that doesn't, and that a line's are its
/// opposite ends. So `out - start` and `in - end` point along the outline wherever it has a direction.
struct VXRPathSegment {
    Point start, out, in, end;

    friend bool operator==(const VXRPathSegment&, const VXRPathSegment&) = default;
};

/// The connected segments of one sub-path; never empty.
struct VXRSegmentRun {
    std::vector<VXRPathSegment> segments;
    bool closed = false; ///< by a close element: the last segment ends where the first starts
};

/// A run per sub-path that has a segment, a close's segment included. Segments of no length are left out
/// unless the run has no other.
VXR_EXPORT std::vector<VXRSegmentRun> pathAsSegments(const Path& path);
/// `rect` grown by the mitre tips of one run, at the path's line width and within its miter limit.
VXR_EXPORT Rect _addMitersFromSegmentsToRect(const Path& path, const VXRSegmentRun& run, const Rect& rect);
/// The wedges that fill the outer corners between the run's segments at the path's line width: mitres
/// within its miter limit, bevels otherwise. Where nothing turns there is none.
VXR_EXPORT std::vector<std::shared_ptr<Path>> _beziersFromSegmentIntersections(
    const Path& path, const VXRSegmentRun& run);

// Areas. Each result is a new path of flat, closed sub-paths for the even-odd rule. Curves are followed
// within the path's flatness.
//
// Input beyond one of these limits is refused: a `GenericException` and a warning in the log name the limit.

/// Vertices of the flattened paths, or of the outline of a stroke.
inline constexpr double VXRAreaMaximumVertices = gpcMaximumVertices;
/// Points in which edges cross, counted where more than thousands of edges lie side by side.
inline constexpr double VXRAreaMaximumCrossings = gpcMaximumCrossings;

/// The area that stroking covers with the path's line width and join, solid and with butt ends; with round
/// joins open sub-paths begin with a disc. None for an empty path. Segments with an end that is not finite
/// are left out.
VXR_EXPORT std::shared_ptr<Path> outlineStroke(const Path& path);
/// Whether `outlineStroke` would cover the point, without uniting it: in linear time and without a limit.
VXR_EXPORT bool outlineStrokeContainsPoint(const Path& path, Point point);

// In these, vertices within 0.7 of the one before in both axes are left out.
VXR_EXPORT std::shared_ptr<Path> uniteWithBezierPath(const Path& path, const Path& other);
VXR_EXPORT std::shared_ptr<Path> intersectBezierPath(const Path& path, const Path& other);
VXR_EXPORT std::shared_ptr<Path> excludeBezierPath(const Path& path, const Path& other); ///< path minus other

// Copies.

/// A hand-drawn-looking copy: each segment in `subdivisions` curves (1 to 1024) whose ends are displaced at
/// random, no point of the outline further than `distance`. The same seed gives the same copy.
VXR_EXPORT std::shared_ptr<Path> pathByWobblingByUpToSubdivisions(
    const Path& path, float distance, int subdivisions, std::uint32_t seed = 1);

} // namespace vxr
