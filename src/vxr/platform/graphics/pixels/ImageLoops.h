#pragma once

// The loops of `ImageSampler` for one instruction set; see SpanLoops.h.

#include <vxr/platform/graphics/pixels/ImageGrid.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>
#include <vxr/platform/graphics/pixels/SpanVectors.h>

namespace vxr {

namespace {

VXR_SPAN_INLINE std::int64_t clampTo(std::int64_t at, int count)
{
    return at < 0 ? 0 : at >= count ? count - 1 : at;
}

/// The pixels around a place, outermost ones repeated.
template <int size> struct Neighbours {
    std::uint32_t rows[size][size];

    Neighbours(const PixelSource& source, std::int64_t x, std::int64_t y)
    {
        for (int j = 0; j < size; ++j) {
            const std::uint32_t* row
                = source.pixels + source.stride * std::ptrdiff_t(clampTo(y + j, source.height));
            for (int i = 0; i < size; ++i)
                rows[j][i] = row[clampTo(x + i, source.width)];
        }
    }
};

/// Whether `size` pixels from `at` on lie within `count`.
VXR_SPAN_INLINE bool isWithin(std::int64_t at, int size, int count)
{
    return std::uint64_t(at) <= std::uint64_t(std::int64_t(count) - size) && count >= size;
}

// Columns: pixels of a row whose channels have been summed downwards, 16 bits
// each. A mixture of four pixels takes sums of 128ths and has 14 fraction bits
// then, one of sixteen takes 64ths and has 20.

constexpr int columnsAtOnce = 256;

#if defined(__SSE2__)

VXR_SPAN_INLINE __m128i load128(const void* from)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
VXR_SPAN_INLINE __m128i load64(const void* from)
{
    return _mm_loadl_epi64(static_cast<const __m128i*>(from));
}

VXR_SPAN_INLINE __m128i pairOf(int first, int second)
{
    return _mm_set1_epi32(int(std::uint32_t(second) << 16 | (std::uint32_t(first) & 0xffff)));
}

VXR_SPAN_INLINE std::uint32_t bytesOf(__m128i levels)
{
    const __m128i words = _mm_packs_epi32(levels, levels);
    return std::uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}

/// Two columns side by side.
VXR_SPAN_INLINE std::uint32_t mixTwoColumns(__m128i columns, int right)
{
    const __m128i pairs = _mm_unpacklo_epi16(columns, _mm_srli_si128(columns, 8));
    const __m128i sum = _mm_madd_epi16(pairs, pairOf(128 - right, right));
    return bytesOf(_mm_srli_epi32(_mm_add_epi32(sum, _mm_set1_epi32(1 << 13)), 14));
}

VXR_SPAN_INLINE __m128i twoColumns(const std::uint32_t* upper, const std::uint32_t* lower, int below)
{
    const __m128i zero = _mm_setzero_si128();
    return _mm_add_epi16(
        _mm_mullo_epi16(_mm_unpacklo_epi8(load64(upper), zero), _mm_set1_epi16(short(128 - below))),
        _mm_mullo_epi16(_mm_unpacklo_epi8(load64(lower), zero), _mm_set1_epi16(short(below))));
}

VXR_SPAN_INLINE std::uint32_t mixFour(
    const std::uint32_t* upper, const std::uint32_t* lower, int right, int below)
{
    return mixTwoColumns(twoColumns(upper, lower, below), right);
}

/// Four columns, two in each vector. `offset`, of 128ths of a level, is added
/// before what follows is cut off.
VXR_SPAN_INLINE std::uint32_t mixFourColumns(
    __m128i left, __m128i right, const std::int16_t* across, int offset)
{
    const __m128i leftPairs = _mm_unpacklo_epi16(left, _mm_srli_si128(left, 8));
    const __m128i rightPairs = _mm_unpacklo_epi16(right, _mm_srli_si128(right, 8));
    const __m128i weights = load64(across);
    __m128i sum = _mm_add_epi32(_mm_madd_epi16(leftPairs, _mm_shuffle_epi32(weights, 0x00)),
        _mm_madd_epi16(rightPairs, _mm_shuffle_epi32(weights, 0x55)));
    sum = _mm_srai_epi32(_mm_add_epi32(sum, _mm_set1_epi32(offset << 13)), 20);
    return bytesOf(sum);
}

/// Four pixels of four rows as columns.
VXR_SPAN_INLINE void fourColumns(
    const std::uint32_t* const* rows, const std::int16_t* down, __m128i& left, __m128i& right)
{
    const __m128i weights = load64(down);
    const __m128i upperWeights = _mm_shuffle_epi32(weights, 0x00),
                  lowerWeights = _mm_shuffle_epi32(weights, 0x55);
    const __m128i a = load128(rows[0]), b = load128(rows[1]), c = load128(rows[2]), d = load128(rows[3]);
#if VXR_SPAN_BYTES >= 32
    const __m256i half = _mm256_set1_epi32(1 << 7);
    const __m256i upper = _mm256_broadcastsi128_si256(upperWeights);
    const __m256i lower = _mm256_broadcastsi128_si256(lowerWeights);
    const auto columns = [&](__m128i first, __m128i second) __attribute__((always_inline))
    {
        const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(_mm256_cvtepu8_epi16(first), upper),
            _mm256_madd_epi16(_mm256_cvtepu8_epi16(second), lower));
        return _mm256_srai_epi32(_mm256_add_epi32(sum, half), 8);
    };
    const __m256i first = columns(_mm_unpacklo_epi8(a, b), _mm_unpacklo_epi8(c, d));
    const __m256i second = columns(_mm_unpackhi_epi8(a, b), _mm_unpackhi_epi8(c, d));
    left = _mm_packs_epi32(_mm256_castsi256_si128(first), _mm256_extracti128_si256(first, 1));
    right = _mm_packs_epi32(_mm256_castsi256_si128(second), _mm256_extracti128_si256(second, 1));
#else
    const __m128i zero = _mm_setzero_si128(), half = _mm_set1_epi32(1 << 7);
    const auto column = [&](__m128i first, __m128i second) __attribute__((always_inline))
    {
        const __m128i sum
            = _mm_add_epi32(_mm_madd_epi16(first, upperWeights), _mm_madd_epi16(second, lowerWeights));
        return _mm_srai_epi32(_mm_add_epi32(sum, half), 8);
    };
    const __m128i ab = _mm_unpacklo_epi8(a, b), cd = _mm_unpacklo_epi8(c, d);
    const __m128i abHigh = _mm_unpackhi_epi8(a, b), cdHigh = _mm_unpackhi_epi8(c, d);
    left = _mm_packs_epi32(column(_mm_unpacklo_epi8(ab, zero), _mm_unpacklo_epi8(cd, zero)),
        column(_mm_unpackhi_epi8(ab, zero), _mm_unpackhi_epi8(cd, zero)));
    right = _mm_packs_epi32(column(_mm_unpacklo_epi8(abHigh, zero), _mm_unpacklo_epi8(cdHigh, zero)),
        column(_mm_unpackhi_epi8(abHigh, zero), _mm_unpackhi_epi8(cdHigh, zero)));
#endif
}

VXR_SPAN_INLINE std::uint32_t mixSixteen(
    const std::uint32_t* const* rows, const std::int16_t* across, const std::int16_t* down, int offset)
{
    __m128i left, right;
    fourColumns(rows, down, left, right);
    return mixFourColumns(left, right, across, offset);
}

VXR_SPAN_INLINE std::uint32_t mixTwoColumns(const std::int16_t* columns, int right)
{
    return mixTwoColumns(load128(columns), right);
}

#if VXR_SPAN_BYTES >= 32
/// Two places, each a mixture of four pixels.
VXR_SPAN_INLINE void mixTwice(const PixelSource& source, int bits, std::int64_t u, std::int64_t v,
    std::int64_t u1, std::int64_t v1, std::uint32_t* out)
{
    const std::uint32_t* first = source.pixels + source.stride * std::ptrdiff_t(v >> bits) + (u >> bits);
    const std::uint32_t* second = source.pixels + source.stride * std::ptrdiff_t(v1 >> bits) + (u1 >> bits);
    const auto both = [](const std::uint32_t* a, const std::uint32_t* b) __attribute__((always_inline))
    {
        return _mm256_cvtepu8_epi16(_mm_unpacklo_epi64(load64(a), load64(b)));
    };
    const auto weights = [&](std::int64_t a, std::int64_t b) __attribute__((always_inline))
    {
        // 128 - w below w, w the fraction in 128ths.
        const auto pair = [&](std::int64_t at) __attribute__((always_inline))
        {
            return int(at >> (bits - 7) & 127) * 0xffff + 128;
        };
        return _mm256_set_m128i(_mm_set1_epi32(pair(b)), _mm_set1_epi32(pair(a)));
    };
    const __m256i top = both(first, second), bottom = both(first + source.stride, second + source.stride);
    const __m256i across = weights(u, u1), down = weights(v, v1);
    const __m256i low = _mm256_madd_epi16(_mm256_unpacklo_epi16(top, bottom), down);
    const __m256i high = _mm256_madd_epi16(_mm256_unpackhi_epi16(top, bottom), down);
    // Sums of 128ths fit 16 bits.
    const __m256i pairs = _mm256_or_si256(low, _mm256_slli_epi32(high, 16));
    const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(pairs, across), _mm256_set1_epi32(1 << 13));
    const __m256i words = _mm256_srli_epi32(sum, 14);
    const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(words, words), words);
    out[0] = std::uint32_t(_mm256_extract_epi32(packed, 0));
    out[1] = std::uint32_t(_mm256_extract_epi32(packed, 4));
}
#endif

