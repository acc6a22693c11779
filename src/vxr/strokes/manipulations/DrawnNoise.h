#pragma once

#include <cmath>
#include <cstdint>

namespace vxr {

/// Numbers that look random and follow from a seed and an index alone.
class DrawnNoise {
public:
    explicit DrawnNoise(std::uint32_t seed)
        : mSeed(seed)
    {
    }

    /// In [0, 1).
    double at(std::uint64_t index) const
    {
        // The finaliser of SplitMix64.
        std::uint64_t z = index * 0x9e3779b97f4a7c15u + (std::uint64_t(mSeed) << 32 | mSeed);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
    }

    /// In [-1, 1], smooth, one random value at every whole number. With a period, value and slope repeat.
    double smoothAt(double x, std::uint64_t period = 0) const
    {
        const double whole = std::floor(x), t = x - whole;
        auto first = static_cast<std::uint64_t>(whole < 0 ? 0 : whole), second = first + 1;
        if (period > 0) {
            first %= period;
            second %= period;
        }
        const double s = t * t * (3 - 2 * t);
        return 2 * (at(first) * (1 - s) + at(second) * s) - 1;
    }

private:
    std::uint32_t mSeed;
};

/// A parameter as it counts.
inline double finiteOrZero(float value) { return std::isfinite(value) ? static_cast<double>(value) : 0; }

inline constexpr double mostDrawnPieces = 30000;

} // namespace vxr
