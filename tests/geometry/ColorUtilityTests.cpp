#include <tests/support/FakeShape.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/host/utility/VXUSystemVersion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vxr;
using namespace vxr::test;

namespace {

/// Switches the device spaces on and back.
class Substitution {
public:
    Substitution()
        : mPrevious(VXRSubstituteDeviceForGeneric(true))
    {
    }
    ~Substitution() { VXRSubstituteDeviceForGeneric(mPrevious); }

private:
    bool mPrevious;
};

} // namespace

TEST(ColorSpaceForRep, CountsComponentsWithoutAlphaAndIsGenericUntilDeviceSpacesTakeOver)
{
    const auto rgb = VXRGenericRGBColorSpace();
    const auto noProfile = std::make_shared<std::vector<std::byte>>();
    EXPECT_FALSE(rgb->isDevice());
    EXPECT_EQ(VXRColorSpaceForRep({ 1, false, nullptr }), VXRGenericGrayColorSpace());
    EXPECT_EQ(VXRColorSpaceForRep({ 4, true, noProfile }), rgb);
    EXPECT_EQ(VXRColorSpaceForRep({ 4, false, nullptr }), VXRGenericCMYKColorSpace());
    EXPECT_EQ(VXRColorSpaceForRep({ 5, false, nullptr }), nullptr);
    {
        const Substitution substituted;
        EXPECT_TRUE(VXRSubstituteDeviceForGeneric(true)) << "answers what it was";
        EXPECT_EQ(VXRColorSpaceForRep({ 2, true, nullptr }), ColorSpace::deviceGray());
        EXPECT_EQ(VXRColorSpaceForRep({ 3, false, nullptr }), ColorSpace::deviceRGB());
        EXPECT_EQ(VXRColorSpaceForRep({ 4, false, nullptr }), ColorSpace::deviceCMYK());
    }
    EXPECT_EQ(VXRGenericRGBColorSpace(), rgb);
}

TEST(ColorSpaceForRep, EmbeddedProfileGoesFirstAndIsReleasedAfterwards)
{
    const Substitution substituted; // has no say here
    const auto gray = ColorSpace::createWithDefaultProfile(ColorModel::Gray);
    const auto bytes = gray->profileData();
    const VXRImageRep rep { 2, true, std::make_shared<std::vector<std::byte>>(bytes.begin(), bytes.end()) };
    const auto space = VXRColorSpaceForRep(rep);
    ASSERT_TRUE(space);
    EXPECT_FALSE(space->isDevice());
    EXPECT_EQ(space->componentCount(), 1);
    EXPECT_EQ(rep.colorSyncProfileData.use_count(), 1) << "the provider let go of the bytes";
    // The profile has one component, the pixels have three: no space at all.
    EXPECT_EQ(VXRColorSpaceForRep({ 3, false, rep.colorSyncProfileData }), nullptr);
}

TEST(PlatformColor, KeepsDeviceCMYKAndTakesTheRestToRGB)
{
    const ColorValue cmyk = VXRCGColorWithNSColor(*Color::colorWithDeviceCMYK(0.1f, 0.2f, 0.3f, 0.4f, 0.5f));
    EXPECT_EQ(cmyk.space, ColorSpace::deviceCMYK());
    EXPECT_EQ(cmyk.components, (std::array<float, 5> { 0.1f, 0.2f, 0.3f, 0.4f, 0.5f }));
    const ColorValue gray = VXRCGColorWithNSColor(*Color::colorWithDeviceWhite(0.3f, 0.5f));
    EXPECT_EQ(gray.space, VXRGenericRGBColorSpace());
    EXPECT_EQ(gray.components, (std::array<float, 5> { 0.3f, 0.3f, 0.3f, 0.5f }));
    const ColorValue named = VXRCGColorWithNSColor(*Color::namedColor(0.5f));
    EXPECT_EQ(named.components, (std::array<float, 5> { 0, 0, 0, 1 }));
    const Substitution substituted;
    EXPECT_EQ(VXRCGColorWithNSColor(*Color::blackColor()).space, ColorSpace::deviceRGB());
}

TEST(SetColor, SetsFillAndStrokeWhateverThePlatformVersion)
{
    const auto draw = [] {
        VXRSetColor(*Color::colorWithCalibratedWhite(0.25f, 0.5f));
        VXRSetColor(*Color::colorWithCalibratedRGB(0.25f, 0.5f, 0.75f));
        VXRSetColor(*Color::colorWithDeviceRGB(1, 0, 0));
        VXRSetColor(*Color::colorWithDeviceCMYK(0, 1, 1, 0.5f));
    };
    const char expected[] = "set-color 0.25 0.25 0.25 0.5\n"
                            "set-color 0.25 0.5 0.75 1\n"
                            "set-color 1 0 0 1\n"
                            "set-color 0.5 0 0 1\n";
    EXPECT_EQ(recordingOf(draw), expected);
    const int version = VXUSetSystemVersion(0x1030);
    EXPECT_EQ(recordingOf(draw), expected);
    VXUSetSystemVersion(version);
}

TEST(ColorPainter, FillsByTheWindingRuleWhiteOnBlackAndWhiteAndNothingTransparentOnPaper)
{
    FakeShape shape(Size { 1, 1 });
    shape.outline->setWindingRule(WindingRule::EvenOdd);
    shape.placed = AffineTransform::makeScale(2, 2);
    const auto painted = [&](float alpha) {
        return recordingOf([&] { Color::colorWithCalibratedRGB(1, 0, 0, alpha)->paintShape(shape); });
    };
    const std::string fill = "fill even-odd [M0 0 L2 0 L2 2 L0 2 Z]\n";
    EXPECT_EQ(painted(1), "set-color 1 0 0 1\n" + fill);
    EXPECT_EQ(painted(0), "set-color 1 0 0 0\n" + fill) << "without a canvas";
    FakeCanvas canvas;
    shape.onCanvas = &canvas;
    EXPECT_EQ(painted(0), "set-color 1 0 0 0\n" + fill) << "on the screen";
    canvas.destination = VXRDestinationNonScreen;
    EXPECT_EQ(painted(0), "");
    EXPECT_EQ(painted(0.001f), "set-color 1 0 0 0.001\n" + fill);
    canvas.blackAndWhite = true;
    EXPECT_EQ(painted(1), "set-color 1 1 1 1\n" + fill);
    EXPECT_EQ(painted(0), "set-color 1 1 1 1\n" + fill);
}

TEST(ColorPainter, FillsWithTheFlatnessOfThePath)
{
    FakeShape shape(Size { 2, 2 });
    shape.outline->setFlatness(0.05f);
    EXPECT_EQ(recordingOf([&] { Color::colorWithDeviceRGB(1, 0, 0)->paintShape(shape); }), recordingOf([&] {
        Color::colorWithDeviceRGB(1, 0, 0)->set();
        shape.outline->fill();
    }));
    EXPECT_THAT(recordingOf([&] { shape.outline->fill(); }), ::testing::HasSubstr("flatness"));
}

TEST(ColorPainter, TransparentRectanglesArePaintedAsSwatchesOnly)
{
    const Rect rect { 1, 2, 3, 4 };
    EXPECT_EQ(
        recordingOf([&] { Color::blackColor()->paintRect(rect); }), "set-color 0 0 0 1\nfill-rect 1 2 3 4\n");
    EXPECT_EQ(recordingOf([&] { Color::clearColor()->paintRect(rect); }), "");
    EXPECT_EQ(recordingOf([&] { Color::clearColor()->drawSwatchInRect(rect); }),
        "set-color 0 0 0 0\nfill-rect 1 2 3 4\n");
}
