#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRTransformGradient.h>

#include <tests/support/FakeShape.h>
#include <tests/support/PictureCompare.h>
#include <tests/support/RecordingContext.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vxr;
using namespace vxr::test;
using ::testing::HasSubstr;

namespace {

constexpr float pi = 3.14159265f;

std::shared_ptr<Color> rgb(float r, float g, float b) { return Color::colorWithCalibratedRGB(r, g, b); }

/// An angle gradient that draws its shading.
class ShadedAngleGradient final : public VXRAngleGradient {
public:
    using VXRAngleGradient::VXRAngleGradient;

protected:
    bool usesQuartzShadings() const override { return true; }
};

template <class Gradient> std::shared_ptr<Gradient> redToBlue(int type = VXRLinearGradient)
{
    return std::make_shared<Gradient>(rgb(1, 0, 0), rgb(0, 0, 1), type);
}

std::shared_ptr<BitmapContext> bitmapOf(int width, int height, const std::function<void()>& draw)
{
    const auto bitmap = BitmapContext::createBitmap(width, height);
    const CurrentContextScope scope(*bitmap, true, false);
    draw();
    return bitmap;
}

std::string recordedRect(VXRGradient& gradient, const Rect& rect)
{
    return recordingOf([&] { gradient.paintRect(rect); });
}

std::string recordedShape(VXRGradient& gradient, FakeShape& shape)
{
    return recordingOf([&] { gradient.paintShape(shape); });
}

TEST(AngleGradientPainting, ARectangleGetsTheRampOverItsTurnedBounds)
{
    // A right angle turns the bounds of 200 x 100 about (110, 70): 100 x 200 from (60, -30). The ramp knows
    // nothing of the opacity.
    const auto gradient = redToBlue<VXRAngleGradient>();
    gradient->setGradientAngle(pi / 2);
    gradient->setOpacity(0.5f);
    EXPECT_EQ(recordedRect(*gradient, { 10, 20, 200, 100 }), R"(save
clip-rect 10 20 200 100
concat 0 -1 1 0 40 180
set-interpolation high high
draw-image 60 -30 100 200 of 512x128
restore
)");
}

TEST(AngleGradientPainting, AShapeGetsTheRampInItsOwnFrameAPointLargerOnEverySide)
{
    FakeShape shape(Size { 40, 20 });
    shape.placed = AffineTransform { 2, 0, 0, 2, 100, 50 };
    const auto gradient = redToBlue<VXRAngleGradient>();
    EXPECT_EQ(recordedShape(*gradient, shape), R"(save
clip [M100 50 L180 50 L180 90 L100 90 Z]
concat 2 0 0 2 100 50
concat 1 0 0 1 0 0
set-interpolation high high
draw-image -1 -1 42 22 of 512x128
restore
)");
    shape.placedForGradients = AffineTransform::makeTranslation(7, 8);
    EXPECT_THAT(recordedShape(*gradient, shape), HasSubstr("concat 1 0 0 1 7 8\n"));
}

TEST(GradientPainting, BlackAndWhiteCanvasesShowShapesWhite)
{
    FakeCanvas canvas;
    FakeShape shape(Size { 40, 20 });
    shape.onCanvas = &canvas;
    const std::pair<std::shared_ptr<VXRGradient>, const char*> cases[] = {
        { redToBlue<VXRAngleGradient>(), "draw-image" },
        { VXRTransformGradient::radialGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1)),
            "draw-shading radial 0 0 0 to 0 0 100" },
    };
    for (const auto& [gradient, drawn] : cases) {
        canvas.blackAndWhite = true;
        EXPECT_EQ(recordedShape(*gradient, shape), "set-color 1 1 1 1\nfill [M0 0 L40 0 L40 20 L0 20 Z]\n");
        canvas.blackAndWhite = false;
        EXPECT_THAT(recordedShape(*gradient, shape), HasSubstr(drawn));
    }
}

TEST(AngleGradientPainting, TheShadingRouteMeasuresShapesWithoutTheirRotation)
{
    // 200 x 100, turned by a quarter about its middle (100, 50): it stands 200 high from (50, -50), and
    // is measured as if it lay.
    FakeShape shape(Size { 200, 100 });
    shape.placed = AffineTransform {}.translate(100, 50).rotate(pi / 2).translate(-100, -50);
    shape.rotation = pi / 2;
    const auto gradient = redToBlue<ShadedAngleGradient>();
    gradient->setOpacity(0.5f);
    EXPECT_EQ(recordedShape(*gradient, shape), R"(save
clip [M150 -50 L150 150 L50 150 L50 -50 Z]
set-alpha 0.5
concat 1 0 0 1 0 50
concat 1 0 0 1 0 0
concat 2 0 0 2 0 0
set-interpolation high high
draw-shading axial 0 0 to 100 0 [0: 1 0 0 1, 1: 0 0 1 1]
restore
)");
}

