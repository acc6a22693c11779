#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vxr {

/// Standard deviations above this are taken as this.
inline constexpr float maxBlurSigma = 9000;

/// Memory that one blur after the other works in.
class BlurMemory {
public:
    /// At least so many values; those of before are lost. Throws `std::bad_alloc`.
    std::uint16_t* take(std::size_t count)
    {
        if (mCount < count || mCount > mostKept) {
            mValues.reset();
            mCount = 0;
            mValues = std::make_unique_for_overwrite<std::uint16_t[]>(count);
            mCount = count;
        }
        return mValues.get();
    }

private:
    static constexpr std::size_t mostKept = 1 << 21; ///< more is given back for the next one

    std::unique_ptr<std::uint16_t[]> mValues;
    std::size_t mCount = 0;
};

/// How far a blur spreads, in whole pixels: floor(3 sigma). Nothing appears beyond it, and whoever blurs
/// pads the mask by it so that nothing is lost. 0, no blur at all, for what is not a positive number.
int blurReach(float sigma);

/// Blurs an 8-bit mask by a Gaussian of standard deviation `sigma` pixels, taking everything outside as
/// 0. `target` has the size of `source` and may be the same memory. Time does not depend on `sigma`.
/// Rectangles come out within 3 levels of the Gaussian, cut off at the reach. A pixel depends on what lies
/// within reach of it, not on where the mask begins.
void blurA8(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, float sigma,
    std::uint8_t* target, std::ptrdiff_t targetStride, BlurMemory&);
/// With memory of its own.
void blurA8(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, float sigma,
    std::uint8_t* target, std::ptrdiff_t targetStride);

} // namespace vxr
