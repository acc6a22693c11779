#include <tests/support/RecordingContext.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/platform/base/Exceptions.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace vxr;
using vxr::test::recordingOf;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

std::shared_ptr<VXRShadow> shadow(
    float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color = nullptr)
{
    return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
        angle, offset, radius, opacity, std::move(color));
}

std::shared_ptr<Color> red(float alpha = 1) { return Color::colorWithCalibratedRGB(1, 0, 0, alpha); }

} // namespace

TEST(Shadow, NormalisesItsAngle)
{
    for (const auto& [given, kept] :
        { std::pair(-90.0f, 270.0f), { 725.0f, 5.0f }, { -360.0f, 0.0f }, { -0.5f, 359.5f } })
        EXPECT_EQ(shadow(given, 1, 1, 1)->angle(), kept) << given;
    EXPECT_TRUE(std::isnan(shadow(notANumber, 1, 1, 1)->angle()));
}

TEST(Shadow, OnlyAnAllZeroBlackShadowIsTheNullShadow)
{
    const auto null = VXRShadow::nullShadow();
    EXPECT_EQ(shadow(0, 0, 0, 0), null);
    EXPECT_EQ(shadow(0, 0, 0, 0, Color::blackColor()), null);
    EXPECT_EQ(null->copyWithZone(), null);
    EXPECT_EQ(null->desaturatedShadow(), null);
    EXPECT_TRUE(null->isNullShadow());

    // An equal black of its own, a turn of 360 degrees: ordinary shadows.
    for (const auto& ordinary : { shadow(0, 0, 0, 0, red()), shadow(360, 0, 0, 0),
             shadow(0, 0, 0, 0, Color::colorWithCalibratedWhite(0)), shadow(0, 0, 0, notANumber) }) {
        EXPECT_FALSE(ordinary->isNullShadow());
        EXPECT_NE(ordinary->color(), nullptr);
    }
    // Desaturating one whose copy would be the null shadow leaves the shared one alone.
    EXPECT_NE(shadow(360, 0, 0, 0)->desaturatedShadow(), null);
    EXPECT_EQ(null->color(), nullptr);
}

TEST(Shadow, BoundsCoverTheObjectAndItsShadow)
{
    EXPECT_EQ(shadow(0, 5, 2, 1)->shadowBoundsForRect({ 0, 0, 10, 10 }), Rect(0, -2, 17, 14));
    const Rect down = shadow(90, 5, 0, 1)->shadowBoundsForRect({ 0, 0, 10, 10 });
    EXPECT_NEAR(down.maxY(), 15, 1e-5);
    const Rect turned = shadow(30, 5, 0, 1)->shadowBoundsForRectAngle({ 0, 0, 10, 10 }, 150);
    EXPECT_NEAR(turned.minX(), -5, 1e-5);
}

TEST(Shadow, IsSetUpWithItsOffsetUpwardAndItsOpacityMultiplied)
{
    EXPECT_EQ(recordingOf([] { VXRSetupShadow(*shadow(90, 5, 3, 0.5f, red(0.5f)), 2); }),
        "set-shadow offset=0 -10 blur=6 color=1 0 0 0.25\n");
    EXPECT_EQ(recordingOf([] { VXRSetupShadow(*shadow(180, 5, 0, 1, red()), 0.5f); }),
        "set-shadow offset=-2.5 0 blur=0 color=1 0 0 1\n");
}

TEST(Shadow, PlatformShadowTakesTheOpacityInPlaceOfTheAlpha)
{
    EXPECT_FALSE(VXRShadow::nullShadow()->nsShadow());
    const auto platform = shadow(30, 5, 3, 1, red(0.5f))->nsShadow();
    ASSERT_TRUE(platform);
    EXPECT_NEAR(platform->offset.width, 5 * std::sqrt(0.75), 1e-5);
    EXPECT_NEAR(platform->offset.height, -2.5, 1e-5);
    EXPECT_EQ(platform->blurRadius, 3);
    EXPECT_EQ(platform->color->alphaComponent(), 1);

    // And back: a point below and to the left, half a unit of blur rounded to even.
    const auto read = VXRShadow::initWithNSShadow({ { -3, -4 }, 2.5f, red(0.25f) });
    EXPECT_EQ(read->offset(), 5);
    EXPECT_NEAR(read->angle(), 180 - 53.130102, 1e-3);
    EXPECT_EQ(read->radius(), 2);
    EXPECT_EQ(read->opacity(), 0.25f);
    EXPECT_EQ(read->color()->alphaComponent(), 1);
    EXPECT_EQ(shadow(30, 5, 3, 0.25f)->cgShadowStyle(), (CGShadowStyle { 0, 45, 150, 0.75f, 5, 3, 1 }));
}

