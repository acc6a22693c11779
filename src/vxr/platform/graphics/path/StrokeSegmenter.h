#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <array>
#include <cstddef>

namespace vxr {

/// `v` at length 1; zero when it has none.
inline Vec2 unit(Vec2 v)
{
    const double length = v.length();
    return length > 0 ? v * (1 / length) : Vec2();
}

/// Direction at the start of a curve, from the first control point that differs; zero when none does.
Vec2 startDirection(const Cubic&);
Vec2 endDirection(const Cubic&);

/// The parameters at which a curve is cut so that the chords stay within `tolerance` of it, or within what
/// single precision can tell apart at its coordinates: equal steps in each quarter of a long curve, at most
/// 2^13 in all. Once hostile coordinates have used up what a path may have, 8.
class CurveSteps {
public:
    CurveSteps(const Cubic&, double tolerance, bool mayBeMany);

    std::size_t total() const
    {
        return static_cast<std::size_t>(mSteps[0] + mSteps[1] + mSteps[2] + mSteps[3]);
    }

    /// Calls `visit(t)` for each parameter after 0, the last one exactly 1.
    template <class Visit> void visit(Visit visit) const
    {
        for (int quarter = 0; quarter < mQuarters; ++quarter) {
            const int steps = mSteps[quarter];
            const double first = quarter * 0.25, step = (mQuarters == 1 ? 1.0 : 0.25) / steps;
            for (int i = 1; i < steps; ++i)
                visit(first + step * i);
            visit(mQuarters == 1 ? 1.0 : first + 0.25);
        }
    }

private:
    int mQuarters = 1;
    std::array<int, 4> mSteps {};
};

/// Turns the finite pieces of a path, from `walkFinite`, into runs of straight segments for a stroke:
/// `begin(p, direction)`, `segment(to, out, in, corner)`, then `end()` or `close()`. The directions are those
/// of the path at the segment's start and end. A run without a segment is a dot: all lines and curves of the
/// sub-path lie in one point. A bare move gives none.
template <class Runs> class StrokeSegmenter {
public:
    /// Lines not longer than `leastStep` are left out, so that noise has no say in the joins.
    StrokeSegmenter(double tolerance, double leastStep, Runs& runs)
        : mTolerance(tolerance)
        , mLeastStep(leastStep)
        , mRuns(runs)
    {
    }

    void move(Vec2 p)
    {
        finish();
        mStart = mLast = p;
    }

    void line(Vec2, Vec2 to)
    {
        // From the last vertex kept, not from the pen: steps left out add up.
        mDrawn = true;
        const Vec2 step = to - mLast;
        const double length = step.length();
        if (length <= mLeastStep)
            return;
        const Vec2 direction = step * (1 / length);
        add(to, direction, direction, true);
    }

    void curve(const Cubic& curve);

    void close(Vec2 from, Vec2 start)
    {
        line(from, start);
        if (mHasSegment)
            mRuns.close();
        else
            addDot();
        forget();
    }

    void finish()
    {
        if (mHasSegment)
            mRuns.end();
        else if (mDrawn)
            addDot();
        forget();
    }

private:
    void add(Vec2 to, Vec2 out, Vec2 in, bool corner)
    {
        if (!mHasSegment)
            mRuns.begin(mStart, out);
        mHasSegment = true;
        mRuns.segment(to, out, in, corner);
        mLast = to;
    }

    void addDot()
    {
        mRuns.begin(mStart, {});
        mRuns.end();
    }

    void forget() { mHasSegment = mDrawn = false; }

    double mTolerance, mLeastStep;
    Runs& mRuns;
    std::size_t mStepsLeft = 1 << 23;
    Vec2 mStart, mLast; ///< of the sub-path; the last vertex kept
    bool mDrawn = false; ///< the sub-path has more than its move
    bool mHasSegment = false;
};

/// By equal steps of the parameter, so that a vertex costs one square root, that of its tangent. They need
/// not know the width: where the outline bends gentler than the half width, its sides are off by no more than
/// twice what the middle is; where it bends tighter, every turn is drawn as an arc.
template <class Runs> void StrokeSegmenter<Runs>::curve(const Cubic& c)
{
    mDrawn = true;
    const double extent = std::max(
        { (c.control1 - c.start).length(), (c.control2 - c.start).length(), (c.end - c.start).length() });
    if (extent <= mLeastStep)
        return;
    const CurveSteps steps(c, mTolerance, mStepsLeft > 0);
    mStepsLeft -= std::min(mStepsLeft, steps.total());

    // The curve is ((cube t + square) t + linear) t + start.
    const Vec2 linear = (c.control1 - c.start) * 3;
    const Vec2 square = (c.control2 - c.control1) * 3 - linear;
    const Vec2 cube = c.end - c.start - (c.control2 - c.control1) * 3;
    const double leastChord = mLeastStep / 16, least = leastChord * leastChord;
    Vec2 out = startDirection(c);
    bool corner = true;
    steps.visit([&](double t) {
        const bool isLast = t == 1;
        const Vec2 p = isLast ? c.end : c.start + ((cube * t + square) * t + linear) * t;
        const Vec2 chord = p - mLast;
        if (dot(chord, chord) <= least)
            return;
        const Vec2 in = isLast ? endDirection(c) : unit((cube * (3 * t) + square * 2) * t + linear);
        add(p, out, in, corner);
        out = in;
        corner = false;
    });
}

} // namespace vxr
