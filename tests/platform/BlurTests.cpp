#include <vxr/platform/graphics/pixels/Blur.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

using namespace vxr;

namespace {

struct Mask {
    int width, height, stride = width;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(static_cast<std::size_t>(stride * height));

    std::uint8_t& at(int x, int y) { return bytes[static_cast<std::size_t>(y * stride + x)]; }
    int at(int x, int y) const { return bytes[static_cast<std::size_t>(y * stride + x)]; }
    void fill(int left, int top, int right, int bottom)
    {
        for (int y = top; y < bottom; ++y)
            std::fill(&at(left, y), &at(left, y) + (right - left), 255);
    }
};

Mask blurred(const Mask& mask, float sigma)
{
    Mask result { mask.width, mask.height };
    blurA8(mask.bytes.data(), mask.width, mask.width, mask.height, sigma, result.bytes.data(), mask.width);
    return result;
}

Mask noise(int width, int height)
{
    Mask mask { width, height };
    std::mt19937 random(3);
    for (auto& byte : mask.bytes)
        byte = static_cast<std::uint8_t>(random());
    return mask;
}

/// A bar of pixels [from, to) seen through a Gaussian at pixel x, the Gaussian's share of each pixel added
/// up.
double barAt(int x, int from, int to, double sigma)
{
    const double unit = sigma * M_SQRT2;
    return (std::erf((to - x - 0.5) / unit) - std::erf((from - x - 0.5) / unit)) / 2;
}

TEST(Blur, StaysNearAGaussian)
{
    for (const float sigma : { 0.4f, 0.5f, 1.0f, 1.5f, 1.99f, 2.0f, 2.35f, 2.8f, 3.33f, 3.49f, 3.5f, 3.9f,
             4.6f, 5.0f, 6.6f, 8.32f, 9.98f, 14.1f, 25.0f, 61.3f }) {
        const int begin = blurReach(sigma) + 1; // off the edges
        for (const auto& [width, height] : { std::pair { 130, 31 }, { 3, 99 } }) {
            Mask mask { 2 * begin + width, 2 * begin + height };
            mask.fill(begin, begin, begin + width, begin + height);
            const Mask result = blurred(mask, sigma);
            for (int y = 0; y < mask.height; ++y)
                for (int x = 0; x < mask.width; ++x)
                    ASSERT_NEAR(result.at(x, y),
                        255 * barAt(x, begin, begin + width, sigma) * barAt(y, begin, begin + height, sigma),
                        3)
                        << sigma;
        }
    }
}

TEST(Blur, EndsAtThreeStandardDeviations)
{
    for (const float sigma : { 0.3f, 0.5f, 1.2f, 2.0f, 2.34f, 5.0f, 8.7f }) {
        const int reach = blurReach(sigma);
        EXPECT_EQ(reach, static_cast<int>(std::floor(3 * sigma)));
        const int edge = 2 * reach + 20, middle = reach + 5;
        Mask mask { edge + reach + 5, 2 * middle };
        mask.fill(0, 0, edge, mask.height);
        const Mask result = blurred(mask, sigma);
        EXPECT_EQ(result.at(edge - reach - 1, middle), 255) << sigma; // nothing but 255 within reach
        EXPECT_EQ(result.at(edge + reach, middle), 0) << sigma;
        for (int x = edge - reach - 1; x < edge + reach; ++x)
            EXPECT_GE(result.at(x, middle), result.at(x + 1, middle)) << sigma << " at " << x;
    }
}

TEST(Blur, APixelDoesNotDependOnWhereTheMaskBegins)
{
    const Mask whole = noise(700, 90);
    for (const float sigma : { 1.3f, 4.0f, 30.0f }) {
        const int reach = blurReach(sigma), left = 67;
        const Mask all = blurred(whole, sigma);
        Mask part { 700 - left, 90 };
        for (int y = 0; y < 90; ++y)
            for (int x = left; x < 700; ++x)
                part.at(x - left, y) = static_cast<std::uint8_t>(whole.at(x, y));
        const Mask cut = blurred(part, sigma);
        for (int y = 0; y < 90; ++y)
            for (int x = left + reach; x < 700; ++x)
                ASSERT_EQ(cut.at(x - left, y), all.at(x, y)) << sigma << " at " << x << ", " << y;
    }
}

TEST(Blur, WritesItsRowsOnlyAndMayWorkInPlace)
{
    for (const auto& [width, height] : { std::pair { 1, 1 }, { 65, 3 }, { 3, 130 }, { 64, 64 }, { 127, 1 } })
        for (const float sigma : { 0.2f, 1.0f, 4.0f, 40.0f }) {
            const Mask mask = noise(width, height), expected = blurred(mask, sigma);
            Mask wide { width, height, width + 5 };
            wide.fill(0, 0, wide.stride, height);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    wide.at(x, y) = static_cast<std::uint8_t>(mask.at(x, y));
            blurA8(wide.bytes.data(), wide.stride, width, height, sigma, wide.bytes.data(), wide.stride);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < wide.stride; ++x)
                    ASSERT_EQ(wide.at(x, y), x < width ? expected.at(x, y) : 255)
                        << width << " x " << height << ", sigma " << sigma;
        }
}

TEST(Blur, OddSigmasCopyOrEnd)
{
    const Mask mask = noise(30, 20);
    for (const float sigma : { 0.0f, -3.0f, 0.1f, std::numeric_limits<float>::quiet_NaN() })
        EXPECT_EQ(blurred(mask, sigma).bytes, mask.bytes) << sigma;
    const Mask spread = blurred(mask, std::numeric_limits<float>::infinity());
    EXPECT_EQ(*std::max_element(spread.bytes.begin(), spread.bytes.end()), 0);
}

} // namespace
