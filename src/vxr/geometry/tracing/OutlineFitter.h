#pragma once

#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/geometry/tracing/MaskOutlines.h>

#include <span>

namespace vxr {

/// Smooths outlines along pixel edges into curves.
class OutlineFitter {
public:
    OutlineFitter(double tolerance, Path& target)
        : mTolerance(tolerance)
        , mTarget(target)
    {
    }

    void add(std::span<const PixelCorner> corners);

private:
    void addExactly(std::span<const PixelCorner> corners);
    void findTurns(std::span<const PixelCorner> corners);
    void collectPoints(std::span<const PixelCorner> corners);
    void fitBetweenTurns();
    bool isLine(std::size_t first, std::size_t last) const;

    double mTolerance;
    Path& mTarget;
    std::vector<char> mIsTurn; ///< of each corner of pixels: the outline itself turns there
    std::vector<double> mSharpness;
    std::vector<FitPoint> mPoints;
    std::vector<Cubic> mCurves;
};

} // namespace vxr