VXR_SPAN_INLINE std::uint32_t mixFourColumns(
    const std::int16_t* columns, const std::int16_t* across, int offset)
{
    return mixFourColumns(load128(columns), load128(columns + 8), across, offset);
}

#else

VXR_SPAN_INLINE int channelOf(std::uint32_t pixel, int channel) { return int(pixel >> 8 * channel & 0xff); }

VXR_SPAN_INLINE std::uint32_t mixTwoColumns(const std::int16_t* columns, int right)
{
    std::uint32_t result = 0;
    for (int k = 0; k < 4; ++k) {
        const int sum = columns[k] * (128 - right) + columns[k + 4] * right;
        result |= std::uint32_t((sum + (1 << 13)) >> 14) << 8 * k;
    }
    return result;
}

VXR_SPAN_INLINE std::uint32_t mixFourColumns(
    const std::int16_t* columns, const std::int16_t* across, int offset)
{
    std::uint32_t result = 0;
    for (int k = 0; k < 4; ++k) {
        int sum = offset << 13;
        for (int i = 0; i < 4; ++i)
            sum += columns[4 * i + k] * across[i];
        const int level = sum < 0 ? 0 : sum >> 20 > 255 ? 255 : sum >> 20;
        result |= std::uint32_t(level) << 8 * k;
    }
    return result;
}

