#include <vxr/geometry/PathAdditions.h>

#include <vxr/geometry/FlatPathWalker.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/graphics/GraphicsContext.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr char thisFile[] = "PathAdditions.cpp";

bool containsKindFrom(const Path& path, std::size_t first, PathElementKind kind)
{
    const auto kinds = path.kinds();
    return kinds.size() > first
        && std::find(kinds.begin() + static_cast<std::ptrdiff_t>(first), kinds.end(), kind) != kinds.end();
}

Rect grown(const Rect& rect, float by) { return insetRect(rect, -by, -by); }

} // namespace

void logCurveInFlatPath(const char* file)
{
    VXULog_Fn(VXULogLevelWarning, file, "Warning: Path should be flat. Illegal NSCurveToBezierPathElement.");
}

bool containsClosePathElement(const Path& path) { return containsKindFrom(path, 1, PathElementKind::Close); }

bool effectivelyClosed(const Path& path)
{
    if (containsClosePathElement(path))
        return true;
    if (path.elementCount() < 2 || path.kinds().front() != PathElementKind::MoveTo)
        return false;
    return path.points().back() == path.points().front();
}

bool isOpen(const Path& path)
{
    if (path.isEmpty() || containsKindFrom(path, 0, PathElementKind::Close)
        || containsKindFrom(path, 1, PathElementKind::MoveTo))
        return false;
    return path.points().back() != path.points().front();
}

bool isEqual(const Path& path, const Object& other)
{
    if (&path == &other)
        return true;
    const auto* otherPath = dynamic_cast<const Path*>(&other);
    if (!otherPath)
        return false;
    const auto kinds = path.kinds(), otherKinds = otherPath->kinds();
    const auto points = path.points(), otherPoints = otherPath->points();
    return std::equal(kinds.begin(), kinds.end(), otherKinds.begin(), otherKinds.end())
        && std::equal(
            points.begin(), points.end(), otherPoints.begin(), otherPoints.end(), VXRNearlyEqualPoints);
}

bool isClockwise(const Path& path)
{
    double sum = 0;
    walkFlatPath(path, thisFile, [&](Point a, Point b) {
        sum += static_cast<double>(a.x) * b.y - static_cast<double>(b.x) * a.y;
        return false;
    });
    return sum >= 0;
}

bool isRectangular(const Path& path)
{
    if (!effectivelyClosed(path) || path.kinds().front() != PathElementKind::MoveTo
        || containsKindFrom(path, 0, PathElementKind::CurveTo))
        return false;
    const auto kinds = path.kinds();
    std::size_t elements = kinds.size();
    if (kinds.back() == PathElementKind::MoveTo)
        --elements; // drawing programs often add a move after a close
    std::vector<Point> corners;
    for (std::size_t i = 0; i < elements; ++i) {
        const bool closes = kinds[i] == PathElementKind::Close;
        if ((closes && i + 1 < elements) || (kinds[i] == PathElementKind::MoveTo && i > 0))
            return false;
        const Point corner = closes ? corners.front() : path.elementAtIndex(i).endPoint();
        if (corners.empty() || !VXRNearlyEqualPoints(corner, corners.back()))
            corners.push_back(corner);
        if (corners.size() > 5)
            return false;
    }
    if (corners.size() != 5 || !VXRNearlyEqualPoints(corners[0], corners[4]))
        return false;
    const auto level = [&](std::size_t i) { return std::fabs(corners[i].y - corners[i + 1].y) < 0.01f; };
    const auto upright = [&](std::size_t i) { return std::fabs(corners[i].x - corners[i + 1].x) < 0.01f; };
    return (level(0) && upright(1) && level(2) && upright(3))
        || (upright(0) && level(1) && upright(2) && level(3));
}

namespace {

double squaredDistanceToSegment(Point p, Point a, Point b)
{
    const double dx = static_cast<double>(b.x) - a.x, dy = static_cast<double>(b.y) - a.y;
    const double px = static_cast<double>(p.x) - a.x, py = static_cast<double>(p.y) - a.y;
    const double length = dx * dx + dy * dy;
    const double t = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0.0;
    const double ex = px - t * dx, ey = py - t * dy;
    return ex * ex + ey * ey;
}

} // namespace

bool pointOnPathTolerance(const Path& path, Point point, float tolerance)
{
    const Rect bounds = grown(path.bounds(), tolerance);
    if (!(tolerance >= 0 && point.x >= bounds.minX() && point.x <= bounds.maxX() && point.y >= bounds.minY()
            && point.y <= bounds.maxY()))
        return false;
    // Flatten more finely than the tolerance being tested.
    constexpr float finest = 0.01f;
    Path fine(path);
    fine.setFlatness(std::clamp(tolerance * 0.1f, finest, Path::defaultFlatness));
    const double limit = static_cast<double>(tolerance) * tolerance;
    return walkFlatPath(*fine.bezierPathByFlatteningPath(), thisFile,
        [&](Point a, Point b) { return squaredDistanceToSegment(point, a, b) <= limit; });
}

Point pointAlongPathAtPercentage(const Path& path, float percentage)
{
    const auto flat = path.bezierPathByFlatteningPath();
    double total = 0;
    walkFlatPath(*flat, thisFile, [&](Point a, Point b) {
        total += static_cast<double>(VXRDistance(a, b));
        return false;
    });
    const double target = static_cast<double>(VXRClamp(percentage, 0, 1)) * total;
    double travelled = 0;
    Point result;
    walkFlatPath(*flat, thisFile, [&](Point a, Point b) {
        const double length = static_cast<double>(VXRDistance(a, b));
        if (!(travelled + length >= target)) {
            travelled += length;
            return false;
        }
        const float fraction = length > 0 ? static_cast<float>((target - travelled) / length) : 0;
        result = VXRAddPoints(a, VXRMultiplyPointScalar(VXRSubtractPoints(b, a), fraction));
        return true;
    });
    return result;
}

Rect boundsIncludingStroke(const Path& path)
{
    Rect rect = grown(path.bounds(), path.lineWidth() * 0.5f);
    if (path.lineJoin() != LineJoin::Miter)
        return rect;
    for (const VXRSegmentRun& run : pathAsSegments(path))
        rect = _addMitersFromSegmentsToRect(path, run, rect);
    return rect;
}

void addPathToContext(const Path& path, Context& context) { context.addPath(path); }

void clearStroke(const Path& path)
{
    Context& context = currentDrawingPort();
    const StateSaver saved(context);
    context.setFlatness(path.flatness());
    context.beginPath();
    addPathToContext(path, context);
    LineStyle style = context.lineStyle();
    style.width = path.lineWidth();
    context.setLineStyle(style);
    context.replacePathWithStrokedPath();
    context.clip(WindingRule::NonZero);
    context.beginPath();
    fillRectUsingOperation(grown(path.bounds(), path.lineWidth() + 10), CompositeOperation::Clear);
}

} // namespace vxr
