#pragma once

#include <vxr/geometry/curves/CurveFit.h>

#include <optional>

namespace vxr {

/// Fits one segment to a run of points.
class CurveFitSegment {
public:
    /// `lengths` are those along the points, from the first one.
    CurveFitSegment(double tolerance, bool keepsToLine, std::span<const FitPoint> points,
        std::span<const double> lengths);

    /// From point `first` to point `last`, at their tangents; a zero tangent leaves the direction free.
    /// None when the tolerance can't be kept.
    std::optional<Cubic> fit(std::size_t first, std::size_t last, Vec2 leaving, Vec2 arriving);

private:
    static constexpr std::size_t mostSamples = 20;

    /// A point that has a say in the least squares, with the parameter of the curve's point nearest to it.
    struct Sample {
        Vec2 p;
        double t;
    };

    std::optional<Cubic> solve(Vec2 start, Vec2 end, Vec2 leaving, Vec2 arriving, double length) const;
    double improveParameters(const Cubic& curve);
    bool keepsTolerance(const Cubic& curve, std::size_t last) const;
    bool isNear(const Cubic& curve, double from, double to, Vec2 a, Vec2 b) const;

    double mTolerance;
    double mStrayPerGap; ///< how far beyond the tolerance the curve may leave the line between two points
    std::span<const FitPoint> mPoints;
    std::span<const double> mLengths;
    std::vector<Sample> mSamples;
    std::vector<std::size_t> mIndices; ///< of the samples' points
};

} // namespace vxr
