#pragma once

// Vectors of pixels for one instruction set: `VXR_SPAN_BYTES` is the size of its
// widest. Everything here has internal linkage, since it is compiled for
// processors that others may not have.

#include <cstddef>
#include <cstdint>

#include <string.h>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace vxr {

namespace {

template <int Bytes> struct Vector;

#define VXR_SPAN_VECTOR(size)                                                                                \
    typedef std::uint8_t Bytes##size __attribute__((vector_size(size)));                                     \
    typedef std::uint16_t Words##size __attribute__((vector_size(size)));                                    \
    typedef std::uint32_t Pixels##size __attribute__((vector_size(size)));                                   \
    template <> struct Vector<size> {                                                                        \
        using Bytes = Bytes##size;                                                                           \
        using Words = Words##size;                                                                           \
        using Pixels = Pixels##size;                                                                         \
        static constexpr std::size_t lanes = size / 4;                                                       \
    };
VXR_SPAN_VECTOR(16)
#if VXR_SPAN_BYTES >= 32
VXR_SPAN_VECTOR(32)
#endif
#if VXR_SPAN_BYTES >= 64
VXR_SPAN_VECTOR(64)
#endif

#define VXR_SPAN_INLINE inline __attribute__((always_inline))

// What compilers don't find by themselves.

#if defined(__SSE2__)
/// (x + (x >> 8)) >> 8 without its overflow.
VXR_SPAN_INLINE Words16 shiftedQuotient(Words16 x)
{
    return Words16(_mm_mulhi_epu16(__m128i(x), _mm_set1_epi16(0x0101)));
}
VXR_SPAN_INLINE Bytes16 sum(Bytes16 a, Bytes16 b) { return Bytes16(_mm_adds_epu8(__m128i(a), __m128i(b))); }
VXR_SPAN_INLINE bool isZero(Pixels16 a)
{
    return _mm_movemask_epi8(_mm_cmpeq_epi32(__m128i(a), _mm_setzero_si128())) == 0xffff;
}
/// Each pixel's alpha in both of its halves.
VXR_SPAN_INLINE Words16 alphas(Pixels16 pixels)
{
    const Pixels16 alpha = pixels >> 24;
    return Words16(alpha | alpha << 16);
}
/// A byte for each pixel in both of its halves.
VXR_SPAN_INLINE Words16 factors(Vector<16>, const std::uint8_t* from)
{
    std::int32_t four;
    memcpy(&four, from, 4);
    const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128());
    return Words16(_mm_unpacklo_epi16(words, words));
}
#else
VXR_SPAN_INLINE Words16 shiftedQuotient(Words16 x) { return (x + (x >> 8)) >> 8; }
VXR_SPAN_INLINE Bytes16 sum(Bytes16 a, Bytes16 b)
{
    const Bytes16 room = ~a;
    return a + (b < room ? b : room);
}
VXR_SPAN_INLINE bool isZero(Pixels16 a) { return (a[0] | a[1] | a[2] | a[3]) == 0; }
VXR_SPAN_INLINE Words16 alphas(Pixels16 pixels)
{
    const Pixels16 alpha = pixels >> 24;
    return Words16(alpha | alpha << 16);
}
VXR_SPAN_INLINE Words16 factors(Vector<16>, const std::uint8_t* from)
{
    const Pixels16 factor { from[0], from[1], from[2], from[3] };
    return Words16(factor | factor << 16);
}
#endif

#if VXR_SPAN_BYTES >= 32
VXR_SPAN_INLINE Words32 shiftedQuotient(Words32 x)
{
    return Words32(_mm256_mulhi_epu16(__m256i(x), _mm256_set1_epi16(0x0101)));
}
VXR_SPAN_INLINE Bytes32 sum(Bytes32 a, Bytes32 b)
{
    return Bytes32(_mm256_adds_epu8(__m256i(a), __m256i(b)));
}
VXR_SPAN_INLINE bool isZero(Pixels32 a) { return _mm256_testz_si256(__m256i(a), __m256i(a)); }
VXR_SPAN_INLINE Words32 alphas(Pixels32 pixels)
{
    const __m256i upper = _mm256_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1, 3, -1,
        3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1);
    return Words32(_mm256_shuffle_epi8(__m256i(pixels), upper));
}
VXR_SPAN_INLINE Words32 factors(Vector<32>, const std::uint8_t* from)
{
    std::int64_t eight;
    memcpy(&eight, from, 8);
    const __m256i spread = _mm256_setr_epi8(0, -1, 0, -1, 1, -1, 1, -1, 2, -1, 2, -1, 3, -1, 3, -1, 4, -1, 4,
        -1, 5, -1, 5, -1, 6, -1, 6, -1, 7, -1, 7, -1);
    return Words32(_mm256_shuffle_epi8(_mm256_set1_epi64x(eight), spread));
}
#endif

