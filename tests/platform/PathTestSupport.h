#pragma once

#include <tests/support/PathBuilder.h>

#include <cmath>
#include <random>

namespace vxr::test {

/// Repeatable random geometry.
class PathSource {
public:
    explicit PathSource(unsigned seed)
        : mEngine(seed)
    {
    }

    float uniform(float least, float most)
    {
        return least + (most - least) * static_cast<float>(mEngine() >> 8) * 0x1p-24f;
    }
    int below(int count) { return static_cast<int>(mEngine() % static_cast<unsigned>(count)); }
    Point point(float least, float most)
    {
        const float x = uniform(least, most);
        return { x, uniform(least, most) };
    }
    /// Appends one random move, line, curve or close.
    void appendElement(Path& path, float least, float most)
    {
        switch (below(5)) {
        case 0:
            return path.moveTo(point(least, most));
        case 1:
            return path.close();
        case 2: {
            const Point control1 = point(least, most), control2 = point(least, most);
            return path.curveTo(control1, control2, point(least, most));
        }
        default:
            return path.lineTo(point(least, most));
        }
    }

private:
    std::mt19937 mEngine;
};

inline Point pointOnCurve(Point a, Point b, Point c, Point d, double t)
{
    const double s = 1 - t, k0 = s * s * s, k1 = 3 * s * s * t, k2 = 3 * s * t * t, k3 = t * t * t;
    return { static_cast<float>(k0 * a.x + k1 * b.x + k2 * c.x + k3 * d.x),
        static_cast<float>(k0 * a.y + k1 * b.y + k2 * c.y + k3 * d.y) };
}

inline double distanceToSegment(Point p, Point a, Point b)
{
    const double dx = double(b.x) - a.x, dy = double(b.y) - a.y, px = double(p.x) - a.x,
                 py = double(p.y) - a.y;
    const double squared = dx * dx + dy * dy;
    const double t = squared > 0 ? std::min(1.0, std::max(0.0, (px * dx + py * dy) / squared)) : 0;
    return std::hypot(px - t * dx, py - t * dy);
}

} // namespace vxr::test
