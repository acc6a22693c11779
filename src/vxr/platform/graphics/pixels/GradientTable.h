#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vxr {

/// A colour at a place along a blend, not premultiplied.
struct GradientStop {
    float position;
    std::array<float, 4> rgba;
};

/// The colours of a blend, premultiplied, at equal steps from 0 to 1. Each is within 1/8 of a level of the
/// linear blend of its stops before rounding, where they don't jump. Immutable; belongs to the blend,
/// whatever transform draws it.
class GradientTable {
public:
    /// Stops ascend, the first at 0 and the last at 1; two at one place are a jump. Beyond an end that is
    /// not extended the blend is transparent.
    GradientTable(std::span<const GradientStop> stops, bool extendStart, bool extendEnd);

    int steps() const { return mSteps; }
    bool extendsStart() const { return mExtendsStart; }
    bool extendsEnd() const { return mExtendsEnd; }
    bool isOpaque() const { return mIsOpaque; } ///< within [0, 1]

    /// The colour of step i at i, from 0 to `steps()`. At -1 stands what lies before 0, at `steps()` + 1 what
    /// lies behind 1, at `steps()` + 2 a transparent pixel.
    const std::uint32_t* colors() const { return mColors.data() + 1; }

private:
    int mSteps;
    bool mExtendsStart, mExtendsEnd, mIsOpaque;
    std::vector<std::uint32_t> mColors;
};

} // namespace vxr
