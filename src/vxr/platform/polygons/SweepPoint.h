#pragma once

#include <compare>
#include <cstdint>
#include <set>

namespace vxr {

struct GridPoint {
    std::int32_t x = 0, y = 0;

    friend auto operator<=>(const GridPoint&, const GridPoint&) = default; ///< in the order of the sweep
};

struct SweepEdge;

/// Where an edge stands among those that the sweep line meets. The order stays when edges change places.
struct SweepSlot {
    mutable SweepEdge* edge;
};

struct SweepPoint;

/// Edges from below to above at the sweep line. Two edges are compared where one of them starts, at the
/// point that `at` names.
struct SweepOrder {
    using is_transparent = void;

    const SweepPoint* const* at;

    bool operator()(const SweepSlot& lower, const SweepSlot& upper) const;
    bool operator()(const SweepSlot& slot, const SweepPoint& point) const;
};

using SweepStatus = std::multiset<SweepSlot, SweepOrder>;

/// A straight edge between points of the grid, from the left or, upright, from below. What the sweep knows
/// of it holds behind the sweep line's current point.
struct SweepEdge {
    GridPoint start, end;
    std::int64_t dx, dy; ///< up to 2^30 in magnitude

    int winding[2]; ///< for either operand, how much the winding number rises from below to above
    int above[2] {}; ///< the winding numbers above it
    int piece = -1; ///< the piece of outline that runs along it
    SweepStatus::iterator place {};
};

/// Twice the area of the triangle between the edge and the point: positive when the point is above.
inline std::int64_t turn(const SweepEdge& e, GridPoint p)
{
    return e.dx * (p.y - std::int64_t(e.start.y)) - e.dy * (p.x - std::int64_t(e.start.x));
}

/// Positive when `b` rises more than `a`.
inline std::int64_t turn(const SweepEdge& a, const SweepEdge& b) { return a.dx * b.dy - a.dy * b.dx; }

/// A point of the grid, or the point in which two edges cross, which is known exactly: in double to within
/// `error`, and where that doesn't decide, as a fraction.
struct SweepPoint {
    static constexpr double error = 0x1p-20;

    explicit SweepPoint(GridPoint p)
        : x(p.x)
        , y(p.y)
        , onGrid(p)
    {
    }
    SweepPoint(const SweepEdge& lower, const SweepEdge& upper);

    double x, y;
    GridPoint onGrid; ///< unless it is a crossing
    const SweepEdge* lower = nullptr;
    const SweepEdge* upper = nullptr;

    bool isCrossing() const { return lower != nullptr; }
};

/// Below 0 when `a` comes before `b` in the order of the sweep: from the left, and upwards; 0 when they are
/// the same. Exact.
int compare(const SweepPoint& a, const SweepPoint& b);

/// Above 0 when the point lies above the edge, 0 when it is on its line. Exact.
int sideOf(const SweepEdge& edge, const SweepPoint& p);

} // namespace vxr
