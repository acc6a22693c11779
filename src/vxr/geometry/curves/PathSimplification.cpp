#include <vxr/geometry/curves/PathSimplification.h>

#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/platform/graphics/path/PathFlattener.h>

namespace vxr {

namespace {

std::shared_ptr<Path> emptyPathLike(const Path& path)
{
    auto made = path.copy();
    made->removeAllPoints();
    return made;
}

/// Collects a sub-path as points close enough to stand for it, and writes what is fitted to them.
class Simplifier {
public:
    Simplifier(Path& target, double tolerance)
        : mTarget(target)
        , mTolerance(tolerance)
        , mFlattener(tolerance * 0.1, 1 << 22)
    {
    }

    void move(Vec2 p)
    {
        finish(false);
        mPoints.assign(1, { p });
        mOriginal.clear();
    }

    void line(Vec2 from, Vec2 to)
    {
        mOriginal.push_back(cubicFromLine(from, to));
        const Vec2 step = to - from;
        const double length = step.length();
        if (!(length > 0))
            return;
        arrive(step * (1 / length), step * (1 / length), true);
        // Points along long lines keep the fit from straying.
        constexpr double mostPieces = 8;
        const int pieces = static_cast<int>(std::clamp(length / (8 * mTolerance), 1.0, mostPieces));
        for (int i = 1; i <= pieces; ++i)
            mPoints.push_back({ i == pieces ? to : from + step * (double(i) / pieces), mArrival });
    }

    void curve(const Cubic& c)
    {
        mOriginal.push_back(c);
        const Vec2 leaving = directionAt(c, 0);
        if (leaving == Vec2())
            return;
        arrive(leaving, directionAt(c, 1), false);
        const auto before = static_cast<std::ptrdiff_t>(mPoints.size());
        mFlattener.flatten(c, [&](const Cubic& piece) {
            mPoints.push_back({ piece.end, directionAt(piece, 1) });
        });
        // A cusp within the curve: the line through the points shows it.
        for (const double t : cuspsOf(c))
            if (t > 0 && t < 1)
                markCornerNear(pointAt(c, t), mPoints.begin() + before);
    }

    void close(Vec2 from, Vec2 start)
    {
        if (!(from == start))
            line(from, start);
        finish(true);
    }

    void finish(bool closed)
    {
        if (mOriginal.empty())
            return;
        if (closed && mPoints.size() > 1 && mPoints.front().p == mPoints.back().p) {
            const bool lines = mByLine && mFirstIsLine;
            mPoints.front().direction = lines ? Vec2() : mFirstDeparture;
            mPoints.front().corner = !lines && turns(mArrival, mFirstDeparture);
            mPoints.pop_back();
        }
        CurveFitOptions options;
        options.tolerance = mTolerance * 0.88; // the rest goes to the points' distance from the curve
        options.closed = closed;
        options.keepsToLine = true;
        options.cornerAngle = 0.6;
        const auto fitted = fitCurves(mPoints, options);
        write(!fitted.empty() && fitted.size() < mOriginal.size() ? fitted : mOriginal, closed);
        mPoints.clear();
        mOriginal.clear();
    }

private:
    static bool turns(Vec2 arriving, Vec2 leaving)
    {
        constexpr double leastCosine = 0.995; // a tenth of a radian
        return dot(arriving, leaving) < leastCosine;
    }

    void arrive(Vec2 leaving, Vec2 arriving, bool isLine)
    {
        if (mPoints.size() == 1) {
            mFirstDeparture = leaving;
            mFirstIsLine = isLine;
        } else if (isLine && mByLine) {
            // Lines may stand for a curve, or tremble: what is a corner shows from further away.
            mPoints.back().direction = {};
        } else {
            mPoints.back().corner = turns(mArrival, leaving);
        }
        mArrival = arriving;
        mByLine = isLine;
    }

    void markCornerNear(Vec2 p, std::vector<FitPoint>::iterator from)
    {
        const auto distance = [p](const FitPoint& point) { return (point.p - p).length(); };
        const auto nearest = std::min_element(from, mPoints.end(),
            [&](const FitPoint& a, const FitPoint& b) { return distance(a) < distance(b); });
        if (nearest != mPoints.end())
            nearest->corner = true;
    }

    void write(const std::vector<Cubic>& curves, bool closed)
    {
        appendCurves(mTarget, curves, closed, 1e-6 * mTolerance);
    }

    Path& mTarget;
    double mTolerance;
    CurveFlattener mFlattener;
    std::vector<FitPoint> mPoints;
    std::vector<Cubic> mOriginal; ///< what the points stand for
    Vec2 mFirstDeparture, mArrival;
    bool mFirstIsLine = false, mByLine = false;
};

/// Copies segments, straight ones as lines.
struct Straightener {
    Path& target;
    double tolerance; ///< negative to keep all curves

    void move(Vec2 p) { target.moveTo(p.point()); }
    void line(Vec2, Vec2 to) { target.lineTo(to.point()); }
    void curve(const Cubic& c)
    {
        if (tolerance >= 0 && isStraight(c, tolerance))
            target.lineTo(c.end.point());
        else
            target.curveTo(c.control1.point(), c.control2.point(), c.end.point());
    }
    void close(Vec2, Vec2) { target.close(); }
};

} // namespace

std::shared_ptr<Path> simplifiedPath(const Path& path, double tolerance)
{
    auto result = emptyPathLike(path);
    if (!(tolerance > 0) || !std::isfinite(tolerance)) {
        Straightener copy { *result, -1 };
        walkFinite(path, copy);
        return result;
    }
    Simplifier simplifier(*result, tolerance);
    walkFinite(path, simplifier);
    simplifier.finish(false);
    return result;
}

std::shared_ptr<Path> pathWithStraightCurvesAsLines(const Path& path, double tolerance)
{
    auto result = emptyPathLike(path);
    Straightener straightener { *result, tolerance > 0 ? tolerance : 0 };
    walkFinite(path, straightener);
    return result;
}

} // namespace vxr
