#pragma once

#include <vxr/filters/FilterOperation.h>

#include <array>
#include <cstdint>

namespace vxr {

class FilterSource;

/// What automatic levels go by. The numbers stand in documents.
enum class VXRAutomaticLevels : int {
    Off = 0,
    Luminance = 1, ///< one pair of points for all colours, which keeps their balance
    PerChannel = 2, ///< a pair for each of red, green and blue, which takes a cast away
};

/// A black and a white point for each of red, green and blue, as encoded sRGB values from 0 to 1.
struct VXR_EXPORT LevelPoints {
    std::array<float, 3> black { 0, 0, 0 }, white { 1, 1, 1 };

    bool isIdentity() const { return *this == LevelPoints {}; }
    /// v' = (v - black) / (white - black) on encoded values.
    FilterOperation operation() const;

    friend bool operator==(const LevelPoints&, const LevelPoints&) = default;
};

/// The numbers of pixels at each of 256 encoded levels of red, green, blue and the luminance of ITU-R BT.709.
/// A pixel counts by its alpha; one that is transparent doesn't.
struct VXR_EXPORT LevelHistogram {
    std::array<std::array<double, 256>, 4> counts {};

    static LevelHistogram ofSource(const FilterSource&);
    /// Black is the lowest level with more than `clipFraction` of the weight at it and below, white the
    /// highest with more than that at it and above. Colours of one level only stay as they are.
    LevelPoints points(VXRAutomaticLevels, float clipFraction) const;
};

} // namespace vxr
