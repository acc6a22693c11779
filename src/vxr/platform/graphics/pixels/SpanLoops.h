// The loops of SpanKernels.h for one instruction set. Included once by each
// source that makes a set of loops, with VXR_SPAN_BYTES defined as the size of
// its widest vector; everything here has internal linkage, since those sources
// are compiled for processors that others may not have.

#include <vxr/platform/graphics/pixels/RadialBlend.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

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

// What is blended: `at<size>(i)` is a vector of it from pixel i on. `few` makes
// the same from up to three pixels that is as long as a vector.

struct OneColor {
    std::uint32_t color;

    template <int size> VXR_SPAN_INLINE Pixels<size> at(std::size_t) const { return Pixels<size> {} + color; }
    VXR_SPAN_INLINE OneColor few(std::size_t, std::uint32_t*) const { return *this; }
};

struct SourceSpan {
    const std::uint32_t* source;

    template <int size> VXR_SPAN_INLINE Pixels<size> at(std::size_t i) const
    {
        return load<size>(source + i);
    }
    VXR_SPAN_INLINE SourceSpan few(std::size_t count, std::uint32_t* memory) const
    {
        for (std::size_t i = 0; i < count; ++i)
            memory[i] = source[i];
        return { memory };
    }
};

// Coverages. What is known of a whole vector saves work.

enum class Seen { Nothing, Part, All };

struct FullCoverage {
    VXR_SPAN_INLINE FullCoverage few(std::size_t, std::uint8_t*) const { return {}; }
    VXR_SPAN_INLINE Seen seen(std::size_t) const { return Seen::All; }
};

struct OneCoverage {
    std::uint8_t coverage;

    template <int size> VXR_SPAN_INLINE Words<size> at(std::size_t) const
    {
        return sameFactor<size>(coverage);
    }
    VXR_SPAN_INLINE OneCoverage few(std::size_t, std::uint8_t*) const { return *this; }
    VXR_SPAN_INLINE Seen seen(std::size_t) const { return Seen::Part; }
};

struct Mask {
    const std::uint8_t* coverage;

    template <int size> VXR_SPAN_INLINE Words<size> at(std::size_t i) const
    {
        return factors(Vector<size> {}, coverage + i);
    }
    VXR_SPAN_INLINE Mask few(std::size_t count, std::uint8_t* memory) const
    {
        for (std::size_t i = 0; i < count; ++i)
            memory[i] = coverage[i];
        return { memory };
    }
    VXR_SPAN_INLINE Seen seen(std::size_t i) const
    {
        std::uint64_t any = 0, all = ~any;
        for (std::size_t part = 0; part < widest; part += 8) {
            std::uint64_t bytes = 0;
            memcpy(&bytes, coverage + i + part, widest < 8 ? widest : 8);
            if (widest < 8)
                bytes |= bytes << 32;
            any |= bytes;
            all &= bytes;
        }
        return !any ? Seen::Nothing : !~all ? Seen::All : Seen::Part;
    }
};

// Operations.

struct Over {
    template <int size>
    static VXR_SPAN_INLINE Pixels<size> full(Pixels<size> source, Pixels<size> destination)
    {
        return over<size>(source, destination);
    }
    template <int size>
    static VXR_SPAN_INLINE Pixels<size> part(
        Pixels<size> source, Pixels<size> destination, Words<size> coverage)
    {
        return over<size>(product<size>(Channels<size>(source), coverage), destination);
    }
};

struct Copy {
    template <int size> static VXR_SPAN_INLINE Pixels<size> full(Pixels<size> source, Pixels<size>)
    {
        return source;
    }
    template <int size>
    static VXR_SPAN_INLINE Pixels<size> part(
        Pixels<size> source, Pixels<size> destination, Words<size> coverage)
    {
        return mix<size>(Channels<size>(source), destination, coverage);
    }
};

template <class Operation, int size, class Source>
VXR_SPAN_INLINE Pixels<size> blended(
    std::uint32_t* destination, std::size_t i, const Source& source, const FullCoverage&)
{
    return Operation::template full<size>(source.template at<size>(i), load<size>(destination + i));
}

