#include <vxr/platform/graphics/path/PathStrokeRun.h>

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
    double tolerance, double leastStep, std::function<void(const StrokeRun&)> emit)
    : mFlattener(tolerance, 1 << 23)
    , mLeastStep(leastStep)
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

/// The flattening need not know the width. Where the outline bends gentler than the half width, its sides are
/// off by no more than twice what the middle is; where it bends tighter, the stroker draws every turn as an
/// arc.
void StrokeRunBuilder::curve(const Cubic& whole)
{
    mDrawn = true;
    const auto extent = std::max({ (whole.control1 - whole.start).length(),
        (whole.control2 - whole.start).length(), (whole.end - whole.start).length() });
    if (extent <= mLeastStep)
        return;
    const double leastChord = mLeastStep / 16;
    mFlattener.flatten(whole, [&](const Cubic& piece) {
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
