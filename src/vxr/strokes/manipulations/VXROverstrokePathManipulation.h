#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Lets lines run on past the corners of the outline, each by a different part of the length, as in a
/// draughtsman's sketch. What lies between two corners becomes a line of its own.
class VXR_EXPORT VXROverstrokePathManipulation final : public VXRPathManipulation {
public:
    explicit VXROverstrokePathManipulation(float overshoot = 3, std::uint32_t seed = 1)
        : mOvershoot(overshoot)
        , mSeed(seed)
    {
    }

    float overshoot() const { return mOvershoot; } ///< in line widths, at most; lines run on by half at least
    void setOvershoot(float overshoot) { mOvershoot = overshoot; }
    std::uint32_t seed() const { return mSeed; }
    void setSeed(std::uint32_t seed) { mSeed = seed; }

    VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathManipulation> copyWithZone() const override;
    bool isEqual(const Object&) const override;

private:
    float mOvershoot;
    std::uint32_t mSeed;
};

} // namespace vxr