VXR_SPAN_INLINE std::uint32_t mixFour(
    const std::uint32_t* upper, const std::uint32_t* lower, int right, int below)
{
    std::int16_t columns[8];
    for (int i = 0; i < 8; ++i)
        columns[i] = std::int16_t(
            channelOf(upper[i / 4], i % 4) * (128 - below) + channelOf(lower[i / 4], i % 4) * below);
    return mixTwoColumns(columns, right);
}

VXR_SPAN_INLINE std::uint32_t mixSixteen(
    const std::uint32_t* const* rows, const std::int16_t* across, const std::int16_t* down, int offset)
{
    std::int16_t columns[16];
    for (int i = 0; i < 16; ++i) {
        int sum = 1 << 7;
        for (int j = 0; j < 4; ++j)
            sum += channelOf(rows[j][i / 4], i % 4) * down[j];
        columns[i] = std::int16_t(sum >> 8);
    }
    return mixFourColumns(columns, across, offset);
}

#endif

} // namespace

} // namespace vxr

#include <vxr/platform/graphics/pixels/ImageUprightLoops.h>

namespace vxr {

namespace {

void linear(const ImageGrid& grid, std::int64_t u, std::int64_t v, std::size_t count, std::uint32_t* out)
{
    if (!grid.columnV && (grid.columnU >> grid.fractionBits) < 8 && (grid.columnU >> grid.fractionBits) > -8)
        return linearUpright(grid, u, v, count, out);
    const PixelSource source = grid.source;
    const std::int64_t columnU = grid.columnU, columnV = grid.columnV;
    const int bits = grid.fractionBits;
    std::size_t i = 0;
#if VXR_SPAN_BYTES >= 32
    for (; i + 2 <= count; i += 2) {
        const std::int64_t u1 = u + columnU, v1 = v + columnV;
        const bool isInside = isWithin(u >> bits, 2, source.width) && isWithin(v >> bits, 2, source.height)
            && isWithin(u1 >> bits, 2, source.width) && isWithin(v1 >> bits, 2, source.height);
        if (!isInside)
            break;
        mixTwice(source, bits, u, v, u1, v1, out + i);
        u = u1 + columnU;
        v = v1 + columnV;
    }
#endif
    for (; i < count; ++i, u += columnU, v += columnV) {
        const std::int64_t column = u >> bits, row = v >> bits;
        const int right = int(u >> (bits - 7)) & 127, below = int(v >> (bits - 7)) & 127;
        if (isWithin(column, 2, source.width) && isWithin(row, 2, source.height)) {
            const std::uint32_t* upper = source.pixels + source.stride * std::ptrdiff_t(row) + column;
            out[i] = mixFour(upper, upper + source.stride, right, below);
        } else {
            const Neighbours<2> four(source, column, row);
            out[i] = mixFour(four.rows[0], four.rows[1], right, below);
        }
    }
}

void cubic(const ImageGrid& grid, const CubicWeights& across, const CubicWeights& down,
    const std::uint8_t* offsets, std::int64_t u, std::int64_t v, int x, std::size_t count, std::uint32_t* out)
{
    if (!grid.columnV)
        return cubicUpright(grid, across, down, offsets, u, v, x, count, out);
    const PixelSource& source = grid.source;
    const int bits = grid.fractionBits;
    for (std::size_t i = 0; i < count; ++i, u += grid.columnU, v += grid.columnV) {
        const std::int64_t column = (u >> bits) - 1, row = (v >> bits) - 1;
        const std::int16_t* columnWeights = across[u >> (bits - 8) & 255];
        const std::int16_t* rowWeights = down[v >> (bits - 8) & 255];
        const int offset = offsets[(x + int(i)) & 7];
        if (isWithin(column, 4, source.width) && isWithin(row, 4, source.height)) {
            const std::uint32_t* first = source.pixels + source.stride * std::ptrdiff_t(row) + column;
            const std::uint32_t* rows[]
                = { first, first + source.stride, first + 2 * source.stride, first + 3 * source.stride };
            out[i] = mixSixteen(rows, columnWeights, rowWeights, offset);
        } else {
            const Neighbours<4> sixteen(source, column, row);
            const std::uint32_t* rows[]
                = { sixteen.rows[0], sixteen.rows[1], sixteen.rows[2], sixteen.rows[3] };
            out[i] = mixSixteen(rows, columnWeights, rowWeights, offset);
        }
    }
}

/// Adds a row's bytes, each times a weight of at most 256, to sums.
VXR_SPAN_INLINE void addRow(const std::uint32_t* pixels, std::int64_t count, int weight, std::uint32_t* sums)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels);
    for (std::int64_t i = 0; i < 4 * count; ++i)
        sums[i] += std::uint32_t(std::uint16_t(bytes[i] * weight));
}

