#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Turns a line into an area whose width swells and shrinks along it, with round joins and ends.
class VXR_EXPORT VXRVaryWidthPathManipulation final : public VXRPathManipulation {
public:
    explicit VXRVaryWidthPathManipulation(float amount = 0.5f, float wavelength = 10, std::uint32_t seed = 1)
        : mAmount(amount)
        , mWavelength(wavelength)
        , mSeed(seed)
    {
    }

    float amount() const { return mAmount; } ///< by which part of itself the width varies; 0 to 1
    void setAmount(float amount) { mAmount = amount; }
    float wavelength() const { return mWavelength; } ///< in line widths
    void setWavelength(float wavelength) { mWavelength = wavelength; }
    std::uint32_t seed() const { return mSeed; }
    void setSeed(std::uint32_t seed) { mSeed = seed; }

    VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathManipulation> copyWithZone() const override;
    bool isEqual(const Object&) const override;

private:
    double amountThatCounts() const;

    float mAmount, mWavelength;
    std::uint32_t mSeed;
};

} // namespace vxr