template <class Operation, int size, class Source, class Coverage>
VXR_SPAN_INLINE Pixels<size> blended(
    std::uint32_t* destination, std::size_t i, const Source& source, const Coverage& coverage)
{
    return Operation::template part<size>(
        source.template at<size>(i), load<size>(destination + i), coverage.template at<size>(i));
}

/// Blends a widest vector in place. Most of a layer is opaque or empty, and so
/// is most of a mask.
template <class Operation, class Source, class Coverage>
VXR_SPAN_INLINE void step(
    std::uint32_t* destination, std::size_t i, const Source& source, const Coverage& coverage)
{
    constexpr int size = VXR_SPAN_BYTES;
    const Seen seen = coverage.seen(i);
    if (seen == Seen::Nothing)
        return;
    if (seen == Seen::Part) {
        store<size>(destination + i, blended<Operation, size>(destination, i, source, coverage));
        return;
    }
    const Pixels<size> pixels = source.template at<size>(i);
    if constexpr (__is_same(Operation, Over)) {
        constexpr std::uint32_t opaque = 0xff000000u;
        if (isZero(~pixels & opaque)) {
            store<size>(destination + i, pixels);
            return;
        }
        if (isZero(pixels))
            return;
    }
    store<size>(destination + i, Operation::template full<size>(pixels, load<size>(destination + i)));
}

// Where a span is not whole vectors, its last two overlap. Both are blended before either is stored, so that
// no pixel is blended twice. They are the last to be touched: memory is read in order.

template <class Operation, int size, class Source, class Coverage>
VXR_SPAN_INLINE void blendTwo(std::uint32_t* destination, std::size_t i, std::size_t count,
    const Source& source, const Coverage& coverage)
{
    const std::size_t last = count - Vector<size>::lanes;
    const Pixels<size> first = blended<Operation, size>(destination, i, source, coverage);
    const Pixels<size> end = blended<Operation, size>(destination, last, source, coverage);
    store<size>(destination + i, first);
    store<size>(destination + last, end);
}

template <class Operation, class Source, class Coverage>
VXR_SPAN_INLINE void blend(
    std::uint32_t* destination, std::size_t count, const Source& source, const Coverage& coverage)
{
    constexpr int size = VXR_SPAN_BYTES;
    if (count >= widest) {
        std::size_t i = 0;
        for (; i + 2 * widest <= count; i += widest)
            step<Operation>(destination, i, source, coverage);
        blendTwo<Operation, size>(destination, i, count, source, coverage);
        return;
    }
#if VXR_SPAN_BYTES >= 64
    if (count >= 8) {
        blendTwo<Operation, 32>(destination, 0, count, source, coverage);
        return;
    }
#endif
    if (count >= 4) {
        blendTwo<Operation, 16>(destination, 0, count, source, coverage);
        return;
    }
    std::uint32_t pixels[4] = {}, sources[4] = {};
    std::uint8_t coverages[4] = {};
    for (std::size_t i = 0; i < count; ++i)
        pixels[i] = destination[i];
    const Pixels<16> result
        = blended<Operation, 16>(pixels, 0, source.few(count, sources), coverage.few(count, coverages));
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = result[i];
}

std::uint32_t fadedColor(std::uint32_t color, std::uint8_t coverage)
{
    return product<16>(Channels<16>(Pixels<16> {} + color), sameFactor<16>(coverage))[0];
}

// The functions of the table.

void fill(std::uint32_t* destination, std::size_t count, std::uint32_t color)
{
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = color;
}

void copyColor(std::uint32_t* destination, std::size_t count, std::uint32_t color, std::uint8_t coverage)
{
    if (coverage == 255)
        fill(destination, count, color);
    else if (coverage)
        blend<Copy>(destination, count, OneColor { color }, OneCoverage { coverage });
}

void copyColorMask(
    std::uint32_t* destination, std::size_t count, std::uint32_t color, const std::uint8_t* coverage)
{
    blend<Copy>(destination, count, OneColor { color }, Mask { coverage });
}

