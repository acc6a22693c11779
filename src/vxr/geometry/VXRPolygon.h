#pragma once

#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/polygons/gpc.h>

#include <memory>
#include <vector>

namespace vxr {

/// Conversion between paths and polygon sets. A set returned as a plain pointer is the caller's: release
/// it with `VXRFreePolygon`, or hold it in a `VXRPolygonOwner` from the start.

/// Frees the contents and the record, which must come from malloc. None is allowed.
VXR_EXPORT void VXRFreePolygon(gpc_polygon* polygon);

struct VXRPolygonDeleter {
    void operator()(gpc_polygon* polygon) const { VXRFreePolygon(polygon); }
};
using VXRPolygonOwner = std::unique_ptr<gpc_polygon, VXRPolygonDeleter>;

// The operations of `gpc.h`, which refuse input beyond their limits with an exception; here they log it, too.
VXR_EXPORT void VXRClipPolygons(
    gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip, gpc_polygon& result);
VXR_EXPORT void VXRUniteNonZero(const gpc_polygon& polygon, gpc_polygon& result);

/// A new, empty set from malloc.
VXR_EXPORT gpc_polygon* emptyPolygon();

/// How finely areas follow the curves of a path: its flatness, but no finer than a millionth of its extent,
/// which bounds what hostile paths cost.
VXR_EXPORT float VXRAreaFlatness(const Path& path);

/// The flattened path as contours, open sub-paths closed. A vertex within 0.7 of the last kept one in
/// both axes is left out; a lone move-to becomes the first vertex of the following sub-path.
VXR_EXPORT gpc_polygon* polygonFromBezier(const Path& path);

/// One contour of four vertices from the origin, along the width first; the far edges in double.
VXR_EXPORT gpc_polygon* polygonFromRect(const Rect& rect);

/// A closed sub-path per contour whose bounds are both wider and taller than 0.01.
VXR_EXPORT std::shared_ptr<Path> bezierFromPolygon(const gpc_polygon* polygon);

/// A path of its own per contour, however small.
VXR_EXPORT std::vector<std::shared_ptr<Path>> beziersFromPolygon(const gpc_polygon* polygon);
VXR_EXPORT std::shared_ptr<Path> bezierForVertexList(const gpc_vertex_list& vertices);
VXR_EXPORT void addVertexListToBezier(const gpc_vertex_list& vertices, Path& path);

/// The zero rectangle for an empty list.
VXR_EXPORT Rect boundsForVertexList(const gpc_vertex_list& vertices);

/// The segment widened by half of `width` on each side, square at both ends; `round` adds a disc at
/// `a` only, so that a chain of segments has round joins. None when the length is 0. The caller frees it.
VXR_EXPORT gpc_polygon* _polygonForSegment(Point a, Point b, float width, bool round);

/// The union of `count` sets, left in `polys[0]`, which is returned; none for a count of 0. The other
/// sets are scratch and lose their contents, but every record stays the caller's to free.
VXR_EXPORT gpc_polygon* _combinePolys(gpc_polygon** polys, int count);

constexpr gpc_vertex makeVertex(float x, float y) { return { x, y }; }
constexpr gpc_vertex vertexFromPoint(float x, float y) { return { x, y }; }
constexpr gpc_vertex vertexFromPoint(Point p) { return { p.x, p.y }; }
constexpr Point pointFromVertex(const gpc_vertex& v) { return { float(v.x), float(v.y) }; }

/// The next of the eight directions 0 to 7.
constexpr int clockwiseDirection(int direction) { return direction + 1 == 8 ? 0 : direction + 1; }

/// Stores the point at `index`, doubling the array first when `index` has reached `capacity`. Returns the
/// capacity now in force.
VXR_EXPORT int addPointToArray(float x, float y, int index, std::vector<Point>& points, int capacity);

} // namespace vxr
