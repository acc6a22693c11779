#include <vxr/platform/graphics/pixels/ImageSampler.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vxr {

namespace {

constexpr int weightBits = 14; // of the cubic kernels, per axis

template <class Kernel> std::array<std::array<std::int16_t, 4>, 256> weightsOf(Kernel kernel)
{
    std::array<std::array<std::int16_t, 4>, 256> table {};
    for (int phase = 0; phase < 256; ++phase) {
        auto& weights = table[std::size_t(phase)];
        int sum = 0;
        for (int i = 0; i < 4; ++i) {
            const double weight = kernel(std::abs(i - 1 - phase / 256.0));
            weights[std::size_t(i)] = std::int16_t(std::lround(weight * (1 << weightBits)));
            sum += weights[std::size_t(i)];
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

const auto& sharpWeights()
{
    static const auto weights = weightsOf([](double x) { return mitchell(x, 0.53, 0.235); });
    return weights;
}

/// The cubic B-spline: it averages dither out, and what is dithered again follows the means between.
const auto& smoothWeights()
{
    static const auto weights = weightsOf([](double x) { return mitchell(x, 1, 0); });
    return weights;
}

/// Thresholds of an ordered dither, 1 to 127 of 128.
int threshold(int x, int y)
{
    static constexpr std::uint8_t order[8][8]
        = { { 0, 32, 8, 40, 2, 34, 10, 42 }, { 48, 16, 56, 24, 50, 18, 58, 26 },
              { 12, 44, 4, 36, 14, 46, 6, 38 }, { 60, 28, 52, 20, 62, 30, 54, 22 },
              { 3, 35, 11, 43, 1, 33, 9, 41 }, { 51, 19, 59, 27, 49, 17, 57, 25 },
              { 15, 47, 7, 39, 13, 45, 5, 37 }, { 63, 31, 55, 23, 61, 29, 53, 21 } };
    return 2 * order[y & 7][x & 7] + 1;
}

constexpr int middleThreshold = 64; // rounds to the nearest

/// The pixels around a place, outermost ones repeated.
template <int size> struct Neighbours {
    std::uint32_t rows[size][size];

    Neighbours(const PixelSource& source, std::int64_t x, std::int64_t y)
    {
        for (int j = 0; j < size; ++j) {
            const std::int64_t row = std::clamp<std::int64_t>(y + j, 0, source.height - 1);
            const std::uint32_t* pixels = source.pixels + source.stride * std::ptrdiff_t(row);
            for (int i = 0; i < size; ++i)
                rows[j][i] = pixels[std::clamp<std::int64_t>(x + i, 0, source.width - 1)];
        }
    }
};

/// Whether `size` pixels from `at` on lie within `count`.
bool isWithin(std::int64_t at, int size, int count)
{
    return std::uint64_t(at) <= std::uint64_t(std::int64_t(count) - size) && count >= size;
}

#if defined(__SSE2__)

/// Two pixels over two, with weights of 128ths for the right and the lower ones.
std::uint32_t mixFour(const std::uint32_t* upper, const std::uint32_t* lower, int right, int below)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i top = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(upper));
    const __m128i bottom = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(lower));
    const __m128i column
        = _mm_add_epi16(_mm_mullo_epi16(_mm_unpacklo_epi8(top, zero), _mm_set1_epi16(short(128 - below))),
            _mm_mullo_epi16(_mm_unpacklo_epi8(bottom, zero), _mm_set1_epi16(short(below))));
    const __m128i pairs = _mm_unpacklo_epi16(column, _mm_srli_si128(column, 8));
    const __m128i sum = _mm_madd_epi16(pairs, _mm_set1_epi32(right << 16 | (128 - right)));
    const __m128i words = _mm_srli_epi32(_mm_add_epi32(sum, _mm_set1_epi32(1 << 13)), 14);
    const __m128i packed = _mm_packs_epi32(words, words);
    return std::uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(packed, packed)));
}

__m128i pairOf(std::int16_t first, std::int16_t second)
{
    return _mm_set1_epi32(int(std::uint32_t(std::uint16_t(second)) << 16 | std::uint16_t(first)));
}

