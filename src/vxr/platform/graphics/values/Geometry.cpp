#include <vxr/platform/graphics/values/Geometry.h>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace vxr {

Rect integralRect(const Rect& r)
{
    if (r.isEmpty())
        return {};
    const float x = std::floor(r.minX()), y = std::floor(r.minY());
    return { x, y, std::ceil(r.maxX()) - x, std::ceil(r.maxY()) - y };
}

Rect intersectionRect(const Rect& a, const Rect& b)
{
    if (!rectsIntersect(a, b))
        return {};
    const float x = std::max(a.minX(), b.minX()), y = std::max(a.minY(), b.minY());
    return { x, y, std::min(a.maxX(), b.maxX()) - x, std::min(a.maxY(), b.maxY()) - y };
}

std::ostream& operator<<(std::ostream& out, const Point& p)
{
    return out << '{' << p.x << ", " << p.y << '}';
}

std::ostream& operator<<(std::ostream& out, const Size& s)
{
    return out << '{' << s.width << ", " << s.height << '}';
}

std::ostream& operator<<(std::ostream& out, const Rect& r)
{
    return out << '{' << r.origin << ", " << r.size << '}';
}

} // namespace vxr