void copyPixels(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, std::uint8_t coverage)
{
    if (coverage == 255)
        memcpy(destination, source, count * 4);
    else if (coverage)
        blend<Copy>(destination, count, SourceSpan { source }, OneCoverage { coverage });
}

void copyPixelsMask(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, const std::uint8_t* coverage)
{
    blend<Copy>(destination, count, SourceSpan { source }, Mask { coverage });
}

void clearColor(std::uint32_t* destination, std::size_t count, std::uint32_t, std::uint8_t coverage)
{
    copyColor(destination, count, 0, coverage);
}

void clearColorMask(
    std::uint32_t* destination, std::size_t count, std::uint32_t, const std::uint8_t* coverage)
{
    copyColorMask(destination, count, 0, coverage);
}

void clearPixels(std::uint32_t* destination, std::size_t count, const std::uint32_t*, std::uint8_t coverage)
{
    copyColor(destination, count, 0, coverage);
}

void clearPixelsMask(
    std::uint32_t* destination, std::size_t count, const std::uint32_t*, const std::uint8_t* coverage)
{
    copyColorMask(destination, count, 0, coverage);
}

void overColor(std::uint32_t* destination, std::size_t count, std::uint32_t color, std::uint8_t coverage)
{
    const std::uint32_t faded = coverage == 255 ? color : fadedColor(color, coverage);
    if (faded >> 24 == 255)
        fill(destination, count, faded);
    else if (faded)
        blend<Over>(destination, count, OneColor { faded }, FullCoverage {});
}

void overColorMask(
    std::uint32_t* destination, std::size_t count, std::uint32_t color, const std::uint8_t* coverage)
{
    if (color)
        blend<Over>(destination, count, OneColor { color }, Mask { coverage });
}

void overPixels(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, std::uint8_t coverage)
{
    if (coverage == 255)
        blend<Over>(destination, count, SourceSpan { source }, FullCoverage {});
    else if (coverage)
        blend<Over>(destination, count, SourceSpan { source }, OneCoverage { coverage });
}

void overPixelsMask(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, const std::uint8_t* coverage)
{
    blend<Over>(destination, count, SourceSpan { source }, Mask { coverage });
}

void fade(std::uint32_t* target, const std::uint32_t* source, std::size_t count, std::uint8_t factor)
{
    constexpr int size = VXR_SPAN_BYTES;
    std::size_t i = 0;
    for (; i + widest <= count; i += widest) {
        const Channels<size> pixels(load<size>(source + i));
        store<size>(target + i, product<size>(pixels, sameFactor<size>(factor)));
    }
    for (; i < count; ++i)
        target[i] = fadedColor(source[i], factor);
}

/// Swaps bytes; what is not opaque is premultiplied.
void toNative(std::uint32_t* target, const std::uint32_t* source, std::size_t count, bool isOpaque)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel;
        std::uint8_t bytes[4];
        memcpy(bytes, source + i, 4);
        pixel = std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
        if (isOpaque)
            pixel |= 0xff000000u;
        else
            pixel = fadedColor(pixel, bytes[0]) | std::uint32_t(bytes[0]) << 24;
        target[i] = pixel;
    }
}

/// Colours that exceed their alpha become as large as it.
void limitToAlpha(std::uint32_t* pixels, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = pixels[i], alpha = pixel >> 24;
        const std::uint32_t red = pixel >> 16 & 0xff, green = pixel >> 8 & 0xff, blue = pixel & 0xff;
        pixels[i] = alpha << 24 | (red < alpha ? red : alpha) << 16 | (green < alpha ? green : alpha) << 8
            | (blue < alpha ? blue : alpha);
    }
}

void multiplyMask(std::uint8_t* mask, const std::uint8_t* other, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        mask[i] = multiplyBytes(mask[i], other[i]);
}

void fadeMask(std::uint8_t* mask, std::size_t count, std::uint8_t factor)
{
    for (std::size_t i = 0; i < count; ++i)
        mask[i] = multiplyBytes(mask[i], factor);
}

// Cells to coverage. `Rule` turns sums into areas inside, vectors of four or
// eight.

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

