#include <vxr/platform/graphics/path/PathDasher.h>

namespace vxr {

namespace {

double segmentLength(const StrokeRun& run, std::size_t i)
{
    return (run.vertices[(i + 1) % run.vertices.size()].p - run.vertices[i].p).length();
}

std::size_t segmentCount(const StrokeRun& run) { return run.vertices.size() - (run.closed ? 0 : 1); }

} // namespace

PathDasher::PathDasher(const LineStyle& style)
{
    double total = 0;
    for (float length : style.dash) {
        if (!(length >= 0) || !std::isfinite(length))
            return;
        total += length;
    }
    if (!(total > 0))
        return;
    mLengths.assign(style.dash.begin(), style.dash.end());
    if (mLengths.size() % 2 != 0) {
        mLengths.insert(mLengths.end(), style.dash.begin(), style.dash.end());
        total *= 2;
    }
    mTotal = total;
    if (std::isfinite(style.dashPhase)) {
        mPhase = std::fmod(style.dashPhase, total);
        if (mPhase < 0)
            mPhase += total;
    }
}

void PathDasher::restart()
{
    mIndex = 0;
    mOn = true;
    mRemaining = mLengths[0];
    double phase = mPhase;
    while (phase > 0 && phase >= mRemaining) {
        phase -= mRemaining;
        nextLength();
    }
    mRemaining -= phase;
}

void PathDasher::nextLength()
{
    mIndex = (mIndex + 1) % mLengths.size();
    mRemaining = mLengths[mIndex];
    mOn = !mOn;
}

bool PathDasher::allows(const StrokeRun& run)
{
    double length = 0;
    for (std::size_t i = 0; i < segmentCount(run); ++i)
        length += segmentLength(run, i);
    const double dashes = (length / mTotal + 1) * static_cast<double>(mLengths.size()) / 2;
    if (!(dashes <= mAllowance))
        return false;
    mAllowance -= dashes;
    return true;
}

/// The vertex at a distance along the segment. Its direction goes over evenly from that of one end to that
/// of the other, which on a line are the same.
StrokeVertex PathDasher::Segment::at(double distance) const
{
    const double t = distance / length;
    const Vec2 p = from.p * (1 - t) + to.p * t;
    Vec2 direction = unit(from.out * (1 - t) + to.in * t);
    if (direction == Vec2())
        direction = unit(to.p - from.p);
    return { p, direction, direction, false };
}

void PathDasher::finishDash(const std::function<void(const StrokeRun&)>& emit)
{
    if (mHoldsFirst && mFirst.vertices.empty()) {
        std::swap(mFirst, mDash);
    } else {
        mDash.vertices.back().out = mDash.vertices.back().in;
        emit(mDash);
    }
    mDash.vertices.clear();
}

void PathDasher::cut(const Segment& segment, const std::function<void(const StrokeRun&)>& emit)
{
    double left = segment.length, position = 0;
    while (left > 0) {
        if (mOn && mDash.vertices.empty())
            mDash.vertices.push_back(segment.at(position));
        // Only now that more follows: a dash that ends with its run may go on at the run's start.
        if (mRemaining <= 0) {
            if (mOn)
                finishDash(emit);
            nextLength();
            continue;
        }
        const double step = std::min(mRemaining, left);
        position += step;
        left -= step;
        mRemaining -= step;
        if (mOn)
            mDash.vertices.push_back(left > 0 ? segment.at(position) : segment.to);
    }
}

void PathDasher::dash(const StrokeRun& run, const std::function<void(const StrokeRun&)>& emit)
{
    if (isSolid() || run.vertices.size() < 2 || !allows(run))
        return emit(run);

    restart();
    mDash.vertices.clear();
    mFirst.vertices.clear();
    mHoldsFirst = run.closed && mOn;
    const std::size_t count = run.vertices.size();
    for (std::size_t i = 0; i < segmentCount(run); ++i)
        cut({ run.vertices[i], run.vertices[(i + 1) % count], segmentLength(run, i) }, emit);

    if (mHoldsFirst && mFirst.vertices.empty())
        return emit(run); // one dash as long as the whole run
    mHoldsFirst = false;
    if (!mOn && mRemaining <= mTotal * 1e-6 && mFirst.vertices.empty()) {
        // A dash that would begin where the run ends is a dot, so that dots stand at both ends of a line.
        const StrokeVertex& end = run.closed ? run.vertices.front() : run.vertices.back();
        mDash.vertices.push_back({ end.p, end.in, end.in, false });
    }
    if (mDash.vertices.empty()) {
        if (!mFirst.vertices.empty())
            std::swap(mDash, mFirst);
    } else if (!mFirst.vertices.empty()) {
        mDash.vertices.insert(mDash.vertices.end(), mFirst.vertices.begin() + 1, mFirst.vertices.end());
    }
    if (!mDash.vertices.empty())
        finishDash(emit);
}

} // namespace vxr
