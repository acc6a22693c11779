#include <vxr/textwrap/PlainCrossings.h>

#include <algorithm>
#include <limits>

namespace vxr {
namespace {

double xAt(double y, const gpc_vertex& u, const gpc_vertex& v)
{
    return u.x + (y - u.y) * ((v.x - u.x) / (v.y - u.y));
}

} // namespace

bool PlainCrossings::find(const gpc_polygon& polygon, const Rect& line, double clearance)
{
    mLine = line;
    mLeft = line.origin.x;
    mRight = mLeft + line.size.width;
    mLow = line.origin.y;
    mHigh = mLow + line.size.height;
    if (!(mRight - mLeft > clearance && mHigh - mLow > clearance))
        return false;
    mCrossings.clear();
    for (int i = 0; i < polygon.num_contours; ++i)
        if (!addContour(polygon.contour[i]))
            return false;
    return areApart(clearance);
}

/// Follows the outline from a vertex outside the band. Inside the band every step must keep the vertical
/// direction in which the outline entered, so that the piece neither turns back nor crosses itself.
bool PlainCrossings::addContour(const gpc_vertex_list& contour)
{
    const gpc_vertex* const first = contour.vertex;
    const gpc_vertex* const last = first + contour.num_vertices - 1;
    const auto sideOf = [&](const gpc_vertex& v) { return v.y < mLow ? -1 : v.y > mHigh ? 1 : 0; };
    const gpc_vertex* start = first;
    while (start <= last && sideOf(*start) == 0)
        ++start;
    if (start > last)
        return false;

    const gpc_vertex* u = start;
    int cameFrom = sideOf(*u);
    bool within = false;
    Crossing crossing {};
    const auto widen = [&](double x) {
        crossing.from = std::min(crossing.from, x);
        crossing.to = std::max(crossing.to, x);
    };
    for (int step = 0; step < contour.num_vertices; ++step) {
        const gpc_vertex* v = u == last ? first : u + 1;
        const int side = sideOf(*v);
        if (side != cameFrom || within) {
            const bool goesOn = cameFrom < 0 ? v->y > u->y : v->y < u->y;
            if (!goesOn)
                return false;
            if (!within) {
                const double entry = xAt(cameFrom < 0 ? mLow : mHigh, *u, *v);
                crossing = { entry, entry };
                within = true;
            }
            if (side == 0) {
                widen(v->x);
            } else {
                widen(xAt(side < 0 ? mLow : mHigh, *u, *v));
                mCrossings.push_back(crossing);
                within = false;
                cameFrom = side;
            }
        }
        u = v;
    }
    return true;
}

bool PlainCrossings::areApart(double clearance)
{
    std::sort(mCrossings.begin(), mCrossings.end(),
        [](const Crossing& a, const Crossing& b) { return a.from < b.from; });
    double previousEnd = -std::numeric_limits<double>::infinity();
    for (const Crossing& c : mCrossings) {
        if (!(c.from - previousEnd > clearance))
            return false;
        for (const double end : { mLeft, mRight })
            if (c.from - clearance < end && end < c.to + clearance)
                return false;
        previousEnd = c.to;
    }
    return true;
}

void PlainCrossings::appendBoxes(bool inside, std::vector<Rect>& boxes) const
{
    // The spans between crossings alternate between outside and inside, starting outside.
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (std::size_t i = inside ? 1 : 0; i <= mCrossings.size(); i += 2) {
        const double from = std::max(mLeft, i == 0 ? -infinity : mCrossings[i - 1].from);
        const double to = std::min(mRight, i == mCrossings.size() ? infinity : mCrossings[i].to);
        if (from < to)
            boxes.push_back({ float(from), mLine.origin.y, float(to - from), mLine.size.height });
    }
}

} // namespace vxr
