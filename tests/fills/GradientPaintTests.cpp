#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadingRep.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/platform/graphics/Shading.h>

#include <tests/support/FakeShape.h>
#include <tests/support/PictureCompare.h>
#include <tests/support/RecordingContext.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

using namespace vxr;
using namespace vxr::test;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

constexpr float pi = 3.14159265f;

std::shared_ptr<Color> rgb(float r, float g, float b, float a = 1)
{
    return Color::colorWithCalibratedRGB(r, g, b, a);
}

std::shared_ptr<VXRGradientStop> stop(std::shared_ptr<Color> color, float fraction)
{
    return VXRGradientStop::gradientStopWithColorFraction(std::move(color), fraction);
}

/// An angle gradient that draws its shading.
class ShadedAngleGradient final : public VXRAngleGradient {
public:
    using VXRAngleGradient::VXRAngleGradient;

protected:
    bool usesQuartzShadings() const override { return true; }
};

std::shared_ptr<VXRAngleGradient> redToBlue(float angle)
{
    auto gradient = VXRAngleGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    gradient->setGradientAngle(angle);
    return gradient;
}

void drawOn(CairoContext& context, const std::function<void()>& draw)
{
    const CurrentContextScope scope(context, true, false);
    draw();
}

/// The lines of a recording that begin with `word`.
std::vector<std::string> linesOf(const std::string& recording, const std::string& word)
{
    std::vector<std::string> found;
    std::istringstream stream(recording);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(word))
            found.push_back(line);
    return found;
}

