#include <vxr/geometry/PathAdditions.h>

#include <vxr/geometry/VXRGeometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace vxr {

namespace {

Point between(Point a, Point b, float t) { return { a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t }; }

using Cubic = std::array<Point, 4>;

/// The part of a cubic from 0 to `t`, which is removed from it.
Cubic takeOff(Cubic& curve, float t)
{
    const auto [a, b, c, d] = curve;
    const Point ab = between(a, b, t), bc = between(b, c, t), cd = between(c, d, t);
    const Point abc = between(ab, bc, t), bcd = between(bc, cd, t), middle = between(abc, bcd, t);
    curve = { middle, bcd, cd, d };
    return { a, ab, abc, middle };
}

/// Writes the displaced copy element by element.
class Wobbler {
public:
    Wobbler(Path& target, float distance, int subdivisions, std::uint32_t seed)
        : mTarget(target)
        , mDistance(distance)
        , mSubdivisions(subdivisions)
        , mRandom(seed)
    {
    }

    void moveTo(Point p)
    {
        mStart = mCurrent = p;
        mStartShift = mShift = nextShift();
        mTarget.moveTo(VXRAddPoints(p, mShift));
    }

    void lineTo(Point p) { curveTo(between(mCurrent, p, 1.0f / 3), between(mCurrent, p, 2.0f / 3), p); }

    void curveTo(Point c1, Point c2, Point p) { add({ mCurrent, c1, c2, p }, nextShift()); }

    void close()
    {
        if (mCurrent != mStart)
            add({ mCurrent, between(mCurrent, mStart, 1.0f / 3), between(mCurrent, mStart, 2.0f / 3),
                    mStart },
                mStartShift);
        mTarget.close();
        mCurrent = mStart;
        mShift = mStartShift;
    }

private:
    /// Control points move with the end they belong to, so points in between move by a mean of both ends'
    /// displacements, and smooth curves stay smooth.
    void add(Cubic curve, Point endShift)
    {
        if (curve[3] == mStart)
            endShift = mStartShift; // keeps closed outlines closed
        const Point end = curve[3];
        for (int left = mSubdivisions; left > 0; --left) {
            const Cubic part = left > 1 ? takeOff(curve, 1 / static_cast<float>(left)) : curve;
            const Point shift = left > 1 ? nextShift() : endShift;
            mTarget.curveTo(VXRAddPoints(part[1], mShift), VXRAddPoints(part[2], shift),
                VXRAddPoints(left > 1 ? part[3] : end, shift));
            mShift = shift;
        }
        mCurrent = end;
    }

    /// Uniformly distributed in the disc.
    Point nextShift()
    {
        const float radius = mDistance * std::sqrt(nextUnit()) * (1 - 1e-5f);
        Point shift;
        VXROriginRotate(radius, nextUnit() * static_cast<float>(VXR_2PI), &shift);
        return shift;
    }

    /// In [0, 1). The standard distributions differ between libraries.
    float nextUnit() { return static_cast<float>(mRandom() >> 8) * 0x1p-24f; }

    Path& mTarget;
    float mDistance;
    int mSubdivisions;
    std::mt19937 mRandom;
    Point mStart, mCurrent;
    Point mStartShift, mShift; ///< of the sub-path's start and of the current point
};

} // namespace

std::shared_ptr<Path> pathByWobblingByUpToSubdivisions(
    const Path& path, float distance, int subdivisions, std::uint32_t seed)
{
    constexpr int mostSubdivisions = 1024;
    const auto result = path.copy();
    result->removeAllPoints();
    path.visit(Wobbler(*result, distance, std::clamp(subdivisions, 1, mostSubdivisions), seed));
    return result;
}

} // namespace vxr