/// Four rows of four pixels. `offset`, of 128ths of a level, is added before what follows is cut off.
std::uint32_t mixSixteen(
    const std::uint32_t* const* rows, const std::int16_t* across, const std::int16_t* down, int offset)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i sums[4] = { zero, zero, zero, zero }; // a pixel each
    for (int pair = 0; pair < 4; pair += 2) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[pair]));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[pair + 1]));
        const __m128i low = _mm_unpacklo_epi8(first, second), high = _mm_unpackhi_epi8(first, second);
        const __m128i weights = pairOf(down[pair], down[pair + 1]);
        sums[0] = _mm_add_epi32(sums[0], _mm_madd_epi16(_mm_unpacklo_epi8(low, zero), weights));
        sums[1] = _mm_add_epi32(sums[1], _mm_madd_epi16(_mm_unpackhi_epi8(low, zero), weights));
        sums[2] = _mm_add_epi32(sums[2], _mm_madd_epi16(_mm_unpacklo_epi8(high, zero), weights));
        sums[3] = _mm_add_epi32(sums[3], _mm_madd_epi16(_mm_unpackhi_epi8(high, zero), weights));
    }
    const __m128i half = _mm_set1_epi32(1 << 7); // 6 fraction bits remain
    for (__m128i& sum : sums)
        sum = _mm_srai_epi32(_mm_add_epi32(sum, half), 8);
    const __m128i left = _mm_packs_epi32(sums[0], sums[1]), right = _mm_packs_epi32(sums[2], sums[3]);
    const __m128i leftPairs = _mm_unpacklo_epi16(left, _mm_srli_si128(left, 8));
    const __m128i rightPairs = _mm_unpacklo_epi16(right, _mm_srli_si128(right, 8));
    __m128i sum = _mm_add_epi32(_mm_madd_epi16(leftPairs, pairOf(across[0], across[1])),
        _mm_madd_epi16(rightPairs, pairOf(across[2], across[3])));
    sum = _mm_srai_epi32(_mm_add_epi32(sum, _mm_set1_epi32(offset << 13)), 20);
    const __m128i words = _mm_packs_epi32(sum, sum);
    const __m128i bytes = _mm_packus_epi16(words, words);
    // Colours that overshoot don't exceed their alpha.
    const __m128i alpha = _mm_set1_epi8(char(std::uint32_t(_mm_cvtsi128_si32(bytes)) >> 24));
    return std::uint32_t(_mm_cvtsi128_si32(_mm_min_epu8(bytes, alpha)));
}

#else

int channelOf(std::uint32_t pixel, int shift) { return int(pixel >> shift & 0xff); }

std::uint32_t mixFour(const std::uint32_t* upper, const std::uint32_t* lower, int right, int below)
{
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto column = [&](int i) {
            return channelOf(upper[i], shift) * (128 - below) + channelOf(lower[i], shift) * below;
        };
        const int sum = column(0) * (128 - right) + column(1) * right;
        result |= std::uint32_t((sum + (1 << 13)) >> 14) << shift;
    }
    return result;
}

std::uint32_t mixSixteen(
    const std::uint32_t* const* rows, const std::int16_t* across, const std::int16_t* down, int offset)
{
    std::uint32_t result = 0;
    int alpha = 255;
    for (int shift = 24; shift >= 0; shift -= 8) {
        int sum = offset << 13;
        for (int i = 0; i < 4; ++i) {
            int column = 1 << 7;
            for (int j = 0; j < 4; ++j)
                column += channelOf(rows[j][i], shift) * down[j];
            sum += (column >> 8) * across[i];
        }
        const int level = std::clamp(sum >> 20, 0, alpha);
        if (shift == 24)
            alpha = level;
        result |= std::uint32_t(level) << shift;
    }
    return result;
}

#endif

std::uint32_t averaged(const std::int64_t* sums, double area, int offset)
{
    const double scale = 1 / area, add = offset / 128.0;
    std::uint32_t result = 0;
    for (int i = 0; i < 4; ++i) {
        // Sums are in the order of a pixel's bytes in memory.
        const int shift = std::endian::native == std::endian::little ? 8 * i : 24 - 8 * i;
        result |= std::uint32_t(int(double(sums[i]) * scale + add)) << shift;
    }
    return result;
}

