#include <vxr/platform/graphics/pixels/Blur.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>

// The blur is separable. Columns are blurred in strips of 64, whose rows stay in the cache through all
// passes, and written transposed; doing that twice blurs both ways and restores the orientation.
// Values are 8.8 fixed point between passes. Sums run in floats, which compilers turn into vector code.

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && defined(__GNUC__) && !defined(__clang__)
#define VXR_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VXR_VECTOR_CLONES
#endif

namespace vxr {

namespace {

using Fixed = std::uint16_t; // 8.8

constexpr int stripWidth = 64;
constexpr float directBelow = 2; // three boxes are a poor Gaussian at small sizes
constexpr int directReachLimit = 6; // floor(3 * directBelow)

/// Extended box: weight `full` within `radius - 1` pixels, `end` at `radius`.
struct Box {
    int radius;
    float full, end;
};

/// How a column is blurred: three boxes, or taps on one side of a symmetric kernel.
struct Kernel {
    bool direct;
    int reach;
    std::array<Box, 3> boxes;
    std::array<float, directReachLimit + 1> taps;
};

/// Variance of the extended box of a radius, with end pixels weighing `end` times an inner one.
double boxVariance(int radius, double end)
{
    const double r = radius - 1, outer = radius;
    const double inner = r * (r + 1) * (2 * r + 1) / 3;
    return (inner + 2 * end * outer * outer) / (2 * r + 1 + 2 * end);
}

/// The radii share out the reach, so that the blur ends exactly there; the weight of the end pixels then
/// gives the boxes together the variance asked for.
std::array<Box, 3> boxesOf(double sigma, int reach)
{
    const int radii[3] = { reach / 3, (reach + 1) / 3, (reach + 2) / 3 };
    double low = 0, high = 1;
    for (int step = 0; step < 50; ++step) {
        const double end = (low + high) / 2;
        const double variance
            = boxVariance(radii[0], end) + boxVariance(radii[1], end) + boxVariance(radii[2], end);
        (variance < sigma * sigma ? low : high) = end;
    }
    std::array<Box, 3> boxes {};
    for (int i = 0; i < 3; ++i) {
        const double full = 1 / (2 * (radii[i] - 1) + 1 + 2 * low);
        boxes[i] = { radii[i], static_cast<float>(full), static_cast<float>(full * low) };
    }
    return boxes;
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

inline __attribute__((always_inline)) void blurByBox(StripRows source, Fixed* target, const Box& box)
{
    alignas(64) float sum[stripWidth] = {};
    const float full = box.full, end = box.end;
    for (int y = 0; y < box.radius - 1 && y < source.count; ++y) {
        const Fixed* row = source[y];
        for (int x = 0; x < stripWidth; ++x)
            sum[x] += static_cast<float>(row[x]);
    }
    for (int y = 0; y < source.count; ++y, target += stripWidth) {
        const Fixed* entering = source[y + box.radius - 1];
        const Fixed* before = source[y - box.radius]; // leaves the sum and is the lower end pixel
        const Fixed* after = source[y + box.radius];
        for (int x = 0; x < stripWidth; ++x) {
            const int left = before[x];
            sum[x] += static_cast<float>(entering[x] - left);
            const float value = full * sum[x] + end * static_cast<float>(left + after[x]);
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

/// Blurs the columns of a strip; the result is in `b`, and `a` is used up.
VXR_VECTOR_CLONES void blurStrip(Fixed* a, Fixed* b, int rows, const Kernel& kernel)
{
    if (kernel.direct) {
        blurDirectly({ a, rows }, b, kernel);
        return;
    }
    blurByBox({ a, rows }, b, kernel.boxes[0]);
    blurByBox({ b, rows }, a, kernel.boxes[1]);
    blurByBox({ a, rows }, b, kernel.boxes[2]);
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
            blurStrip(a + static_cast<std::ptrdiff_t>(begin) * stripWidth, b, end - begin, kernel);
            storeTransposed(b, begin, end, columns, target, targetStride);
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
    std::uint8_t* target, std::ptrdiff_t targetStride)
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
    const auto memory = std::make_unique_for_overwrite<Fixed[]>(area + 2 * strip);
    Fixed* between = memory.get();
    Fixed* a = between + area;
    blurColumns(source, sourceStride, width, height, kernel, between, height, a, a + strip);
    blurColumns(between, height, height, width, kernel, target, targetStride, a, a + strip);
}

} // namespace vxr