TEST(Shadow, MovingNeedsNoRebuildingButEqualityNoticesIt)
{
    const auto base = shadow(30, 5, 3, 0.5f, red());
    const struct {
        const char* name;
        std::shared_ptr<VXRShadow> other;
        bool rebuilds, equal;
    } cases[] = {
        { "Same", shadow(30, 5, 3, 0.5f, red()), false, true },
        { "Angle", shadow(31, 5, 3, 0.5f, red()), false, false },
        { "Offset", shadow(30, 6, 3, 0.5f, red()), false, false },
        { "Radius", shadow(30, 5, 4, 0.5f, red()), true, false },
        { "Opacity", shadow(30, 5, 3, 0.4f, red()), true, false },
        { "Colour", shadow(30, 5, 3, 0.5f), true, false },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(base->differenceRequiresRebuilding(c.other.get()), c.rebuilds) << c.name;
        EXPECT_EQ(base->isEqual(*c.other), c.equal) << c.name;
    }
    EXPECT_TRUE(base->differenceRequiresRebuilding(nullptr));
    const auto unordered = shadow(0, 1, 0, notANumber);
    EXPECT_FALSE(unordered->isEqual(*unordered)) << "no shortcut for the same object";
    EXPECT_TRUE(unordered->differenceRequiresRebuilding(unordered.get()));
}

TEST(Shadow, DescribesItself)
{
    EXPECT_THAT(shadow(30, 5.5f, 3, 0.25f, red())->description(),
        ::testing::MatchesRegex("VXRShadow<0x[0-9a-f]+>: angle=30 offset=5\\.5 radius=3 opacity=0\\.25 "
                                "color=.+"));
    EXPECT_THAT(VXRShadow::nullShadow()->description(), ::testing::EndsWith("color=(null)"));
}

TEST(Shadow, GoesThroughTheSequentialCoderAndReadsNothingDamaged)
{
    const std::shared_ptr<Color> colours[] = { red(0.5f), Color::colorWithCalibratedWhite(0.25f, 0.5f),
        Color::colorWithDeviceWhite(1), Color::colorWithDeviceRGB(0, 1, 0, 0.1f),
        Color::colorWithDeviceCMYK(0.1f, 0.2f, 0.3f, 0.4f, 0.5f) };
    for (const auto& colour : colours) {
        const auto original = shadow(30, 5.5f, -3, 0.25f, colour);
        VXACoder coder;
        original->encodeWithCoder(coder);
        VXRShadow::nullShadow()->encodeWithCoder(coder);
        VXADecoder decoder(coder.data());
        EXPECT_TRUE(VXRShadow::initWithCoder(decoder)->isEqual(*original)) << colour->description();
        EXPECT_EQ(VXRShadow::initWithCoder(decoder), VXRShadow::nullShadow());
        EXPECT_TRUE(decoder.isAtEnd());
    }
    VXACoder coder;
    shadow(30, 5, 3, 0.5f, Color::namedColor(0.25f))->encodeWithCoder(coder);
    VXADecoder named(coder.data());
    EXPECT_TRUE(VXRShadow::initWithCoder(named)->isEqual(
        *shadow(30, 5, 3, 0.5f, Color::colorWithCalibratedWhite(0, 0.25f))))
        << "as it draws";

    coder = {};
    shadow(30, 5, 3, 0.5f, red())->encodeWithCoder(coder);
    for (std::size_t length = 0; length < coder.data().size(); ++length) {
        VXADecoder decoder(coder.data().first(length));
        EXPECT_THROW(VXRShadow::initWithCoder(decoder), InvalidArgumentException) << length;
    }
    EXPECT_THROW(coder.encodeObject(shadow(1, 1, 1, 1).get()), InvalidArgumentException)
        << "a class that was never registered";
}
