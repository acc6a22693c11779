#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace vxr;

namespace {

int channel(std::uint32_t pixel, int index) { return int(pixel >> 8 * index & 0xff); }

int rounded(double value) { return int(std::floor(value + 0.5)); }

/// One pixel by the formulas in double precision.
std::uint32_t plainBlend(int operation, std::uint32_t source, std::uint32_t below, int coverage)
{
    std::uint32_t result = 0;
    const int alpha = rounded(channel(source, 3) * coverage / 255.0);
    for (int i = 0; i < 4; ++i) {
        const int s = operation ? channel(source, i) : 0, d = channel(below, i);
        const int value = operation < 2
            ? rounded((s * coverage + d * (255 - coverage)) / 255.0)
            : std::min(255, rounded(s * coverage / 255.0) + rounded(d * (255 - alpha) / 255.0));
        result |= std::uint32_t(value) << 8 * i;
    }
    return result;
}

std::uint8_t plainCoverage(std::int32_t sum, bool evenOdd)
{
    double windings = std::abs(double(sum)) / fullCell;
    if (evenOdd)
        windings = std::abs(windings - 2 * std::floor(windings / 2 + 0.5));
    return std::uint8_t(std::floor(std::min(windings, 1.0) * 255 + 0.5));
}

std::uint32_t randomPixel(std::mt19937& random)
{
    const std::uint32_t alpha = random() % 4 ? random() % 256 : random() % 2 * 255;
    std::uint32_t pixel = alpha << 24;
    for (int i = 0; i < 3; ++i)
        pixel |= random() % (alpha + 1) << 8 * i;
    return pixel;
}

/// Spans with runs of empty, opaque and other pixels, and masks alike.
struct Spans {
    std::vector<std::uint32_t> source, below;
    std::vector<std::uint8_t> mask;

    Spans(std::size_t count, std::mt19937& random)
        : source(count)
        , below(count)
        , mask(count)
    {
        const std::size_t run = 1 + random() % 40;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t kind = i / run % 3;
            source[i] = kind == 0 ? randomPixel(random) : kind == 1 ? 0 : randomPixel(random) | 0xff000000;
            below[i] = randomPixel(random);
            mask[i] = std::uint8_t(i / (run + 3) % 3 == 0 ? random() : i / (run + 3) % 3 == 1 ? 0 : 255);
        }
    }
};

} // namespace

TEST(SpanKernels, EveryOperationEqualsItsFormulaAtEveryLengthAndTouchesNothingElse)
{
    std::mt19937 random(11);
    for (std::size_t count = 0; count < 150; ++count) {
        const std::size_t start = random() % 5;
        const Spans spans(count + start + 5, random);
        const std::uint32_t color = count % 7 ? randomPixel(random) : randomPixel(random) | 0xff000000;
        const auto one = std::uint8_t(count % 3 ? random() : count % 2 ? 255 : 0);
        for (const SpanKernels* kernels : availableSpanKernels()) {
            for (int number = 0; number < 3; ++number) {
                const SpanOperation& operation = kernels->operations[number];
                for (int way = 0; way < 4; ++way) {
                    auto result = spans.below, expected = spans.below;
                    std::uint32_t* to = result.data() + start;
                    const std::uint32_t* source = spans.source.data() + start;
                    const std::uint8_t* mask = spans.mask.data() + start;
                    for (std::size_t i = start; i < start + count; ++i)
                        expected[i] = plainBlend(number, way < 2 ? color : spans.source[i], spans.below[i],
                            way % 2 ? spans.mask[i] : one);
                    if (way == 0)
                        operation.color(to, count, color, one);
                    else if (way == 1)
                        operation.colorMask(to, count, color, mask);
                    else if (way == 2)
                        operation.pixels(to, count, source, one);
                    else
                        operation.pixelsMask(to, count, source, mask);
                    ASSERT_EQ(result, expected)
                        << kernels->name << " operation " << number << " way " << way << " count " << count;
                }
            }
            auto faded = spans.source;
            kernels->fade(faded.data(), spans.source.data(), count, one);
            auto masked = spans.mask, fadedMask = spans.mask;
            kernels->multiplyMask(masked.data(), spans.mask.data() + start, count);
            kernels->fadeMask(fadedMask.data(), count, one);
            for (std::size_t i = 0; i < spans.source.size(); ++i) {
                const bool inside = i < count;
                const int other = inside ? spans.mask[i + start] : 255, factor = inside ? one : 255;
                ASSERT_EQ(faded[i], plainBlend(1, spans.source[i], 0, factor)) << kernels->name;
                ASSERT_EQ(masked[i], rounded(spans.mask[i] * other / 255.0)) << kernels->name;
                ASSERT_EQ(fadedMask[i], rounded(spans.mask[i] * factor / 255.0)) << kernels->name;
            }
        }
    }
}

TEST(SpanKernels, CellsSumUpToTheCoverageOfEachFillRule)
{
    std::mt19937 random(12);
    const std::int32_t special[]
        = { 0, 1, -1, fullCell / 2, fullCell, -fullCell, 2 * fullCell, fullCell / 510, INT32_MIN, INT32_MAX };
    for (std::size_t count = 0; count < 90; ++count) {
        std::vector<std::int32_t> cells(count + 3);
        for (auto& cell : cells) {
            const int kind = int(random() % 3);
            cell = kind == 0 ? 0
                : kind == 1  ? special[random() % std::size(special)]
                             : std::int32_t(random() % (4 * fullCell)) - 2 * fullCell;
        }
        const auto carry = std::int32_t(random() % (6 * fullCell)) - 3 * fullCell;
        for (const bool evenOdd : { false, true }) {
            std::vector<std::uint8_t> expected(count + 3, 7);
            std::uint32_t sum = std::uint32_t(carry);
            for (std::size_t i = 0; i < count; ++i) {
                sum += std::uint32_t(cells[i]);
                expected[i] = plainCoverage(std::int32_t(sum), evenOdd);
                const std::uint8_t single
                    = evenOdd ? coverageEvenOdd(std::int32_t(sum)) : coverageNonZero(std::int32_t(sum));
                ASSERT_EQ(single, expected[i]) << std::int32_t(sum);
            }
            for (const SpanKernels* kernels : availableSpanKernels()) {
                auto used = cells;
                std::vector<std::uint8_t> coverage(count + 3, 7);
                const auto sumUp = evenOdd ? kernels->sumEvenOdd : kernels->sumNonZero;
                ASSERT_EQ(sumUp(used.data(), count, carry, coverage.data()), std::int32_t(sum));
                ASSERT_EQ(coverage, expected) << kernels->name << " count " << count;
                for (std::size_t i = 0; i < used.size(); ++i)
                    ASSERT_EQ(used[i], i < count ? 0 : cells[i]) << kernels->name;
            }
        }
    }
}
