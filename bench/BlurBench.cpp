#include <bench/Compare.h>

#include <vxr/platform/graphics/pixels/Blur.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

// The library's blur beside the same scheme in its plainest form: three boxes of whole pixels, in strips
// of 64 columns whose rows stay in the cache, written transposed. This file is compiled with the flags
// of the blur itself.

namespace {

using vxr::bench::atMost;
using vxr::bench::Pair;

constexpr int strip = 64;

struct PlainBox {
    int before, after;
};

/// The usual three boxes for a Gaussian: all of one odd width, or two even ones shifted apart and one
/// that is a pixel wider.
std::array<PlainBox, 3> plainBoxes(double sigma)
{
    const int width = static_cast<int>(std::floor(sigma * 3 * std::sqrt(2 * M_PI) / 4 + 0.5));
    const int half = width / 2;
    if (width % 2)
        return { PlainBox { half, half }, { half, half }, { half, half } };
    return { PlainBox { half, half - 1 }, { half - 1, half }, { half, half } };
}

void plainPass(const std::uint16_t* source, std::uint16_t* target, int rows, PlainBox box)
{
    static const std::uint16_t zero[strip] = {};
    const auto row = [&](int y) { return y < 0 || y >= rows ? zero : source + std::ptrdiff_t { y } * strip; };
    const float scale = 1.0f / static_cast<float>(box.before + box.after + 1);
    float sum[strip] = {};
    for (int y = 0; y < std::min(box.after, rows); ++y)
        for (int x = 0; x < strip; ++x)
            sum[x] += row(y)[x];
    for (int y = 0; y < rows; ++y, target += strip) {
        const std::uint16_t* entering = row(y + box.after);
        const std::uint16_t* leaving = row(y - box.before - 1);
        for (int x = 0; x < strip; ++x) {
            sum[x] += static_cast<float>(entering[x] - leaving[x]);
            target[x] = static_cast<std::uint16_t>(static_cast<int>(sum[x] * scale + 0.5f));
        }
    }
}

template <class Source, class Target>
void plainHalf(
    const Source* source, Target* target, int width, int height, double sigma, int shiftIn, int shiftOut)
{
    const auto boxes = plainBoxes(sigma);
    const std::size_t size = static_cast<std::size_t>(height) * strip;
    std::vector<std::uint16_t> a(size), b(size);
    const int half = shiftOut ? 1 << (shiftOut - 1) : 0;
    for (int x0 = 0; x0 < width; x0 += strip) {
        const int columns = std::min(strip, width - x0);
        for (int y = 0; y < height; ++y) {
            const Source* in = source + std::ptrdiff_t { y } * width + x0;
            std::uint16_t* out = a.data() + std::ptrdiff_t { y } * strip;
            for (int x = 0; x < columns; ++x)
                out[x] = static_cast<std::uint16_t>(in[x] << shiftIn);
            std::fill(out + columns, out + strip, std::uint16_t { 0 });
        }
        plainPass(a.data(), b.data(), height, boxes[0]);
        plainPass(b.data(), a.data(), height, boxes[1]);
        plainPass(a.data(), b.data(), height, boxes[2]);
        for (int y0 = 0; y0 < height; y0 += 32) {
            const int y1 = std::min(height, y0 + 32);
            for (int x = 0; x < columns; ++x) {
                Target* out = target + std::ptrdiff_t { x0 + x } * height;
                for (int y = y0; y < y1; ++y)
                    out[y] = static_cast<Target>(
                        (b[static_cast<std::size_t>(y * strip + x)] + half) >> shiftOut);
            }
        }
    }
}

struct Masks {
    int width, height;
    std::vector<std::uint8_t> source, target;
    std::vector<std::uint16_t> between;
};

/// Rectangles of full and partial coverage all over the mask.
std::shared_ptr<Masks> makeMasks(int width, int height)
{
    const std::size_t area = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    auto masks = std::make_shared<Masks>(Masks { width, height, std::vector<std::uint8_t>(area),
        std::vector<std::uint8_t>(area), std::vector<std::uint16_t>(area) });
    std::mt19937 random(3);
    for (int k = 0; k < 30; ++k) {
        const int left = static_cast<int>(random() % static_cast<unsigned>(width * 4 / 5));
        const int top = static_cast<int>(random() % static_cast<unsigned>(height * 4 / 5));
        const int right
            = std::min(width, left + 1 + static_cast<int>(random() % static_cast<unsigned>(width / 3)));
        const int bottom
            = std::min(height, top + 1 + static_cast<int>(random() % static_cast<unsigned>(height / 5)));
        const auto value = static_cast<std::uint8_t>(k % 3 ? 255 : random());
        for (int y = top; y < bottom; ++y)
            std::fill(
                masks->source.begin() + y * width + left, masks->source.begin() + y * width + right, value);
    }
    return masks;
}

Pair blurPair(int width, int height, float sigma)
{
    auto masks = makeMasks(width, height);
    return {
        [masks, sigma] {
            vxr::blurA8(masks->source.data(), masks->width, masks->width, masks->height, sigma,
                masks->target.data(), masks->width);
        },
        [masks, sigma] {
            plainHalf(masks->source.data(), masks->between.data(), masks->width, masks->height, sigma, 8, 0);
            plainHalf(masks->between.data(), masks->target.data(), masks->height, masks->width, sigma, 0, 8);
        },
    };
}

const int registered[] = {
    vxr::bench::compare("BLUR/sigma10-1000x1000", atMost(1.5), [] { return blurPair(1000, 1000, 10); }),
    vxr::bench::compare("BLUR/sigma40-1000x1000", atMost(1.5), [] { return blurPair(1000, 1000, 40); }),
    vxr::bench::compare("BLUR/sigma3-200x200", atMost(1.5), [] { return blurPair(200, 200, 3); }),
};

} // namespace