TEST(AngleGradientPainting, ARectangleGetsTheRampOverItsTurnedBounds)
{
    // A right angle turns the bounds of 200 x 100 about (110, 70): 100 x 200 from (60, -30).
    const auto gradient = redToBlue(pi / 2);
    gradient->setOpacity(0.5f);
    EXPECT_EQ(recordingOf([&] {
        gradient->paintRect({ 10, 20, 200, 100 });
    }),
        R"(save
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
    const auto gradient = redToBlue(0);
    EXPECT_EQ(recordingOf([&] { gradient->paintShape(shape); }), R"(save
clip [M100 50 L180 50 L180 90 L100 90 Z]
concat 2 0 0 2 100 50
concat 1 0 0 1 0 0
set-interpolation high high
draw-image -1 -1 42 22 of 512x128
restore
)");
    shape.placedForGradients = AffineTransform::makeTranslation(7, 8);
    EXPECT_THAT(recordingOf([&] { gradient->paintShape(shape); }), HasSubstr("concat 1 0 0 1 7 8\n"));
}

TEST(GradientPainting, BlackAndWhiteCanvasesShowShapesWhite)
{
    FakeCanvas canvas;
    canvas.blackAndWhite = true;
    FakeShape shape(Size { 40, 20 });
    shape.placed = AffineTransform::makeTranslation(5, 5);
    shape.onCanvas = &canvas;
    const auto angle = redToBlue(1);
    const auto placed
        = VXRTransformGradient::radialGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    for (VXRGradient* gradient :
        { static_cast<VXRGradient*>(angle.get()), static_cast<VXRGradient*>(placed.get()) })
        EXPECT_EQ(recordingOf([&] { gradient->paintShape(shape); }), R"(set-color 1 1 1 1
fill [M5 5 L45 5 L45 25 L5 25 Z]
)");
    canvas.blackAndWhite = false;
    EXPECT_THAT(recordingOf([&] { angle->paintShape(shape); }), HasSubstr("draw-image"));
}

TEST(AngleGradientPainting, TheShadingRouteLaysTheShadingAcrossTheRectangle)
{
    const auto gradient
        = std::make_shared<ShadedAngleGradient>(rgb(1, 0, 0), rgb(0, 0, 1), VXRLinearGradient);
    gradient->setOpacity(0.5f);
    EXPECT_EQ(recordingOf([&] {
        gradient->paintRect({ 10, 20, 200, 100 });
    }),
        R"(save
clip-rect 10 20 200 100
set-alpha 0.5
concat 1 0 0 1 10 70
concat 1 0 0 1 0 0
concat 2 0 0 2 0 0
set-interpolation high high
draw-shading axial 0 0 to 100 0 [0: 1 0 0 1, 1: 0 0 1 1]
restore
)");

    // A right angle: from the top (110, 120) downwards over 100.
    gradient->setGradientAngle(pi / 2);
    const std::string turned = recordingOf([&] { gradient->paintRect({ 10, 20, 200, 100 }); });
    EXPECT_THAT(turned, HasSubstr("concat 1 0 0 1 110 120\nconcat 0 -1 1 0 0 0\nconcat 1 0 0 1 0 0\n"));
}

TEST(AngleGradientPainting, TheShadingRouteMeasuresShapesWithoutTheirRotation)
{
    // 200 x 100, turned by a quarter about its middle (100, 50): it stands 200 high from (50, -50), and
    // is measured as if it lay.
    FakeShape shape(Size { 200, 100 });
    shape.placed = AffineTransform {}.translate(100, 50).rotate(pi / 2).translate(-100, -50);
    shape.rotation = pi / 2;
    const auto gradient
        = std::make_shared<ShadedAngleGradient>(rgb(1, 0, 0), rgb(0, 0, 1), VXRLinearGradient);
    const std::string drawn = recordingOf([&] { gradient->paintShape(shape); });
    EXPECT_THAT(drawn, StartsWith("save\nclip ["));
    EXPECT_THAT(drawn, HasSubstr("concat 1 0 0 1 0 50\nconcat 1 0 0 1 0 0\nconcat 2 0 0 2 0 0\n"));
}

TEST(AngleGradientPainting, BothRoutesShowTheSameColours)
{
    for (const float angle : { 0.0f, pi / 6, pi / 2, -2.3f }) {
        const Rect rect { 10, 10, 180, 120 };
        const auto ramp = redToBlue(angle);
        const auto shaded
            = std::make_shared<ShadedAngleGradient>(rgb(1, 0, 0), rgb(0, 0, 1), VXRLinearGradient);
        shaded->setGradientAngle(angle);
        const auto a = CairoContext::createBitmap(200, 140), b = CairoContext::createBitmap(200, 140);
        drawOn(*a, [&] { ramp->paintRect(rect); });
        drawOn(*b, [&] { shaded->paintRect(rect); });
        for (int y = 12; y < 128; y += 5)
            for (int x = 12; x < 188; x += 5)
                ASSERT_LE(difference(pixelAt(*a, x, y), pixelAt(*b, x, y)), 3)
                    << angle << " at " << x << ", " << y << ": " << pixelAt(*a, x, y) << pixelAt(*b, x, y);
    }
}

TEST(AngleGradientPainting, TheDefaultRouteShowsFirstAndLastColourOnly)
{
    const auto gradient = redToBlue(0);
    gradient->insertGradientStop(stop(rgb(0, 1, 0), 0.5f));
    gradient->setOpacity(0.25f);
    gradient->setGradientType(VXRRadialGradient);
    const auto bitmap = CairoContext::createBitmap(100, 20);
    drawOn(*bitmap, [&] { gradient->paintRect({ 0, 0, 100, 20 }); });
    EXPECT_LE(difference(pixelAt(*bitmap, 0, 10), { 254, 0, 1, 255 }), 2);
    EXPECT_LE(difference(pixelAt(*bitmap, 50, 10), { 126, 0, 129, 255 }), 2);
    EXPECT_LE(difference(pixelAt(*bitmap, 99, 10), { 1, 0, 254, 255 }), 2);
}

TEST(AngleGradientPainting, PositiveAnglesTurnClockwiseWhereYPointsUp)
{
    const auto bitmap = CairoContext::createBitmap(40, 40);
    drawOn(*bitmap, [&] { redToBlue(pi / 2)->paintRect({ 0, 0, 40, 40 }); });
    EXPECT_GT(pixelAt(*bitmap, 20, 38).red, 240); // begins at the top
    EXPECT_GT(pixelAt(*bitmap, 20, 1).blue, 240);
}

TEST(TransformGradientPainting, TheAxisRunsFromStartToEndUnderTheTransform)
{
    const auto gradient
        = VXRTransformGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    gradient->setEndPoint({ 50, 0 });
    gradient->setOpacity(0.75f);
    gradient->setTransform(AffineTransform::makeTranslation(3, 4));
    EXPECT_EQ(recordingOf([&] {
        gradient->paintRect({ 0, 0, 60, 10 });
    }),
        R"(save
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
    const std::string drawn = recordingOf([&] { gradient->paintShape(shape); });
    EXPECT_THAT(drawn, HasSubstr(R"(clip [M0 0 L120 0 L120 20 L0 20 Z]
concat 2 0 0 2 0 0
concat 1 0 0 1 3 4
set-alpha 0.75
concat 1 0 0 1 0 10
concat 0 1 -1 0 0 0
concat 0.3 0 0 0.3 0 0
)"));
}

TEST(TransformGradientPainting, RadialGradientsReachFromTheStartToTheEndPoint)
{
    const auto gradient
        = VXRTransformGradient::radialGradientWithStartColorEndColor(rgb(1, 1, 1), rgb(0, 0, 0));
    gradient->setStartPoint({ 50, 50 });
    gradient->setEndPoint({ 50, 90 });
    const auto bitmap = CairoContext::createBitmap(100, 100);
    drawOn(*bitmap, [&] { gradient->paintRect({ 0, 0, 100, 100 }); });
    for (int x = 0; x < 100; x += 7)
        for (int y = 0; y < 100; y += 7) {
            const double away = std::min(1.0, std::hypot(x + 0.5 - 50, y + 0.5 - 50) / 40);
            const int level = static_cast<int>(std::lround(255 * (1 - away)));
            ASSERT_LE(difference(pixelAt(*bitmap, x, y), { level, level, level, 255 }), 2) << x << ", " << y;
        }
}

TEST(TransformGradientPainting, HardStepsAreDrawnAsEdges)
{
    const auto gradient
        = VXRTransformGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    gradient->insertGradientStop(stop(rgb(0, 1, 0), 0.5f));
    gradient->insertGradientStop(stop(rgb(1, 1, 0), 0.5f));
    gradient->setEndPoint({ 100, 0 });
    const auto bitmap = CairoContext::createBitmap(100, 4);
    drawOn(*bitmap, [&] { gradient->paintRect({ 0, 0, 100, 4 }); });
    // Red to green up to the middle, from there yellow to blue.
    for (const int x : { 1, 20, 40, 48, 49, 50, 51, 60, 80, 98 }) {
        const double t = (x + 0.5) / 100, u = t < 0.5 ? t * 2 : t * 2 - 1;
        const auto level = [](double v) { return static_cast<int>(std::lround(v * 255)); };
        const Pixel expected = t < 0.5 ? Pixel { level(1 - u), level(u), 0, 255 }
                                       : Pixel { level(1 - u), level(1 - u), level(u), 255 };
        EXPECT_LE(difference(pixelAt(*bitmap, x, 2), expected), 2) << x << ": " << pixelAt(*bitmap, x, 2);
    }
}

TEST(TransformGradientPainting, StepsAtTheEndsReachBeyondThem)
{
    const auto gradient
        = VXRTransformGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    gradient->insertGradientStop(stop(rgb(0, 1, 0), 0)); // behind the red one: the start is green
    gradient->insertGradientStop(stop(rgb(0, 0, 0), 1)); // behind the blue one: the end is black
    gradient->setStartPoint({ 20, 0 });
    gradient->setEndPoint({ 80, 0 });
    const auto bitmap = CairoContext::createBitmap(100, 4);
    drawOn(*bitmap, [&] { gradient->paintRect({ 0, 0, 100, 4 }); });
    EXPECT_EQ(pixelAt(*bitmap, 5, 2), (Pixel { 0, 255, 0, 255 }));
    EXPECT_LE(difference(pixelAt(*bitmap, 79, 2), { 0, 2, 253, 255 }), 2);
    EXPECT_EQ(pixelAt(*bitmap, 95, 2), (Pixel { 0, 0, 0, 255 }));
}

TEST(TransformGradientPainting, NothingIsDrawnWithoutAnAxis)
{
    const auto gradient
        = VXRTransformGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    const auto bitmap = CairoContext::createBitmap(4, 4);
    drawOn(*bitmap, [&] {
        gradient->paintRect({ 0, 0, 4, 4 });
        bitmap->setFillColor(ColorValue::rgb(0, 1, 0));
        bitmap->fillRect({ 0, 0, 1, 1 });
    });
    EXPECT_EQ(pixelAt(*bitmap, 2, 2), Pixel {});
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), (Pixel { 0, 255, 0, 255 }));
}

TEST(GradientPainting, GradientsWithoutStopsShowNothing)
{
    VXRAngleGradient angle;
    VXRTransformGradient placed;
    placed.setEndPoint({ 4, 0 });
    const auto bitmap = CairoContext::createBitmap(4, 4);
    drawOn(*bitmap, [&] {
        angle.paintRect({ 0, 0, 4, 4 });
        placed.paintRect({ 0, 0, 4, 4 });
        placed.drawSwatchInRect({ 0, 0, 4, 4 });
    });
    EXPECT_EQ(pixelAt(*bitmap, 2, 2), Pixel {});
    EXPECT_EQ(placed.colorAtFraction(0.5f), nullptr);
}

TEST(GradientSwatch, FillsTheRectangleByTypeWithTheOpacity)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
    gradient->setOpacity(0.5f);
    EXPECT_EQ(recordingOf([&] {
        gradient->drawSwatchInRect({ 10, 20, 50, 30 });
    }),
        R"(save
clip-rect 10 20 50 30
set-alpha 0.5
concat 1 0 0 1 10 35
concat 0.5 0 0 0.5 0 0
draw-shading axial 0 0 to 100 0 [0: 1 0 0 1, 1: 0 0 1 1]
restore
)");
    gradient->setGradientType(VXRRadialGradient);
    EXPECT_THAT(recordingOf([&] {
        gradient->drawSwatchInRect({ 10, 20, 50, 30 });
    }),
        HasSubstr("concat 1 0 0 1 35 35\nconcat 0.25 0 0 0.25 0 0\ndraw-shading radial 0 0 0 to 0 0 100 ["));
}

