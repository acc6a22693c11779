#include <vxr/platform/graphics/pixels/ImageSampler.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

using namespace vxr;

namespace {

struct Picture {
    int width, height;
    std::vector<std::uint32_t> pixels;

    PixelSource source() const { return { pixels.data(), width, width, height }; }
    int level(int x, int y, int channel) const
    {
        const int column = std::clamp(x, 0, width - 1), row = std::clamp(y, 0, height - 1);
        return int(pixels[std::size_t(row * width + column)] >> 8 * channel & 0xff);
    }
};

Picture randomPicture(std::mt19937& random, int width, int height)
{
    Picture picture { width, height, {} };
    for (int i = 0; i < width * height; ++i) {
        const std::uint32_t alpha = random() % 256;
        std::uint32_t pixel = alpha << 24;
        for (int k = 0; k < 3; ++k)
            pixel |= random() % (alpha + 1) << 8 * k;
        picture.pixels.push_back(pixel);
    }
    return picture;
}

Picture greyPicture(int width, int height, const std::function<int(int, int)>& level)
{
    Picture picture { width, height, {} };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.pixels.push_back(0xff000000u | std::uint32_t(level(x, y)) * 0x010101u);
    return picture;
}

DeviceToImage scaled(double scale, double offset = 0)
{
    return { 1 / scale, 0, offset, 0, 1 / scale, offset };
}

DeviceToImage randomMap(std::mt19937& random, double least, double most)
{
    const double scale = least + (most - least) * double(random() % 1000) / 1000;
    const double angle = double(random() % 1000), offset = double(random() % 1000) / 100;
    return { scale * std::cos(angle), -scale * std::sin(angle), offset, scale * std::sin(angle),
        scale * std::cos(angle), -offset };
}

/// A kernel's weighted sum around a place of the image, whose pixels have their centres at halves.
double plainSample(const Picture& picture, double u, double v, int channel, double reach,
    const std::function<double(double)>& kernel)
{
    double sum = 0, weights = 0;
    for (int y = int(std::floor(v - reach)) - 1; y <= int(std::ceil(v + reach)); ++y)
        for (int x = int(std::floor(u - reach)) - 1; x <= int(std::ceil(u + reach)); ++x) {
            const double weight = kernel(std::abs(x + 0.5 - u)) * kernel(std::abs(y + 0.5 - v));
            sum += weight * picture.level(x, y, channel);
            weights += weight;
        }
    return sum / weights;
}

double cubicKernel(double x)
{
    const double b = 0.53, c = 0.235;
    if (x < 1)
        return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + 6 - 2 * b) / 6;
    if (x < 2)
        return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x - (12 * b + 48 * c) * x + 8 * b + 24 * c)
            / 6;
    return 0;
}

std::vector<std::uint32_t> sampled(const ImageSampler& sampler, int x, int y, std::size_t count)
{
    std::vector<std::uint32_t> memory(count);
    const std::uint32_t* pixels = sampler.fetch(x, y, count, memory.data());
    return { pixels, pixels + count };
}

} // namespace

TEST(ImageSampler, EnlargementsAndTurnsFollowTheirKernels)
{
    std::mt19937 random(31);
    const Picture picture = randomPicture(random, 23, 17);
    for (int trial = 0; trial < 60; ++trial) {
        const bool isCubic = trial % 2;
        // Turned, the box of a pixel is larger than the pixel from a scale of 0.7 on.
        const DeviceToImage map = randomMap(random, 0.01, isCubic ? 0.7 : 1.3);
        const ImageSampler sampler(picture.source(), map, isCubic ? Sampling::Best : Sampling::Linear);
        for (int y = -5; y < 40; y += 9) {
            const auto row = sampled(sampler, -20, y, 60);
            for (int i = 0; i < 60; ++i) {
                const double x = i - 19.5, middle = y + 0.5;
                const double u = map.xx * x + map.xy * middle + map.x0;
                const double v = map.yx * x + map.yy * middle + map.y0;
                int alpha = 255;
                for (int channel = 3; channel >= 0; --channel) {
                    const double expected = isCubic ? plainSample(picture, u, v, channel, 2, cubicKernel)
                                                    : plainSample(picture, u, v, channel, 1,
                                                        [](double d) { return std::max(0.0, 1 - d); });
                    const int level = int(row[std::size_t(i)] >> 8 * channel & 0xff);
                    // 128 and 256 places within a pixel.
                    ASSERT_NEAR(level, std::clamp(expected, 0.0, double(alpha)), isCubic ? 2.3 : 3)
                        << "trial " << trial << " at " << i << ", " << y;
                    alpha = channel == 3 ? level : alpha;
                }
            }
        }
    }
}

