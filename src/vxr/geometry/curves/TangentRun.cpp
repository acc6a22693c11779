#include <vxr/geometry/curves/TangentRun.h>

#include <vxr/platform/graphics/path/StrokeSegmenter.h>

namespace vxr {

TangentRunBuilder::TangentRunBuilder(
    double tolerance, double leastStep, std::function<void(const TangentRun&)> emit)
    : mFlattener(tolerance, 1 << 23)
    , mLeastStep(leastStep)
    , mEmit(std::move(emit))
{
}

void TangentRunBuilder::move(Vec2 p)
{
    finish();
    mRun.vertices.push_back({ p, {}, {}, true });
}

void TangentRunBuilder::line(Vec2, Vec2 to)
{
    // From the last vertex kept, not from the pen: steps left out add up.
    mDrawn = true;
    TangentVertex& last = mRun.vertices.back();
    const Vec2 step = to - last.p;
    if (step.length() <= mLeastStep)
        return;
    const Vec2 direction = unit(step);
    last.out = direction;
    mRun.vertices.push_back({ to, direction, direction, true });
}

void TangentRunBuilder::curve(const Cubic& whole)
{
    mDrawn = true;
    const auto extent = std::max({ (whole.control1 - whole.start).length(),
        (whole.control2 - whole.start).length(), (whole.end - whole.start).length() });
    if (extent <= mLeastStep)
        return;
    const double leastChord = mLeastStep / 16;
    mFlattener.flatten(whole, [&](const Cubic& piece) {
        TangentVertex& last = mRun.vertices.back();
        if ((piece.end - last.p).length() <= leastChord)
            return;
        last.out = startDirection(piece);
        const Vec2 in = endDirection(piece);
        mRun.vertices.push_back({ piece.end, in, in, false });
    });
    mRun.vertices.back().corner = true;
    mRun.vertices.back().in = mRun.vertices.back().out = endDirection(whole);
}

void TangentRunBuilder::close(Vec2 from, Vec2 start)
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

void TangentRunBuilder::finish()
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