TEST(GradientPDF, ShadingsStayVectorsAndKeepTheirSteps)
{
    std::string document;
    const auto pdf = PDFContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        document.append(reinterpret_cast<const char*>(data), size);
        return true;
    });
    pdf->beginPage({ { 0, 0, 200, 100 }, {}, {}, {}, {} });
    {
        const CurrentContextScope scope(*pdf, false, false);
        const auto linear
            = VXRTransformGradient::linearGradientWithStartColorEndColor(rgb(1, 0, 0), rgb(0, 0, 1));
        linear->insertGradientStop(stop(rgb(0, 1, 0), 0.5f));
        linear->insertGradientStop(stop(rgb(1, 1, 0), 0.5f));
        linear->setEndPoint({ 100, 0 });
        linear->paintRect({ 0, 0, 100, 100 });
        const auto radial
            = VXRTransformGradient::radialGradientWithStartColorEndColor(rgb(1, 1, 1), rgb(0, 0, 0));
        radial->setStartPoint({ 150, 50 });
        radial->setEndPoint({ 200, 50 });
        radial->paintRect({ 100, 0, 100, 100 });
    }
    pdf->endPage();
    pdf->close();
    EXPECT_THAT(document, HasSubstr("/ShadingType 2"));
    EXPECT_THAT(document, HasSubstr("/ShadingType 3"));
    EXPECT_THAT(document, Not(HasSubstr("/Subtype /Image")));
    // Three pieces stitched at the step, so two bounds at one place.
    EXPECT_THAT(document, HasSubstr("/Bounds [ 0.5 0.5 ]"));
}

TEST(GradientRamps, AreDrawnFromTheirKeptFormInOneImageDraw)
{
    const auto gradient = redToBlue(0.7f);
    const auto first
        = VXRShadingRep::shadingWithStartEnd(gradient->firstColor(), gradient->lastColor())->imageRef();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(linesOf(recordingOf([&] { gradient->paintRect({ 0, 0, 30, 30 }); }), "draw-").size(), 1u);
    EXPECT_EQ(
        VXRShadingRep::shadingWithStartEnd(gradient->firstColor(), gradient->lastColor())->imageRef(), first);
}

} // namespace
