#include <vxr/geometry/PathAdditions.h>

#include <vxr/geometry/VXRGeometry.h>

#include <cmath>
#include <optional>

// The segments of a path, and what the joins between them add to its stroke.

namespace vxr {

namespace {

/// Whether `to - from` is long enough for `VXRAngleFromDelta` to give its direction.
bool hasDirection(Point from, Point to)
{
    const Point d = VXRSubtractPoints(to, from);
    return d.x * d.x >= 1e-6f || d.y * d.y >= 1e-6f;
}

/// The first candidate that gives a direction from `from`, otherwise the last one.
Point firstDistinct(Point from, Point a, Point b, Point c)
{
    return hasDirection(from, a) ? a : hasDirection(from, b) ? b : c;
}

/// Collects segments into runs.
class RunCollector {
public:
    void moveTo(Point p)
    {
        finishRun(false);
        mStart = mCurrent = p;
    }

    void lineTo(Point p) { add({ mCurrent, p, mCurrent, p }, p == mCurrent); }

    void curveTo(Point c1, Point c2, Point p)
    {
        add({ mCurrent, firstDistinct(mCurrent, c1, c2, p), firstDistinct(p, c2, c1, mCurrent), p },
            c1 == mCurrent && c2 == mCurrent && p == mCurrent);
    }

    void close()
    {
        lineTo(mStart);
        finishRun(true);
    }

    std::vector<VXRSegmentRun> finish()
    {
        finishRun(false);
        return std::move(mRuns);
    }

private:
    void add(const VXRPathSegment& segment, bool isPoint)
    {
        mCurrent = segment.end;
        if (!isPoint)
            mRun.segments.push_back(segment);
        else if (mRun.segments.empty())
            mPoint = segment;
    }

    void finishRun(bool closed)
    {
        if (mRun.segments.empty() && mPoint)
            mRun.segments.push_back(*mPoint);
        if (!mRun.segments.empty()) {
            mRun.closed = closed;
            mRuns.push_back(std::move(mRun));
        }
        mRun = {};
        mPoint.reset();
        mCurrent = mStart;
    }

    std::vector<VXRSegmentRun> mRuns;
    VXRSegmentRun mRun;
    std::optional<VXRPathSegment> mPoint; ///< the run if no segment with a length follows
    Point mStart, mCurrent;
};

struct Vector {
    double x = 0, y = 0;
};

Vector unitVector(Point from, Point to)
{
    const double dx = static_cast<double>(to.x) - from.x, dy = static_cast<double>(to.y) - from.y;
    const double length = std::hypot(dx, dy);
    return length > 0 ? Vector { dx / length, dy / length } : Vector {};
}

Point displaced(Point p, const Vector& v, double by)
{
    return { static_cast<float>(p.x + v.x * by), static_cast<float>(p.y + v.y * by) };
}

/// The corner between two segments, seen from outside.
struct Join {
    Point corner;
    Vector before, after; ///< outward normals of the two segments
    Vector tip; ///< unit vector to the tip of the mitre
    double tipRatio = 0; ///< distance to the tip in half line widths; infinite if the path turns back
};

/// Empty if the path continues straight or has no direction.
std::optional<Join> joinBetween(const VXRPathSegment& first, const VXRPathSegment& second)
{
    const Vector arriving = unitVector(first.in, first.end), leaving = unitVector(second.start, second.out);
    const double cross = arriving.x * leaving.y - arriving.y * leaving.x;
    const double dot = arriving.x * leaving.x + arriving.y * leaving.y;
    constexpr double straight = 1e-9;
    if (!(std::fabs(cross) > straight))
        return std::nullopt;
    // The outside of a left turn is on the right.
    const double side = cross > 0 ? 1 : -1;
    Join join { second.start, { arriving.y * side, -arriving.x * side },
        { leaving.y * side, -leaving.x * side }, {}, 0 };
    const Vector sum { join.before.x + join.after.x, join.before.y + join.after.y };
    const double length = std::hypot(sum.x, sum.y);
    join.tip = { sum.x / length, sum.y / length };
    // 1 / cos(half the turn), with cos^2(half) = (1 + cos) / 2.
    join.tipRatio = std::sqrt(2 / (1 + dot));
    return join;
}

template <class Visit> void forEachJoin(const VXRSegmentRun& run, Visit visit)
{
    const auto& segments = run.segments;
    for (std::size_t i = 1; i < segments.size(); ++i) {
        if (const auto join = joinBetween(segments[i - 1], segments[i]))
            visit(*join);
    }
    if (run.closed && segments.size() > 1) {
        if (const auto join = joinBetween(segments.back(), segments.front()))
            visit(*join);
    }
}

bool isMitred(const Path& path, const Join& join)
{
    return path.lineJoin() == LineJoin::Miter && std::isfinite(join.tipRatio)
        && join.tipRatio <= static_cast<double>(path.miterLimit());
}

} // namespace

std::vector<VXRSegmentRun> pathAsSegments(const Path& path)
{
    RunCollector runs;
    path.visit(runs);
    return runs.finish();
}

Rect _addMitersFromSegmentsToRect(const Path& path, const VXRSegmentRun& run, const Rect& rect)
{
    const double half = static_cast<double>(path.lineWidth()) * 0.5;
    Rect result = rect;
    forEachJoin(run, [&](const Join& join) {
        if (isMitred(path, join))
            result = VXRGrowRectToPoint(result, displaced(join.corner, join.tip, half * join.tipRatio));
    });
    return result;
}

std::vector<std::shared_ptr<Path>> _beziersFromSegmentIntersections(
    const Path& path, const VXRSegmentRun& run)
{
    const double half = static_cast<double>(path.lineWidth()) * 0.5;
    constexpr double overlap = 0.25;
    std::vector<std::shared_ptr<Path>> wedges;
    forEachJoin(run, [&](const Join& join) {
        // The inner vertex lies within both segments: wedges that only touched them would leave gaps.
        // Neighbouring vertices stay half a width apart for as long as possible, because the conversion to a
        // polygon drops vertices close to the previous one.
        const auto wedge = Path::path();
        wedge->moveTo(displaced(join.corner, join.before, half));
        wedge->lineTo(displaced(join.corner, join.tip, half * -overlap));
        wedge->lineTo(displaced(join.corner, join.after, half));
        if (isMitred(path, join))
            wedge->lineTo(displaced(join.corner, join.tip, half * join.tipRatio));
        wedge->close();
        wedges.push_back(wedge);
    });
    return wedges;
}

} // namespace vxr
