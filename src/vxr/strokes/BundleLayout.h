#pragma once

#include <vxr/geometry/curves/MeasuredRun.h>
#include <vxr/strokes/VXRSmartStroke.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>
#include <vxr/strokes/smart/VXRStrokeBundle.h>

namespace vxr {

/// Lays the pieces of a bundle along paths, and gathers their parts by colour.
class BundleLayout {
public:
    BundleLayout(const VXRStrokeBundle& bundle, double width, std::uint32_t seed)
        : mBundle(bundle)
        , mWidth(width)
        , mNoise(seed)
    {
    }

    void layAlong(const Path& outline);
    std::vector<VXRSmartStroke::Layer> takeLayers();

private:
    void layAlong(const MeasuredRun& run, double longestBody);
    void layBodies(const MeasuredRun& run, double from, double to, double longestBody);
    void lay(const VXRStrokeBundle::Piece& piece, const MeasuredRun& run, double start, double length,
        bool turned);
    Path& layer(std::size_t index, const VXRStrokeBundle::Part& part);

    const VXRStrokeBundle& mBundle;
    double mWidth;
    DrawnNoise mNoise;
    std::uint64_t mDraws = 0; ///< of the noise
    std::size_t mElements = 0;

    /// Parts lie on one another in the order in which pieces list them.
    struct Gathered {
        std::size_t index;
        VXRSmartStroke::Layer layer;
    };
    std::vector<Gathered> mGathered;
};

} // namespace vxr
