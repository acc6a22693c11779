#include <vxr/geometry/Color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace vxr;

namespace {

/// Components, then alpha.
std::array<float, 5> valuesOf(const Color& color)
{
    std::array<float, 5> values {};
    int i = 0;
    for (; i < color.componentCount(); ++i)
        values[static_cast<std::size_t>(i)] = color.component(i);
    values[static_cast<std::size_t>(i)] = color.alphaComponent();
    return values;
}

std::array<float, 5> converted(const std::shared_ptr<Color>& color, std::string_view name)
{
    return valuesOf(*color->colorUsingColorSpaceName(name));
}

using Values = std::array<float, 5>;

} // namespace

TEST(Color, SharedColorsAreOneObjectEach)
{
    EXPECT_EQ(Color::blackColor(), Color::blackColor());
    EXPECT_EQ(Color::whiteColor(), Color::whiteColor());
    EXPECT_EQ(Color::clearColor(), Color::clearColor());
    EXPECT_EQ(Color::blackColor()->description(), "NSCalibratedWhiteColorSpace 0 1");
    EXPECT_EQ(Color::clearColor()->description(), "NSCalibratedWhiteColorSpace 0 0");
}

TEST(Color, ConversionsBetweenGreyAndRGBCopyValues)
{
    // A third and a tenth have no exact binary form: mixing them would show.
    const float third = 1.0f / 3, tenth = 0.1f;
    for (auto space : { NSCalibratedRGBColorSpace, NSDeviceRGBColorSpace }) {
        EXPECT_EQ(converted(Color::colorWithCalibratedWhite(third, tenth), space),
            (Values { third, third, third, tenth }));
        EXPECT_EQ(converted(Color::colorWithCalibratedRGB(third, tenth, 7, 0.5f), space),
            (Values { third, tenth, 7, 0.5f }));
    }
    for (auto space : { NSCalibratedWhiteColorSpace, NSDeviceWhiteColorSpace })
        EXPECT_EQ(converted(Color::colorWithDeviceRGB(tenth, tenth, tenth), space), (Values { tenth, 1 }));
}

TEST(Color, ConversionsThatMix)
{
    EXPECT_EQ(converted(Color::colorWithCalibratedRGB(0, 1, 0), NSCalibratedWhiteColorSpace),
        (Values { 0.59f, 1 }));
    EXPECT_EQ(converted(Color::colorWithDeviceCMYK(0.5f, 0, 1, 0.5f, 0.25f), NSCalibratedRGBColorSpace),
        (Values { 0.25f, 0.5f, 0, 0.25f }));
    EXPECT_EQ(converted(Color::colorWithCalibratedRGB(0.25f, 0.5f, 0), NSDeviceCMYKColorSpace),
        (Values { 0.5f, 0, 1, 0.5f, 1 }));
    EXPECT_EQ(converted(Color::blackColor(), NSDeviceCMYKColorSpace), (Values { 0, 0, 0, 1, 1 }));
}

TEST(Color, ConvertsIntoItselfOrNotAtAll)
{
    const auto red = Color::colorWithCalibratedRGB(1, 0, 0);
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
    std::shared_ptr<Color> color;
    {
        std::string name = "NSDeviceCMYKColorSpace";
        color = Color::whiteColor()->colorUsingColorSpaceName(name);
        name.assign(name.size(), '?');
    }
    EXPECT_EQ(color->colorSpaceName(), NSDeviceCMYKColorSpace);
}

TEST(Color, BlendsLinearlyWithoutPremultiplying)
{
    const auto red = Color::colorWithCalibratedRGB(1, 0, 0, 1);
    const auto faintBlue = Color::colorWithDeviceRGB(0, 0, 1, 0);
    const auto at = [&](float t) { return valuesOf(*red->blendedColorWithFractionOfColor(t, *faintBlue)); };
    EXPECT_EQ(at(0), (Values { 1, 0, 0, 1 }));
    EXPECT_EQ(at(0.25f), (Values { 0.75f, 0, 0.25f, 0.75f }));
    EXPECT_EQ(at(1), (Values { 0, 0, 1, 0 }));
    EXPECT_EQ(at(1.5f), at(1));
    EXPECT_EQ(at(-0.5f), at(0));
}

TEST(Color, GrayscaleWeighsTheComponentsAndKeepsAlpha)
{
    const auto gray = Color::colorWithCalibratedRGB(0, 1, 0, 0.5f)->grayscaleColor();
    EXPECT_EQ(gray->colorSpaceName(), NSCalibratedWhiteColorSpace);
    EXPECT_EQ(valuesOf(*gray), (Values { 0.59f, 0.5f }));
    EXPECT_EQ(Color::colorWithCalibratedRGB(1, 0, 0)->grayscaleColor()->whiteComponent(), 0.3f);
    EXPECT_EQ(Color::colorWithDeviceRGB(0, 0, 1)->grayscaleColor()->whiteComponent(), 0.11f);
}

TEST(Color, InvertingTwiceGivesTheColorBackInItsOwnSpace)
{
    for (const auto& color : { Color::colorWithCalibratedWhite(0.25f, 0.5f),
             Color::colorWithDeviceRGB(0.125f, 0.5f, 1, 0.75f), Color::colorWithDeviceWhite(1) }) {
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
        EXPECT_EQ(color->alphaComponent(), 1);
        for (int c = 0; c < 3; ++c) {
            const double thousandths = color->component(c) * 1000.0;
            ASSERT_NEAR(thousandths, std::round(thousandths), 1e-4);
            ASSERT_LE(color->component(c), 0.999f);
        }
    }
}

TEST(Color, EqualityIsOfSpaceAndValues)
{
    const auto color = Color::colorWithCalibratedRGB(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_TRUE(color->isEqual(*Color::colorWithCalibratedRGB(0.1f, 0.2f, 0.3f, 0.4f)));
    EXPECT_FALSE(color->isEqual(*Color::colorWithCalibratedRGB(0.1f, 0.2f, 0.3f, 0.5f)));
    EXPECT_FALSE(color->isEqual(*Color::colorWithDeviceRGB(0.1f, 0.2f, 0.3f, 0.4f)));
    EXPECT_FALSE(Color::namedColor()->isEqual(*Color::namedColor()));
}

TEST(Color, EquivalenceIsToTheEye)
{
    const auto gray = Color::colorWithCalibratedWhite(0.5f);
    EXPECT_TRUE(gray->isEquivalent(*Color::colorWithDeviceRGB(0.5f, 0.5005f, 0.5f)));
    EXPECT_FALSE(gray->isEquivalent(*Color::colorWithDeviceRGB(0.5f, 0.502f, 0.5f)));
    EXPECT_FALSE(gray->isEquivalent(*gray->colorWithAlphaComponent(0.99f)));
    // On paper two blacks of different ink differ, though both are black on the screen.
    const auto black = Color::colorWithDeviceCMYK(0, 0, 0, 1),
               richBlack = Color::colorWithDeviceCMYK(1, 1, 1, 1);
    EXPECT_FALSE(black->isEquivalent(*richBlack));
    EXPECT_TRUE(black->isEquivalent(*Color::blackColor()));
    EXPECT_TRUE(Color::blackColor()->isEquivalent(*richBlack));
    const auto named = Color::namedColor();
    EXPECT_TRUE(named->isEquivalent(*named));
    EXPECT_FALSE(named->isEquivalent(*Color::namedColor()));
    EXPECT_FALSE(named->isEquivalent(*Color::blackColor()));
}
