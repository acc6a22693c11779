#pragma once

#include <vxr/platform/polygons/OutlineLinks.h>
#include <vxr/platform/polygons/SweepPoint.h>

#include <optional>
#include <span>
#include <vector>

namespace vxr {

/// Combines areas by a sweep over their edges whose cost follows the edges and their crossings: (n + k) log
/// n. It decides everything exactly, and rounds crossings only when it writes them.
class AreaSweep {
public:
    /// Whether what has these winding numbers is inside.
    using Rule = bool (*)(int a, int b);

    /// Adds a closed contour of operand 0 or 1. Coordinates are at most 2^29 in magnitude.
    void addContour(std::span<const GridPoint> contour, int operand);

    /// Adds the outline of what is inside to `outline`, in grid coordinates. The number of crossings; beyond
    /// `mostCrossings` it stops at once, and the outline is of no use.
    double run(Rule rule, double mostCrossings, OutlineLinks& outline);

private:
    struct Crossing {
        SweepPoint point;
        /// For a heap whose front is the first in the order of the sweep.
        friend bool operator<(const Crossing& a, const Crossing& b) { return compare(a.point, b.point) > 0; }
    };

    void sortEdges();
    std::optional<SweepPoint> nextPoint() const;
    void passPoint(const SweepPoint& point);
    SweepStatus::iterator edgesThrough(const SweepPoint& point, SweepStatus::iterator& first);
    void leave(SweepStatus::iterator first, SweepStatus::iterator last, const SweepPoint& point);
    void place(SweepStatus::iterator first, SweepStatus::iterator last);
    void startPieces(SweepStatus::iterator first, SweepStatus::iterator last);
    void writePoint(const SweepPoint& point);
    void addCrossing(SweepStatus::iterator lower, SweepStatus::iterator upper);

    const SweepPoint* mPoint = nullptr;
    SweepStatus mStatus { SweepOrder { &mPoint } };
    std::vector<SweepEdge> mEdges; ///< by their starts
    std::vector<const SweepEdge*> mByEnd;
    std::size_t mStarted = 0, mEnded = 0;
    std::vector<Crossing> mCrossings; ///< a heap
    Rule mRule = nullptr;
    OutlineLinks* mOutline = nullptr;

    // At the point.
    SweepStatus::iterator mNear; ///< an edge through it, if one is known
    bool mHasNear = false;
    std::vector<SweepEdge*> mGoingOn; ///< from below to above
    struct Bound {
        SweepEdge* edge;
        int piece;
        bool insideAbove;
    };
    std::vector<Bound> mLeft, mRight; ///< pieces of outline that end and that start, from below to above
    std::vector<OutlineLinks::Meeting> mTurn;
};

} // namespace vxr
