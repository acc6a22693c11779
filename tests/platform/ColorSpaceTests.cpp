#include <vxr/platform/graphics/color/ColorSpace.h>
#include <vxr/platform/graphics/color/ProfileTransformCache.h>

#include <tests/platform/ProfileSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>

using namespace vxr;
using namespace vxr::test;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::FloatNear;

namespace {

std::vector<std::uint8_t> converted(const ColorSpace& space, std::vector<std::uint8_t> pixels)
{
    const std::size_t count = pixels.size() / static_cast<std::size_t>(space.componentCount());
    std::vector<std::uint8_t> rgb(count * 3);
    space.convertToSRGB8(pixels.data(), rgb.data(), count);
    return rgb;
}

/// The sRGB curve from linear light, as its standard states it.
double srgbFromLinear(double v) { return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055; }

TEST(ColorSpace, CalibratedAndDeviceValuesReachTheOutputUnchanged)
{
    std::vector<std::uint8_t> all(256 * 3);
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<std::uint8_t>(i * 7);
    const float components[] = { 0.1f, 0.7f, 1.25f };
    for (const auto& rgb :
        { ColorSpace::deviceRGB(), ColorSpace::createWithDefaultProfile(ColorModel::RGB) }) {
        EXPECT_EQ(converted(*rgb, all), all);
        EXPECT_THAT(rgb->toSRGB(components), ElementsAre(0.1f, 0.7f, 1.25f));
    }
    for (const auto& gray :
        { ColorSpace::deviceGray(), ColorSpace::createWithDefaultProfile(ColorModel::Gray) }) {
        EXPECT_THAT(converted(*gray, { 0, 77, 255 }), ElementsAre(0, 0, 0, 77, 77, 77, 255, 255, 255));
        EXPECT_THAT(gray->toSRGB(components), ElementsAre(0.1f, 0.1f, 0.1f));
    }
    const auto cmyk = ColorSpace::deviceCMYK();
    // 191 of 255 past the cyan, 204 past the black: 191 * 204 / 255 = 152.8.
    EXPECT_THAT(converted(*cmyk, { 64, 0, 255, 51, 0, 0, 0, 255 }), ElementsAre(153, 204, 0, 0, 0, 0));
    const float inks[] = { 0.25f, 0, 1, 0.5f };
    EXPECT_THAT(cmyk->toSRGB(inks), ElementsAre(0.375f, 0.5f, 0.0f));
}

TEST(ColorSpace, GenericCMYKUsesTheSystemsProfileOrTheDeviceConversion)
{
    const auto generic = ColorSpace::createWithDefaultProfile(ColorModel::CMYK);
    ASSERT_TRUE(generic);
    EXPECT_EQ(generic->isDevice(), ColorSpace::defaultCMYKProfilePath().empty());
    EXPECT_THAT(converted(*generic, { 0, 0, 0, 0 }), ElementsAre(255, 255, 255));
}

TEST(ColorSpace, ProfileColoursAreConvertedByTheProfile)
{
    const auto linear = ColorSpace::createWithICCProfile(linearRGBProfile(), 3);
    ASSERT_TRUE(linear);
    EXPECT_FALSE(linear->convertsToOutputUnchanged());
    for (const int value : { 0, 5, 55, 128, 200, 255 }) {
        const double expected = srgbFromLinear(value / 255.0);
        const std::vector<std::uint8_t> bytes(3, static_cast<std::uint8_t>(value));
        for (const int channel : converted(*linear, bytes))
            EXPECT_NEAR(channel, expected * 255, 1) << value;
        const std::vector<float> components(3, static_cast<float>(value) / 255);
        EXPECT_THAT(linear->toSRGB(components.data()), Each(FloatNear(float(expected), 0.004f))) << value;
    }

    const auto gray = ColorSpace::createWithICCProfile(gamma1GrayProfile(), 1);
    ASSERT_TRUE(gray);
    EXPECT_NEAR(converted(*gray, { 55 })[0], srgbFromLinear(55 / 255.0) * 255, 1);
}

TEST(ColorSpace, GenericProfilesDescribeWhatTheyAreTakenFor)
{
    // Run through the profile's own transform, values come back as they were.
    for (const ColorModel model : { ColorModel::Gray, ColorModel::RGB }) {
        const auto generic = ColorSpace::createWithDefaultProfile(model);
        ASSERT_FALSE(generic->profileData().empty());
        for (const int value : { 0, 3, 20, 100, 128, 254, 255 }) {
            const auto byte = static_cast<std::uint8_t>(value);
            EXPECT_NEAR(throughProfile(generic->profileData(), byte), value, 1) << value;
        }
        const auto again
            = ColorSpace::createWithICCProfile(generic->profileData(), generic->componentCount());
        ASSERT_TRUE(again);
        EXPECT_TRUE(again->convertsToOutputUnchanged());
        EXPECT_TRUE(again->isEqual(*generic));
    }
}

TEST(ColorSpace, EqualityGoesByProfileOrDeviceModel)
{
    const auto rgb = ColorSpace::createWithDefaultProfile(ColorModel::RGB);
    EXPECT_FALSE(rgb->isEqual(*ColorSpace::deviceRGB()));
    EXPECT_FALSE(rgb->isEqual(*ColorSpace::createWithICCProfile(linearRGBProfile(), 3)));
    EXPECT_FALSE(ColorSpace::deviceGray()->isEqual(*ColorSpace::deviceCMYK()));
}

TEST(ColorSpace, RefusesWhatIsNoProfileOfThatManyComponents)
{
    const auto profile = linearRGBProfile(), link = linkProfile(); // a link is no space of its own
    const std::vector<std::byte> noise(4000, std::byte { 0x5a });
    for (const int components : { 1, 2, 4 })
        EXPECT_FALSE(ColorSpace::createWithICCProfile(profile, components)) << components;
    for (const auto& bytes :
        { std::span(profile).first(0), std::span(profile).first(127), std::span(link), std::span(noise) })
        EXPECT_FALSE(ColorSpace::createWithICCProfile(bytes, 3)) << bytes.size();
}

TEST(ColorSpace, DamagedProfilesAreRefusedOrUsedButNeverCrash)
{
    const auto profile = linearRGBProfile();
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        auto damaged = profile;
        for (int k = 0; k < 12; ++k)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        if (round % 5 == 0)
            damaged.resize(random() % damaged.size());
        if (const auto space = ColorSpace::createWithICCProfile(damaged, 3))
            converted(*space, { 1, 2, 3, 250, 100, 0 });
    }
}

