#pragma once

// The loops that turn cells into coverage, for one instruction set; see
// SpanLoops.h. `Rule` turns sums into areas inside, vectors of four or eight.

#include <vxr/platform/graphics/pixels/SpanKernels.h>
#include <vxr/platform/graphics/pixels/SpanVectors.h>

namespace vxr {

namespace {

#if defined(__SSE2__)

VXR_SPAN_INLINE __m128i choose(__m128i mask, __m128i a, __m128i b)
{
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

/// Areas to 0 to 255.
VXR_SPAN_INLINE __m128i levels(__m128i area)
{
    const __m128i scaled = _mm_sub_epi32(_mm_slli_epi32(area, 8), area);
    return _mm_srli_epi32(_mm_add_epi32(scaled, _mm_set1_epi32(fullCell / 2)), 17);
}

struct NonZero {
    static std::uint8_t coverage(std::int32_t sum) { return coverageNonZero(sum); }
    static VXR_SPAN_INLINE __m128i inside(__m128i sum)
    {
        const __m128i sign = _mm_srai_epi32(sum, 31), full = _mm_set1_epi32(fullCell);
        const __m128i area = _mm_sub_epi32(_mm_xor_si128(sum, sign), sign);
        return choose(_mm_cmpgt_epi32(full, area), area, full);
    }
#if VXR_SPAN_BYTES >= 32
    static VXR_SPAN_INLINE __m256i inside(__m256i sum)
    {
        return _mm256_min_epu32(_mm256_abs_epi32(sum), _mm256_set1_epi32(fullCell));
    }
#endif
};

struct EvenOdd {
    static std::uint8_t coverage(std::int32_t sum) { return coverageEvenOdd(sum); }
    static VXR_SPAN_INLINE __m128i inside(__m128i sum)
    {
        const __m128i area = _mm_and_si128(sum, _mm_set1_epi32(2 * fullCell - 1));
        const __m128i rest = _mm_sub_epi32(_mm_set1_epi32(2 * fullCell), area);
        return choose(_mm_cmpgt_epi32(_mm_set1_epi32(fullCell), area), area, rest);
    }
#if VXR_SPAN_BYTES >= 32
    static VXR_SPAN_INLINE __m256i inside(__m256i sum)
    {
        const __m256i area = _mm256_and_si256(sum, _mm256_set1_epi32(2 * fullCell - 1));
        return _mm256_min_epi32(area, _mm256_sub_epi32(_mm256_set1_epi32(2 * fullCell), area));
    }
#endif
};

#if VXR_SPAN_BYTES >= 32
/// Eight sums, eight bytes.
template <class Rule>
VXR_SPAN_INLINE __m256i sumEight(std::int32_t* cells, __m256i carry, std::uint8_t* coverage)
{
    __m256i sums = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cells));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(cells), _mm256_setzero_si256());
    sums = _mm256_add_epi32(sums, _mm256_slli_si256(sums, 4));
    sums = _mm256_add_epi32(sums, _mm256_slli_si256(sums, 8));
    // The lower half's total goes to the upper half.
    const __m256i lower = _mm256_permute2x128_si256(sums, sums, 0x08);
    sums = _mm256_add_epi32(sums, _mm256_shuffle_epi32(lower, 0xff));
    sums = _mm256_add_epi32(sums, carry);
    const __m256i area = Rule::inside(sums);
    const __m256i scaled = _mm256_sub_epi32(_mm256_slli_epi32(area, 8), area);
    const __m256i level = _mm256_srli_epi32(_mm256_add_epi32(scaled, _mm256_set1_epi32(fullCell / 2)), 17);
    const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(level), _mm256_extracti128_si256(level, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(coverage), _mm_packus_epi16(words, words));
    return _mm256_permutevar8x32_epi32(sums, _mm256_set1_epi32(7));
}
#endif

VXR_SPAN_INLINE __m128i prefixSums(std::int32_t* cells, __m128i carry)
{
    __m128i sums = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cells));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cells), _mm_setzero_si128());
    sums = _mm_add_epi32(sums, _mm_slli_si128(sums, 4));
    sums = _mm_add_epi32(sums, _mm_slli_si128(sums, 8));
    return _mm_add_epi32(sums, carry);
}

template <class Rule>
VXR_SPAN_INLINE std::size_t sumVectors(
    std::int32_t* cells, std::size_t count, std::int32_t& carry, std::uint8_t* coverage)
{
    std::size_t i = 0;
#if VXR_SPAN_BYTES >= 32
    __m256i carries = _mm256_set1_epi32(carry);
    for (; i + 8 <= count; i += 8)
        carries = sumEight<Rule>(cells + i, carries, coverage + i);
    carry = _mm256_cvtsi256_si32(carries);
#else
    __m128i carries = _mm_set1_epi32(carry);
    for (; i + 8 <= count; i += 8) {
        const __m128i first = prefixSums(cells + i, carries);
        const __m128i second = prefixSums(cells + i + 4, _mm_shuffle_epi32(first, 0xff));
        const __m128i words = _mm_packs_epi32(levels(Rule::inside(first)), levels(Rule::inside(second)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(coverage + i), _mm_packus_epi16(words, words));
        carries = _mm_shuffle_epi32(second, 0xff);
    }
    carry = _mm_cvtsi128_si32(carries);
#endif
    return i;
}

#else

struct NonZero {
    static std::uint8_t coverage(std::int32_t sum) { return coverageNonZero(sum); }
};

struct EvenOdd {
    static std::uint8_t coverage(std::int32_t sum) { return coverageEvenOdd(sum); }
};

template <class Rule> std::size_t sumVectors(std::int32_t*, std::size_t, std::int32_t&, std::uint8_t*)
{
    return 0;
}

#endif

template <class Rule>
std::int32_t sumCells(std::int32_t* cells, std::size_t count, std::int32_t carry, std::uint8_t* coverage)
{
    for (std::size_t i = sumVectors<Rule>(cells, count, carry, coverage); i < count; ++i) {
        carry = std::int32_t(std::uint32_t(carry) + std::uint32_t(cells[i]));
        cells[i] = 0;
        coverage[i] = Rule::coverage(carry);
    }
    return carry;
}

} // namespace

} // namespace vxr
