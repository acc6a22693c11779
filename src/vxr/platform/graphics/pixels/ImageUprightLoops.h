// The loops for images that are not turned, where a row of the device needs but a few rows of the image:
// these are mixed downwards first. Included by ImageLoops.h.

namespace vxr {

namespace {

/// Copies `count` pixels of a row, outermost ones repeated.
VXR_SPAN_INLINE void rowPixels(
    const PixelSource& source, std::int64_t row, std::int64_t first, int count, std::uint32_t* pixels)
{
    const std::uint32_t* from = source.pixels + source.stride * std::ptrdiff_t(clampTo(row, source.height));
    if (isWithin(first, count, source.width)) {
        memcpy(pixels, from + first, std::size_t(count) * 4);
        return;
    }
    for (int i = 0; i < count; ++i)
        pixels[i] = from[clampTo(first + i, source.width)];
}

/// The pixels of an upright row that the next device pixels need: as many of
/// these as have them within `columnsAtOnce`.
struct ColumnRun {
    std::size_t count;
    std::int64_t first;
    int columns;

    ColumnRun(const ImageGrid& grid, std::int64_t u, std::size_t left, int support)
    {
        const int bits = grid.fractionBits;
        const std::int64_t step = grid.columnU < 0 ? -grid.columnU : grid.columnU;
        const std::int64_t room = std::int64_t(columnsAtOnce - support - 1) << bits;
        count = step ? std::size_t(room / step) + 1 : left;
        count = count < left ? count : left;
        const std::int64_t a = u >> bits, b = (u + grid.columnU * std::int64_t(count - 1)) >> bits;
        first = a < b ? a : b;
        columns = int((a < b ? b - a : a - b) + support);
    }
};

#if VXR_SPAN_BYTES >= 32

VXR_SPAN_INLINE __m256i both(__m128i lower, __m128i upper) { return _mm256_set_m128i(upper, lower); }

/// Mixtures of two columns side by side at four places.
VXR_SPAN_INLINE void mixColumnsFourTimes(const std::int16_t* columns, std::int64_t first, int bits,
    std::int64_t u, std::int64_t step, std::uint32_t* out)
{
    const auto twoAt = [&](std::int64_t a, std::int64_t b) __attribute__((always_inline))
    {
        const auto pair = [&](std::int64_t at) __attribute__((always_inline))
        {
            const int right = int(at >> (bits - 7)) & 127;
            return pairOf(128 - right, right);
        };
        const __m256i loaded = both(
            load128(columns + 4 * ((a >> bits) - first)), load128(columns + 4 * ((b >> bits) - first)));
        const __m256i pairs = _mm256_unpacklo_epi16(loaded, _mm256_srli_si256(loaded, 8));
        const __m256i sum = _mm256_madd_epi16(pairs, both(pair(a), pair(b)));
        return _mm256_srli_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(1 << 13)), 14);
    };
    const __m256i words = _mm256_packs_epi32(twoAt(u, u + 2 * step), twoAt(u + step, u + 3 * step));
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(words, words), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
}

/// As `mixFourColumns`, at two places.
VXR_SPAN_INLINE void mixFourColumnsTwice(const std::int16_t* columns, const std::int16_t* across, int offset,
    const std::int16_t* otherColumns, const std::int16_t* otherAcross, int otherOffset, std::uint32_t* out)
{
    const __m256i left = both(load128(columns), load128(otherColumns));
    const __m256i right = both(load128(columns + 8), load128(otherColumns + 8));
    const __m256i weights = both(load64(across), load64(otherAcross));
    const __m256i leftPairs = _mm256_unpacklo_epi16(left, _mm256_srli_si256(left, 8));
    const __m256i rightPairs = _mm256_unpacklo_epi16(right, _mm256_srli_si256(right, 8));
    __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(leftPairs, _mm256_shuffle_epi32(weights, 0x00)),
        _mm256_madd_epi16(rightPairs, _mm256_shuffle_epi32(weights, 0x55)));
    const __m256i offsets = both(_mm_set1_epi32(offset << 13), _mm_set1_epi32(otherOffset << 13));
    sum = _mm256_srai_epi32(_mm256_add_epi32(sum, offsets), 20);
    const __m256i words = _mm256_packs_epi32(sum, sum);
    const __m256i bytes = _mm256_packus_epi16(words, words);
    out[0] = std::uint32_t(_mm256_extract_epi32(bytes, 0));
    out[1] = std::uint32_t(_mm256_extract_epi32(bytes, 4));
}