// Radial blends. Coordinates are taken in double precision at every 16th column
// and in single precision between, so that a pixel's don't depend on the span.

constexpr int radialGroup = 16;

/// The place of a parameter that may lie beyond the table's ends, or not be a
/// number.
VXR_SPAN_INLINE std::int32_t placeWithin(float at, float last)
{
    float within = at > 0 ? at : 0;
    within = within < last ? within : last;
    const auto place = std::int32_t(within + 0.5f);
    const std::int32_t end = std::int32_t(last) + 1;
    return at < 0 ? -1 : at > last ? end : place;
}

VXR_SPAN_INLINE void placesWithin(const RadialBlend& blend, float u0, float v0, std::int32_t* places)
{
    const float du = float(blend.columnU), dv = float(blend.columnV);
    for (int i = 0; i < radialGroup; ++i) {
        const float u = u0 + float(i) * du, v = v0 + float(i) * dv;
        const float at = blend.origin + blend.slope * u + blend.side * __builtin_sqrtf(u * u + v * v);
        places[i] = placeWithin(at, blend.last);
    }
}

VXR_SPAN_INLINE void placesOnCone(const RadialBlend& blend, float u0, float v0, std::int32_t* places)
{
    const float du = float(blend.columnU), dv = float(blend.columnV), last = blend.last;
    const float least = blend.extendsStart ? -3e38f : 0, most = blend.extendsEnd ? 3e38f : last;
    const float side = blend.side, origin = blend.origin, slope = blend.slope;
    const std::int32_t none = std::int32_t(last) + 2;
    for (int i = 0; i < radialGroup; ++i) {
        const float u = u0 + float(i) * du, v = v0 + float(i) * dv;
        const float square = u * u - v * v;
        const float root = __builtin_sqrtf(square > 0 ? square : 0), middle = origin + slope * u;
        const float greater = middle + root, smaller = middle - root;
        const float inside = greater < least ? smaller : greater, at = inside > most ? smaller : inside;
        std::int32_t place = placeWithin(at, last);
        place = at < least ? none : place;
        place = at > most ? none : place;
        place = square < 0 ? none : place;
        places[i] = u * side < 0 ? none : place;
    }
}

template <bool isCone>
VXR_SPAN_INLINE void radialSpan(
    const RadialBlend& blend, double u, double v, int x, std::size_t count, std::uint32_t* colors)
{
    const std::int64_t begin = x, end = begin + std::int64_t(count);
    for (std::int64_t group = begin & -std::int64_t(radialGroup); group < end; group += radialGroup) {
        std::int32_t places[radialGroup];
        const float u0 = float(u + blend.columnU * double(group));
        const float v0 = float(v + blend.columnV * double(group));
        if (isCone)
            placesOnCone(blend, u0, v0, places);
        else
            placesWithin(blend, u0, v0, places);
        const std::int64_t first = group < begin ? begin - group : 0;
        const std::int64_t stop = end - group < radialGroup ? end - group : radialGroup;
        std::uint32_t* to = colors + (group - begin);
        for (std::int64_t i = first; i < stop; ++i)
            to[i] = blend.colors[places[i]];
    }
}

void radial(const RadialBlend& blend, double u, double v, int x, std::size_t count, std::uint32_t* colors)
{
    if (blend.isCone)
        radialSpan<true>(blend, u, v, x, count, colors);
    else
        radialSpan<false>(blend, u, v, x, count, colors);
}

} // namespace

} // namespace vxr

#include <vxr/platform/graphics/pixels/ImageLoops.h>

namespace vxr {

namespace {

constexpr SpanKernels kernelsNamed(const char* name)
{
    return { name,
        { { clearColor, clearColorMask, clearPixels, clearPixelsMask },
            { copyColor, copyColorMask, copyPixels, copyPixelsMask },
            { overColor, overColorMask, overPixels, overPixelsMask } },
        fade, toNative, limitToAlpha, multiplyMask, fadeMask, sumCells<NonZero>, sumCells<EvenOdd>, radial,
        linear, cubic, average };
}

} // namespace

} // namespace vxr
