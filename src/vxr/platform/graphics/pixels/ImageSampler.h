#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {

/// Premultiplied ARGB32 pixels, top row first.
struct PixelSource {
    const std::uint32_t* pixels;
    std::ptrdiff_t stride; ///< in pixels
    int width, height;
};

/// Maps places on the device (pixel (x, y) reaches from there to (x + 1, y + 1), rows downwards) to places
/// in an image's pixels, in double precision.
struct DeviceToImage {
    double xx = 1, xy = 0, x0 = 0; ///< image x = xx x + xy y + x0
    double yx = 0, yy = 1, y0 = 0; ///< image y = yx x + yy y + y0
};

enum class Sampling {
    Nearest,
    Linear, ///< the nearest four pixels
    Best, ///< bicubic when enlarged, the average of all pixels below the device's when reduced
    Dithered, ///< for images whose noise carries their means: as the best, dithered again
};

/// Samples an image at the centres of device pixels. A pixel's colour depends on its row and column alone,
/// whatever span it is asked in. Beyond its edges the image goes on with its outermost pixels. Columns and
/// rows lie within 2^24 of 0. The source must outlive the sampler.
///
/// The bicubic kernel is Mitchell and Netravali's with B = 0.53, C = 0.235: it keeps linear ramps, and edges
/// overshoot by less than 2 %.
class ImageSampler {
public:
    ImageSampler(const PixelSource&, const DeviceToImage&, Sampling);

    /// Whether there is nothing to sample: an empty image, or a map that is not finite.
    bool isEmpty() const { return mKind == Kind::Nothing; }

    /// `count` pixels from (x, y) on: `memory`, filled, or the image's own pixels where it lies on whole
    /// pixels of the device.
    const std::uint32_t* fetch(int x, int y, std::size_t count, std::uint32_t* memory) const;

private:
    enum class Kind { Nothing, Copied, Nearest, Linear, Cubic, Average };

    void chooseKind(const DeviceToImage&, Sampling);
    void copy(int x, int y, std::size_t count, std::uint32_t* out) const;
    void nearest(int x, int y, std::size_t count, std::uint32_t* out) const;
    void linear(int x, int y, std::size_t count, std::uint32_t* out) const;
    void cubic(int x, int y, std::size_t count, std::uint32_t* out) const;
    void average(int x, int y, std::size_t count, std::uint32_t* out) const;
    std::size_t averageUpright(int x, int y, std::size_t count, std::uint32_t* out) const;

    /// A stretch of an axis, in part over its outermost pixels. Weights are 256ths.
    struct Stretch {
        std::int64_t first, last; ///< pixels, half open
        std::int64_t total; ///< of all weights
        int firstWeight, lastWeight;

        Stretch(std::int64_t begin, std::int64_t end, int count);
        int weight(std::int64_t i) const
        {
            return i == first ? firstWeight : i == last - 1 ? lastWeight : 256;
        }
    };
    Stretch stretch(std::int64_t middle, std::int64_t size, int count) const;

    PixelSource mSource;
    Kind mKind = Kind::Nothing;
    bool mIsDithered = false;

    // Places in the image in fixed point, exact sums of a start and whole columns and rows.
    int mFractionBits = 0;
    std::int64_t mU = 0, mColumnU = 0, mRowU = 0, mV = 0, mColumnV = 0, mRowV = 0;

    using CubicWeights = std::array<std::array<std::int16_t, 4>, 256>; ///< of each 1/256 of a pixel
    const CubicWeights* mWeights = nullptr;

    std::int64_t mWidth = 0, mHeight = 0; ///< what is averaged, in 1/256 of the image's pixels
};

} // namespace vxr
