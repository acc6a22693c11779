#include <vxr/geometry/VXRPolygon.h>

#include <vxr/geometry/FlatPathWalker.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/base/Exceptions.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>

namespace vxr {
namespace {

constexpr double thinningDistance = 0.7;
constexpr double smallestContour = 0.01;

/// Converts a flat path, contour by contour.
class ContourCollector {
public:
    ContourCollector(gpc_polygon& polygon, std::size_t capacity)
        : mPolygon(polygon)
    {
        mVertices.reserve(capacity);
    }

    void moveTo(Point p)
    {
        // A single vertex stays: a stray move-to is merged into the sub-path after it.
        if (mVertices.size() >= 2)
            finishContour();
        keep(p);
    }

    void lineTo(Point p)
    {
        if (!isNearLastKept(p))
            keep(p);
    }

    void curveTo(Point, Point, Point) { logCurveInFlatPath("VXRPolygon.cpp"); }

    void close()
    {
        finishContour();
        mLast = nowhere;
    }

    void finish()
    {
        if (mVertices.size() > 1)
            finishContour();
    }

private:
    static constexpr float infinity = std::numeric_limits<float>::infinity();
    static constexpr Point nowhere { infinity, infinity };

    bool isNearLastKept(Point p) const
    {
        return std::abs(p.x - mLast.x) <= thinningDistance && std::abs(p.y - mLast.y) <= thinningDistance;
    }

    void keep(Point p)
    {
        mVertices.push_back(vertexFromPoint(p));
        mLast = p;
    }

    void finishContour()
    {
        const gpc_vertex_list contour { int(mVertices.size()), mVertices.data() };
        gpc_add_contour(&mPolygon, &contour, 0);
        mVertices.clear();
    }