TEST(ImageSampler, ReductionsWeighEveryPixelByItsAreaAndLoseNone)
{
    std::mt19937 random(32);
    const Picture picture = randomPicture(random, 60, 45);
    for (const double size : { 1.3, 2.0, 7.25, 44.0 }) {
        const ImageSampler sampler(picture.source(), { size, 0, 0.125, 0, size, 0.25 }, Sampling::Best);
        for (int y = 0; (y + 1) * size + 1 < 45; ++y) {
            const auto row = sampled(sampler, 0, y, std::size_t(59 / size));
            for (std::size_t i = 0; i < row.size(); ++i) {
                const auto overlap = [&](double d) { return std::clamp(size / 2 + 0.5 - d, 0.0, 1.0); };
                const double u = (double(i) + 0.5) * size + 0.125, v = (y + 0.5) * size + 0.25;
                for (int channel = 0; channel < 4; ++channel)
                    ASSERT_NEAR(int(row[i] >> 8 * channel & 0xff),
                        plainSample(picture, u, v, channel, size / 2 + 1, overlap), 1.6)
                        << size << " at " << i << ", " << y;
            }
        }
    }
    // The light of a single pixel arrives wherever it lies; turned, by up to a fifth more or less.
    for (int place = 0; place < 400; place += 7) {
        for (const double angle : { 0.0, 0.6 }) {
            const Picture spot = greyPicture(
                40, 40, [&](int x, int y) { return x == 10 + place % 20 && y == 10 + place / 20 ? 255 : 0; });
            const double size = 2.5, c = size * std::cos(angle), s = size * std::sin(angle);
            const ImageSampler sampler(spot.source(), { c, -s, 20, s, c, 20 }, Sampling::Best);
            double light = 0;
            for (int y = -12; y < 12; ++y)
                for (const std::uint32_t pixel : sampled(sampler, -12, y, 24))
                    light += pixel & 0xff;
            EXPECT_NEAR(light * size * size, 255, angle == 0 ? 20 : 60) << place << " turned " << angle;
        }
    }
}

TEST(ImageSampler, EnlargedEdgesRingByLessThanTwoPercent)
{
    const Picture edge = greyPicture(20, 8, [](int x, int) { return x < 10 ? 50 : 200; });
    for (const double scale : { 1.2, 3.0, 17.0 }) {
        const ImageSampler sampler(edge.source(), scaled(scale), Sampling::Best);
        for (const std::uint32_t pixel : sampled(sampler, 0, int(4 * scale), std::size_t(20 * scale))) {
            EXPECT_GE(int(pixel & 0xff), 47) << scale;
            EXPECT_LE(int(pixel & 0xff), 203) << scale;
        }
    }
}

// A ramp from 100 to 104 by levels whose errors are passed on: wherever it is looked at, the mean is the
// ramp's.
TEST(ImageSampler, ADitheredRampKeepsItsMeansAtAnyStretch)
{
    double error = 0;
    std::mt19937 random(33);
    const auto ramp = [](double x) { return 100 + 4 * x / 400; };
    const Picture picture = greyPicture(400, 64, [&](int x, int) {
        const double wanted = ramp(x + 0.5) + error;
        const int level = int(std::floor(wanted + double(random() % 100) / 100 - 0.5 + 0.5));
        error = std::clamp(wanted - level, -1.0, 1.0);
        return level;
    });
    for (const double scale : { 0.1, 0.3, 0.7, 1.5, 2.5, 5.0, 20.0 }) {
        const ImageSampler sampler(picture.source(), scaled(scale), Sampling::Dithered);
        const int block = std::max(8, int(8 * scale)), columns = int(400 * scale), rows = int(64 * scale);
        std::vector<double> sums(std::size_t(columns / block), 0);
        const int lines = std::min(rows, 4 * block);
        for (int y = 0; y < lines; ++y) {
            const auto row = sampled(sampler, 0, y, std::size_t(columns));
            for (int x = 0; x < columns / block * block; ++x)
                sums[std::size_t(x / block)] += row[std::size_t(x)] & 0xff;
        }
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const double mean = sums[i] / (double(block) * lines);
            EXPECT_NEAR(mean, ramp((double(i) + 0.5) * block / scale), 0.25) << scale << " block " << i;
        }
    }
}