/// Sums the rows of a stretch and makes columns of 64ths of a level.
VXR_SPAN_INLINE void averageRows(const PixelSource& source, const PixelStretch& rows, std::int64_t first,
    std::int64_t count, std::int16_t* columns)
{
    std::uint32_t sums[4 * columnsAtOnce];
    memset(sums, 0, std::size_t(count) * 16);
    for (std::int64_t j = rows.first; j < rows.last; ++j)
        addRow(source.pixels + source.stride * std::ptrdiff_t(j) + first, count, rows.weight(j), sums);
    const float scale = 64.0f / float(rows.total);
    for (std::int64_t i = 0; i < 4 * count; ++i)
        columns[i] = std::int16_t(std::int32_t(float(std::int32_t(sums[i])) * scale + 0.5f));
}

VXR_SPAN_INLINE std::uint32_t averageColumns(
    const std::int16_t* columns, const PixelStretch& stretch, int offset)
{
    const std::int64_t more = stretch.last - stretch.first - 1;
    std::int32_t whole[4] = {}, sums[4];
    for (std::int64_t i = 1; i < more; ++i)
        for (int k = 0; k < 4; ++k)
            whole[k] += columns[4 * i + k];
    const std::int16_t* end = columns + 4 * more;
    const int lastWeight = more ? stretch.lastWeight : 0;
    const float scale = 1 / (64.0f * float(stretch.total)), add = float(offset) / 128;
    for (int k = 0; k < 4; ++k) {
        const std::int32_t sum = columns[k] * stretch.firstWeight + whole[k] * 256 + end[k] * lastWeight;
        sums[k] = std::int32_t(float(sum) * scale + add);
    }
    return std::uint32_t(sums[0]) | std::uint32_t(sums[1]) << 8 | std::uint32_t(sums[2]) << 16
        | std::uint32_t(sums[3]) << 24;
}