    gpc_polygon& mPolygon;
    std::vector<gpc_vertex> mVertices;
    Point mLast = nowhere;
};

void addFlatPath(const Path& flat, gpc_polygon& polygon)
{
    ContourCollector collector(polygon, flat.elementCount());
    flat.visit(collector);
    collector.finish();
}

/// Runs a polygon operation, and logs why when it is refused.
template <class Operation> void logged(Operation operation)
{
    try {
        operation();
    } catch (const GenericException& failure) {
        VXULog_Fn(VXULogLevelWarning, "VXRPolygon.cpp", "WARNING, " + std::string(failure.what()));
        throw;
    }
}

/// `target` becomes `target` united with `other`, which may be none.
void unite(gpc_polygon& target, const gpc_polygon& a, const gpc_polygon* b)
{
    const gpc_polygon none {};
    gpc_polygon united {};
    VXRClipPolygons(GPC_UNION, a, b ? *b : none, united);
    gpc_free_polygon(&target);
    target = united;
}

} // namespace

void VXRFreePolygon(gpc_polygon* polygon)
{
    if (!polygon)
        return;
    gpc_free_polygon(polygon);
    std::free(polygon);
}

void VXRClipPolygons(
    gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip, gpc_polygon& result)
{
    logged([&] { gpc_polygon_clip(operation, &subject, &clip, &result); });
}

void VXRUniteNonZero(const gpc_polygon& polygon, gpc_polygon& result)
{
    logged([&] { gpc_unite_nonzero(&polygon, &result); });
}

gpc_polygon* emptyPolygon()
{
    auto* polygon = static_cast<gpc_polygon*>(std::malloc(sizeof(gpc_polygon)));
    if (!polygon)
        throw std::bad_alloc();
    *polygon = {};
    return polygon;
}

float VXRAreaFlatness(const Path& path)
{
    const Size extent = path.bounds().size;
    return std::max(std::max(extent.width, extent.height) * 1e-6f, path.flatness());
}

gpc_polygon* polygonFromBezier(const Path& path)
{
    VXRPolygonOwner polygon(emptyPolygon());
    const auto kinds = path.kinds();
    if (std::find(kinds.begin(), kinds.end(), PathElementKind::CurveTo) == kinds.end()) {
        addFlatPath(path, *polygon);
    } else {
        Path outline(path);
        outline.setFlatness(VXRAreaFlatness(path));
        addFlatPath(*outline.bezierPathByFlatteningPath(), *polygon);
    }
    return polygon.release();
}

gpc_polygon* polygonFromRect(const Rect& rect)
{
    const double x = rect.origin.x, y = rect.origin.y;
    const double right = x + rect.size.width, top = y + rect.size.height;
    gpc_vertex corners[] = { { x, y }, { right, y }, { right, top }, { x, top } };
    const gpc_vertex_list contour { 4, corners };
    VXRPolygonOwner polygon(emptyPolygon());
    gpc_add_contour(polygon.get(), &contour, 0);
    return polygon.release();
}

std::shared_ptr<Path> bezierFromPolygon(const gpc_polygon* polygon)
{
    auto path = Path::path();
    for (int i = 0; i < polygon->num_contours; ++i) {
        const Size size = boundsForVertexList(polygon->contour[i]).size;
        if (size.width > smallestContour && size.height > smallestContour)
            addVertexListToBezier(polygon->contour[i], *path);
    }
    return path;
}

std::vector<std::shared_ptr<Path>> beziersFromPolygon(const gpc_polygon* polygon)
{
    std::vector<std::shared_ptr<Path>> paths;
    paths.reserve(std::size_t(polygon->num_contours));
    for (int i = 0; i < polygon->num_contours; ++i)
        paths.push_back(bezierForVertexList(polygon->contour[i]));
    return paths;
}

std::shared_ptr<Path> bezierForVertexList(const gpc_vertex_list& vertices)
{
    auto path = Path::path();
    path->reserve(std::size_t(vertices.num_vertices) + 1);
    addVertexListToBezier(vertices, *path);
    return path;
}

void addVertexListToBezier(const gpc_vertex_list& vertices, Path& path)
{
    if (vertices.num_vertices == 0)
        return;
    path.moveTo(pointFromVertex(vertices.vertex[0]));
    for (int i = 1; i < vertices.num_vertices; ++i)
        path.lineTo(pointFromVertex(vertices.vertex[i]));
    path.close();
}

Rect boundsForVertexList(const gpc_vertex_list& vertices)
{
    if (vertices.num_vertices == 0)
        return {};
    gpc_vertex low = vertices.vertex[0], high = low;
    for (int i = 1; i < vertices.num_vertices; ++i) {
        const gpc_vertex& v = vertices.vertex[i];
        low = { std::min(low.x, v.x), std::min(low.y, v.y) };
        high = { std::max(high.x, v.x), std::max(high.y, v.y) };
    }
    return { float(low.x), float(low.y), float(high.x - low.x), float(high.y - low.y) };
}

gpc_polygon* _combinePolys(gpc_polygon** polys, int count)
{
    if (count <= 0)
        return nullptr;
    const auto set = [&](int i) { return i < count ? polys[i] : nullptr; };
    int n = count;
    while (n > 1) {
        n += n & 1; // only a caller's odd count; the missing set stands for an empty one
        unite(*polys[0], *polys[0], set(1));
        for (int i = 2; i < n; i += 2)
            unite(*polys[i / 2], *polys[i], set(i + 1));
        if (n == 2)
            break;
        // Rounding up to even takes in a set that is already part of the union: harmless.
        n = n / 2 + (n / 2) % 2;
    }
    return polys[0];
}

int addPointToArray(float x, float y, int index, std::vector<Point>& points, int capacity)
{
    constexpr int largest = std::numeric_limits<int>::max();
    if (index < 0 || index == largest)
        throw InvalidArgumentException(
            "addPointToArray: index " + std::to_string(index) + " is out of range.");
    if (index >= capacity)
        capacity = std::max(capacity > largest / 2 ? largest : 2 * capacity, index + 1);
    if (points.size() < std::size_t(capacity))
        points.resize(std::size_t(capacity));
    points[std::size_t(index)] = { x, y };
    return capacity;
}

gpc_polygon* _polygonForSegment(Point a, Point b, float width, bool round)
{
    const float dx = b.x - a.x, dy = b.y - a.y;
    const float half = width * 0.5f;
    const float length = std::sqrt(dx * dx + dy * dy);
    if (length == 0)
        return nullptr;
    const float ox = dx / length * half, oy = dy / length * half;
    gpc_vertex corners[] = { makeVertex(b.x - oy, b.y + ox), makeVertex(b.x + oy, b.y - ox),
        makeVertex(a.x + oy, a.y - ox), makeVertex(a.x - oy, a.y + ox) };
    const gpc_vertex_list contour { 4, corners };
    VXRPolygonOwner segment(emptyPolygon());
    gpc_add_contour(segment.get(), &contour, 0);
    if (!round)
        return segment.release();
    const auto oval = Path::pathWithOvalInRect({ a.x - half, a.y - half, width, width });
    const VXRPolygonOwner disc(polygonFromBezier(*oval));
    VXRPolygonOwner united(emptyPolygon());
    VXRClipPolygons(GPC_UNION, *segment, *disc, *united);
    return united.release();
}

} // namespace vxr