TEST(ProfileTransformCache, KeepsTheProfilesUsedLastAndNoMore)
{
    // The profile's creator, four bytes of the header, tells them apart and changes no colour.
    const auto numbered = [](int number) {
        auto profile = linearRGBProfile();
        profile[80] = static_cast<std::byte>(number);
        return profile;
    };
    ProfileTransformCache cache(3);
    const auto first = cache.transformsFor(numbered(0), ColorModel::RGB);
    ASSERT_TRUE(first);
    EXPECT_EQ(cache.transformsFor(numbered(0), ColorModel::RGB), first);
    EXPECT_FALSE(cache.transformsFor(numbered(0), ColorModel::Gray)) << "not a profile of greys";
    for (int i = 1; i < 6; ++i) {
        ASSERT_TRUE(cache.transformsFor(numbered(i), ColorModel::RGB));
        EXPECT_EQ(cache.transformsFor(numbered(0), ColorModel::RGB), first) << "in use all the time";
        EXPECT_LE(cache.size(), 3u);
    }
    const auto early = cache.transformsFor(numbered(5), ColorModel::RGB);
    for (int i = 10; i < 13; ++i)
        cache.transformsFor(numbered(i), ColorModel::RGB);
    EXPECT_NE(cache.transformsFor(numbered(0), ColorModel::RGB), first) << "dropped, and made again";
    std::uint8_t rgb[3] {}, pixel[3] { 55, 55, 55 };
    early->convertBytes(pixel, rgb, 1); // dropped, yet still held
    EXPECT_NEAR(rgb[0], srgbFromLinear(55 / 255.0) * 255, 1);
}

TEST(ColorValue, ClampsWhatTheOutputTakes)
{
    constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
    EXPECT_THAT(ColorValue::rgb(-1, NaN, 2, 0.5f).toRGBA(), ElementsAre(0, 0, 1, 0.5f));
    EXPECT_THAT(ColorValue::gray(0.25f, 7).toRGBA(), ElementsAre(0.25f, 0.25f, 0.25f, 1));
    EXPECT_THAT((ColorValue { nullptr, { 0.5f, 0.25f } }).toRGBA(), ElementsAre(0.5f, 0.5f, 0.5f, 0.25f));
    const ColorValue cmyk { ColorSpace::deviceCMYK(), { 0, 1, 0, 0, 0.75f } };
    EXPECT_THAT(cmyk.toRGBA(), ElementsAre(1, 0, 1, 0.75f));
}

} // namespace
