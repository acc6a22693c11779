#include <vxr/platform/polygons/SweepPoint.h>

#include <cmath>
#include <cstdlib>

namespace vxr {
namespace {

__extension__ using Wide = __int128;

/// A crossing as a fraction: 2^92 at most over 2^61.
struct ExactPoint {
    Wide x, y;
    std::int64_t scale = 1; ///< positive

    explicit ExactPoint(const SweepPoint& p)
        : x(p.onGrid.x)
        , y(p.onGrid.y)
    {
        if (!p.isCrossing())
            return;
        const SweepEdge &a = *p.lower, &b = *p.upper;
        scale = std::abs(turn(a, b));
        const std::int64_t along = turn(a, b) > 0 ? turn(b, a.start) : -turn(b, a.start);
        x = Wide(a.start.x) * scale + Wide(along) * a.dx;
        y = Wide(a.start.y) * scale + Wide(along) * a.dy;
    }
};

template <class T> int sign(T v) { return v < 0 ? -1 : v > 0; }

/// Compares two fractions by their whole parts, then by what is left of them.
int compareFractions(Wide a, std::int64_t aScale, Wide b, std::int64_t bScale)
{
    const auto floored = [](Wide n, std::int64_t d) { return n / d - (n % d < 0); };
    const Wide wholeA = floored(a, aScale), wholeB = floored(b, bScale);
    if (wholeA != wholeB)
        return sign(wholeA - wholeB);
    return sign((a - wholeA * aScale) * bScale - (b - wholeB * bScale) * aScale);
}

} // namespace

SweepPoint::SweepPoint(const SweepEdge& a, const SweepEdge& b)
    : lower(&a)
    , upper(&b)
{
    const double along = double(-turn(b, a.start)) / double(turn(b, a));
    x = a.start.x + along * double(a.dx);
    y = a.start.y + along * double(a.dy);
}

int compare(const SweepPoint& a, const SweepPoint& b)
{
    if (!a.isCrossing() && !b.isCrossing())
        return a.onGrid < b.onGrid ? -1 : a.onGrid > b.onGrid;
    constexpr double doubt = 2 * SweepPoint::error;
    if (std::abs(a.x - b.x) > doubt)
        return a.x < b.x ? -1 : 1;
    const ExactPoint exactA(a), exactB(b);
    if (const int order = compareFractions(exactA.x, exactA.scale, exactB.x, exactB.scale))
        return order;
    if (std::abs(a.y - b.y) > doubt)
        return a.y < b.y ? -1 : 1;
    return compareFractions(exactA.y, exactA.scale, exactB.y, exactB.scale);
}

int sideOf(const SweepEdge& e, const SweepPoint& p)
{
    if (!p.isCrossing())
        return sign(turn(e, p.onGrid));
    if (&e == p.lower || &e == p.upper)
        return 0;
    const double rise = double(e.dx) * (p.y - e.start.y), fall = double(e.dy) * (p.x - e.start.x);
    const double reach = std::abs(double(e.dx)) + std::abs(double(e.dy));
    const double doubt = reach * 2 * SweepPoint::error + (std::abs(rise) + std::abs(fall)) * 0x1p-50;
    if (std::abs(rise - fall) > doubt)
        return sign(rise - fall);
    const ExactPoint exact(p);
    const Wide above = exact.y - Wide(e.start.y) * exact.scale;
    const Wide beside = exact.x - Wide(e.start.x) * exact.scale;
    return sign(above * e.dx - beside * e.dy);
}

bool SweepOrder::operator()(const SweepSlot& lower, const SweepSlot& upper) const
{
    const int below = sideOf(*lower.edge, **at), above = sideOf(*upper.edge, **at);
    if (below != 0 || above != 0)
        return below > 0 || (below == 0 && above < 0);
    return turn(*lower.edge, *upper.edge) > 0;
}

bool SweepOrder::operator()(const SweepSlot& slot, const SweepPoint& point) const
{
    return sideOf(*slot.edge, point) > 0;
}

} // namespace vxr
