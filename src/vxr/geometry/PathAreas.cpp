#include <vxr/geometry/PathAdditions.h>

#include <vxr/geometry/FlatPathWalker.h>
#include <vxr/geometry/VXRPolygon.h>

#include <algorithm>
#include <cmath>
#include <limits>
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

/// The larger side of the path's bounds, numbers without a place left out.
double finiteExtent(const Path& path)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    double minX = infinity, maxX = -infinity, minY = infinity, maxY = -infinity;
    for (const Point p : path.points()) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y))
            continue;
        minX = std::min<double>(minX, p.x), maxX = std::max<double>(maxX, p.x);
        minY = std::min<double>(minY, p.y), maxY = std::max<double>(maxY, p.y);
    }
    return std::max({ maxX - minX, maxY - minY, 0.0 });
}

/// Curves have more vertices the larger they are. What no page can hold is worked on in units that are
/// larger by this power of two; 1 for everything else.
float scaleForExtent(double extent)
{
    constexpr double largestPage = 1 << 16;
    float scale = 1;
    while (extent * scale > largestPage)
        scale *= 0.125f;
    return scale;
}

std::shared_ptr<Path> scaledCopy(const Path& path, float scale)
{
    return path.transformedBy(AffineTransform::makeScale(scale, scale));
}

std::shared_ptr<Path> combined(gpc_op operation, const Path& path, const Path& other)
{
    const float scale = scaleForExtent(std::max(finiteExtent(path), finiteExtent(other)));
    if (scale != 1)
        return scaledCopy(
            *combined(operation, *scaledCopy(path, scale), *scaledCopy(other, scale)), 1 / scale);
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

std::shared_ptr<Path> outlineOfFlat(const Path& flat)
{
    const bool round = flat.lineJoin() == LineJoin::Round;
    std::vector<VXRPolygonOwner> polygons;
    walkFlatPath(flat, "PathAreas.cpp", [&](Point a, Point b) {
        addPlaced(VXRPolygonOwner(_polygonForSegment(a, b, flat.lineWidth(), round)), polygons);
        return false;
    });
    if (!round)
        addJoinWedges(flat, polygons);
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

/// The same for strokes, where each line of a flat curve may bring a disc of its own: shrinks further until
/// the outline costs a second at most.
float scaleForStroke(const Path& path)
{
    constexpr double mostVertices = 1 << 18, smallestExtent = 1 << 12;
    const double width = std::isfinite(path.lineWidth()) ? std::fabs(double(path.lineWidth())) : 0;
    const double extent = finiteExtent(path) + width;
    float scale = scaleForExtent(extent);
    for (; extent * scale > smallestExtent; scale *= 0.125f) {
        const auto flat = scaledCopy(path, scale)->bezierPathByFlatteningPath();
        const double disc = path.lineJoin() == LineJoin::Round ? 3 * std::sqrt(width * scale) : 0;
        if (static_cast<double>(flat->elementCount()) * (4 + disc) <= mostVertices)
            break;
    }
    return scale;
}

} // namespace

std::shared_ptr<Path> outlineStroke(const Path& path)
{
    if (path.isEmpty())
        return nullptr;
    const float scale = scaleForStroke(path);
    if (scale == 1)
        return outlineOfFlat(*path.bezierPathByFlatteningPath());
    const auto smaller = scaledCopy(path, scale);
    smaller->setLineWidth(path.lineWidth() * scale);
    return scaledCopy(*outlineOfFlat(*smaller->bezierPathByFlatteningPath()), 1 / scale);
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
