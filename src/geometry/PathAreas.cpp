#include <vxr/geometry/PathAdditions.h>

#include <vxr/geometry/FlatPathWalker.h>
#include <vxr/geometry/VXRPolygon.h>
#include <vxr/textwrap/VXRTextWrap.h>

#include <cmath>
#include <span>

// Areas as paths, by way of polygon sets.

namespace vxr {

namespace {

/// The contours of a clipped set touch each other at most, so that the even-odd rule is what tells its
/// holes apart, whichever way they run.
std::shared_ptr<Path> pathOfArea(const gpc_polygon* polygon)
{
    auto path = bezierFromPolygon(polygon);
    path->setWindingRule(WindingRule::EvenOdd);
    return path;
}

std::shared_ptr<Path> combined(gpc_op operation, const Path& path, const Path& other)
{
    const VXRPolygonOwner a(polygonFromBezier(path)), b(polygonFromBezier(other)), result(emptyPolygon());
    gpc_polygon_clip(operation, a.get(), b.get(), result.get());
    return pathOfArea(result.get());
}

bool isFinite(const gpc_polygon& polygon)
{
    for (const gpc_vertex_list& contour : std::span(polygon.contour, std::size_t(polygon.num_contours))) {
        for (const gpc_vertex& v : std::span(contour.vertex, std::size_t(contour.num_vertices))) {
            if (!std::isfinite(v.x) || !std::isfinite(v.y))
                return false;
        }
    }
    return true;
}

/// What has no place is left out, as it would empty every union that it takes part in.
void addPlaced(VXRPolygonOwner polygon, std::vector<VXRPolygonOwner>& polygons)
{
    if (polygon && isFinite(*polygon))
        polygons.push_back(std::move(polygon));
}

void addJoinWedges(const Path& flat, std::vector<VXRPolygonOwner>& polygons)
{
    for (const VXRSegmentRun& run : pathAsSegments(flat)) {
        for (const auto& wedge : _beziersFromSegmentIntersections(flat, run)) {
            VXRPolygonOwner polygon(polygonFromBezier(*wedge));
            if (polygon->num_contours > 0 && polygon->contour[0].num_vertices >= 3)
                addPlaced(std::move(polygon), polygons);
        }
    }
}

} // namespace

std::shared_ptr<Path> outlineStroke(const Path& path)
{
    if (path.isEmpty())
        return nullptr;
    const auto flat = path.bezierPathByFlatteningPath();
    const bool round = path.lineJoin() == LineJoin::Round;
    std::vector<VXRPolygonOwner> polygons;
    walkFlatPath(*flat, "PathAreas.cpp", [&](Point a, Point b) {
        addPlaced(VXRPolygonOwner(_polygonForSegment(a, b, path.lineWidth(), round)), polygons);
        return false;
    });
    if (!round)
        addJoinWedges(*flat, polygons);
    if (polygons.empty())
        return Path::path();
    if (polygons.size() % 2)
        polygons.emplace_back(emptyPolygon()); // they are united in pairs
    std::vector<gpc_polygon*> sets;
    sets.reserve(polygons.size());
    for (const VXRPolygonOwner& polygon : polygons)
        sets.push_back(polygon.get());
    return pathOfArea(_combinePolys(sets.data(), static_cast<int>(sets.size())));
}

std::shared_ptr<Path> uniteWithBezierPath(const Path& path, const Path& other)
{
    return combined(GPC_UNION, path, other);
}

std::shared_ptr<Path> intersectBezierPath(const Path& path, const Path& other)
{
    return combined(GPC_INT, path, other);
}

std::shared_ptr<Path> excludeBezierPath(const Path& path, const Path& other)
{
    return combined(GPC_DIFF, path, other);
}

} // namespace vxr