void averageUpright(const ImageGrid& grid, const std::uint8_t* offsets, std::int64_t u, std::int64_t v, int x,
    std::size_t count, std::uint32_t* out)
{
    const PixelStretch rows = stretchOf(grid, v, grid.boxHeight, grid.source.height);
    const std::int64_t step = grid.columnU < 0 ? -grid.columnU : grid.columnU;
    // What stands beside the last box may be one pixel more on either side.
    const std::int64_t room = (columnsAtOnce - 2 - (grid.boxWidth >> 8)) << grid.fractionBits;
    while (count) {
        std::size_t run = step ? std::size_t((room > 0 ? room : 0) / step) + 1 : count;
        run = run < count ? run : count;
        const auto boxAt = [&](std::size_t i) {
            return stretchOf(grid, u + grid.columnU * std::int64_t(i), grid.boxWidth, grid.source.width);
        };
        const PixelStretch a = boxAt(0), b = boxAt(run - 1);
        const std::int64_t first = a.first < b.first ? a.first : b.first,
                           last = a.last > b.last ? a.last : b.last;
        std::int16_t columns[4 * columnsAtOnce];
        averageRows(grid.source, rows, first, last - first, columns);
        for (std::size_t i = 0; i < run; ++i) {
            const PixelStretch box = boxAt(i);
            out[i] = averageColumns(columns + 4 * (box.first - first), box, offsets[(x + int(i)) & 7]);
        }
        u += grid.columnU * std::int64_t(run);
        x += int(run);
        out += run;
        count -= run;
    }
}

/// Boxes of at most 253 columns.
void average(const ImageGrid& grid, const std::uint8_t* offsets, std::int64_t u, std::int64_t v, int x,
    std::size_t count, std::uint32_t* out)
{
    if (!grid.columnV)
        return averageUpright(grid, offsets, u, v, x, count, out);
    for (std::size_t i = 0; i < count; ++i, u += grid.columnU, v += grid.columnV) {
        const PixelStretch box = stretchOf(grid, u, grid.boxWidth, grid.source.width);
        std::int16_t columns[4 * columnsAtOnce];
        averageRows(grid.source, stretchOf(grid, v, grid.boxHeight, grid.source.height), box.first,
            box.last - box.first, columns);
        out[i] = averageColumns(columns, box, offsets[(x + int(i)) & 7]);
    }
}

} // namespace

} // namespace vxr
