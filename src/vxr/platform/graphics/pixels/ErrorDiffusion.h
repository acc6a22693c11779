#pragma once

#include <cstdint>

namespace vxr {

/// Reduces an image of four 16-bit channels, all of whose rows are `row` to begin with, to 8 bits by error
/// diffusion with Floyd and Steinberg's weights: 7/16 to the right, 3/16, 5/16 and what is left of the
/// error below. Shares are cut to whole numbers, sums saturate, and what falls beside the image is lost.
/// `output` has `height` rows of `width` pixels without gaps.
void diffuseErrors(const std::uint16_t* row, int width, int height, std::uint8_t* output);

/// The same by the loop that every processor runs.
void diffuseErrorsPlainly(const std::uint16_t* row, int width, int height, std::uint8_t* output);

} // namespace vxr
