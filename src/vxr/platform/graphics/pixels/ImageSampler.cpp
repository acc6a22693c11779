#include <vxr/platform/graphics/pixels/ImageSampler.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace vxr {

namespace {

constexpr int weightBits = 14; // of the cubic kernels, per axis

using Weights = std::shared_ptr<const WeightTable>;

template <class Kernel> Weights weightsOf(Kernel kernel)
{
    const auto table = std::make_shared<WeightTable>();
    for (int phase = 0; phase < 256; ++phase) {
        auto& weights = table->weights[phase];
        int sum = 0;
        for (int i = 0; i < 4; ++i) {
            const double weight = kernel(std::abs(i - 1 - phase / 256.0));
            weights[i] = std::int16_t(std::lround(weight * (1 << weightBits)));
            sum += weights[i];
        }
        // What rounding has lost goes to the pixel that weighs most.
        weights[phase < 128 ? 1 : 2] = std::int16_t(weights[phase < 128 ? 1 : 2] + (1 << weightBits) - sum);
    }
    return table;
}

double mitchell(double x, double b, double c)
{
    if (x < 1)
        return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + 6 - 2 * b) / 6;
    if (x < 2)
        return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x + 8 * b + 24 * c)
            / 6;
    return 0;
}

const Weights& sharpWeights()
{
    static const auto table = weightsOf([](double x) { return mitchell(x, 0.53, 0.235); });
    return table;
}

/// The cubic B-spline: it averages dither out, and what is dithered again
/// follows the means between.
const Weights& smoothWeights()
{
    static const auto table = weightsOf([](double x) { return mitchell(x, 1, 0); });
    return table;
}

/// Reaches over four pixels at most.
constexpr double widestBox = 3;

/// What a box covers of each pixel. Pictures of one page tend to be reduced alike, and each takes two.
Weights boxWeights(double size)
{
    struct Kept {
        double width = 0;
        Weights weights;
    };
    thread_local std::array<Kept, 16> kept;
    thread_local std::size_t next = 0;
    const double width = std::min(size, widestBox);
    for (const Kept& each : kept)
        if (each.width == width)
            return each.weights;
    const auto made = weightsOf([&](double x) { return std::clamp((width + 1) / 2 - x, 0.0, 1.0) / width; });
    kept[next++ % kept.size()] = { width, made };
    return made;
}

/// Thresholds of an ordered dither, 1 to 127 of 128, or those that round to the
/// nearest. By row and column.
const std::uint8_t* thresholds(bool isDithered, int y)
{
    static constexpr std::uint8_t middle[8] = { 64, 64, 64, 64, 64, 64, 64, 64 };
    static constexpr std::uint8_t ordered[8][8]
        = { { 1, 65, 17, 81, 5, 69, 21, 85 }, { 97, 33, 113, 49, 101, 37, 117, 53 },
              { 25, 89, 9, 73, 29, 93, 13, 77 }, { 121, 57, 105, 41, 125, 61, 109, 45 },
              { 7, 71, 23, 87, 3, 67, 19, 83 }, { 103, 39, 119, 55, 99, 35, 115, 51 },
              { 31, 95, 15, 79, 27, 91, 11, 75 }, { 127, 63, 111, 47, 123, 59, 107, 43 } };
    return isDithered ? ordered[y & 7] : middle;
}

} // namespace

ImageSampler::ImageSampler(const PixelSource& source, const DeviceToImage& map, Sampling sampling)
{
    constexpr double farthestPixel = 1 << 24;
    const double u = map.x0 + (map.xx + map.xy) / 2, v = map.y0 + (map.yx + map.yy) / 2;
    const double most = std::max((std::abs(map.xx) + std::abs(map.xy)) * farthestPixel + std::abs(u),
                            (std::abs(map.yx) + std::abs(map.yy)) * farthestPixel + std::abs(v))
        + 1;
    if (source.width < 1 || source.height < 1 || !(most < 0x1p52))
        return;
    mGrid.source = source;
    mGrid.fractionBits = std::min(32, 61 - std::ilogb(most));
    const auto fixed
        = [&](double value) { return std::int64_t(std::llround(std::ldexp(value, mGrid.fractionBits))); };
    mU = fixed(u);
    mGrid.columnU = fixed(map.xx);
    mRowU = fixed(map.xy);
    mV = fixed(v);
    mGrid.columnV = fixed(map.yx);
    mRowV = fixed(map.yy);
    chooseKind(map, sampling);
}

