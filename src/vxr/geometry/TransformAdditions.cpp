#include <vxr/geometry/TransformAdditions.h>

#include <vxr/platform/graphics/path/Path.h>

#include <fmt/format.h>

#include <algorithm>

namespace vxr {

std::shared_ptr<Path> transformBezierPath(const AffineTransform& transform, const Path& path)
{
    return path.transformedBy(transform);
}

void transformRectUpperLeftLowerLeftLowerRightUpperRight(const AffineTransform& transform, const Rect& rect,
    Point& upperLeft, Point& lowerLeft, Point& lowerRight, Point& upperRight)
{
    upperLeft = transform.map(rect.origin);
    lowerLeft = transform.map(Point { rect.minX(), rect.maxY() });
    lowerRight = transform.map(Point { rect.maxX(), rect.maxY() });
    upperRight = transform.map(Point { rect.maxX(), rect.minY() });
}

Rect boundsOfTransformedRect(const AffineTransform& transform, const Rect& rect)
{
    Point a, b, c, d;
    transformRectUpperLeftLowerLeftLowerRightUpperRight(transform, rect, a, b, c, d);
    const auto [minX, maxX] = std::minmax({ a.x, b.x, c.x, d.x });
    const auto [minY, maxY] = std::minmax({ a.y, b.y, c.y, d.y });
    return { minX, minY, maxX - minX, maxY - minY };
}

bool differsFrom(const AffineTransform& transform, const AffineTransform& other)
{
    return !(transform == other);
}

bool differOnlyByTranslation(const AffineTransform& transform, const AffineTransform& other)
{
    return transform.m11 == other.m11 && transform.m12 == other.m12 && transform.m21 == other.m21
        && transform.m22 == other.m22;
}

void shearXByYBy(AffineTransform& transform, float sx, float sy)
{
    transform.prepend({ 1, sx, sy, 1, 0, 0 });
}

std::string description(const AffineTransform& transform) { return VXRStringFromTransform(transform); }

std::string VXRStringFromTransform(const AffineTransform& t)
{
    return VXRStringFromCGTransform(t.m11, t.m12, t.m21, t.m22, t.tX, t.tY);
}

std::string VXRStringFromCGTransform(float a, float b, float c, float d, float tx, float ty)
{
    return fmt::format("{{{:f}, {:f}, {:f}, {:f}, {:f}, {:f}}}", a, b, c, d, tx, ty);
}

std::string VXRStringFromCGTransform(const AffineTransform& transform)
{
    return VXRStringFromTransform(transform);
}

} // namespace vxr
