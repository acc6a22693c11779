#pragma once

#include <vxr/geometry/curves/TangentRun.h>

namespace vxr {

/// A sub-path that places are found on by their distance from its start.
class MeasuredRun {
public:
    /// `blend`: how far before and after a corner the direction begins to turn into that beyond it, so that
    /// what is laid along the path leaves no gap on the outer side.
    MeasuredRun(TangentRun run, double blend);

    struct Place {
        Vec2 p;
        Vec2 direction; ///< a unit vector, or zero for a dot
    };

    /// Beyond the ends of an open run the path goes on straight; a closed one goes round.
    Place at(double distance) const;
    double length() const { return mLengths.empty() ? 0 : mLengths.back(); }
    bool isClosed() const { return mRun.closed; }
    /// Distances of the corners that turn by more than a tenth of a radian, ascending.
    const std::vector<double>& corners() const { return mCorners; }

private:
    Vec2 directionWithin(std::size_t segment, double along) const;
    const TangentVertex& vertex(std::size_t i) const { return mRun.vertices[i % mRun.vertices.size()]; }

    TangentRun mRun;
    double mBlend;
    std::vector<double> mLengths; ///< at each vertex, and at the end of the closing segment
    std::vector<double> mCorners;
};

/// The runs of a path, flattened within `tolerance`. What has no length is left out.
std::vector<MeasuredRun> measuredRuns(const Path& path, double tolerance, double blend);

} // namespace vxr