void ImageSampler::chooseKind(const DeviceToImage& map, Sampling sampling)
{
    const std::int64_t one = std::int64_t(1) << mGrid.fractionBits;
    const bool isUpright = mGrid.columnU == one && mRowV == one && !mRowU && !mGrid.columnV;
    // Pixel centres on pixel centres, with what rounding leaves.
    const auto isCentred = [&](std::int64_t at) {
        const std::int64_t beside = (at & (one - 1)) - one / 2;
        return std::abs(beside) <= one >> 12;
    };
    // Lengths of a device pixel's sides in the image.
    const double side = std::hypot(map.xx, map.yx), otherSide = std::hypot(map.xy, map.yy);
    const double longer = std::max(side, otherSide), shorter = std::min(side, otherSide);
    if (isUpright && isCentred(mU) && isCentred(mV)) {
        mKind = Kind::Copied;
    } else if (sampling == Sampling::Nearest) {
        mKind = Kind::Nearest;
    } else if (sampling == Sampling::Linear) {
        mKind = Kind::Linear;
    } else if (sampling == Sampling::Dithered && longer < 2 && shorter >= 0.5) {
        mKind = Kind::Nearest; // near its own size an image keeps its pixels, and
                               // with them its noise
    } else {
        mIsDithered = sampling == Sampling::Dithered;
        chooseKernel(map, longer > 1 + 1e-4);
    }
}

void ImageSampler::chooseKernel(const DeviceToImage& map, bool isReduced)
{
    const double across = std::abs(map.xx) + std::abs(map.xy), down = std::abs(map.yx) + std::abs(map.yy);
    const auto enlarging = mIsDithered ? smoothWeights() : sharpWeights();
    mOvershoots = !mIsDithered;
    mKind = Kind::Cubic;
    mAcross = isReduced && across > 1 ? boxWeights(across) : enlarging;
    mDown = isReduced && down > 1 ? boxWeights(down) : enlarging;
    if (!isReduced || std::max(across, down) <= widestBox)
        return;
    const auto extent = [](double size) { return std::max<std::int64_t>(256, std::llround(size * 256)); };
    mGrid.boxWidth = extent(across);
    mGrid.boxHeight = extent(down);
    // The loops keep the columns of a box.
    mKind = mGrid.boxWidth > 253 << 8 ? Kind::AverageLarge : Kind::Average;
}

const std::uint32_t* ImageSampler::fetch(int x, int y, std::size_t count, std::uint32_t* memory) const
{
    const std::uint32_t* pixels = sample(x, y, count, memory);
    if (mGrid.source.form != PixelForm::Native)
        spanKernels().toNative(memory, pixels, count, mGrid.source.form == PixelForm::BytesOpaque);
    else if (mKind == Kind::Cubic && mOvershoots)
        spanKernels().limitToAlpha(memory, count);
    else
        return pixels;
    return memory;
}

const std::uint32_t* ImageSampler::sample(int x, int y, std::size_t count, std::uint32_t* memory) const
{
    const std::int64_t u = mU + mGrid.columnU * x + mRowU * y, v = mV + mGrid.columnV * x + mRowV * y;
    const std::int64_t half = mGrid.fractionBits ? std::int64_t(1) << (mGrid.fractionBits - 1) : 0;
    switch (mKind) {
    case Kind::Nothing:
        std::fill_n(memory, count, 0u);
        break;
    case Kind::Copied: {
        const std::int64_t column = u >> mGrid.fractionBits, row = v >> mGrid.fractionBits;
        const PixelSource& source = mGrid.source;
        if (column >= 0 && row >= 0 && row < source.height && column + std::int64_t(count) <= source.width)
            return source.pixels + source.stride * std::ptrdiff_t(row) + column;
        copy(x, y, count, memory);
        break;
    }
    case Kind::Nearest:
        nearest(x, y, count, memory);
        break;
    case Kind::Linear:
        spanKernels().linear(mGrid, u - half, v - half, count, memory);
        break;
    case Kind::Cubic:
        spanKernels().cubic(mGrid, mAcross->weights, mDown->weights, thresholds(mIsDithered, y), u - half,
            v - half, x, count, memory);
        break;
    case Kind::Average:
        spanKernels().average(mGrid, thresholds(mIsDithered, y), u, v, x, count, memory);
        break;
    case Kind::AverageLarge:
        averageLarge(x, y, count, memory);
        break;
    }
    return memory;
}

