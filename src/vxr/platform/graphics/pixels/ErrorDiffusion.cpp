#include <vxr/platform/graphics/pixels/ErrorDiffusion.h>

#include <algorithm>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vxr {

namespace {

constexpr int channels = 4;

/// Rows of 16-bit values as they are when their turn comes.
class PlainRows {
public:
    PlainRows(const std::uint16_t* row, int width)
        : mWidth(width)
        , mFirst(row, row + width * channels)
        , mNext(mFirst)
    {
    }

    void diffuse(std::uint8_t* output)
    {
        std::vector<std::uint16_t> values = std::move(mNext);
        mNext = mFirst;
        for (int i = 0; i < mWidth * channels; ++i) {
            const int x = i / channels;
            output[i] = std::uint8_t(values[std::size_t(i)] / 257);
            const int error = values[std::size_t(i)] - output[i] * 257;
            const int right = error * 7 / 16, belowLeft = error * 3 / 16, below = error * 5 / 16;
            if (x < mWidth - 1)
                add(values, i + channels, right);
            if (x > 0)
                add(mNext, i - channels, belowLeft);
            add(mNext, i, below);
            // The first column has no pixel below on its left, and that share is lost.
            if (x < mWidth - 1)
                add(mNext, i + channels, error - right - belowLeft - below);
        }
    }

private:
    static void add(std::vector<std::uint16_t>& values, int i, int error)
    {
        values[std::size_t(i)] = std::uint16_t(std::min(values[std::size_t(i)] + error, 65535));
    }

    int mWidth;
    std::vector<std::uint16_t> mFirst, mNext;
};

#if defined(__SSE2__)

// Eight rows at once, each two pixels behind the one above: what a pixel takes from the row above is known by
// then. A vector holds the four channels of two rows.
constexpr int rowsAtOnce = 8, vectors = rowsAtOnce / 2, lag = 2;
constexpr int margin = lag * rowsAtOnce; ///< pixels beside a row that lanes touch

class Wave {
public:
    Wave(const std::uint16_t* row, int width)
        : mWidth(width)
        , mBase(std::size_t(width + 2 * margin) * channels)
        , mInside(mBase.size())
        , mAbove(mBase.size())
    {
        std::copy(row, row + width * channels, mBase.begin() + margin * channels);
        std::fill_n(mInside.begin() + margin * channels, width * channels, std::uint16_t { 0xffff });
    }

    /// The next eight rows.
    void diffuse(std::uint8_t* output)
    {
        mRows = output;
        std::memset(mShares, 0, sizeof mShares);
        const int begin = lag * (rowsAtOnce - 1), end = mWidth;
        for (int x = 0; x < std::min(begin, mWidth + margin); ++x)
            step<true>(x);
        for (int x = begin; x < end; ++x)
            step<false>(x);
        for (int x = std::max(begin, end); x < mWidth + margin; ++x)
            step<true>(x);
    }

private:
    /// Errors that wait. The row below is two pixels behind: it takes the share to its left from the last
    /// step, the one below from two steps ago, the one to its right from three.
    struct Shares {
        __m128i right, belowLeft, belowSoon, belowNext, belowRight;
    };

    static __m128i two(const std::uint16_t* low, const std::uint16_t* high)
    {
        const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(low));
        return _mm_unpacklo_epi64(first, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(high)));
    }

    /// The values at `x` of the first row of a vector and two pixels behind of the second.
    static __m128i lanes(const std::vector<std::uint16_t>& values, int x)
    {
        const std::uint16_t* first = values.data() + (x + margin) * channels;
        return two(first, first - lag * channels);
    }

    /// The first row is at `x`.
    template <bool isAtEdge> inline __attribute__((always_inline)) void step(int x)
    {
        __m128i fromAbove
            = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(mAbove.data() + (x + margin) * channels));
        __m128i bytes[vectors];
        for (int i = 0; i < vectors; ++i) {
            Shares& shares = mShares[i];
            // What all earlier errors give to the row below, at the place that it has reached.
            const __m128i down = _mm_add_epi16(shares.belowLeft, shares.belowSoon);
            const __m128i taken = _mm_or_si128(fromAbove, _mm_slli_si128(down, 8));
            fromAbove = _mm_srli_si128(down, 8);

            const int at = x - lag * 2 * i;
            __m128i value = _mm_adds_epu16(lanes(mBase, at), _mm_add_epi16(taken, shares.right));
            if (isAtEdge)
                value = _mm_and_si128(value, lanes(mInside, at));
            // value / 257, exact for 16 bits
            const __m128i level = _mm_srli_epi16(_mm_mulhi_epu16(value, _mm_set1_epi16(short(0xff01))), 8);
            const __m128i error = _mm_sub_epi16(_mm_sub_epi16(value, _mm_slli_epi16(level, 8)), level);
            const __m128i threefold = _mm_add_epi16(error, _mm_add_epi16(error, error));
            const __m128i fourfold = _mm_slli_epi16(error, 2);
            shares.right = _mm_srli_epi16(_mm_add_epi16(fourfold, threefold), 4);
            const __m128i belowLeft = _mm_srli_epi16(threefold, 4);
            const __m128i below = _mm_srli_epi16(_mm_add_epi16(fourfold, error), 4);
            const __m128i belowRight
                = _mm_sub_epi16(_mm_sub_epi16(error, shares.right), _mm_add_epi16(belowLeft, below));
            shares.belowLeft = belowLeft;
            shares.belowSoon = shares.belowNext;
            shares.belowNext = _mm_add_epi16(below, shares.belowRight);
            shares.belowRight = belowRight;
            bytes[i] = level;
        }
        _mm_storel_epi64(
            reinterpret_cast<__m128i*>(mAbove.data() + (x - lag * rowsAtOnce + margin) * channels),
            fromAbove);
        for (int i = 0; i < vectors; i += 2)
            store<isAtEdge>(_mm_packus_epi16(bytes[i], bytes[i + 1]), 2 * i, x);
    }

    template <bool isAtEdge> void store(__m128i pixels, int row, int x)
    {
        for (int i = 0; i < 4; ++i, ++row) {
            const int at = x - lag * row;
            if (!isAtEdge || (at >= 0 && at < mWidth)) {
                const int pixel = _mm_cvtsi128_si32(pixels);
                std::memcpy(mRows + (std::ptrdiff_t(row) * mWidth + at) * channels, &pixel, 4);
            }
            pixels = _mm_srli_si128(pixels, 4);
        }
    }

    int mWidth;
    std::vector<std::uint16_t> mBase; ///< the values that every row begins with, zeros beside them
    std::vector<std::uint16_t> mInside; ///< all bits set for a row's pixels
    std::vector<std::uint16_t> mAbove; ///< what the last row of the wave before gives to each pixel
    Shares mShares[vectors];
    std::uint8_t* mRows = nullptr;
};

#endif

} // namespace

void diffuseErrorsPlainly(const std::uint16_t* row, int width, int height, std::uint8_t* output)
{
    PlainRows rows(row, width);
    for (int y = 0; y < height; ++y)
        rows.diffuse(output + std::ptrdiff_t(y) * width * channels);
}

void diffuseErrors(const std::uint16_t* row, int width, int height, std::uint8_t* output)
{
#if defined(__SSE2__)
    if (height % rowsAtOnce == 0 && width > margin) {
        Wave wave(row, width);
        for (int y = 0; y < height; y += rowsAtOnce)
            wave.diffuse(output + std::ptrdiff_t(y) * width * channels);
        return;
    }
#endif
    diffuseErrorsPlainly(row, width, height, output);
}

} // namespace vxr
