#pragma once

#include <vxr/platform/polygons/ClipOperand.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vxr {

/// Maps coordinates to whole numbers below 2^(bits - 1) in magnitude, and back. The scale is a power of two
/// and the centre lies on the grid, so coordinates on the grid survive the round trip exactly.
class ClipGrid {
public:
    ClipGrid(const ClipBox& bounds, int bits)
    {
        const double half = std::max(bounds.x1 / 2 - bounds.x0 / 2, bounds.y1 / 2 - bounds.y0 / 2);
        int exponent = 0;
        std::frexp(half, &exponent); // 2^(exponent - 1) <= half < 2^exponent
        const int shift = std::clamp(bits - 1 - exponent, -1022, 1022);
        mScale = std::ldexp(1.0, shift);
        mStep = std::ldexp(1.0, -shift);
        mCentreX = std::floor((bounds.x0 / 2 + bounds.x1 / 2) * mScale) * mStep;
        mCentreY = std::floor((bounds.y0 / 2 + bounds.y1 / 2) * mScale) * mStep;
    }

    std::int64_t gridX(const gpc_vertex& v) const { return rounded((v.x - mCentreX) * mScale); }
    std::int64_t gridY(const gpc_vertex& v) const { return rounded((v.y - mCentreY) * mScale); }
    gpc_vertex fromGrid(double x, double y) const { return { x * mStep + mCentreX, y * mStep + mCentreY }; }

private:
    static std::int64_t rounded(double x) { return std::int64_t(x < 0 ? x - 0.5 : x + 0.5); }

    double mScale, mStep, mCentreX, mCentreY;
};

} // namespace vxr