void ImageSampler::copy(int x, int y, std::size_t count, std::uint32_t* out) const
{
    const std::int64_t v
        = std::clamp<std::int64_t>((mV >> mGrid.fractionBits) + y, 0, mGrid.source.height - 1);
    const std::uint32_t* row = mGrid.source.pixels + mGrid.source.stride * std::ptrdiff_t(v);
    const std::int64_t u = (mU >> mGrid.fractionBits) + x, end = u + std::int64_t(count);
    const std::int64_t first = std::clamp<std::int64_t>(0, u, end);
    const std::int64_t last = std::clamp<std::int64_t>(mGrid.source.width, first, end);
    std::fill_n(out, first - u, row[0]);
    if (last > first)
        std::memcpy(out + (first - u), row + first, std::size_t(last - first) * 4);
    std::fill_n(out + (last - u), end - last, row[mGrid.source.width - 1]);
}

void ImageSampler::nearest(int x, int y, std::size_t count, std::uint32_t* out) const
{
    std::int64_t u = mU + mGrid.columnU * x + mRowU * y, v = mV + mGrid.columnV * x + mRowV * y;
    for (std::size_t i = 0; i < count; ++i, u += mGrid.columnU, v += mGrid.columnV) {
        const std::int64_t column
            = std::clamp<std::int64_t>(u >> mGrid.fractionBits, 0, mGrid.source.width - 1);
        const std::int64_t row
            = std::clamp<std::int64_t>(v >> mGrid.fractionBits, 0, mGrid.source.height - 1);
        out[i] = mGrid.source.pixels[mGrid.source.stride * std::ptrdiff_t(row) + column];
    }
}

// Every device pixel averages a box of the image, as wide and high as the
// pixel's own shape there: as the loops do, for boxes of any size.
void ImageSampler::averageLarge(int x, int y, std::size_t count, std::uint32_t* out) const
{
    const PixelSource& source = mGrid.source;
    std::int64_t u = mU + mGrid.columnU * x + mRowU * y, v = mV + mGrid.columnV * x + mRowV * y;
    for (std::size_t i = 0; i < count; ++i, u += mGrid.columnU, v += mGrid.columnV) {
        const PixelStretch columns = stretchOf(mGrid, u, mGrid.boxWidth, source.width);
        const PixelStretch rows = stretchOf(mGrid, v, mGrid.boxHeight, source.height);
        std::uint64_t sums[4] = {};
        for (std::int64_t j = rows.first; j < rows.last; ++j) {
            const std::uint32_t* pixels = source.pixels + source.stride * std::ptrdiff_t(j);
            std::uint32_t rowSums[4] = {};
            for (std::int64_t k = columns.first; k < columns.last; ++k)
                for (int channel = 0; channel < 4; ++channel)
                    rowSums[channel] += (pixels[k] >> 8 * channel & 0xff) * std::uint32_t(columns.weight(k));
            for (int channel = 0; channel < 4; ++channel)
                sums[channel] += std::uint64_t(rowSums[channel]) * std::uint32_t(rows.weight(j));
        }
        const double area = double(columns.total) * double(rows.total);
        const double add = thresholds(mIsDithered, y)[(x + int(i)) & 7] / 128.0;
        out[i] = 0;
        for (int channel = 0; channel < 4; ++channel)
            out[i] |= std::uint32_t(double(sums[channel]) / area + add) << 8 * channel;
    }
}

} // namespace vxr
