#pragma once

#include <cstddef>
#include <cstdint>

namespace vxr {

/// Standard deviations above this are taken as this.
inline constexpr float maxBlurSigma = 9000;

/// How far a blur spreads, in whole pixels: floor(3 sigma). Nothing appears beyond it, and whoever blurs
/// pads the mask by it so that nothing is lost. 0, no blur at all, for what is not a positive number.
int blurReach(float sigma);

/// Blurs an 8-bit mask by a Gaussian of standard deviation `sigma` pixels, taking everything outside as
/// 0. `target` has the size of `source` and may be the same memory. Time does not depend on `sigma`.
/// Rectangles come out within 3 levels of the Gaussian, cut off at the reach. A pixel depends on what lies
/// within reach of it, not on where the mask begins.
void blurA8(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, float sigma,
    std::uint8_t* target, std::ptrdiff_t targetStride);

} // namespace vxr
