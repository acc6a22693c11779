#include <vxr/platform/graphics/pixels/Blur.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

// The blur is separable. Columns are blurred in strips of 64, whose rows stay in the cache through all
// passes, and written transposed; doing that twice blurs both ways and restores the orientation.
// Values are 8.8 fixed point between passes. Sums are whole numbers: what a pixel becomes doesn't depend on
// where the mask begins.
//
// A wide Gaussian is two passes, each a mixture of two boxes, which stays within 0.0017 of the Gaussian's
// integral (three boxes: 0.01). The radii, in standard deviations, and the first mixture were found by
// search; the second mixture gives both passes together the variance of the best pair.

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && defined(__GNUC__) && !defined(__clang__)
#define VXR_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VXR_VECTOR_CLONES
#endif

namespace vxr {

namespace {

using Fixed = std::uint16_t; // 8.8

constexpr int stripWidth = 64;
constexpr float directBelow = 2; // boxes of few pixels are a poor Gaussian
constexpr int directReachLimit = 6; // floor(3 * directBelow)

/// A box that covers its end pixels in part: those `radius` away weigh `end` where inner ones weigh 1.
struct Box {
    int radius;
    float end;

    explicit Box(double halfWidth = 0.5)
        : radius(int(std::floor(halfWidth + 0.5)))
        , end(float(halfWidth + 0.5 - radius))
    {
        if (end == 0) { // whole pixels only; the end pixels still are there
            --radius;
            end = 1;
        }
    }

    double weight() const { return 2 * radius - 1 + 2 * double(end); }
    double variance() const
    {
        const double r = radius - 1, outer = radius;
        return (r * (r + 1) * (2 * r + 1) / 3 + 2 * double(end) * outer * outer) / weight();
    }
};

/// A wide and a narrow box, weighted: what a pixel of each counts.
struct BoxPair {
    Box wide, narrow;
    float wideFactor, narrowFactor;

    BoxPair() = default;
    BoxPair(const Box& w, const Box& n, double share)
        : wide(w)
        , narrow(n)
        , wideFactor(float(share / w.weight()))
        , narrowFactor(float((1 - share) / n.weight()))
    {
    }
};

/// How a column is blurred: two pairs of boxes, or taps on one side of a symmetric kernel.
struct Kernel {
    bool direct;
    int reach;
    std::array<BoxPair, 2> boxes;
    std::array<float, directReachLimit + 1> taps;
};

std::array<BoxPair, 2> boxesOf(double sigma, int reach)
{
    double first = 1.204 * sigma, second = 1.796 * sigma;
    // The blur ends at its reach: the box that has less in its last pixel gives it up.
    while (Box(first).radius + Box(second).radius > reach) {
        double& shorter = Box(first).end < Box(second).end ? first : second;
        shorter = Box(shorter).radius - 0.5;
    }
    const Box wide1(first), wide2(second), narrow1(0.328 * sigma), narrow2(0.537 * sigma);
    constexpr double share1 = 0.831, varianceShare = 0.9943;
    const double variance1 = share1 * wide1.variance() + (1 - share1) * narrow1.variance();
    const double wanted = varianceShare * sigma * sigma - variance1;
    const double share2 = (wanted - narrow2.variance()) / (wide2.variance() - narrow2.variance());
    return { BoxPair(wide1, narrow1, share1), BoxPair(wide2, narrow2, std::clamp(share2, 0.0, 1.0)) };
}

/// The Gaussian's share of each pixel, cut off at the reach.
std::array<float, directReachLimit + 1> tapsOf(double sigma, int reach)
{
    std::array<double, directReachLimit + 1> share {};
    double sum = 0;
    for (int i = 0; i <= reach; ++i) {
        const double unit = sigma * std::sqrt(2.0);
        share[i] = std::erf((i + 0.5) / unit) - std::erf((i - 0.5) / unit);
        sum += i == 0 ? share[i] : 2 * share[i];
    }
    std::array<float, directReachLimit + 1> taps {};
    for (int i = 0; i <= reach; ++i)
        taps[i] = static_cast<float>(share[i] / sum);
    return taps;
}

Kernel kernelOf(float sigma, int reach)
{
    Kernel kernel {};
    kernel.direct = sigma < directBelow;
    kernel.reach = reach;
    if (kernel.direct)
        kernel.taps = tapsOf(sigma, reach);
    else
        kernel.boxes = boxesOf(sigma, reach);
    return kernel;
}

alignas(64) constexpr Fixed zeroRow[stripWidth] = {};

/// Rows of a strip, zero beyond both ends.
struct StripRows {
    const Fixed* first;
    int count;

