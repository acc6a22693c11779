#include <vxr/geometry/curves/CurveFit.h>

#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/CurveFitSegment.h>

#include <numbers>

namespace vxr {

namespace {

Vec2 unit(Vec2 v)
{
    const double length = v.length();
    return length > 0 ? v * (1 / length) : Vec2();
}

class CurveFitter {
public:
    CurveFitter(std::span<const FitPoint> points, const CurveFitOptions& options)
        : mTolerance(options.tolerance > 0 ? options.tolerance : 0)
        , mClosed(options.closed)
        , mKeepsToLine(options.keepsToLine)
    {
        mPoints.reserve(points.size() + 1);
        for (const FitPoint& point : points) {
            if (!std::isfinite(point.p.x) || !std::isfinite(point.p.y))
                continue;
            if (mPoints.empty() || !(point.p == mPoints.back().p))
                mPoints.push_back(point);
            else
                mPoints.back().corner |= point.corner;
        }
        if (mClosed)
            while (mPoints.size() > 1 && mPoints.back().p == mPoints.front().p) {
                mPoints.front().corner |= mPoints.back().corner;
                mPoints.pop_back();
            }
        if (mPoints.size() < 3)
            mClosed = false;
        measure();
        mFoundCorners = findCorners(options.cornerAngle);
    }

    /// Corners that were found stay unless a bend through them takes fewer segments.
    std::vector<Cubic> run()
    {
        if (mPoints.size() < 2)
            return {};
        if (mFoundCorners.empty())
            return fitAll();
        CurveFitter smooth(*this);
        for (const std::size_t i : mFoundCorners)
            smooth.mPoints[i].corner = false;
        auto curves = fitAll(), bent = smooth.fitAll();
        return bent.size() < curves.size() ? bent : curves;
    }

private:
    static constexpr std::size_t mostNeighbours = 64; ///< that have a say about a corner, on each side

    std::vector<Cubic> fitAll()
    {
        std::vector<Cubic> curves;
        if (mClosed) {
            // Begin at a corner; without any, where the line goes straightest.
            std::rotate(
                mPoints.begin(), mPoints.begin() + static_cast<std::ptrdiff_t>(beginning()), mPoints.end());
            mPoints.push_back(mPoints.front());
            mPoints.back().direction = {};
        }
        measure();
        CurveFitSegment segment(mTolerance, mKeepsToLine, mPoints, mLengths);
        std::size_t from = 0, corner = 0, step = 8;
        Vec2 leaving = tangentAt(0);
        while (from + 1 < mPoints.size()) {
            if (corner <= from)
                for (corner = from + 1; corner + 1 < mPoints.size() && !mPoints[corner].corner;)
                    ++corner;
            const auto [curve, to] = longest(segment, from, corner, leaving, step);
            curves.push_back(curve);
            step = std::max<std::size_t>(to - from, 4);
            // What the curve does beyond the point is the next one's to continue.
            leaving = mPoints[to].corner ? tangentAt(to) : unit(curve.end - curve.control2);
            from = to;
        }
        return curves;
    }

    void measure()
    {
        mLengths.resize(mPoints.size());
        for (std::size_t i = 1; i < mPoints.size(); ++i)
            mLengths[i] = mLengths[i - 1] + (mPoints[i].p - mPoints[i - 1].p).length();
    }

    std::size_t beginning() const
    {
        std::size_t best = 0;
        double straightest = -2;
        for (std::size_t i = 0; i < mPoints.size(); ++i) {
            if (mPoints[i].corner)
                return i;
            const double cosine = dot(unit(at(i, 0) - at(i, -1)), unit(at(i, 1) - at(i, 0)));
            if (cosine > straightest) {
                straightest = cosine;
                best = i;
            }
        }
        return best;
    }

    /// Neighbours, around the end of a closed sequence.
    Vec2 at(std::size_t i, std::ptrdiff_t by) const
    {
        const auto count = static_cast<std::ptrdiff_t>(mPoints.size());
        auto index = static_cast<std::ptrdiff_t>(i) + by;
        index = mClosed ? (index % count + count) % count : std::clamp<std::ptrdiff_t>(index, 0, count - 1);
        return mPoints[static_cast<std::size_t>(index)].p;
    }

    /// The point that lies `distance` from point `i` along the points, or the next one beyond it.
    Vec2 awayFrom(std::size_t i, std::ptrdiff_t side, double distance) const
    {
        Vec2 p = at(i, 0);
        double length = 0;
        for (std::ptrdiff_t k = 1; k <= static_cast<std::ptrdiff_t>(mostNeighbours); ++k) {
            const Vec2 next = at(i, k * side);
            length += (next - p).length();
            p = next;
            if (length >= distance)
                break;
        }
        return p;
    }

    /// Cosine of the angle by which the line through the points turns, seen from a distance.
    double turnAt(std::size_t i, double distance) const
    {
        const Vec2 p = mPoints[i].p;
        return dot(unit(p - awayFrom(i, -1, distance)), unit(awayFrom(i, 1, distance) - p));
    }

