#include <vxr/geometry/Color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace vxr;

namespace {

/// Components, then alpha.
using Values = std::array<float, 5>;

Values valuesOf(const Color& color)
{
    Values values {};
    int i = 0;
    for (; i < color.componentCount(); ++i)
        values[static_cast<std::size_t>(i)] = color.component(i);
    values[static_cast<std::size_t>(i)] = color.alphaComponent();
    return values;
}

constexpr auto whiteOf = Color::colorWithCalibratedWhite;
constexpr auto rgbOf = Color::colorWithCalibratedRGB;

} // namespace

TEST(Color, ConvertsBetweenSpaces)
{
    // A third and a tenth have no exact binary form: mixing them would show.
    const float third = 1.0f / 3, tenth = 0.1f;
    const auto tenths = Color::colorWithDeviceRGB(tenth, tenth, tenth);
    const struct {
        const char* name;
        std::shared_ptr<Color> color;
        std::string_view space;
        Values values;
    } cases[] = {
        { "GreyIsCopied", whiteOf(third, tenth), NSCalibratedRGBColorSpace, { third, third, third, tenth } },
        { "GreyIntoDevice", whiteOf(third, tenth), NSDeviceRGBColorSpace, { third, third, third, tenth } },
        { "RGBBeyondOne", rgbOf(third, tenth, 7, 0.5f), NSDeviceRGBColorSpace, { third, tenth, 7, 0.5f } },
        { "EqualOnesIntoGrey", tenths, NSCalibratedWhiteColorSpace, { tenth, 1 } },
        { "IntoDeviceGrey", tenths, NSDeviceWhiteColorSpace, { tenth, 1 } },
        { "FromInk", Color::colorWithDeviceCMYK(0.5f, 0, 1, 0.5f, 0.25f), NSCalibratedRGBColorSpace,
            { 0.25f, 0.5f, 0, 0.25f } },
        { "IntoInk", rgbOf(0.25f, 0.5f, 0, 1), NSDeviceCMYKColorSpace, { 0.5f, 0, 1, 0.5f, 1 } },
        { "BlackIntoInk", Color::blackColor(), NSDeviceCMYKColorSpace, { 0, 0, 0, 1, 1 } },
    };
    for (const auto& c : cases)
        EXPECT_EQ(valuesOf(*c.color->colorUsingColorSpaceName(c.space)), c.values) << c.name;
}

TEST(Color, ConvertsIntoItselfOrNotAtAll)
{
    const auto red = rgbOf(1, 0, 0, 1);
    EXPECT_EQ(red->colorUsingColorSpaceName(std::string(NSCalibratedRGBColorSpace)), red);
    EXPECT_EQ(red->colorUsingColorSpaceName("NSNoSuchColorSpace"), nullptr);
    EXPECT_EQ(red->colorUsingColorSpaceName(NSNamedColorSpace), nullptr);
    const auto named = Color::namedColor();
    EXPECT_EQ(named->colorUsingColorSpaceName(NSCalibratedRGBColorSpace), nullptr);
    EXPECT_EQ(named->grayscaleColor(), nullptr);
    EXPECT_EQ(named->invertedColor(), nullptr);
    EXPECT_EQ(red->blendedColorWithFractionOfColor(0.5f, *named), nullptr);
}

TEST(Color, SpaceNameOutlivesTheStringThatAskedForIt)
{
    const auto ink = Color::whiteColor()->colorUsingColorSpaceName(std::string(NSDeviceCMYKColorSpace));
    EXPECT_EQ(ink->description(), "NSDeviceCMYKColorSpace 0 0 0 0 1");
}

TEST(Color, BlendsLinearlyWithoutPremultiplying)
{
    const auto red = rgbOf(1, 0, 0, 1), faintBlue = Color::colorWithDeviceRGB(0, 0, 1, 0);
    const auto at = [&](float t) { return valuesOf(*red->blendedColorWithFractionOfColor(t, *faintBlue)); };
    EXPECT_EQ(at(-0.5f), (Values { 1, 0, 0, 1 }));
    EXPECT_EQ(at(0.25f), (Values { 0.75f, 0, 0.25f, 0.75f }));
    EXPECT_EQ(at(1.5f), (Values { 0, 0, 1, 0 }));
}

TEST(Color, GrayscaleWeighsTheComponentsAndKeepsAlpha)
{
    EXPECT_EQ(rgbOf(0, 1, 0, 0.5f)->grayscaleColor()->description(), "NSCalibratedWhiteColorSpace 0.59 0.5");
    EXPECT_EQ(rgbOf(1, 0, 0, 1)->grayscaleColor()->whiteComponent(), 0.3f);
    EXPECT_EQ(Color::colorWithDeviceRGB(0, 0, 1)->grayscaleColor()->whiteComponent(), 0.11f);
}

TEST(Color, InvertingTwiceGivesTheColorBackInItsOwnSpace)
{
    for (const auto& color :
        { whiteOf(0.25f, 0.5f), Color::colorWithDeviceRGB(0.125f, 0.5f, 1, 0.75f), Color::whiteColor() }) {
        const auto inverted = color->invertedColor();
        EXPECT_EQ(inverted->colorSpaceName(), color->colorSpaceName());
        EXPECT_FALSE(inverted->isEqual(*color));
        EXPECT_TRUE(inverted->invertedColor()->isEqual(*color)) << color->description();
    }
    EXPECT_EQ(valuesOf(*Color::colorWithDeviceCMYK(0, 0, 0, 1)->invertedColor()), (Values { 0, 0, 0, 0, 1 }));
}

TEST(Color, RandomColorsAreThousandths)
{
    for (int i = 0; i < 200; ++i) {
        const auto color = Color::randomColor();
        for (int c = 0; c < 3; ++c) {
            const float thousandths = color->component(c) * 1000;
            ASSERT_NEAR(thousandths, std::round(thousandths), 1e-4);
            ASSERT_LE(thousandths, 999);
        }
    }
}

TEST(Color, EqualityIsOfSpaceAndValuesEquivalenceToTheEye)
{
    const auto gray = whiteOf(0.5f, 1), named = Color::namedColor();
    // On paper two blacks of different ink differ, though both are black on the screen.
    const auto black = Color::colorWithDeviceCMYK(0, 0, 0, 1), rich = Color::colorWithDeviceCMYK(1, 1, 1, 1);
    const struct {
        const char* name;
        std::shared_ptr<Color> a, b;
        bool equal, equivalent;
    } cases[] = {
        { "Same", gray, whiteOf(0.5f, 1), true, true },
        { "OtherSpace", gray, Color::colorWithDeviceWhite(0.5f), false, true },
        { "WithinAThousandth", gray, Color::colorWithDeviceRGB(0.5f, 0.5005f, 0.5f), false, true },
        { "Beyond", gray, whiteOf(0.502f, 1), false, false },
        { "Alpha", gray, gray->colorWithAlphaComponent(0.99f), false, false },
        { "OtherInk", black, rich, false, false },
        { "ScreenAndRichInk", Color::blackColor(), rich, false, true },
        { "NamedAndItself", named, named, true, true },
        { "TwoNamed", named, Color::namedColor(), false, false },
        { "NamedAndBlack", named, Color::blackColor(), false, false },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.a->isEqual(*c.b), c.equal) << c.name;
        EXPECT_EQ(c.a->isEquivalent(*c.b), c.equivalent) << c.name;
    }
}