    const Fixed* operator[](int y) const
    {
        return y >= 0 && y < count ? first + static_cast<std::ptrdiff_t>(y) * stripWidth : zeroRow;
    }
};

inline __attribute__((always_inline)) void blurByBoxes(StripRows source, Fixed* target, const BoxPair& boxes)
{
    const int wide = boxes.wide.radius, narrow = boxes.narrow.radius;
    alignas(64) std::int32_t wideSum[stripWidth] = {}, narrowSum[stripWidth] = {};
    for (int y = 0; y < wide - 1 && y < source.count; ++y) {
        const Fixed* row = source[y];
        for (int x = 0; x < stripWidth; ++x)
            wideSum[x] += row[x];
        if (y >= narrow - 1)
            continue;
        for (int x = 0; x < stripWidth; ++x)
            narrowSum[x] += row[x];
    }
    const float factor = boxes.wideFactor, endFactor = factor * boxes.wide.end;
    const float narrowFactor = boxes.narrowFactor, narrowEndFactor = narrowFactor * boxes.narrow.end;
    for (int y = 0; y < source.count; ++y, target += stripWidth) {
        // What leaves a sum is its lower end pixel from now on.
        const Fixed* entering = source[y + wide - 1];
        const Fixed* before = source[y - wide];
        const Fixed* after = source[y + wide];
        const Fixed* narrowEntering = source[y + narrow - 1];
        const Fixed* narrowBefore = source[y - narrow];
        const Fixed* narrowAfter = source[y + narrow];
        for (int x = 0; x < stripWidth; ++x) {
            wideSum[x] += entering[x] - before[x];
            narrowSum[x] += narrowEntering[x] - narrowBefore[x];
            const float value = factor * static_cast<float>(wideSum[x])
                + endFactor * static_cast<float>(before[x] + after[x])
                + narrowFactor * static_cast<float>(narrowSum[x])
                + narrowEndFactor * static_cast<float>(narrowBefore[x] + narrowAfter[x]);
            target[x] = static_cast<Fixed>(static_cast<int>(value + 0.5f));
        }
    }
}

inline __attribute__((always_inline)) void blurDirectly(StripRows source, Fixed* target, const Kernel& kernel)
{
    alignas(64) float sum[stripWidth];
    for (int y = 0; y < source.count; ++y, target += stripWidth) {
        const Fixed* middle = source[y];
        for (int x = 0; x < stripWidth; ++x)
            sum[x] = kernel.taps[0] * static_cast<float>(middle[x]) + 0.5f;
        for (int i = 1; i <= kernel.reach; ++i) {
            const Fixed* before = source[y - i];
            const Fixed* after = source[y + i];
            const float tap = kernel.taps[i];
            for (int x = 0; x < stripWidth; ++x)
                sum[x] += tap * static_cast<float>(before[x] + after[x]);
        }
        for (int x = 0; x < stripWidth; ++x)
            target[x] = static_cast<Fixed>(static_cast<int>(sum[x]));
    }
}

/// Blurs the columns of a strip in `a`; both are used up. Returns the one that holds the result.
VXR_VECTOR_CLONES Fixed* blurStrip(Fixed* a, Fixed* b, int rows, const Kernel& kernel)
{
    if (kernel.direct) {
        blurDirectly({ a, rows }, b, kernel);
        return b;
    }
    blurByBoxes({ a, rows }, b, kernel.boxes[0]);
    blurByBoxes({ b, rows }, a, kernel.boxes[1]);
    return a;
}

/// 8.8 in and out of the strips.
inline Fixed toFixed(std::uint8_t value) { return static_cast<Fixed>(value << 8); }
inline Fixed toFixed(Fixed value) { return value; }
inline void fromFixed(Fixed value, std::uint8_t& target)
{
    target = static_cast<std::uint8_t>((value + 128) >> 8);
}
inline void fromFixed(Fixed value, Fixed& target) { target = value; }

/// Copies up to 64 columns into the strip, zero behind them, and answers the rows from the first to the
/// last that hold anything.
template <class Source>
std::pair<int, int> loadStrip(
    const Source* source, std::ptrdiff_t stride, int columns, int rows, Fixed* strip)
{
    int first = rows, last = -1;
    for (int y = 0; y < rows; ++y, source += stride, strip += stripWidth) {
        unsigned any = 0;
        if (columns == stripWidth) {
            for (int x = 0; x < stripWidth; ++x) {
                strip[x] = toFixed(source[x]);
                any |= strip[x];
            }
        } else {
            std::fill(strip, strip + stripWidth, Fixed { 0 });
            for (int x = 0; x < columns; ++x) {
                strip[x] = toFixed(source[x]);
                any |= strip[x];
            }
        }
        if (any) {
            first = std::min(first, y);
            last = y;
        }
    }
    return { first, last };
}

/// Writes rows [begin, end) of a strip as columns of `target`, a block of rows at a time so that the
/// lines written to stay in the cache.
template <class Target>
void storeTransposed(
    const Fixed* strip, int begin, int end, int columns, Target* target, std::ptrdiff_t stride)
{
    constexpr int block = 32;
    for (int y0 = begin; y0 < end; y0 += block) {
        const int y1 = std::min(end, y0 + block);
        for (int x = 0; x < columns; ++x) {
            Target* out = target + x * stride;
            for (int y = y0; y < y1; ++y)
                fromFixed(strip[static_cast<std::ptrdiff_t>(y - begin) * stripWidth + x], out[y]);
        }
    }
}

/// Blurs the columns of `source` into the rows of `target`.
template <class Source, class Target>
void blurColumns(const Source* source, std::ptrdiff_t sourceStride, int width, int height,
    const Kernel& kernel, Target* target, std::ptrdiff_t targetStride, Fixed* a, Fixed* b)
{
    for (int x = 0; x < width; x += stripWidth, target += stripWidth * targetStride) {
        const int columns = std::min(stripWidth, width - x);
        const auto [first, last] = loadStrip(source + x, sourceStride, columns, height, a);
        // Only rows within reach of something can become other than 0.
        const int begin = last < 0 ? 0 : std::max(0, first - kernel.reach);
        const int end = last < 0 ? 0 : std::min(height, last + kernel.reach + 1);
        if (begin < end) {
            const Fixed* blurred
                = blurStrip(a + static_cast<std::ptrdiff_t>(begin) * stripWidth, b, end - begin, kernel);
            storeTransposed(blurred, begin, end, columns, target, targetStride);
        }
        for (int column = 0; column < columns; ++column) {
            Target* out = target + column * targetStride;
            std::fill(out, out + begin, Target { 0 });
            std::fill(out + end, out + height, Target { 0 });
        }
    }
}

} // namespace

int blurReach(float sigma) { return sigma > 0 ? static_cast<int>(3 * std::min(sigma, maxBlurSigma)) : 0; }

void blurA8(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, float sigma,
    std::uint8_t* target, std::ptrdiff_t targetStride, BlurMemory& memory)
{
    if (width < 1 || height < 1)
        return;
    const int reach = blurReach(sigma);
    if (reach == 0) {
        for (int y = 0; y < height; ++y)
            std::memmove(
                target + y * targetStride, source + y * sourceStride, static_cast<std::size_t>(width));
        return;
    }
    const Kernel kernel = kernelOf(std::min(sigma, maxBlurSigma), reach);
    const std::size_t area = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const std::size_t strip = static_cast<std::size_t>(std::max(width, height)) * stripWidth;
    Fixed* between = memory.take(area + 2 * strip);
    Fixed* a = between + area;
    blurColumns(source, sourceStride, width, height, kernel, between, height, a, a + strip);
    blurColumns(between, height, height, width, kernel, target, targetStride, a, a + strip);
}

void blurA8(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, float sigma,
    std::uint8_t* target, std::ptrdiff_t targetStride)
{
    BlurMemory memory;
    blurA8(source, sourceStride, width, height, sigma, target, targetStride, memory);
}

} // namespace vxr