/// Adds a row's bytes, each times a weight of at most 256, to sums.
void addRow(const std::uint32_t* pixels, std::size_t count, int weight, std::uint32_t* sums)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels);
    for (std::size_t i = 0; i < 4 * count; ++i)
        sums[i] += std::uint32_t(std::uint16_t(bytes[i] * weight));
}

} // namespace

ImageSampler::ImageSampler(const PixelSource& source, const DeviceToImage& map, Sampling sampling)
    : mSource(source)
{
    constexpr double farthestPixel = 1 << 24;
    const double u = map.x0 + (map.xx + map.xy) / 2, v = map.y0 + (map.yx + map.yy) / 2;
    const double most = std::max((std::abs(map.xx) + std::abs(map.xy)) * farthestPixel + std::abs(u),
                            (std::abs(map.yx) + std::abs(map.yy)) * farthestPixel + std::abs(v))
        + 1;
    if (source.width < 1 || source.height < 1 || !(most < 0x1p52))
        return;
    mFractionBits = std::min(32, 61 - std::ilogb(most));
    const auto fixed
        = [&](double value) { return std::int64_t(std::llround(std::ldexp(value, mFractionBits))); };
    mU = fixed(u);
    mColumnU = fixed(map.xx);
    mRowU = fixed(map.xy);
    mV = fixed(v);
    mColumnV = fixed(map.yx);
    mRowV = fixed(map.yy);
    chooseKind(map, sampling);
}

void ImageSampler::chooseKind(const DeviceToImage& map, Sampling sampling)
{
    const std::int64_t one = std::int64_t(1) << mFractionBits;
    const bool isUpright = mColumnU == one && mRowV == one && !mRowU && !mColumnV;
    // Pixel centres on pixel centres, with what rounding leaves.
    const auto isCentred = [&](std::int64_t at) {
        const std::int64_t beside = (at & (one - 1)) - one / 2;
        return std::abs(beside) <= one >> 12;
    };
    if (isUpright && isCentred(mU) && isCentred(mV)) {
        mKind = Kind::Copied;
        return;
    }
    const double across = std::abs(map.xx) + std::abs(map.xy), down = std::abs(map.yx) + std::abs(map.yy);
    const bool isReduced = across > 1 || down > 1;
    switch (sampling) {
    case Sampling::Nearest:
        mKind = Kind::Nearest;
        return;
    case Sampling::Linear:
        mKind = Kind::Linear;
        return;
    case Sampling::Best:
        mKind = isReduced ? Kind::Average : Kind::Cubic;
        mWeights = &sharpWeights();
        break;
    case Sampling::Dithered:
        // Near its own size an image keeps its pixels, and with them its noise.
        if (std::max(across, down) < 2 && std::min(across, down) >= 0.5) {
            mKind = Kind::Nearest;
            return;
        }
        mKind = std::max(across, down) < 2 ? Kind::Cubic : Kind::Average;
        mWeights = &smoothWeights();
        mIsDithered = true;
        break;
    }
    const auto extent = [](double size) { return std::max<std::int64_t>(256, std::llround(size * 256)); };
    mWidth = extent(across);
    mHeight = extent(down);
}

const std::uint32_t* ImageSampler::fetch(int x, int y, std::size_t count, std::uint32_t* memory) const
{
    switch (mKind) {
    case Kind::Nothing:
        std::fill_n(memory, count, 0u);
        break;
    case Kind::Copied: {
        const std::int64_t u = (mU >> mFractionBits) + x, v = (mV >> mFractionBits) + y;
        if (u >= 0 && v >= 0 && v < mSource.height && u + std::int64_t(count) <= mSource.width)
            return mSource.pixels + mSource.stride * std::ptrdiff_t(v) + u;
        copy(x, y, count, memory);
        break;
    }
    case Kind::Nearest:
        nearest(x, y, count, memory);
        break;
    case Kind::Linear:
        linear(x, y, count, memory);
        break;
    case Kind::Cubic:
        cubic(x, y, count, memory);
        break;
    case Kind::Average:
        average(x, y, count, memory);
        break;
    }
    return memory;
}

