#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Lets the outline tremble as a hand does: displaced by up to the amplitude, one way or the other about once
/// in a wavelength. What was smooth stays smooth, what was closed stays closed, what coincided with a
/// sub-path's start goes on doing so.
class VXR_EXPORT VXRWobblyPathManipulation final : public VXRPathManipulation {
public:
    explicit VXRWobblyPathManipulation(float amplitude = 0.5f, float wavelength = 8, std::uint32_t seed = 1)
        : mAmplitude(amplitude)
        , mWavelength(wavelength)
        , mSeed(seed)
    {
    }

    float amplitude() const { return mAmplitude; } ///< in line widths
    void setAmplitude(float amplitude) { mAmplitude = amplitude; }
    float wavelength() const { return mWavelength; } ///< in line widths
    void setWavelength(float wavelength) { mWavelength = wavelength; }
    std::uint32_t seed() const { return mSeed; }
    void setSeed(std::uint32_t seed) { mSeed = seed; }

    VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathManipulation> copyWithZone() const override;
    bool isEqual(const Object&) const override;

private:
    float mAmplitude, mWavelength;
    std::uint32_t mSeed;
};

} // namespace vxr
