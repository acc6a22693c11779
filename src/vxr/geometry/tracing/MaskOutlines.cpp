#include <vxr/geometry/tracing/MaskOutlines.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <memory>
#include <new>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vxr {

namespace {

/// Which of 64 pixels are inside; the first one is the lowest bit.
std::uint64_t bitsOf(const std::uint8_t* p, std::uint8_t threshold)
{
    std::uint64_t bits = 0;
#if defined(__SSE2__)
    const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
    for (int i = 0; i < 4; ++i) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
        const auto inside
            = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(v, limit), v)));
        bits |= static_cast<std::uint64_t>(inside) << (16 * i);
    }
#else
    for (int i = 0; i < 64; ++i)
        bits |= static_cast<std::uint64_t>(p[i] >= threshold) << i;
#endif
    return bits;
}

struct Freer {
    void operator()(void* memory) const { std::free(memory); }
};
using Words = std::unique_ptr<std::uint64_t[], Freer>;

/// Pages that are never written take no memory and no time.
Words zeroedWords(std::size_t count)
{
    Words words(static_cast<std::uint64_t*>(std::calloc(count, sizeof(std::uint64_t))));
    if (!words)
        throw std::bad_alloc();
    return words;
}

/// The mask as bits, with a frame of pixels outside: a column before and after, a row above and below.
class Bits {
public:
    Bits(const MaskView& mask, std::uint8_t threshold)
        : mWords((static_cast<std::size_t>(mask.width) + 2 + 63) / 64)
        , mBits(zeroedWords((static_cast<std::size_t>(mask.height) + 2) * mWords))
    {
        const auto width = static_cast<std::size_t>(mask.width);
        for (int y = 0; y < mask.height; ++y) {
            const std::uint8_t* p = mask.pixels + static_cast<std::size_t>(y) * mask.bytesPerRow;
            std::uint64_t* row = mBits.get() + static_cast<std::size_t>(y + 1) * mWords;
            std::uint64_t carry = 0;
            std::size_t x = 0, word = 0;
            for (; x + 64 <= width; x += 64, ++word) {
                const std::uint64_t bits = bitsOf(p + x, threshold);
                row[word] = bits << 1 | carry;
                carry = bits >> 63;
            }
            std::uint64_t rest = 0;
            for (std::size_t i = 0; x + i < width; ++i)
                rest |= static_cast<std::uint64_t>(p[x + i] >= threshold) << i;
            row[word] = rest << 1 | carry;
            if (word + 1 < mWords)
                row[word + 1] = rest >> 63;
        }
    }

    std::size_t words() const { return mWords; }
    /// The row of pixels y, from -1 to the height.
    const std::uint64_t* row(std::int32_t y) const
    {
        return mBits.get() + static_cast<std::size_t>(y + 1) * mWords;
    }
    bool at(std::int32_t x, std::int32_t y) const
    {
        const auto bit = static_cast<std::size_t>(x + 1);
        return row(y)[bit / 64] >> (bit % 64) & 1;
    }

private:
    std::size_t mWords;
    Words mBits;
};

class OutlineWalker {
public:
    OutlineWalker(const MaskView& mask, const MaskOutlineOptions& options)
        : mOptions(options)
        , mHeight(mask.height)
        , mBits(mask, options.threshold)
        , mSeen(zeroedWords(mBits.words() * static_cast<std::size_t>(mask.height)))
    {
    }

    MaskOutlines run()
    {
        for (std::int32_t y = 0; y < mHeight && mResult.complete; ++y) {
            // Every outline has an upper edge of a pixel. Those below the first found are marked by then.
            const std::uint64_t *row = mBits.row(y), *above = mBits.row(y - 1);
            for (std::size_t word = 0; word < mBits.words() && mResult.complete; ++word) {
                const std::uint64_t edges = row[word] & ~above[word];
                if (edges == 0)
                    continue;
                std::uint64_t& seen = mSeen[static_cast<std::size_t>(y) * mBits.words() + word];
                while (std::uint64_t left = edges & ~seen) {
                    const auto bit = static_cast<std::size_t>(std::countr_zero(left));
                    follow(static_cast<std::int32_t>(word * 64 + bit) - 1, y);
                    if (!mResult.complete)
                        break;
                }
            }
        }
        return std::move(mResult);
    }

private:
    /// Walks around from the upper left corner of a pixel, to the right. The pixels on the right-hand side
    /// are inside.
    void follow(const std::int32_t startX, const std::int32_t startY)
    {
        auto& corners = mResult.corners;
        const std::size_t first = corners.size();
        std::int32_t x = startX, y = startY, dx = 1, dy = 0;
        std::int64_t area = 0;
        do {
            if (dx == 1)
                mark(x, y);
            x += dx;
            y += dy;
            area += static_cast<std::int64_t>(x) * dy;
            // The pixels ahead, to the left and to the right of the way.
            const std::int32_t aheadX = x + (dx - 1) / 2, aheadY = y + (dy - 1) / 2;
            const bool right = mBits.at(dx != 0 ? aheadX : x - (dy == 1), dx != 0 ? y - (dx == -1) : aheadY);
            if (!right) {
                turn(x, y, -dy, dx, dx, dy);
                continue;
            }
            const bool left = mBits.at(dx != 0 ? aheadX : x - (dy == -1), dx != 0 ? y - (dx == 1) : aheadY);
            if (left)
                turn(x, y, dy, -dx, dx, dy);
        } while (x != startX || y != startY || dx != 1);

        if (std::abs(area) < mOptions.leastArea) {
            corners.resize(first);
            ++mResult.dropped;
            return;
        }
        if (mResult.outlines.size() >= mOptions.mostOutlines || corners.size() > mOptions.mostCorners) {
            corners.resize(first);
            mResult.complete = false;
            return;
        }
        mResult.outlines.push_back({ first, corners.size() - first, area });
    }

    void turn(std::int32_t x, std::int32_t y, std::int32_t newX, std::int32_t newY, std::int32_t& dx,
        std::int32_t& dy)
    {
        mResult.corners.push_back({ x, y });
        dx = newX;
        dy = newY;
    }

    void mark(std::int32_t x, std::int32_t y)
    {
        const auto bit = static_cast<std::size_t>(x + 1);
        mSeen[static_cast<std::size_t>(y) * mBits.words() + bit / 64] |= std::uint64_t(1) << (bit % 64);
    }

    const MaskOutlineOptions& mOptions;
    std::int32_t mHeight;
    Bits mBits;
    Words mSeen; ///< upper edges of pixels that belong to an outline found
    MaskOutlines mResult;
};

} // namespace

MaskOutlines outlinesOfMask(const MaskView& mask, const MaskOutlineOptions& options)
{
    constexpr int mostSide = 1 << 20;
    if (!mask.pixels || mask.width <= 0 || mask.height <= 0 || mask.width > mostSide || mask.height > mostSide
        || mask.bytesPerRow < static_cast<std::size_t>(mask.width))
        return {};
    return OutlineWalker(mask, options).run();
}

} // namespace vxr
