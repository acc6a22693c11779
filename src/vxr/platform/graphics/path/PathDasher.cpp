#include <vxr/platform/graphics/path/PathDasher.h>

#include <vxr/platform/graphics/path/StrokeSegmenter.h>

namespace vxr {

void PathDasher::begin(Vec2 p, Vec2 direction)
{
    const std::size_t run = mRun++;
    // A dot, which has no direction, is drawn as it is.
    mPassesThrough = direction == Vec2() || (run < mIsDashed.size() && !mIsDashed[run]);
    if (mPassesThrough)
        return mOutliner.begin(p, direction);
    mStart = mPoint = p;
    mStartDirection = direction;
    mInDash = mInFirst = false;
    mHasSegment = false;
    mPattern.restart();
    mStartsOn = mPattern.isOn();
}

/// Along the segment the direction goes over evenly from that of its start to that of its end, which on a
/// line are the same.
void PathDasher::segment(Vec2 to, Vec2 out, Vec2 in, bool corner)
{
    if (mPassesThrough)
        return mOutliner.segment(to, out, in, corner);
    const Vec2 from = mPoint, chord = to - from;
    const double length = chord.length();
    const auto directionAt = [&](double position) {
        if (out == in)
            return out;
        const double t = position / length;
        const Vec2 direction = unit(out * (1 - t) + in * t);
        return direction == Vec2() ? unit(chord) : direction;
    };
    double left = length, position = 0;
    while (left > 0) {
        if (mPattern.isOn() && !mInDash) {
            mInDash = true;
            mInFirst = mStartsOn && !mHasSegment && position == 0;
            mOutliner.begin(from + chord * (position / length), directionAt(position), mInFirst);
        }
        // Only now that more follows: a dash that ends with its run may go on at the run's start.
        if (mPattern.remaining() <= 0) {
            if (mPattern.isOn())
                finishDash();
            mPattern.next();
            continue;
        }
        const double step = std::min(mPattern.remaining(), left), before = position;
        position += step;
        left -= step;
        mPattern.advance(step);
        if (mPattern.isOn()) {
            const bool whole = !(left > 0);
            mOutliner.segment(whole ? to : from + chord * (position / length), directionAt(before),
                whole ? in : directionAt(position), corner && before == 0);
        }
    }
    mHasSegment = true;
    mPoint = to;
    mArrival = in;
}

void PathDasher::finishDash()
{
    mOutliner.end();
    mInDash = mInFirst = false;
}

/// A dash that would begin where the run ends is a dot, so that dots stand at both ends of a line.
bool PathDasher::endsInDot() const
{
    return !mPattern.isOn() && mPattern.remaining() <= mPattern.total() * 1e-6;
}

void PathDasher::dotAtEnd()
{
    mOutliner.begin(mPoint, mArrival);
    mOutliner.end();
}

void PathDasher::end()
{
    if (mPassesThrough)
        return mOutliner.end();
    if (mInDash)
        mOutliner.end();
    else if (endsInDot())
        dotAtEnd();
    if (mStartsOn)
        mOutliner.addStartCap(mStart, mStartDirection);
}

void PathDasher::close()
{
    if (mPassesThrough)
        return mOutliner.close();
    if (mInFirst)
        return mOutliner.close(); // one dash as long as the whole run
    if (mInDash && mStartsOn)
        return mOutliner.endInto(mStart, mStartDirection);
    if (mInDash)
        mOutliner.end();
    else if (mStartsOn)
        mOutliner.addStartCap(mStart, mStartDirection);
    else if (endsInDot())
        dotAtEnd();
}

} // namespace vxr
