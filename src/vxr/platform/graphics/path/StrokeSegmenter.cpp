#include <vxr/platform/graphics/path/StrokeSegmenter.h>

namespace vxr {

Vec2 startDirection(const Cubic& c)
{
    for (const Vec2& p : { c.control1, c.control2, c.end })
        if (!(p == c.start))
            return unit(p - c.start);
    return {};
}

Vec2 endDirection(const Cubic& c) { return -startDirection({ c.end, c.control2, c.control1, c.start }); }

/// A chord over a step h of the parameter departs from the curve by at most h^2 / 8 of the second derivative,
/// which is six times the second difference of the control points and goes over evenly from that at the start
/// to that at the end.
CurveSteps::CurveSteps(const Cubic& c, double tolerance, bool mayBeMany)
{
    constexpr double precision = 0x1p-25, most = 1 << 11, few = 12;
    double largest = 0;
    for (const Vec2& p : { c.start, c.control1, c.control2, c.end })
        largest = std::max({ largest, std::abs(p.x), std::abs(p.y) });
    const double perBend = 0.75 / std::max(tolerance, largest * precision);
    const Vec2 first = c.start - c.control1 * 2 + c.control2, last = c.control1 - c.control2 * 2 + c.end;
    const auto stepsFor = [&](double squaredBend) { return std::sqrt(perBend * std::sqrt(squaredBend)); };
    const double bendFirst = dot(first, first), bendLast = dot(last, last);
    const double whole = stepsFor(std::max(bendFirst, bendLast));
    if (!(whole > few) || !mayBeMany) {
        mSteps[0] = mayBeMany ? std::max(1, static_cast<int>(std::ceil(whole))) : 8;
        return;
    }
    mQuarters = 4;
    double bend = bendFirst;
    for (int i = 0; i < 4; ++i) {
        const Vec2 next = first + (last - first) * ((i + 1) * 0.25);
        const double bendNext = i == 3 ? bendLast : dot(next, next);
        const double steps = std::ceil(stepsFor(std::max(bend, bendNext)) / 4);
        mSteps[static_cast<std::size_t>(i)] = static_cast<int>(std::clamp(steps, 1.0, most));
        bend = bendNext;
    }
}

} // namespace vxr