void ImageSampler::copy(int x, int y, std::size_t count, std::uint32_t* out) const
{
    const std::int64_t v = std::clamp<std::int64_t>((mV >> mFractionBits) + y, 0, mSource.height - 1);
    const std::uint32_t* row = mSource.pixels + mSource.stride * std::ptrdiff_t(v);
    const std::int64_t u = (mU >> mFractionBits) + x, end = u + std::int64_t(count);
    const std::int64_t first = std::clamp<std::int64_t>(0, u, end);
    const std::int64_t last = std::clamp<std::int64_t>(mSource.width, first, end);
    std::fill_n(out, first - u, row[0]);
    if (last > first)
        std::memcpy(out + (first - u), row + first, std::size_t(last - first) * 4);
    std::fill_n(out + (last - u), end - last, row[mSource.width - 1]);
}

void ImageSampler::nearest(int x, int y, std::size_t count, std::uint32_t* out) const
{
    std::int64_t u = mU + mColumnU * x + mRowU * y, v = mV + mColumnV * x + mRowV * y;
    for (std::size_t i = 0; i < count; ++i, u += mColumnU, v += mColumnV) {
        const std::int64_t column = std::clamp<std::int64_t>(u >> mFractionBits, 0, mSource.width - 1);
        const std::int64_t row = std::clamp<std::int64_t>(v >> mFractionBits, 0, mSource.height - 1);
        out[i] = mSource.pixels[mSource.stride * std::ptrdiff_t(row) + column];
    }
}

void ImageSampler::linear(int x, int y, std::size_t count, std::uint32_t* out) const
{
    const std::int64_t half = std::int64_t(1) << (mFractionBits - 1);
    std::int64_t u = mU + mColumnU * x + mRowU * y - half, v = mV + mColumnV * x + mRowV * y - half;
    for (std::size_t i = 0; i < count; ++i, u += mColumnU, v += mColumnV) {
        const std::int64_t column = u >> mFractionBits, row = v >> mFractionBits;
        const int right = int(u >> (mFractionBits - 7)) & 127, below = int(v >> (mFractionBits - 7)) & 127;
        if (isWithin(column, 2, mSource.width) && isWithin(row, 2, mSource.height)) {
            const std::uint32_t* upper = mSource.pixels + mSource.stride * std::ptrdiff_t(row) + column;
            out[i] = mixFour(upper, upper + mSource.stride, right, below);
        } else {
            const Neighbours<2> four(mSource, column, row);
            out[i] = mixFour(four.rows[0], four.rows[1], right, below);
        }
    }
}

void ImageSampler::cubic(int x, int y, std::size_t count, std::uint32_t* out) const
{
    const std::int64_t half = std::int64_t(1) << (mFractionBits - 1);
    std::int64_t u = mU + mColumnU * x + mRowU * y - half, v = mV + mColumnV * x + mRowV * y - half;
    for (std::size_t i = 0; i < count; ++i, u += mColumnU, v += mColumnV) {
        const std::int64_t column = (u >> mFractionBits) - 1, row = (v >> mFractionBits) - 1;
        const auto& across = (*mWeights)[std::size_t(u >> (mFractionBits - 8) & 255)];
        const auto& down = (*mWeights)[std::size_t(v >> (mFractionBits - 8) & 255)];
        const int offset = mIsDithered ? threshold(x + int(i), y) : middleThreshold;
        if (isWithin(column, 4, mSource.width) && isWithin(row, 4, mSource.height)) {
            const std::uint32_t* first = mSource.pixels + mSource.stride * std::ptrdiff_t(row) + column;
            const std::uint32_t* rows[]
                = { first, first + mSource.stride, first + 2 * mSource.stride, first + 3 * mSource.stride };
            out[i] = mixSixteen(rows, across.data(), down.data(), offset);
        } else {
            const Neighbours<4> sixteen(mSource, column, row);
            const std::uint32_t* rows[]
                = { sixteen.rows[0], sixteen.rows[1], sixteen.rows[2], sixteen.rows[3] };
            out[i] = mixSixteen(rows, across.data(), down.data(), offset);
        }
    }
}

