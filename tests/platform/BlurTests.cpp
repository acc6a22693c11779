#include <vxr/platform/graphics/Blur.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

using namespace vxr;

namespace {

struct Mask {
    int width, height;
    std::vector<std::uint8_t> bytes;

    Mask(int w, int h)
        : width(w)
        , height(h)
        , bytes(static_cast<std::size_t>(w) * static_cast<std::size_t>(h))
    {
    }
    std::uint8_t& at(int x, int y) { return bytes[static_cast<std::size_t>(y * width + x)]; }
    int at(int x, int y) const { return bytes[static_cast<std::size_t>(y * width + x)]; }
    void fill(int left, int top, int right, int bottom, std::uint8_t value)
    {
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                at(x, y) = value;
    }
};

Mask blurred(const Mask& mask, float sigma)
{
    Mask result(mask.width, mask.height);
    blurA8(mask.bytes.data(), mask.width, mask.width, mask.height, sigma, result.bytes.data(), mask.width);
    return result;
}

Mask transposed(const Mask& mask)
{
    Mask result(mask.height, mask.width);
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            result.at(y, x) = static_cast<std::uint8_t>(mask.at(x, y));
    return result;
}

/// Rectangles of several coverages, `margin` away from the edges.
Mask scene(int width, int height, int margin)
{
    Mask mask(width, height);
    std::mt19937 random(3);
    const auto upTo
        = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(std::max(n, 1))); };
    for (int k = 0; k < 12; ++k) {
        const int left = margin + upTo(width - 2 * margin), top = margin + upTo(height - 2 * margin);
        const int right = std::min(width - margin, left + 1 + upTo(width / 3));
        const int bottom = std::min(height - margin, top + 1 + upTo(height / 3));
        mask.fill(left, top, right, bottom, static_cast<std::uint8_t>(k % 3 ? 255 : random()));
    }
    return mask;
}

/// One axis of a Gaussian in double precision, each weight the Gaussian's share of its pixel.
std::vector<double> gaussianAxis(const std::vector<double>& line, double sigma)
{
    const int reach = static_cast<int>(5 * sigma) + 2;
    const int size = static_cast<int>(line.size());
    std::vector<double> result(line.size());
    for (int d = -reach; d <= reach; ++d) {
        const double unit = sigma * std::sqrt(2.0);
        const double weight = (std::erf((d + 0.5) / unit) - std::erf((d - 0.5) / unit)) / 2;
        for (int i = std::max(0, -d); i < std::min(size, size - d); ++i)
            result[static_cast<std::size_t>(i)] += weight * line[static_cast<std::size_t>(i + d)];
    }
    return result;
}

double largestError(const Mask& mask, float sigma)
{
    std::vector<std::vector<double>> columns(static_cast<std::size_t>(mask.width));
    for (int y = 0; y < mask.height; ++y) {
        std::vector<double> row(static_cast<std::size_t>(mask.width));
        for (int x = 0; x < mask.width; ++x)
            row[static_cast<std::size_t>(x)] = mask.at(x, y);
        row = gaussianAxis(row, sigma);
        for (std::size_t x = 0; x < row.size(); ++x)
            columns[x].push_back(row[x]);
    }
    const Mask result = blurred(mask, sigma);
    double largest = 0;
    for (int x = 0; x < mask.width; ++x) {
        const auto column = gaussianAxis(columns[static_cast<std::size_t>(x)], sigma);
        for (int y = 0; y < mask.height; ++y)
            largest = std::max(largest, std::abs(column[static_cast<std::size_t>(y)] - result.at(x, y)));
    }
    return largest;
}

TEST(Blur, StaysNearAGaussian)
{
    struct Case {
        float sigma;
        double levels;
    };
    // Small ones are the Gaussian itself but for what the reach cuts off; the others what three boxes
    // can be.
    for (const Case c : { Case { 0.4f, 3 }, { 0.5f, 3 }, { 1, 1.5 }, { 1.5f, 2 }, { 1.99f, 3 }, { 2, 6 },
             { 2.5f, 6 }, { 3.3f, 6 }, { 5, 6 }, { 10, 6 }, { 25, 6 } }) {
        const int margin = blurReach(c.sigma) + 1;
        EXPECT_LT(largestError(scene(150 + 2 * margin, 120 + 2 * margin, margin), c.sigma), c.levels)
            << c.sigma;
    }
}

TEST(Blur, HasTheVarianceAskedForAndKeepsTheMass)
{
    for (const float sigma : { 2.0f, 2.7f, 4.4f, 7.3f, 10.6f, 20.0f, 33.3f }) {
        const int reach = blurReach(sigma), bar = 41;
        Mask mask(2 * reach + bar + 2, 3 * reach + 70);
        const int left = reach + 1, middle = mask.height / 2;
        mask.fill(left, 0, left + bar, mask.height, 255);
        const Mask result = blurred(mask, sigma);
        double mass = 0, moment = 0;
        for (int x = 0; x < mask.width; ++x) {
            const double away = x - (left + (bar - 1) / 2.0);
            mass += result.at(x, middle);
            moment += result.at(x, middle) * away * away;
        }
        EXPECT_NEAR(mass / (255.0 * bar), 1, 0.004) << sigma;
        const double barVariance = (bar * bar - 1) / 12.0;
        EXPECT_NEAR(std::sqrt(moment / mass - barVariance), sigma, 0.02 * sigma) << sigma;
    }
}

