#include <vxr/platform/polygons/AreaSweep.h>

#include <algorithm>
#include <iterator>

namespace vxr {

void AreaSweep::addContour(std::span<const GridPoint> contour, int operand)
{
    GridPoint from = contour.back();
    for (const GridPoint& to : contour) {
        if (from != to) {
            const auto [start, end] = std::minmax(from, to);
            SweepEdge edge { start, end, std::int64_t(end.x) - start.x, std::int64_t(end.y) - start.y, {} };
            edge.winding[operand] = from < to ? 1 : -1;
            mEdges.push_back(edge);
        }
        from = to;
    }
}

/// Edges that lie on each other from end to end become one, and those that cancel each other go.
void AreaSweep::sortEdges()
{
    std::sort(mEdges.begin(), mEdges.end(), [](const SweepEdge& a, const SweepEdge& b) {
        return a.start != b.start ? a.start < b.start : a.end < b.end;
    });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < mEdges.size(); ++kept) {
        SweepEdge edge = mEdges[i];
        while (++i < mEdges.size() && mEdges[i].start == edge.start && mEdges[i].end == edge.end)
            for (const int operand : { 0, 1 })
                edge.winding[operand] += mEdges[i].winding[operand];
        mEdges[kept] = edge;
        kept -= edge.winding[0] == 0 && edge.winding[1] == 0;
    }
    mEdges.erase(mEdges.begin() + std::ptrdiff_t(kept), mEdges.end());
    mByEnd.reserve(mEdges.size());
    for (const SweepEdge& edge : mEdges)
        mByEnd.push_back(&edge);
    std::sort(
        mByEnd.begin(), mByEnd.end(), [](const SweepEdge* a, const SweepEdge* b) { return a->end < b->end; });
}

double AreaSweep::run(Rule rule, double mostCrossings, OutlineLinks& outline)
{
    mRule = rule;
    mOutline = &outline;
    sortEdges();
    double crossings = 0;
    while (const auto point = nextPoint()) {
        if (point->isCrossing() && ++crossings > mostCrossings)
            break;
        passPoint(*point);
    }
    return crossings;
}

std::optional<SweepPoint> AreaSweep::nextPoint() const
{
    std::optional<SweepPoint> next;
    if (mEnded < mByEnd.size()) // each edge starts before it ends
        next = SweepPoint(mStarted < mEdges.size() ? std::min(mEdges[mStarted].start, mByEnd[mEnded]->end)
                                                   : mByEnd[mEnded]->end);
    if (!mCrossings.empty() && (!next || compare(mCrossings.front().point, *next) < 0))
        next = mCrossings.front().point;
    return next;
}

void AreaSweep::passPoint(const SweepPoint& point)
{
    mPoint = &point;
    mHasNear = false;
    const auto known = [this](const SweepEdge& edge) {
        mNear = edge.place;
        mHasNear = true;
    };
    while (!mCrossings.empty() && compare(mCrossings.front().point, point) == 0) {
        known(*mCrossings.front().point.lower);
        std::pop_heap(mCrossings.begin(), mCrossings.end());
        mCrossings.pop_back();
    }
    if (!point.isCrossing())
        for (; mEnded < mByEnd.size() && mByEnd[mEnded]->end == point.onGrid; ++mEnded)
            known(*mByEnd[mEnded]);

    SweepStatus::iterator first;
    SweepStatus::iterator last = edgesThrough(point, first);
    leave(first, last, point);
    // What is found before the first edge stays before it, whatever is put into the places from there on.
    const bool isLowest = first == mStatus.begin();
    const auto below = isLowest ? first : std::prev(first);
    place(first, last);
    first = isLowest ? mStatus.begin() : std::next(below);
    startPieces(first, last);
    writePoint(point);
    if (first == last) {
        addCrossing(isLowest ? mStatus.end() : below, last);
    } else {
        addCrossing(isLowest ? mStatus.end() : below, first);
        addCrossing(std::prev(last), last);
    }
}