// Every device pixel averages a box of the image, as wide and high as the pixel's own shape there. Upright,
// the boxes lie side by side.
void ImageSampler::average(int x, int y, std::size_t count, std::uint32_t* out) const
{
    const std::int64_t u = mU + mRowU * y, v = mV + mRowV * y;
    const std::size_t done = mColumnV == 0 ? averageUpright(x, y, count, out) : 0;
    for (std::size_t i = done; i < count; ++i) {
        const std::int64_t column = std::int64_t(x) + std::int64_t(i);
        const Stretch columns = stretch(u + mColumnU * column, mWidth, mSource.width);
        const Stretch rows = stretch(v + mColumnV * column, mHeight, mSource.height);
        std::int64_t sums[4] = {};
        for (std::int64_t j = rows.first; j < rows.last; ++j) {
            const std::uint32_t* pixels = mSource.pixels + mSource.stride * std::ptrdiff_t(j);
            std::uint32_t rowSums[4] = {};
            for (std::int64_t k = columns.first; k < columns.last; ++k)
                addRow(pixels + k, 1, columns.weight(k), rowSums);
            for (int k = 0; k < 4; ++k)
                sums[k] += std::int64_t(rowSums[k]) * rows.weight(j);
        }
        const int offset = mIsDithered ? threshold(int(column), y) : middleThreshold;
        out[i] = averaged(sums, double(columns.total) * double(rows.total), offset);
    }
}

/// As long as pixels of a row share their rows of the image: columns are summed first, then boxes. Returns
/// how many pixels are done.
std::size_t ImageSampler::averageUpright(int x, int y, std::size_t count, std::uint32_t* out) const
{
    constexpr std::int64_t mostColumns = 512;
    const std::int64_t u = mU + mRowU * y;
    const Stretch rows = stretch(mV + mRowV * y, mHeight, mSource.height);
    const auto columnsAt
        = [&](std::size_t i) { return stretch(u + mColumnU * (x + std::int64_t(i)), mWidth, mSource.width); };
    for (std::size_t done = 0; done < count;) {
        std::int64_t first = mSource.width, last = 0;
        std::size_t end = done;
        for (; end < count; ++end) {
            const Stretch columns = columnsAt(end);
            const std::int64_t left = std::min(first, columns.first), right = std::max(last, columns.last);
            if (right - left > mostColumns)
                break;
            first = left;
            last = right;
        }
        if (end == done)
            return done;
        std::uint32_t columnSums[4 * mostColumns];
        std::fill_n(columnSums, 4 * (last - first), 0u);
        for (std::int64_t j = rows.first; j < rows.last; ++j)
            addRow(mSource.pixels + mSource.stride * std::ptrdiff_t(j) + first, std::size_t(last - first),
                rows.weight(j), columnSums);
        for (; done < end; ++done) {
            const Stretch columns = columnsAt(done);
            std::int64_t sums[4] = {};
            for (std::int64_t k = columns.first; k < columns.last; ++k) {
                const std::uint32_t* column = columnSums + 4 * (k - first);
                const std::int64_t weight = columns.weight(k);
                for (int channel = 0; channel < 4; ++channel)
                    sums[channel] += column[channel] * weight;
            }
            const int offset = mIsDithered ? threshold(x + int(done), y) : middleThreshold;
            out[done] = averaged(sums, double(columns.total) * double(rows.total), offset);
        }
    }
    return count;
}

/// From `begin` to `end`, in 256ths of a pixel, cut to `count` pixels; the outermost one where nothing is
/// left.
ImageSampler::Stretch::Stretch(std::int64_t begin, std::int64_t end, int count)
{
    const std::int64_t limit = std::int64_t(count) << 8;
    if (end <= 0) {
        begin = 0;
        end = 256;
    } else if (begin >= limit) {
        begin = limit - 256;
        end = limit;
    }
    begin = std::max<std::int64_t>(begin, 0);
    end = std::min(end, limit);
    first = begin >> 8;
    last = (end + 255) >> 8;
    total = end - begin;
    firstWeight = int(std::min((first + 1) << 8, end) - begin);
    lastWeight = int(end - ((last - 1) << 8));
}

ImageSampler::Stretch ImageSampler::stretch(std::int64_t middle, std::int64_t size, int count) const
{
    const std::int64_t begin = (middle >> (mFractionBits - 8)) - size / 2;
    return { begin, begin + size, count };
}

} // namespace vxr