TEST(ImageSampler, EveryCutOfARowGivesTheSameBytes)
{
    std::mt19937 random(34);
    const Picture picture = randomPicture(random, 300, 200);
    for (int trial = 0; trial < 80; ++trial) {
        DeviceToImage map = randomMap(random, 0.05, trial % 5 ? 3 : 40);
        if (trial % 3 == 0)
            map = { map.xx, 0, map.x0, 0, map.yy, map.y0 };
        const ImageSampler sampler(picture.source(), map, Sampling(trial % 4));
        const int x = int(random() % 400) - 200, y = int(random() % 200) - 100;
        const auto whole = sampled(sampler, x, y, 200);
        for (std::size_t from = 0; from < whole.size();) {
            const std::size_t count = std::min<std::size_t>(whole.size() - from, 1 + random() % 30);
            const auto part = sampled(sampler, x + int(from), y, count);
            ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + std::ptrdiff_t(from))) << trial;
            from += count;
        }
    }
}

TEST(ImageSampler, EveryProcessorGivesTheSameBytes)
{
    std::mt19937 random(36);
    const Picture picture = randomPicture(random, 300, 40);
    constexpr int bits = 20;
    CubicWeights weights;
    for (auto& phase : weights) {
        phase[0] = std::int16_t(-int(random() % 900));
        phase[3] = std::int16_t(-int(random() % 900));
        phase[1] = std::int16_t(random() % 16384);
        phase[2] = std::int16_t(16384 - phase[0] - phase[1] - phase[3]);
    }
    std::uint8_t offsets[8];
    for (std::uint8_t& offset : offsets)
        offset = std::uint8_t(random() % 128);
    for (int trial = 0; trial < 300; ++trial) {
        ImageGrid grid { picture.source(), bits };
        const auto below = [&](int pixels) { return std::int64_t(random() % unsigned(pixels << bits)); };
        grid.columnU = below(trial % 7 ? 2 : 9) - (trial % 3 ? 0 : below(3));
        grid.columnV = trial % 2 ? 0 : below(1) - below(1);
        grid.boxWidth = 256 + std::int64_t(random() % 2000);
        grid.boxHeight = 256 + std::int64_t(random() % 2000);
        const std::int64_t u = below(400) - (50 << bits), v = below(60) - (10 << bits);
        const std::size_t count = 1 + random() % 150;
        const int x = int(random() % 50);
        using Span = std::vector<std::uint32_t>;
        std::array<Span, 3> expected;
        for (const SpanKernels* kernels : availableSpanKernels()) {
            std::array<Span, 3> spans { Span(count), Span(count), Span(count) };
            kernels->linear(grid, u, v, count, spans[0].data());
            kernels->cubic(grid, weights, weights, offsets, u, v, x, count, spans[1].data());
            kernels->average(grid, offsets, u, v, x, count, spans[2].data());
            if (expected[0].empty())
                expected = spans;
            ASSERT_EQ(spans, expected) << kernels->name << " " << trial;
        }
    }
}

TEST(ImageSampler, WholePixelsAreCopiedAndOutermostOnesGoOn)
{
    std::mt19937 random(35);
    const Picture picture = randomPicture(random, 5, 3);
    for (const auto sampling : { Sampling::Nearest, Sampling::Linear, Sampling::Best, Sampling::Dithered }) {
        const ImageSampler sampler(picture.source(), { 1, 0, -100, 0, 1, 7 }, sampling);
        std::vector<std::uint32_t> memory(9);
        EXPECT_EQ(sampler.fetch(101, -6, 3, memory.data()), &picture.pixels[6]);
        sampler.fetch(98, -20, 9, memory.data());
        const auto& p = picture.pixels;
        EXPECT_EQ(memory, (std::vector { p[0], p[0], p[0], p[1], p[2], p[3], p[4], p[4], p[4] }));
    }
    const PixelSource source = picture.source();
    for (const double bad : { double(NAN), double(HUGE_VALF), 1e300 })
        EXPECT_TRUE(ImageSampler(source, { bad, 0, 0, 0, 1, 0 }, Sampling::Best).isEmpty()) << bad;
    EXPECT_TRUE(ImageSampler({ source.pixels, 5, 0, 3 }, {}, Sampling::Best).isEmpty());
}