TEST(AngleGradientPainting, BothRoutesShowTheSameColours)
{
    const Rect rect { 10, 10, 180, 120 };
    const auto ramp = redToBlue<VXRAngleGradient>(VXRRadialGradient); // which the ramp knows nothing of
    const auto shaded = redToBlue<ShadedAngleGradient>();
    ramp->insertGradientStop(VXRGradientStop::gradientStopWithColorFraction(rgb(0, 1, 0), 0.5f)); // nor of it
    for (const float angle : { 0.0f, pi / 6, pi / 2, -2.3f }) {
        ramp->setGradientAngle(angle);
        shaded->setGradientAngle(angle);
        const auto a = bitmapOf(200, 140, [&] { ramp->paintRect(rect); });
        const auto b = bitmapOf(200, 140, [&] { shaded->paintRect(rect); });
        for (int y = 12; y < 128; y += 5)
            for (int x = 12; x < 188; x += 5)
                ASSERT_LE(difference(pixelAt(*a, x, y), pixelAt(*b, x, y)), 3)
                    << angle << " at " << x << ", " << y << ": " << pixelAt(*a, x, y) << pixelAt(*b, x, y);
    }
}

// Seven levels over the whole width: without a dither, or with one that is lost on the way, there are bands.
TEST(AngleGradientPainting, AStretchedRampKeepsItsMeans)
{
    constexpr int high = 120, block = 20;
    VXRAngleGradient gradient(rgb(0.4f, 0.4f, 0.4f), rgb(0.43f, 0.43f, 0.43f), VXRLinearGradient);
    for (const int stretch : { 1, 3, 8 }) {
        const int wide = 100 * stretch;
        const auto bitmap = bitmapOf(wide, high, [&] {
            currentDrawingPort().scale(float(stretch), float(stretch));
            gradient.paintRect({ 0, 0, 100, high });
        });
        for (int x = 0; x < wide; x += block) {
            double sum = 0;
            for (int i = 0; i < block * high; ++i)
                sum += pixelAt(*bitmap, x + i % block, i / block).red;
            const double ramp = 0.4 + 0.03 * (x + block / 2) / wide;
            EXPECT_NEAR(sum / (block * high), 255 * ramp, 0.2) << stretch << " at " << x;
        }
    }
}

TEST(TransformGradientPainting, TheAxisRunsFromStartToEndUnderTheTransform)
{
    const auto gradient = redToBlue<VXRTransformGradient>();
    gradient->setEndPoint({ 50, 0 });
    gradient->setOpacity(0.75f);
    gradient->setTransform(AffineTransform::makeTranslation(3, 4));
    EXPECT_EQ(recordedRect(*gradient, { 0, 0, 60, 10 }), R"(save
clip-rect 0 0 60 10
concat 1 0 0 1 3 4
set-alpha 0.75
concat 1 0 0 1 0 0
concat 1 0 0 1 0 0
concat 0.5 0 0 0.5 0 0
set-interpolation high high
draw-shading axial 0 0 to 100 0 [0: 1 0 0 1, 1: 0 0 1 1]
restore
)");

    FakeShape shape(Size { 60, 10 });
    shape.placed = AffineTransform::makeScale(2, 2);
    gradient->setStartPoint({ 0, 10 });
    gradient->setEndPoint({ 0, 40 });
    EXPECT_THAT(recordedShape(*gradient, shape), HasSubstr(R"(clip [M0 0 L120 0 L120 20 L0 20 Z]
concat 2 0 0 2 0 0
concat 1 0 0 1 3 4
set-alpha 0.75
concat 1 0 0 1 0 10
concat 0 1 -1 0 0 0
concat 0.3 0 0 0.3 0 0
)"));
}

TEST(GradientPainting, NothingIsDrawnWithoutAnAxisOrStopsAndNothingHarmed)
{
    VXRAngleGradient angle;
    VXRTransformGradient placed;
    placed.setEndPoint({ 4, 0 });
    const auto bitmap = bitmapOf(4, 4, [&] {
        redToBlue<VXRTransformGradient>()->paintRect({ 0, 0, 4, 4 });
        angle.paintRect({ 0, 0, 4, 4 });
        placed.paintRect({ 0, 0, 4, 4 });
        placed.drawSwatchInRect({ 0, 0, 4, 4 });
        Color::whiteColor()->paintRect({ 0, 0, 1, 1 });
    });
    EXPECT_EQ(pixelAt(*bitmap, 2, 2), Pixel {});
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), (Pixel { 255, 255, 255, 255 }));
    EXPECT_EQ(placed.colorAtFraction(0.5f), nullptr);
}

TEST(GradientSwatch, FillsTheRectangleByTypeWithTheOpacity)
{
    const auto gradient = redToBlue<VXRGradient>();
    const auto swatch = [&] { return recordingOf([&] { gradient->drawSwatchInRect({ 10, 20, 50, 30 }); }); };
    gradient->setOpacity(0.5f);
    EXPECT_EQ(swatch(), R"(save
clip-rect 10 20 50 30
set-alpha 0.5
concat 1 0 0 1 10 35
concat 0.5 0 0 0.5 0 0
draw-shading axial 0 0 to 100 0 [0: 1 0 0 1, 1: 0 0 1 1]
restore
)");
    gradient->setGradientType(VXRRadialGradient);
    EXPECT_THAT(swatch(),
        HasSubstr("concat 1 0 0 1 35 35\nconcat 0.25 0 0 0.25 0 0\ndraw-shading radial 0 0 0 to 0 0 100 ["));
}

} // namespace