    /// Makes corners of points that were none; answers which.
    std::vector<std::size_t> findCorners(double angle)
    {
        std::vector<std::size_t> found;
        if (!(angle < std::numbers::pi) || mPoints.size() < 3)
            return found;
        const double window = 4 * mTolerance, most = std::cos(std::max(angle, 0.0));
        std::vector<double> cosines(mPoints.size(), 1);
        const std::size_t first = mClosed ? 0 : 1, end = mPoints.size() - first;
        const double whole = mLengths.back();
        if (!(whole > 2 * window))
            return found;
        for (std::size_t i = first; i < end; ++i) {
            // A corner turns as much within a quarter of the window; a bend spreads over it.
            for (const double part : { 1.0, 0.25 }) {
                const double cosine = turnAt(i, window * part);
                cosines[i] = part == 1 ? cosine : std::max(cosines[i], cosine);
                if (!(cosine < most))
                    break;
            }
        }
        // The sharpest of those that see the same corner.
        for (std::size_t i = first; i < end; ++i) {
            if (!(cosines[i] < most))
                continue;
            bool sharpest = true;
            const std::size_t low = std::max(first, i - std::min(i, mostNeighbours)),
                              high = std::min(end, i + mostNeighbours);
            for (std::size_t k = i; k-- > low && mLengths[i] - mLengths[k] <= window && sharpest;)
                sharpest = cosines[k] > cosines[i];
            for (std::size_t k = i + 1; k < high && mLengths[k] - mLengths[i] <= window && sharpest; ++k)
                sharpest = cosines[k] >= cosines[i];
            if (sharpest && !mPoints[i].corner)
                found.push_back(i);
        }
        for (const std::size_t i : found)
            mPoints[i].corner = true;
        return found;
    }

    /// Of the line through the points; one-sided and free at corners and ends.
    Vec2 tangentAt(std::size_t i) const
    {
        if (mPoints[i].direction != Vec2() && !mPoints[i].corner)
            return mPoints[i].direction;
        const std::size_t last = mPoints.size() - 1;
        const bool seam = mClosed && !mPoints[0].corner && (i == 0 || i == last);
        if (!seam && (mPoints[i].corner || i == 0 || i == last))
            return {};
        const std::size_t before = i == 0 ? last : i, after = i == last ? 0 : i;
        return tangentThrough(before, i, after);
    }

    Vec2 tangentThrough(std::size_t before, std::size_t i, std::size_t after) const
    {
        // Up to four tolerances around, so that what the tolerance hides has no say; as far as neighbours go
        // at least.
        const Vec2 p = mPoints[i].p;
        const double reach = 4 * mTolerance;
        Vec2 back = mPoints[before - 1].p - p, ahead = mPoints[after + 1].p - p;
        Vec2 sumBack = back, sumAhead = ahead;
        int count = 1;
        for (std::size_t k = 2; k <= 16 && before >= k && after + k < mPoints.size(); ++k) {
            const Vec2 b = mPoints[before - k].p - p, a = mPoints[after + k].p - p;
            if (b.length() > reach || a.length() > reach || mPoints[before - k + 1].corner
                || mPoints[after + k - 1].corner)
                break;
            sumBack = sumBack + b;
            sumAhead = sumAhead + a;
            ++count;
        }
        if (count > 1)
            return unit(sumAhead - sumBack);
        // The circle through the three: each chord counts by the other's length.
        const double lengthBack = back.length(), lengthAhead = ahead.length();
        return unit(unit(ahead) * lengthBack - unit(back) * lengthAhead);
    }

    struct Step {
        Cubic curve;
        std::size_t to;
    };

    /// The longest segment from a point on that keeps the tolerance and ends no later than `limit`.
    Step longest(
        CurveFitSegment& segment, std::size_t from, std::size_t limit, Vec2 leaving, std::size_t step)
    {
        Step best { lineTo(from, from + 1), from + 1 };
        const auto attempt = [&](std::size_t to) {
            const auto curve = segment.fit(from, to, leaving, tangentAt(to));
            if (curve)
                best = { *curve, to };
            return curve.has_value();
        };
        if (limit == from + 1 || !(mTolerance > 0)) {
            if (mTolerance > 0)
                attempt(from + 1);
            return best;
        }
        // Doubling, then halving between the last success and the first failure. Of a long segment the last
        // few points aren't worth the attempts.
        constexpr std::size_t fineness = 24;
        std::size_t good = from + 1, bad = limit + 1;
        for (std::size_t reach = step; good < limit; reach *= 2) {
            const std::size_t to = std::min(from + reach, limit);
            if (!attempt(to)) {
                bad = to;
                break;
            }
            good = to;
        }
        while (good + 1 + (good - from) / fineness < bad) {
            const std::size_t middle = good + (bad - good) / 2;
            (attempt(middle) ? good : bad) = middle;
        }
        if (good == from + 1)
            attempt(good);
        return best;
    }

    Cubic lineTo(std::size_t from, std::size_t to) const
    {
        return cubicFromLine(mPoints[from].p, mPoints[to].p);
    }

    double mTolerance;
    bool mClosed, mKeepsToLine;
    std::vector<FitPoint> mPoints;
    std::vector<double> mLengths;
    std::vector<std::size_t> mFoundCorners;
};

} // namespace

std::vector<Cubic> fitCurves(std::span<const FitPoint> points, const CurveFitOptions& options)
{
    return CurveFitter(points, options).run();
}

std::vector<Cubic> fitCurves(std::span<const Vec2> points, const CurveFitOptions& options)
{
    std::vector<FitPoint> all(points.size());
    std::transform(points.begin(), points.end(), all.begin(), [](Vec2 p) { return FitPoint { p }; });
    return CurveFitter(all, options).run();
}

void appendCurves(Path& path, std::span<const Cubic> curves, bool closed, double straightness)
{
    if (curves.empty())
        return;
    path.moveTo(curves.front().start.point());
    // The close draws a last line.
    const bool closesItself = closed && curves.size() > 1 && isStraight(curves.back(), straightness);
    for (const Cubic& c : curves.first(curves.size() - closesItself)) {
        if (isStraight(c, straightness))
            path.lineTo(c.end.point());
        else
            path.curveTo(c.control1.point(), c.control2.point(), c.end.point());
    }
    if (closed)
        path.close();
}

} // namespace vxr
