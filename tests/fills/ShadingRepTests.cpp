#include <vxr/fills/VXRColorRGB64.h>
#include <vxr/fills/VXRShadingRep.h>
#include <vxr/fills/VXRShadingRepCache.h>
#include <vxr/platform/graphics/Image.h>

#include <tests/support/PictureCompare.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace vxr;
using namespace vxr::test;
using ::testing::ElementsAre;

namespace {

using RGBA = std::array<float, 4>;

std::shared_ptr<Color> colorOf(const RGBA& c)
{
    return Color::colorWithCalibratedRGB(c[0], c[1], c[2], c[3]);
}

std::array<int, 4> channels(const VXRColorRGB64& color)
{
    std::uint16_t r = 0, g = 0, b = 0, a = 0;
    color.getRedGreenBlueAlpha(&r, &g, &b, &a);
    return { r, g, b, a };
}

/// The ramp from its arithmetic: 16-bit columns, then Floyd and Steinberg row by row, in a form of its
/// own (one plane per channel, errors pushed out over a padded border).
std::vector<std::uint8_t> expectedRamp(const RGBA& start, const RGBA& end)
{
    constexpr int width = 512, height = 128;
    std::vector<std::uint8_t> ramp(static_cast<std::size_t>(width * height * 4));
    for (int channel = 0; channel < 4; ++channel) {
        const int component = channel == 0 ? 3 : channel - 1; // bytes are alpha, red, green, blue
        const auto s = static_cast<float>(static_cast<int>(start[component] * 65535));
        const auto e = static_cast<float>(static_cast<int>(end[component] * 65535));
        std::vector<std::vector<int>> plane(height + 1, std::vector<int>(width + 2));
        for (auto& row : plane)
            for (int x = 0; x < width; ++x) {
                const float t = static_cast<float>(x) / 512;
                row[static_cast<std::size_t>(x) + 1] = static_cast<int>(s * (1 - t) + e * t);
            }
        for (int y = 0; y < height; ++y)
            for (int x = 1; x <= width; ++x) {
                auto& here = plane[static_cast<std::size_t>(y)];
                auto& below = plane[static_cast<std::size_t>(y) + 1];
                const auto i = static_cast<std::size_t>(x);
                const int out = here[i] / 257, off = here[i] - out * 257;
                ramp[static_cast<std::size_t>((y * width + x - 1) * 4 + channel)]
                    = static_cast<std::uint8_t>(out);
                const int e7 = off * 7 / 16, e3 = off * 3 / 16, e5 = off * 5 / 16;
                here[i + 1] = std::min(65535, here[i + 1] + e7);
                below[i - 1] = std::min(65535, below[i - 1] + e3);
                below[i] = std::min(65535, below[i] + e5);
                below[i + 1] = std::min(65535, below[i + 1] + off - e7 - e3 - e5);
            }
    }
    return ramp;
}

std::shared_ptr<VXRShadingRep> repOf(const RGBA& start, const RGBA& end)
{
    auto rep = std::make_shared<VXRShadingRep>();
    rep->setStartColor(colorOf(start));
    rep->setEndColor(colorOf(end));
    return rep;
}

TEST(ShadingRep, EveryByteOfARampIsTheStatedArithmeticAndOnlyOpaquePairsSkipAlpha)
{
    const struct {
        RGBA start, end;
        AlphaFormat format;
    } cases[] = {
        { { 1, 1, 1, 1 }, { 0, 0, 0, 1 }, AlphaFormat::NoneSkipFirst },
        { { 0.1f, 0.12f, 0.15f, 1 }, { 0.2f, 0.16f, 0.11f, 0.999f }, AlphaFormat::First },
        { { 0.9f, 0.3f, 0, 0.2f }, { 1, 0.35f, 0.7f, 1 }, AlphaFormat::First },
    };
    for (const auto& c : cases) {
        const auto rep = repOf(c.start, c.end);
        rep->update();
        const auto image = rep->imageRef();
        ASSERT_TRUE(image);
        ASSERT_EQ(image->width(), 512);
        ASSERT_EQ(image->height(), 128);
        ASSERT_EQ(image->layout().bytesPerRow, 2048u);
        EXPECT_EQ(image->layout().alpha, c.format);
        const std::vector<std::uint8_t> actual(image->pixels(), image->pixels() + 512 * 128 * 4);
        const auto expected = expectedRamp(c.start, c.end);
        const auto differ = std::mismatch(actual.begin(), actual.end(), expected.begin());
        EXPECT_EQ(differ.first - actual.begin(), 512 * 128 * 4) << "first byte that differs";
    }
}

TEST(ShadingRep, UpdatingLeavesImagesMadeBeforeAsTheyWere)
{
    VXRShadingRep rep;
    EXPECT_FALSE(rep.imageRef());
    rep.update();
    const auto first = rep.imageRef();
    rep.setStartColor(Color::blackColor());
    rep.update();
    EXPECT_EQ(first->pixels()[1], 255);
    EXPECT_EQ(rep.imageRef()->pixels()[1], 0);
}

TEST(ShadingRep, TheUnditheredRampTruncatesEachColumn)
{
    struct : VXRShadingRep {
        using VXRShadingRep::_buildBitmapRepresentation32;
    } rep;
    rep.setStartColor(colorOf({ 0, 1, 0.5f, 1 }));
    rep.setEndColor(colorOf({ 1, 0, 0.5f, 0 }));
    rep._buildBitmapRepresentation32();
    const auto image = rep.imageRef();
    EXPECT_EQ(image->layout().alpha, AlphaFormat::First);
    for (const int x : { 0, 100, 256, 511 }) {
        const float t = static_cast<float>(x) / 512;
        for (const int y : { 0, 127 }) {
            const std::uint8_t* pixel = image->pixels() + (y * 512 + x) * 4;
            EXPECT_NEAR(pixel[0], 255 * (1 - t) - 0.5f, 0.5001f) << x;
            EXPECT_NEAR(pixel[1], 255 * t - 0.5f, 0.5001f) << x;
            EXPECT_EQ(pixel[3], 127) << x;
        }
    }
}

TEST(ColorRGB64, ChannelsAreTruncated)
{
    constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
    // 0.5 * 65535 = 32767.5; 0.25 * 65535 = 16383.75.
    EXPECT_THAT(channels(VXRColorRGB64(*colorOf({ 0.5f, NaN, 0.25f, 0 }))), ElementsAre(32767, 0, 16383, 0));
    EXPECT_THAT(channels(VXRColorRGB64(*colorOf({ -1, 2, 1, 1 }))), ElementsAre(0, 65535, 65535, 65535));
    const VXRColorRGB64 from(0, 100, 65535, 10), to(65535, 101, 0, 10);
    EXPECT_THAT(
        channels(*from.blendedColorWithFractionOfColor(0.5f, to)), ElementsAre(32767, 100, 32767, 10));
}

std::shared_ptr<VXRShadingRep> grayRep(int number)
{
    const float white = static_cast<float>(number) / 256;
    return repOf({ white, white, white, 1 }, { 0, 0, 0, 1 });
}

TEST(ShadingRepCache, KeepsThe64ThatWereUsedLast)
{
    VXRShadingRepCache cache;
    std::vector<int> model; // most recent first
    std::mt19937 random(4);
    for (int step = 0; step < 3000; ++step) {
        const int number = static_cast<int>(random() % 100);
        const auto rep = grayRep(number);
        const auto found = cache.shadingWithStartEnd(*rep->startColor(), *rep->endColor());
        const auto known = std::find(model.begin(), model.end(), number);
        EXPECT_EQ(found != nullptr, known != model.end()) << step;
        if (known != model.end()) {
            model.erase(known);
        } else {
            cache.addShadingRep(rep);
            if (model.size() == 64)
                model.pop_back();
        }
        model.insert(model.begin(), number);
    }
}

TEST(ShadingRepCache, RampsPushedOutWaitWithinALimitOfBytes)
{
    VXRShadingRepCache cache;
    constexpr std::size_t limit = 20 * VXRShadingRep::bytes + (std::size_t { 1 } << 17);
    cache.setFinishedByteLimit(limit);
    std::vector<std::shared_ptr<VXRShadingRep>> reps;
    for (int number = 0; number < 100; ++number) {
        reps.push_back(grayRep(number));
        reps.back()->update();
        cache.addShadingRep(reps.back());
    }
    EXPECT_LE(cache.finishedBytes(), limit);
    EXPECT_GE(cache.finishedBytes(), 20 * VXRShadingRep::bytes);
    for (int number = 0; number < 100; ++number) {
        const auto equal = grayRep(number);
        const bool waits = number >= 16 && number < 36; // 36 went, 20 of them are kept
        EXPECT_EQ(cache.takeFinished(*equal->startColor(), *equal->endColor()),
            waits ? reps[std::size_t(number)] : nullptr)
            << number;
    }
    EXPECT_EQ(cache.finishedBytes(), 0u);
    cache.addShadingRep(grayRep(200));
    cache.setFinishedByteLimit(0);
    EXPECT_EQ(cache.finishedBytes(), 0u);
    cache.addShadingRep(grayRep(201));
    EXPECT_EQ(cache.finishedBytes(), 0u);
}

/// What a ramp is drawn as without its pixels is what its pixels show.
TEST(ShadingRep, DrawnAsABlendItShowsItsPixels)
{
    const AffineTransform places[]
        = { { 0.09f, 0, 0, 0.4f, 3, 4 }, { 0.05f, 0.04f, -0.2f, 0.3f, 30.3f, 5.7f },
              { 2.9f, 0, 0, 5, -300, -200 }, { -0.12f, 0, 0, -0.6f, 70.5f, 81 },
              { 0, 0.11f, -0.5f, 0, 70, 4.25f }, { 0.7f, 0, 0, 0.9f, -100, 0 }, { 1, 0, 0, 1, 0, 0 } };
    const RGBA ends[][2]
        = { { { 1, 0.4f, 0, 1 }, { 0, 0.5f, 0.2f, 1 } }, { { 1, 1, 0, 0.2f }, { 0, 0, 1, 0.9f } },
              { { 0.5f, 0.5f, 0.5f, 1 }, { 0.52f, 0.51f, 0.5f, 1 } }, { { 1, 1, 1, 0 }, { 0, 0, 0, 1 } } };
    for (const auto& [start, end] : ends) {
        const auto plain = repOf(start, end);
        plain->update();
        const auto shared = VXRShadingRep::shadingWithStartEnd(colorOf(start), colorOf(end));
        for (const AffineTransform& place : places) {
            const auto drawn = [&](const Image& image) {
                const auto bitmap = BitmapContext::createBitmap(90, 90);
                bitmap->concatTransform(place);
                bitmap->drawImage({ 0, 0, 512, 128 }, image);
                return pictureOf(*bitmap);
            };
            const Picture blend = drawn(*shared->imageRef()), pixels = drawn(*plain->imageRef());
            EXPECT_LE(compare(blend, pixels).largest, 2) << place.m11 << " " << start[3];
            // What the dithers differ by is nothing on the whole.
            double sum = 0;
            for (std::size_t i = 0; i < blend.pixels.size(); ++i)
                for (int shift = 0; shift < 32; shift += 8)
                    sum += double(blend.pixels[i] >> shift & 0xff) - double(pixels.pixels[i] >> shift & 0xff);
            EXPECT_LT(std::abs(sum) / (90 * 90 * 4), 0.1) << place.m11 << " " << start[3];
        }
    }
}

/// A page with more gradients than the list holds has none of them computed twice, and those that are drawn
/// small never.
TEST(ShadingRepCache, RampsAreComputedWhenTheirPixelsAreNeeded)
{
    const auto start = Color::colorWithCalibratedRGB(0.125f, 0.5f, 0.75f), end = Color::blackColor();
    const auto rep = VXRShadingRep::shadingWithStartEnd(start, end);
    const std::size_t without = rep->byteSize();
    EXPECT_LT(without, 1000u);
    const auto bitmap = BitmapContext::createBitmap(50, 50);
    bitmap->drawImage({ 0, 0, 50, 50 }, *rep->imageRef());
    EXPECT_EQ(rep->byteSize(), without);
    const std::uint8_t* pixels = rep->imageRef()->pixels();
    EXPECT_EQ(rep->byteSize(), without + VXRShadingRep::bytes);
    for (int i = 0; i < 100; ++i)
        VXRShadingRep::shadingWithStartEnd(Color::colorWithCalibratedRGB(float(i) / 128, 0, 0), end);
    const auto again = VXRShadingRep::shadingWithStartEnd(start, end);
    EXPECT_EQ(again, rep);
    EXPECT_EQ(again->imageRef()->pixels(), pixels);
    const auto expected = expectedRamp({ 0.125f, 0.5f, 0.75f, 1 }, { 0, 0, 0, 1 });
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), pixels));
}

TEST(ShadingRepCache, EqualColoursShareOneRamp)
{
    const auto a = Color::colorWithCalibratedRGB(0.3f, 0.1f, 0), b = Color::blackColor();
    const auto rep = VXRShadingRep::shadingWithStartEnd(a, b);
    EXPECT_TRUE(rep->imageRef());
    EXPECT_EQ(rep, VXRShadingRep::shadingWithStartEnd(Color::colorWithCalibratedRGB(0.3f, 0.1f, 0), b));
    EXPECT_NE(rep, VXRShadingRep::shadingWithStartEnd(b, a));
    EXPECT_NE(rep, VXRShadingRep::shadingWithStartEnd(a, a));
}

} // namespace
