#include <vxr/platform/graphics/path/StrokeOutliner.h>

#include <numbers>

namespace vxr {

namespace {

constexpr double pi = std::numbers::pi;
constexpr std::size_t longOutline = 1 << 23; ///< vertices, after which arcs and caps are coarse

Vec2 rotated(Vec2 v, double cosine, double sine)
{
    return { v.x * cosine - v.y * sine, v.x * sine + v.y * cosine };
}

/// Angle of the longest step around a circle whose chord stays within the tolerance.
double turnWithin(double radius, double tolerance)
{
    constexpr double least = 2 * pi / 4096, most = pi / 3;
    if (tolerance >= radius)
        return most;
    return std::clamp(2 * std::acos(1 - tolerance / radius), least, most);
}

} // namespace

void StrokeOutliner::reset(const LineStyle& style, double tolerance, ContourSink& sink)
{
    mCap = style.cap;
    mJoin = style.join;
    mMiterLimit = style.miterLimit;
    mRadius = style.width * 0.5;
    const double step = turnWithin(mRadius, tolerance);
    const double least = std::cos(step / 2) * (1 - 1e-9);
    mLeastCosine = least * least;
    mNegligible = std::min(1e-3, tolerance / mRadius / 64);
    mStepCosine = std::cos(step);
    mStepSine = std::sin(step);
    mHalfCircleSteps = static_cast<int>(std::ceil(pi / step));
    mHalfCircleCosine = std::cos(pi / mHalfCircleSteps);
    mHalfCircleSine = std::sin(pi / mHalfCircleSteps);
    mSink = &sink;
    mWritten = 0;
}

void StrokeOutliner::begin(Vec2 p, Vec2 direction, bool unfinished)
{
    mStart = mPoint = p;
    mStartDirection = mArrival = mDirection = direction;
    mUnfinished = unfinished;
    mHasSegment = mCut = false;
    mLeft.clear();
    mRight.clear();
    addOffsets(p, direction);
}

/// Along the chord, with a round turn at both ends.
void StrokeOutliner::segmentAlongChord(Vec2 to, Vec2 out, Vec2 in)
{
    const Vec2 step = to - mPoint;
    const double length = step.length();
    const Vec2 direction = length > 0 ? step * (1 / length) : out;
    turn(direction, Turn::Round);
    mPoint = to;
    mArrival = in;
    mDirection = direction;
    addOffsets(to, direction);
}

/// The true tangents meet in the style's join. Where a segment was drawn along its chord, the sliver between
/// chord and tangent is round. Within a curve the next segment makes the turn itself.
void StrokeOutliner::corner(Vec2 out)
{
    turn(mArrival, Turn::Round);
    turn(out, Turn::Styled);
}

void StrokeOutliner::turn(Vec2 direction, Turn kind)
{
    const double sine = cross(mDirection, direction), cosine = vxr::dot(mDirection, direction);
    if (cosine > 0 && std::abs(sine) <= mNegligible) {
        mDirection = direction;
        return;
    }
    const bool toLeft = sine > 0;
    auto& outer = toLeft ? mRight : mLeft;
    const Vec2 before = leftNormal(mDirection) * (toLeft ? -mRadius : mRadius);
    const Vec2 after = leftNormal(direction) * (toLeft ? -mRadius : mRadius);
    if (kind == Turn::Round || mJoin == LineJoin::Round) {
        if (cosine < mStepCosine)
            addArc(outer, before, after, toLeft);
    } else if (mJoin == LineJoin::Miter) {
        // The tip stands 1 / sin(half the angle between the lines) half widths away; the square of that
        // sine is (1 + cosine) / 2.
        if (mMiterLimit > 0 && mMiterLimit * mMiterLimit * (1 + cosine) >= 2)
            outer.push_back(mPoint + (before + after) * (1 / (1 + cosine)));
    }
    (toLeft ? mLeft : mRight).push_back(mPoint);
    mDirection = direction;
    addOffsets(mPoint, direction);
}

/// The points between the ends of an arc around the current point, without them. In whole steps, the last one
/// shorter. A very long outline gets coarse arcs, which bounds it.
void StrokeOutliner::addArc(std::vector<Vec2>& points, Vec2 from, Vec2 to, bool toLeft) const
{
    const bool coarse = mWritten > longOutline;
    const double cosine = coarse ? 0.5 : mStepCosine, sine = coarse ? std::numbers::sqrt3 / 2 : mStepSine;
    const double least = mRadius * mRadius * cosine;
    constexpr int mostSteps = 2048; // half a circle's
    for (int i = 0; i < mostSteps && vxr::dot(from, to) < least; ++i) {
        from = rotated(from, cosine, toLeft ? sine : -sine);
        points.push_back(mPoint + from);
    }
}

/// Clockwise, without the ends.
void StrokeOutliner::addHalfCircle(std::vector<Vec2>& points, Vec2 p, Vec2 from) const
{
    const bool coarse = mWritten > longOutline && mHalfCircleSteps > 3;
    const int steps = coarse ? 3 : mHalfCircleSteps;
    const double cosine = coarse ? 0.5 : mHalfCircleCosine;
    const double sine = coarse ? std::numbers::sqrt3 / 2 : mHalfCircleSine;
    for (int i = 1; i < steps; ++i)
        points.push_back(p + (from = rotated(from, cosine, -sine)));
}

/// From the left side of an end to its right side, looking along `direction`, without these two points.
void StrokeOutliner::addCap(std::vector<Vec2>& points, Vec2 p, Vec2 direction) const
{
    const Vec2 normal = leftNormal(direction) * mRadius;
    if (mCap == LineCap::Round) {
        addHalfCircle(points, p, normal);
    } else if (mCap == LineCap::Square) {
        points.push_back(p + normal + direction * mRadius);
        points.push_back(p - normal + direction * mRadius);
    }
}

/// Without a direction there is none that a square could take: only a round cap draws.
void StrokeOutliner::dot()
{
    if (mCap != LineCap::Round)
        return;
    mLeft.clear();
    for (const double side : { mRadius, -mRadius }) {
        mLeft.push_back(mStart + Vec2(side, 0));
        addHalfCircle(mLeft, mStart, { side, 0 });
    }
    write(mLeft);
}

void StrokeOutliner::end()
{
    if (mStartDirection == Vec2())
        return dot();
    if (!mHasSegment && mCap == LineCap::Butt)
        return;
    turn(mArrival, Turn::Round);
    addCap(mLeft, mPoint, mArrival);
    mLeft.insert(mLeft.end(), mRight.rbegin(), mRight.rend());
    if (!mUnfinished && !mCut)
        addCap(mLeft, mStart, -mStartDirection);
    write(mLeft);
    if (!mUnfinished && mCut)
        addStartCap(mStart, mStartDirection);
}

void StrokeOutliner::close()
{
    if (mCut)
        return endInto(mStart, mStartDirection);
    corner(mStartDirection);
    write(mLeft);
    std::reverse(mRight.begin(), mRight.end());
    write(mRight);
}

void StrokeOutliner::endInto(Vec2 p, Vec2 direction)
{
    corner(direction);
    addOffsets(p, direction); // the exact edge that the other run begins with
    writePiece();
}

void StrokeOutliner::addStartCap(Vec2 p, Vec2 direction)
{
    if (mCap == LineCap::Butt)
        return;
    const Vec2 normal = leftNormal(direction) * mRadius;
    mLeft.assign({ p - normal });
    addCap(mLeft, p, -direction);
    mLeft.push_back(p + normal);
    write(mLeft);
}

/// Writes what there is of the run, straight across at both ends. What follows begins with the same edge.
void StrokeOutliner::writePiece()
{
    const Vec2 left = mLeft.back(), right = mRight.back();
    mLeft.insert(mLeft.end(), mRight.rbegin(), mRight.rend());
    write(mLeft);
    mCut = true;
    mLeft.assign({ left });
    mRight.assign({ right });
}

void StrokeOutliner::write(const std::vector<Vec2>& contour)
{
    mWritten += contour.size();
    mSink->addContour(contour);
}

} // namespace vxr