/// Sixteen bytes of four rows to channels of columns.
VXR_SPAN_INLINE void sumSixteenDown(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c,
    const std::uint8_t* d, const std::int16_t* down, std::int16_t* columns)
{
    const __m256i upper = _mm256_set1_epi32(_mm_cvtsi128_si32(pairOf(down[0], down[1])));
    const __m256i lower = _mm256_set1_epi32(_mm_cvtsi128_si32(pairOf(down[2], down[3])));
    const auto sum = [&](__m128i ab, __m128i cd) __attribute__((always_inline))
    {
        const __m256i both = _mm256_add_epi32(_mm256_madd_epi16(_mm256_cvtepu8_epi16(ab), upper),
            _mm256_madd_epi16(_mm256_cvtepu8_epi16(cd), lower));
        return _mm256_srai_epi32(_mm256_add_epi32(both, _mm256_set1_epi32(1 << 7)), 8);
    };
    const __m128i rowA = load128(a), rowB = load128(b), rowC = load128(c), rowD = load128(d);
    const __m256i words
        = _mm256_packs_epi32(sum(_mm_unpacklo_epi8(rowA, rowB), _mm_unpacklo_epi8(rowC, rowD)),
            sum(_mm_unpackhi_epi8(rowA, rowB), _mm_unpackhi_epi8(rowC, rowD)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(columns), _mm256_permute4x64_epi64(words, 0xd8));
}

#endif

void linearUpright(
    const ImageGrid& grid, std::int64_t u, std::int64_t v, std::size_t count, std::uint32_t* out)
{
    const int bits = grid.fractionBits;
    const std::int64_t row = v >> bits;
    const int below = int(v >> (bits - 7)) & 127;
    while (count) {
        const ColumnRun run(grid, u, count, 2);
        std::uint32_t upper[columnsAtOnce], lower[columnsAtOnce];
        rowPixels(grid.source, row, run.first, run.columns, upper);
        rowPixels(grid.source, row + 1, run.first, run.columns, lower);
        std::int16_t columns[4 * columnsAtOnce];
        const auto *a = reinterpret_cast<const std::uint8_t*>(upper),
                   *b = reinterpret_cast<const std::uint8_t*>(lower);
        for (int i = 0; i < 4 * run.columns; ++i)
            columns[i] = std::int16_t(a[i] * (128 - below) + b[i] * below);
        std::size_t i = 0;
#if VXR_SPAN_BYTES >= 32
        for (; i + 4 <= run.count; i += 4, u += 4 * grid.columnU)
            mixColumnsFourTimes(columns, run.first, bits, u, grid.columnU, out + i);
#endif
        for (; i < run.count; ++i, u += grid.columnU)
            out[i] = mixTwoColumns(columns + 4 * ((u >> bits) - run.first), int(u >> (bits - 7)) & 127);
        out += run.count;
        count -= run.count;
    }
}

void cubicUpright(const ImageGrid& grid, const CubicWeights& across, const CubicWeights& down,
    const std::uint8_t* offsets, std::int64_t u, std::int64_t v, int x, std::size_t count, std::uint32_t* out)
{
    const int bits = grid.fractionBits;
    const std::int64_t row = (v >> bits) - 1;
    const std::int16_t* rowWeights = down[v >> (bits - 8) & 255];
    while (count) {
        ColumnRun run(grid, u, count, 4);
        const std::int64_t first = run.first - 1;
        std::uint32_t rows[4][columnsAtOnce];
        for (int j = 0; j < 4; ++j)
            rowPixels(grid.source, row + j, first, run.columns, rows[j]);
        std::int16_t columns[4 * columnsAtOnce];
        const auto bytes = [&](int j) { return reinterpret_cast<const std::uint8_t*>(rows[j]); };
        const auto *a = bytes(0), *b = bytes(1), *c = bytes(2), *d = bytes(3);
        int ready = 0;
#if VXR_SPAN_BYTES >= 32
        for (; ready + 16 <= 4 * run.columns; ready += 16)
            sumSixteenDown(a + ready, b + ready, c + ready, d + ready, rowWeights, columns + ready);
#endif
        for (int i = ready; i < 4 * run.columns; ++i)
            columns[i] = std::int16_t((a[i] * rowWeights[0] + b[i] * rowWeights[1] + c[i] * rowWeights[2]
                                          + d[i] * rowWeights[3] + (1 << 7))
                >> 8);
        const auto columnsAt = [&](std::int64_t at) { return columns + 4 * ((at >> bits) - 1 - first); };
        const auto weightsAt = [&](std::int64_t at) { return across[at >> (bits - 8) & 255]; };
        const auto offsetAt = [&](std::size_t i) { return offsets[(x + int(i)) & 7]; };
        std::size_t i = 0;
#if VXR_SPAN_BYTES >= 32
        for (; i + 2 <= run.count; i += 2, u += 2 * grid.columnU) {
            const std::int64_t next = u + grid.columnU;
            mixFourColumnsTwice(columnsAt(u), weightsAt(u), offsetAt(i), columnsAt(next), weightsAt(next),
                offsetAt(i + 1), out + i);
        }
#endif
        for (; i < run.count; ++i, u += grid.columnU)
            out[i] = mixFourColumns(columnsAt(u), weightsAt(u), offsetAt(i));
        x += int(run.count);
        out += run.count;
        count -= run.count;
    }
}

} // namespace

} // namespace vxr
