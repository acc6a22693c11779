#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>

#include <vxr/geometry/curves/PathCorners.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

#include <algorithm>
#include <numbers>

namespace vxr {

namespace {

/// Displaces places of the outline, each by an own shift within the amplitude, and the control points with
/// the ends that they belong to: so a point between is displaced by a mean of both shifts.
class Trembler {
public:
    Trembler(Path& target, double amplitude, std::uint32_t seed)
        : mTarget(target)
        , mAmplitude(amplitude * (1 - 1e-6))
        , mNoise(seed)
    {
    }

    void move(Vec2 p)
    {
        mStart = p;
        mStartShift = mShift = nextShift();
        mTarget.moveTo((p + mShift).point());
    }

    void add(const Cubic& part)
    {
        const Vec2 shift = part.end == mStart ? mStartShift : nextShift();
        mTarget.curveTo(
            (part.control1 + mShift).point(), (part.control2 + shift).point(), (part.end + shift).point());
        mShift = shift;
    }

    void close() { mTarget.close(); }

private:
    Vec2 nextShift()
    {
        const double radius = mAmplitude * std::sqrt(mNoise.at(mIndex)),
                     angle = 2 * std::numbers::pi * mNoise.at(mIndex + 1);
        mIndex += 2;
        return Vec2(std::cos(angle), std::sin(angle)) * radius;
    }

    Path& mTarget;
    double mAmplitude;
    DrawnNoise mNoise;
    std::uint64_t mIndex = 0;
    Vec2 mStart, mStartShift, mShift;
};

} // namespace

VXRPaintedPath VXRWobblyPathManipulation::manipulatedPath(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double width = finiteOrZero(setting.lineWidth);
    const double amplitude = finiteOrZero(mAmplitude) * width, wanted = finiteOrZero(mWavelength) * width;
    if (!(amplitude > 0) || !(wanted > 0))
        return painted;
    auto result = painted.path->copy();
    result->removeAllPoints();
    const auto subPaths = corneredSubPaths(*painted.path);
    double whole = 0;
    for (const CorneredSubPath& sub : subPaths)
        for (const Cubic& c : sub.segments)
            whole += lengthOf(c);
    const double wavelength = std::max(wanted, whole / mostDrawnPieces);
    Trembler trembler(*result, amplitude, mSeed);
    for (const CorneredSubPath& sub : subPaths) {
        trembler.move(sub.segments.front().start);
        for (const Cubic& c : sub.segments) {
            const double pieces = std::max(1.0, std::round(lengthOf(c) / wavelength));
            for (double k = 0; k < pieces; ++k)
                trembler.add(partBetween(c, k / pieces, k + 1 == pieces ? 1 : (k + 1) / pieces));
        }
        if (sub.closed)
            trembler.close();
    }
    return { result, painted.isArea, painted.widthFactor };
}

float VXRWobblyPathManipulation::reachForLineWidth(float lineWidth) const
{
    const bool trembles = finiteOrZero(mWavelength) > 0;
    return trembles ? static_cast<float>(std::max(finiteOrZero(mAmplitude) * finiteOrZero(lineWidth), 0.0))
                    : 0;
}

std::shared_ptr<VXRPathManipulation> VXRWobblyPathManipulation::copyWithZone() const
{
    return std::make_shared<VXRWobblyPathManipulation>(*this);
}

bool VXRWobblyPathManipulation::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXRWobblyPathManipulation*>(&other);
    return same && same->mAmplitude == mAmplitude && same->mWavelength == mWavelength && same->mSeed == mSeed;
}

} // namespace vxr
