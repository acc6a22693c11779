#include <vxr/platform/graphics/PathStrokeRun.h>

namespace vxr {

Vec2 unit(Vec2 v)
{
    const double length = v.length();
    return length > 0 ? v * (1 / length) : Vec2();
}

Vec2 startDirection(const Cubic& c)
{
    for (const Vec2& p : { c.control1, c.control2, c.end })
        if (!(p == c.start))
            return unit(p - c.start);
    return {};
}

Vec2 endDirection(const Cubic& c) { return -startDirection({ c.end, c.control2, c.control1, c.start }); }

StrokeRunBuilder::StrokeRunBuilder(
    const Precision& precision, std::size_t curves, std::function<void(const StrokeRun&)> emit)
    : mFlattener(precision.tolerance, curves, 1 << 23)
    , mLeastStep(precision.leastStep)
    , mCosine(std::cos(precision.mostTurn))
    , mEmit(std::move(emit))
{
}

void StrokeRunBuilder::move(Vec2 p)
{
    finish();
    mRun.vertices.push_back({ p, {}, {}, true });
}

void StrokeRunBuilder::line(Vec2, Vec2 to)
{
    // From the last vertex kept, not from the pen: steps left out add up.
    mDrawn = true;
    StrokeVertex& last = mRun.vertices.back();
    const Vec2 step = to - last.p;
    if (step.length() <= mLeastStep)
        return;
    const Vec2 direction = unit(step);
    last.out = direction;
    mRun.vertices.push_back({ to, direction, direction, true });
}

/// A piece is good when it is flat and no leg of its control polygon turns too far. At a cusp the turn never
/// gets small: there the piece does.
bool StrokeRunBuilder::mustSplit(const Cubic& c, double flatLimit) const
{
    if (!CurveFlattener::isFlat(c, flatLimit))
        return true;
    const Vec2 legs[] = { c.control1 - c.start, c.control2 - c.control1, c.end - c.control2 };
    double squares[3], longest = 0;
    for (int i = 0; i < 3; ++i)
        longest = std::max(longest, squares[i] = dot(legs[i], legs[i]));
    if (longest <= mLeastStep * mLeastStep)
        return false;
    const double least = longest * 1e-12; // legs without length have no direction
    int previous = -1;
    for (int i = 0; i < 3; ++i) {
        if (squares[i] <= least)
            continue;
        if (previous >= 0) {
            const double along = dot(legs[previous], legs[i]);
            if (along <= 0 || along * along < mCosine * mCosine * squares[previous] * squares[i])
                return true;
        }
        previous = i;
    }
    return false;
}

void StrokeRunBuilder::curve(const Cubic& whole)
{
    mDrawn = true;
    const auto extent = std::max({ (whole.control1 - whole.start).length(),
        (whole.control2 - whole.start).length(), (whole.end - whole.start).length() });
    if (extent <= mLeastStep)
        return;
    const double flatLimit = mFlattener.limitFor(whole), leastChord = mLeastStep / 16;
    mFlattener.flattenWhile(
        whole, [&](const Cubic& piece) { return mustSplit(piece, flatLimit); },
        [&](const Cubic& piece) {
            StrokeVertex& last = mRun.vertices.back();
            if ((piece.end - last.p).length() <= leastChord)
                return;
            last.out = startDirection(piece);
            const Vec2 in = endDirection(piece);
            mRun.vertices.push_back({ piece.end, in, in, false });
        });
    mRun.vertices.back().corner = true;
    mRun.vertices.back().in = mRun.vertices.back().out = endDirection(whole);
}

void StrokeRunBuilder::close(Vec2 from, Vec2 start)
{
    line(from, start);
    auto& vertices = mRun.vertices;
    if (vertices.size() > 1) {
        // What leads back into the start, within the least step, arrives at the first vertex itself.
        if ((vertices.back().p - vertices.front().p).length() <= mLeastStep) {
            vertices.front().in = vertices.back().in;
            vertices.pop_back();
        }
        mRun.closed = vertices.size() > 1;
    }
    finish();
}

void StrokeRunBuilder::finish()
{
    if (mDrawn) {
        if (!mRun.closed) {
            mRun.vertices.front().in = mRun.vertices.front().out;
            mRun.vertices.back().out = mRun.vertices.back().in;
        }
        mEmit(mRun);
    }
    mRun.vertices.clear();
    mRun.closed = false;
    mDrawn = false;
}

} // namespace vxr
