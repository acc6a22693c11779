#include "SchneiderFit.h"

#include <vxr/geometry/curves/CubicSegment.h>

namespace vxr::test {

namespace {

Vec2 unit(Vec2 v) { return v * (1 / v.length()); }

class Schneider {
public:
    Schneider(const std::vector<Vec2>& points, double tolerance)
        : d(points)
        , allowed(tolerance * tolerance)
    {
    }

    std::vector<Cubic> run()
    {
        const std::size_t last = d.size() - 1;
        fit(0, last, unit(d[1] - d[0]), unit(d[last - 1] - d[last]));
        return curves;
    }

private:
    void fit(std::size_t first, std::size_t last, Vec2 tangent1, Vec2 tangent2)
    {
        if (last - first == 1) {
            const double third = (d[last] - d[first]).length() / 3;
            curves.push_back({ d[first], d[first] + tangent1 * third, d[last] + tangent2 * third, d[last] });
            return;
        }
        std::vector<double> u { 0 };
        for (std::size_t i = first + 1; i <= last; ++i)
            u.push_back(u.back() + (d[i] - d[i - 1]).length());
        for (double& v : u)
            v /= u.back();
        std::size_t split = 0;
        for (int round = 0; round <= 4; ++round) {
            const Cubic c = generate(first, last, u, tangent1, tangent2);
            double worst = 0;
            split = (first + last) / 2;
            for (std::size_t i = first + 1; i < last; ++i) {
                const Vec2 off = pointAt(c, u[i - first]) - d[i];
                if (dot(off, off) >= worst) {
                    worst = dot(off, off);
                    split = i;
                }
            }
            if (worst < allowed) {
                curves.push_back(c);
                return;
            }
            if (worst >= 4 * allowed)
                break;
            for (std::size_t i = first; i <= last; ++i) {
                double& t = u[i - first];
                const Vec2 off = pointAt(c, t) - d[i], d1 = derivativeAt(c, t), d2 = secondDerivativeAt(c, t);
                const double slope = dot(d1, d1) + dot(off, d2);
                if (slope != 0)
                    t -= dot(off, d1) / slope;
            }
        }
        const Vec2 middle = unit(d[split - 1] - d[split + 1]);
        fit(first, split, tangent1, middle);
        fit(split, last, -middle, tangent2);
    }

    Cubic generate(
        std::size_t first, std::size_t last, const std::vector<double>& u, Vec2 tangent1, Vec2 tangent2) const
    {
        double c00 = 0, c01 = 0, c11 = 0, x0 = 0, x1 = 0;
        for (std::size_t i = 0; i < u.size(); ++i) {
            const double t = u[i], s = 1 - t;
            const Vec2 a0 = tangent1 * (3 * t * s * s), a1 = tangent2 * (3 * t * t * s);
            const Vec2 rest = d[first + i] - d[first] * (s * s * s + 3 * t * s * s)
                - d[last] * (3 * t * t * s + t * t * t);
            c00 += dot(a0, a0);
            c01 += dot(a0, a1);
            c11 += dot(a1, a1);
            x0 += dot(a0, rest);
            x1 += dot(a1, rest);
        }
        const double det = c00 * c11 - c01 * c01, chord = (d[last] - d[first]).length();
        double alpha1 = det == 0 ? 0 : (x0 * c11 - x1 * c01) / det;
        double alpha2 = det == 0 ? 0 : (c00 * x1 - c01 * x0) / det;
        if (alpha1 < 1e-6 * chord || alpha2 < 1e-6 * chord)
            alpha1 = alpha2 = chord / 3;
        return { d[first], d[first] + tangent1 * alpha1, d[last] + tangent2 * alpha2, d[last] };
    }

    const std::vector<Vec2>& d;
    double allowed;
    std::vector<Cubic> curves;
};

} // namespace

std::vector<Cubic> schneiderFit(const std::vector<Vec2>& points, double tolerance)
{
    return Schneider(points, tolerance).run();
}

} // namespace vxr::test