TEST(Blur, EndsAtThreeStandardDeviations)
{
    for (const float sigma : { 0.3f, 0.5f, 1.2f, 2.0f, 2.34f, 5.0f, 8.7f }) {
        const int reach = blurReach(sigma);
        EXPECT_EQ(reach, static_cast<int>(std::floor(3 * sigma)));
        const int edge = 2 * reach + 20, middle = reach + 5;
        Mask mask(edge + reach + 5, 2 * middle);
        mask.fill(0, 0, edge, mask.height, 255);
        const Mask result = blurred(mask, sigma);
        EXPECT_EQ(result.at(edge - reach - 1, middle), 255) << sigma; // nothing but 255 within reach
        EXPECT_EQ(result.at(edge + reach, middle), 0) << sigma;
        for (int x = edge - reach - 1; x < edge + reach; ++x)
            EXPECT_GE(result.at(x, middle), result.at(x + 1, middle)) << sigma << " at " << x;
    }
}

TEST(Blur, TreatsBothAxesAndDirectionsAlike)
{
    for (const float sigma : { 1.0f, 3.0f, 9.5f }) {
        const Mask mask = scene(131, 97, 0);
        const Mask result = blurred(mask, sigma);
        const Mask turned = transposed(blurred(transposed(mask), sigma));
        Mask mirror = mask;
        std::reverse(mirror.bytes.begin(), mirror.bytes.end());
        Mask mirrored = blurred(mirror, sigma);
        std::reverse(mirrored.bytes.begin(), mirrored.bytes.end());
        for (std::size_t i = 0; i < mask.bytes.size(); ++i) {
            ASSERT_NEAR(result.bytes[i], turned.bytes[i], 1) << sigma;
            ASSERT_NEAR(result.bytes[i], mirrored.bytes[i], 1) << sigma;
        }
    }
}

TEST(Blur, ResultsDoNotDependOnWhereThingsStand)
{
    // Moved by amounts that put the same columns and rows into other strips.
    const int reach = blurReach(6);
    Mask reference(60 + 2 * reach, 60 + 2 * reach);
    reference.fill(reach, reach, reach + 50, reach + 31, 255);
    const Mask expected = blurred(reference, 6);
    for (const int shift : { 1, 13, 63, 64, 100 }) {
        Mask moved(reference.width + shift, reference.height + shift);
        moved.fill(reach + shift, reach + shift, reach + shift + 50, reach + shift + 31, 255);
        const Mask result = blurred(moved, 6);
        for (int y = 0; y < reference.height; ++y)
            for (int x = 0; x < reference.width; ++x)
                ASSERT_EQ(result.at(x + shift, y + shift), expected.at(x, y))
                    << shift << ": " << x << ", " << y;
    }
}

TEST(Blur, WritesItsRowsOnlyAndMayWorkInPlace)
{
    struct Size {
        int width, height;
    };
    for (const Size size : { Size { 1, 1 }, { 65, 3 }, { 3, 130 }, { 64, 64 }, { 127, 1 } }) {
        for (const float sigma : { 0.2f, 1.0f, 4.0f, 40.0f }) {
            const Mask mask = scene(size.width, size.height, 0);
            const Mask expected = blurred(mask, sigma);
            const int stride = size.width + 5;
            std::vector<std::uint8_t> wide(static_cast<std::size_t>(stride * size.height), 171);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x)
                    wide[static_cast<std::size_t>(y * stride + x)] = static_cast<std::uint8_t>(mask.at(x, y));
            blurA8(wide.data(), stride, size.width, size.height, sigma, wide.data(), stride);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < stride; ++x)
                    ASSERT_EQ(wide[static_cast<std::size_t>(y * stride + x)],
                        x < size.width ? expected.at(x, y) : 171)
                        << size.width << " x " << size.height << ", sigma " << sigma;
        }
    }
}

TEST(Blur, OddSigmasCopyOrEnd)
{
    const Mask mask = scene(30, 20, 0);
    for (const float sigma : { 0.0f, -3.0f, 0.1f, std::numeric_limits<float>::quiet_NaN() })
        EXPECT_EQ(blurred(mask, sigma).bytes, mask.bytes) << sigma;
    const Mask spread = blurred(mask, std::numeric_limits<float>::infinity());
    EXPECT_EQ(*std::max_element(spread.bytes.begin(), spread.bytes.end()), 0);
}

} // namespace
