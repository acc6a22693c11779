#include <tests/support/RecordingContext.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/host/utility/VXUSystemVersion.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>

#include <gtest/gtest.h>

using namespace vxr;
using vxr::test::recordingOf;

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

VXRImageRep repWithProfileOf(const std::shared_ptr<const ColorSpace>& space, int samples, bool alpha)
{
    const auto bytes = space->profileData();
    return { samples, alpha, std::make_shared<std::vector<std::byte>>(bytes.begin(), bytes.end()) };
}

struct PaintedCanvas final : VXRCanvasRole {
    bool blackAndWhite = false;
    int destination = VXRDestinationDirect;

    void registerRenderable(VXRRenderable&) override { }
    void unregisterRenderable(VXRRenderable&) override { }
    void setNeedsDisplayInRect(const Rect&) override { }
    float viewScale() const override { return 1; }
    bool usesCompositor() const override { return false; }
    int renderingDestination() const override { return destination; }
    bool rendersBlackAndWhite() const override { return blackAndWhite; }
    Rect clipViewVisibleRect() const override { return {}; }
    Rect visibleRect() const override { return {}; }
    Rect convertRectToWindow(const Rect& r) const override { return r; }
};

struct PaintedSquare final : VXRPaintedShape {
    VXRCanvasRole* shapeCanvas = nullptr;

    VXRCanvasRole* canvas() const override { return shapeCanvas; }
    std::shared_ptr<Path> path() const override { return Path::pathWithRect({ 0, 0, 1, 1 }); }
    std::shared_ptr<Path> transformedPath() const override
    {
        auto square = Path::pathWithRect({ 0, 0, 2, 2 });
        square->setWindingRule(WindingRule::EvenOdd);
        return square;
    }
    AffineTransform transform() const override { return AffineTransform::makeScale(2, 2); }
    Size naturalSize() const override { return { 1, 1 }; }
    Point center() const override { return { 1, 1 }; }
    float angle() const override { return 0; }
    Rect alignmentBounds() const override { return { 0, 0, 2, 2 }; }
    bool wantsInteriorStroke() const override { return false; }
    void clip() const override { }
};

const char squareFilled[] = "fill even-odd [M0 0 L2 0 L2 2 L0 2 Z]\n";

std::string painted(Color& color, VXRCanvasRole* canvas)
{
    PaintedSquare shape;
    shape.shapeCanvas = canvas;
    return recordingOf([&] { color.paintShape(shape); });
}

} // namespace

TEST(GenericSpaces, AreSharedUntilDeviceSpacesTakeTheirPlace)
{
    const auto gray = VXRGenericGrayColorSpace(), rgb = VXRGenericRGBColorSpace();
    EXPECT_EQ(rgb, VXRGenericRGBColorSpace());
    EXPECT_EQ(gray->componentCount(), 1);
    EXPECT_EQ(VXRGenericCMYKColorSpace()->componentCount(), 4);
    EXPECT_FALSE(rgb->isDevice());
    {
        const Substitution substituted;
        EXPECT_TRUE(VXRSubstituteDeviceForGeneric(true)) << "answers what it was";
        EXPECT_EQ(VXRGenericGrayColorSpace(), ColorSpace::deviceGray());
        EXPECT_EQ(VXRGenericRGBColorSpace(), ColorSpace::deviceRGB());
        EXPECT_EQ(VXRGenericCMYKColorSpace(), ColorSpace::deviceCMYK());
    }
    EXPECT_EQ(VXRGenericRGBColorSpace(), rgb);
}

TEST(ColorSpaceForRep, CountsComponentsWithoutAlpha)
{
    EXPECT_EQ(VXRColorSpaceForRep({ 1, false, nullptr }), VXRGenericGrayColorSpace());
    EXPECT_EQ(VXRColorSpaceForRep({ 2, true, nullptr }), VXRGenericGrayColorSpace());
    EXPECT_EQ(VXRColorSpaceForRep({ 4, true, nullptr }), VXRGenericRGBColorSpace());
    EXPECT_EQ(VXRColorSpaceForRep({ 4, false, nullptr }), VXRGenericCMYKColorSpace());
    EXPECT_EQ(VXRColorSpaceForRep({ 5, false, nullptr }), nullptr);
    EXPECT_EQ(VXRColorSpaceForRep({ 1, true, nullptr }), nullptr);
    const auto noProfile = std::make_shared<std::vector<std::byte>>();
    EXPECT_EQ(VXRColorSpaceForRep({ 3, false, noProfile }), VXRGenericRGBColorSpace());
    const Substitution substituted;
    EXPECT_EQ(VXRColorSpaceForRep({ 3, false, nullptr }), ColorSpace::deviceRGB());
}

TEST(ColorSpaceForRep, EmbeddedProfileGoesFirstAndIsReleasedAfterwards)
{
    const Substitution substituted; // has no say here
    const VXRImageRep rep = repWithProfileOf(ColorSpace::createWithDefaultProfile(ColorModel::Gray), 2, true);
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

TEST(ColorPainter, FillsTheTransformedPathByItsWindingRule)
{
    const auto red = Color::colorWithCalibratedRGB(1, 0, 0);
    EXPECT_EQ(painted(*red, nullptr), std::string("set-color 1 0 0 1\n") + squareFilled);
}

TEST(ColorPainter, EveryColorIsWhiteOnABlackAndWhiteCanvas)
{
    PaintedCanvas canvas;
    canvas.blackAndWhite = true;
    const std::string white = std::string("set-color 1 1 1 1\n") + squareFilled;
    EXPECT_EQ(painted(*Color::colorWithCalibratedRGB(1, 0, 0), &canvas), white);
    canvas.destination = VXRDestinationNonScreen;
    EXPECT_EQ(painted(*Color::clearColor(), &canvas), white);
    EXPECT_EQ(recordingOf([] {
        Color::colorWithCalibratedRGB(1, 0, 0)->paintRect({ 1, 2, 3, 4 });
    }),
        "set-color 1 0 0 1\nfill-rect 1 2 3 4\n");
}

TEST(ColorPainter, TransparentColorsPaintShapesOnScreensOnlyAndRectanglesNever)
{
    PaintedCanvas canvas;
    const std::string clear = std::string("set-color 0 0 0 0\n") + squareFilled;
    EXPECT_EQ(painted(*Color::clearColor(), nullptr), clear);
    EXPECT_EQ(painted(*Color::clearColor(), &canvas), clear);
    canvas.destination = VXRDestinationNonScreen;
    EXPECT_EQ(painted(*Color::clearColor(), &canvas), "");
    EXPECT_NE(painted(*Color::blackColor()->colorWithAlphaComponent(0.001f), &canvas), "");
    EXPECT_EQ(recordingOf([] { Color::clearColor()->paintRect({ 1, 2, 3, 4 }); }), "");
    EXPECT_EQ(recordingOf([] {
        Color::clearColor()->drawSwatchInRect({ 1, 2, 3, 4 });
    }),
        "set-color 0 0 0 0\nfill-rect 1 2 3 4\n");
}