#if VXR_SPAN_BYTES >= 64
VXR_SPAN_INLINE Words64 shiftedQuotient(Words64 x)
{
    return Words64(_mm512_mulhi_epu16(__m512i(x), _mm512_set1_epi16(0x0101)));
}
VXR_SPAN_INLINE Bytes64 sum(Bytes64 a, Bytes64 b)
{
    return Bytes64(_mm512_adds_epu8(__m512i(a), __m512i(b)));
}
VXR_SPAN_INLINE bool isZero(Pixels64 a) { return _mm512_test_epi32_mask(__m512i(a), __m512i(a)) == 0; }
VXR_SPAN_INLINE Words64 alphas(Pixels64 pixels)
{
    const __m512i upper
        = _mm512_broadcast_i32x4(_mm_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1));
    return Words64(_mm512_shuffle_epi8(__m512i(pixels), upper));
}
VXR_SPAN_INLINE Words64 factors(Vector<64>, const std::uint8_t* from)
{
    const __m512i bytes = _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
    return Words64(_mm512_or_si512(bytes, _mm512_slli_epi32(bytes, 16)));
}
#endif

// Arithmetic on vectors of any size.

template <int size> using Pixels = typename Vector<size>::Pixels;
template <int size> using Words = typename Vector<size>::Words;
template <int size> using Bytes = typename Vector<size>::Bytes;

template <int size> VXR_SPAN_INLINE Words<size> sameFactor(std::uint8_t factor)
{
    return Words<size> {} + factor;
}

/// Pixels with their bytes apart, as multiplications take them.
template <int size> struct Channels {
    Words<size> low, high;

    VXR_SPAN_INLINE explicit Channels(Pixels<size> pixels)
        : low(Words<size>(pixels & 0x00ff00ffu))
        , high(Words<size>(pixels) >> 8)
    {
    }
};

template <int size> VXR_SPAN_INLINE Pixels<size> product(const Channels<size>& pixels, Words<size> factor)
{
    const Words<size> low = shiftedQuotient(pixels.low * factor + 0x80);
    const Words<size> high = shiftedQuotient(pixels.high * factor + 0x80);
    return Pixels<size>(low | high << 8);
}

template <int size> VXR_SPAN_INLINE Pixels<size> over(Pixels<size> source, Pixels<size> destination)
{
    const Pixels<size> rest = product<size>(Channels<size>(destination), alphas(~source));
    return Pixels<size>(sum(Bytes<size>(source), Bytes<size>(rest)));
}

/// `a` by `factor` and `b` by what is left of 255.
template <int size>
VXR_SPAN_INLINE Pixels<size> mix(const Channels<size>& a, Pixels<size> b, Words<size> factor)
{
    const Words<size> rest = factor ^ 0xff;
    const Channels<size> other(b);
    const Words<size> low = shiftedQuotient(a.low * factor + other.low * rest + 0x80);
    const Words<size> high = shiftedQuotient(a.high * factor + other.high * rest + 0x80);
    return Pixels<size>(low | high << 8);
}

template <int size> VXR_SPAN_INLINE Pixels<size> load(const std::uint32_t* from)
{
    Pixels<size> pixels;
    memcpy(&pixels, from, size);
    return pixels;
}

template <int size> VXR_SPAN_INLINE void store(std::uint32_t* to, Pixels<size> pixels)
{
    memcpy(to, &pixels, size);
}

constexpr std::size_t widest = VXR_SPAN_BYTES / 4;

} // namespace

} // namespace vxr
