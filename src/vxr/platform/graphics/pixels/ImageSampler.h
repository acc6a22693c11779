#pragma once

#include <vxr/platform/graphics/pixels/ImageGrid.h>

#include <memory>

namespace vxr {

/// Maps places on the device (pixel (x, y) reaches from there to (x + 1, y +
/// 1), rows downwards) to places in an image's pixels, in double precision.
struct DeviceToImage {
    double xx = 1, xy = 0, x0 = 0; ///< image x = xx x + xy y + x0
    double yx = 0, yy = 1, y0 = 0; ///< image y = yx x + yy y + y0
};

enum class Sampling {
    Nearest,
    Linear, ///< the nearest four pixels
    Best, ///< bicubic when enlarged, the average of all pixels below the device's
          ///< when reduced
    Dithered, ///< for images whose noise carries their means: as the best,
              ///< dithered again
};

struct WeightTable {
    CubicWeights weights;
};

/// Samples an image at the centres of device pixels. A pixel's colour depends
/// on its row and column alone, whatever span it is asked in. Beyond its edges
/// the image goes on with its outermost pixels. Columns and rows lie within
/// 2^24 of 0. The source must outlive the sampler.
///
/// The bicubic kernel is Mitchell and Netravali's with B = 0.53, C = 0.235: it
/// keeps linear ramps, and edges overshoot by less than 2 %.
class ImageSampler {
public:
    ImageSampler(const PixelSource&, const DeviceToImage&, Sampling);

    /// Whether there is nothing to sample: an empty image, or a map that is not
    /// finite.
    bool isEmpty() const { return mKind == Kind::Nothing; }

    /// `count` pixels from (x, y) on: `memory`, filled, or the image's own pixels
    /// where it lies on whole pixels of the device.
    const std::uint32_t* fetch(int x, int y, std::size_t count, std::uint32_t* memory) const;

private:
    enum class Kind { Nothing, Copied, Nearest, Linear, Cubic, Average, AverageLarge };

    void chooseKind(const DeviceToImage&, Sampling);
    void chooseKernel(const DeviceToImage&, bool isReduced);
    const std::uint32_t* sample(int x, int y, std::size_t count, std::uint32_t* memory) const;
    void copy(int x, int y, std::size_t count, std::uint32_t* out) const;
    void nearest(int x, int y, std::size_t count, std::uint32_t* out) const;
    void averageLarge(int x, int y, std::size_t count, std::uint32_t* out) const;

    ImageGrid mGrid;
    Kind mKind = Kind::Nothing;
    bool mIsDithered = false;
    bool mOvershoots = false; ///< the kernel has negative weights
    std::shared_ptr<const WeightTable> mAcross, mDown;

    // Places in the image in fixed point: exact sums of a start and whole columns
    // and rows.
    std::int64_t mU = 0, mV = 0, mRowU = 0, mRowV = 0;
};

} // namespace vxr