/// The end of the edges that go through the point or end in it, and in `first` the lowest.
SweepStatus::iterator AreaSweep::edgesThrough(const SweepPoint& point, SweepStatus::iterator& first)
{
    first = mHasNear ? mNear : mStatus.lower_bound(point);
    auto last = mHasNear ? std::next(mNear) : first;
    while (mHasNear && first != mStatus.begin() && sideOf(*std::prev(first)->edge, point) == 0)
        --first;
    while (last != mStatus.end() && sideOf(*last->edge, point) == 0)
        ++last;
    return last;
}

/// Takes from the edges through the point the pieces that end there, and collects the edges that leave it.
void AreaSweep::leave(SweepStatus::iterator first, SweepStatus::iterator last, const SweepPoint& point)
{
    mGoingOn.clear();
    mLeft.clear();
    for (auto i = first; i != last; ++i) {
        SweepEdge& edge = *i->edge;
        if (edge.piece >= 0)
            mLeft.push_back({ &edge, edge.piece, mRule(edge.above[0], edge.above[1]) });
        edge.piece = -1;
        if (point.isCrossing() || edge.end != point.onGrid)
            mGoingOn.push_back(&edge);
    }
    if (!point.isCrossing())
        for (; mStarted < mEdges.size() && mEdges[mStarted].start == point.onGrid; ++mStarted)
            mGoingOn.push_back(&mEdges[mStarted]);
    std::sort(mGoingOn.begin(), mGoingOn.end(), [](const SweepEdge* a, const SweepEdge* b) {
        const std::int64_t rise = turn(*a, *b);
        return rise != 0 ? rise > 0 : a < b;
    });
}

/// Puts what leaves the point into the places of what came to it.
void AreaSweep::place(SweepStatus::iterator first, SweepStatus::iterator last)
{
    auto slot = first;
    for (SweepEdge* edge : mGoingOn) {
        if (slot != last) {
            slot->edge = edge;
            edge->place = slot++;
        } else {
            edge->place = mStatus.emplace_hint(last, edge);
        }
    }
    mStatus.erase(slot, last);
}

/// Edges on one line bound the inside together: the lowest of them carries the piece.
void AreaSweep::startPieces(SweepStatus::iterator first, SweepStatus::iterator last)
{
    mRight.clear();
    int winding[2] {};
    if (first != mStatus.begin())
        std::copy_n(std::prev(first)->edge->above, 2, winding);
    for (auto i = first; i != last;) {
        SweepEdge& lowest = *i->edge;
        const bool insideBelow = mRule(winding[0], winding[1]);
        auto upper = i;
        for (; upper != last && turn(lowest, *upper->edge) == 0; ++upper)
            for (const int operand : { 0, 1 })
                winding[operand] += upper->edge->winding[operand];
        for (; i != upper; ++i)
            std::copy_n(winding, 2, i->edge->above);
        const bool insideAbove = mRule(winding[0], winding[1]);
        if (insideAbove != insideBelow)
            mRight.push_back({ &lowest, -1, insideAbove });
    }
}

void AreaSweep::writePoint(const SweepPoint& point)
{
    if (mLeft.empty() && mRight.empty())
        return;
    // An outline that goes straight on along the same edge has no vertex here.
    if (mLeft.size() == 1 && mRight.size() == 1 && mLeft[0].edge == mRight[0].edge) {
        mRight[0].edge->piece = mLeft[0].piece;
        return;
    }
    mTurn.clear();
    for (Bound& right : mRight) {
        right.edge->piece = mOutline->start(right.insideAbove);
        mTurn.push_back({ right.edge->piece, false, right.insideAbove });
    }
    for (auto left = mLeft.rbegin(); left != mLeft.rend(); ++left)
        mTurn.push_back({ left->piece, true, !left->insideAbove });
    mOutline->join({ point.x, point.y }, mTurn);
}

/// Where neighbours are the other way round at the end of one of them, they cross before.
void AreaSweep::addCrossing(SweepStatus::iterator lower, SweepStatus::iterator upper)
{
    if (lower == mStatus.end() || upper == mStatus.end())
        return;
    const SweepEdge &a = *lower->edge, &b = *upper->edge;
    if (a.end < b.end ? turn(b, a.end) > 0 : turn(a, b.end) < 0) {
        mCrossings.push_back({ SweepPoint(a, b) });
        std::push_heap(mCrossings.begin(), mCrossings.end());
    }
}

} // namespace vxr
