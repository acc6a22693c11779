#include "Scene.h"

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadingRep.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/platform/graphics/Image.h>

#include <algorithm>
#include <cmath>

namespace vxr::demo {

namespace {

std::shared_ptr<Color> rgb(float r, float g, float b, float a = 1)
{
    return Color::colorWithCalibratedRGB(r, g, b, a);
}

/// A colour of the rainbow, `turn` from 0 to 1 once around.
std::shared_ptr<Color> hue(float turn)
{
    const auto channel = [&](float shift) { return 0.5f + 0.45f * std::cos((turn + shift) * 6.2831853f); };
    return rgb(channel(0), channel(-0.333f), channel(0.333f));
}

void insertStop(VXRGradient& gradient, std::shared_ptr<Color> color, float fraction)
{
    gradient.insertGradientStop(VXRGradientStop::gradientStopWithColorFraction(std::move(color), fraction));
}

std::shared_ptr<VXRTransformGradient> gradientOf(
    int type, const std::vector<std::pair<float, std::shared_ptr<Color>>>& stops)
{
    auto gradient = std::make_shared<VXRTransformGradient>();
    for (const auto& [fraction, color] : stops)
        insertStop(*gradient, color, fraction);
    gradient->setGradientType(type);
    return gradient;
}

/// Across the rectangle, or from its middle to its corners' distance.
void paintAcross(VXRTransformGradient& gradient, const Rect& rect)
{
    const bool linear = gradient.gradientType() == VXRLinearGradient;
    gradient.setStartPoint(linear ? Point { rect.minX(), rect.midY() } : Point { rect.midX(), rect.midY() });
    gradient.setEndPoint({ rect.maxX(), rect.midY() });
    gradient.paintRect(rect);
}

void drawStops(Context&)
{
    std::vector<std::pair<float, std::shared_ptr<Color>>> rainbow;
    for (int i = 0; i < 12; ++i)
        rainbow.emplace_back(static_cast<float>(i) / 11, hue(static_cast<float>(i) / 12));
    const std::vector<std::pair<float, std::shared_ptr<Color>>> lists[] = {
        { { 0.0f, rgb(0.10f, 0.22f, 0.45f) }, { 1.0f, rgb(0.98f, 0.82f, 0.55f) } },
        { { 0.0f, rgb(0.55f, 0.08f, 0.20f) }, { 0.3f, rgb(0.97f, 0.62f, 0.25f) },
            { 1.0f, rgb(0.12f, 0.35f, 0.38f) } },
        rainbow,
    };
    float x = 20;
    for (const auto& list : lists) {
        paintAcross(*gradientOf(VXRLinearGradient, list), { x, 20, 150, 90 });
        paintAcross(*gradientOf(VXRRadialGradient, list), { x, 130, 150, 150 });
        x += 170;
    }
}

void drawAngles(Context&)
{
    for (int i = 0; i < 8; ++i) {
        const auto gradient = VXRAngleGradient::linearGradientWithStartColorEndColor(
            rgb(0.08f, 0.30f, 0.35f), rgb(0.95f, 0.88f, 0.60f));
        gradient->setGradientAngleInDegrees(static_cast<float>(i) * 45);
        gradient->paintRect(
            { 20.0f + static_cast<float>(i % 4) * 120, 20.0f + static_cast<float>(i / 4) * 90, 100, 70 });
    }
}

void drawOpacity(Context& context)
{
    constexpr float cell = 10;
    context.setFillColor(ColorValue::gray(0.8f));
    for (int row = 0; row < 18; ++row)
        for (int column = row % 2; column < 52; column += 2)
            context.fillRect(
                { static_cast<float>(column) * cell, static_cast<float>(row) * cell, cell, cell });
    float x = 20;
    for (const float opacity : { 1.0f, 0.7f, 0.4f, 0.15f }) {
        const auto even = gradientOf(
            VXRLinearGradient, { { 0.0f, rgb(0.65f, 0.10f, 0.30f) }, { 1.0f, rgb(0.15f, 0.25f, 0.60f) } });
        even->setOpacity(opacity);
        paintAcross(*even, { x, 20, 105, 60 });
        const auto fading = gradientOf(
            VXRLinearGradient, { { 0.0f, rgb(0.10f, 0.45f, 0.30f) }, { 1.0f, rgb(0.10f, 0.45f, 0.30f, 0) } });
        fading->setOpacity(opacity);
        paintAcross(*fading, { x, 100, 105, 60 });
        x += 125;
    }
}

void drawHardSteps(Context&)
{
    const std::vector<std::pair<float, std::shared_ptr<Color>>> steps
        = { { 0.0f, rgb(0.90f, 0.30f, 0.20f) }, { 0.25f, rgb(0.90f, 0.30f, 0.20f) },
              { 0.25f, rgb(0.98f, 0.85f, 0.40f) }, { 0.5f, rgb(0.98f, 0.85f, 0.40f) },
              { 0.5f, rgb(0.20f, 0.55f, 0.50f) }, { 0.75f, rgb(0.85f, 0.95f, 0.90f) },
              { 0.75f, rgb(0.12f, 0.20f, 0.35f) }, { 1.0f, rgb(0.45f, 0.55f, 0.75f) } };
    paintAcross(*gradientOf(VXRLinearGradient, steps), { 20, 20, 240, 160 });
    paintAcross(*gradientOf(VXRRadialGradient, steps), { 280, 20, 160, 160 });
}

/// A ramp that is reduced to 8 bits by truncation.
class UnditheredRamp final : public VXRShadingRep {
public:
    UnditheredRamp(std::shared_ptr<Color> start, std::shared_ptr<Color> end)
    {
        setStartColor(std::move(start));
        setEndColor(std::move(end));
        _buildBitmapRepresentation32();
    }
};

/// The image with its levels above `least` spread over the whole range.
std::shared_ptr<const Image> withRaisedContrast(const Image& image, int least, int factor)
{
    const ImageLayout& layout = image.layout();
    const std::size_t size = layout.bytesPerRow * static_cast<std::size_t>(layout.height);
    std::vector<std::uint8_t> pixels(image.pixels(), image.pixels() + size);
    for (auto& value : pixels)
        value = static_cast<std::uint8_t>(std::clamp((value - least) * factor, 0, 255));
    ImageLayout raised = layout;
    raised.smooth = false;
    return Image::createWithCopy(raised, pixels.data(), pixels.size());
}

void drawDarkRamps(Context& context)
{
    const auto start = rgb(0.05f, 0.05f, 0.05f), end = rgb(0.09f, 0.09f, 0.09f);
    const auto dithered = VXRShadingRep::shadingWithStartEnd(start, end)->imageRef();
    const UnditheredRamp truncated(start, end);
    context.setInterpolationQuality(InterpolationQuality::High);
    context.drawImage({ 20, 20, 480, 60 }, *dithered);
    context.drawImage({ 20, 80, 480, 60 }, *truncated.imageRef());
    context.setInterpolationQuality(InterpolationQuality::None);
    context.drawImage({ 20, 160, 480, 60 }, *withRaisedContrast(*dithered, 11, 18));
    context.drawImage({ 20, 220, 480, 60 }, *withRaisedContrast(*truncated.imageRef(), 11, 18));
}

} // namespace

std::vector<Scene> gradientScenes()
{
    return {
        { "gradient-stops", "Linear and radial gradients of two, three and twelve stops.", { 530, 300 },
            drawStops, {} },
        { "gradient-angles", "Ramps across a rectangle, turned by 45 degrees from one to the next.",
            { 500, 200 }, drawAngles, {} },
        { "gradient-opacity",
            "Above, gradients of falling opacity; below, the same fading out along themselves as well.",
            { 520, 180 }, drawOpacity, {} },
        { "gradient-steps", "Two stops at one place make a hard step.", { 460, 200 }, drawHardSteps, {} },
        { "gradient-dither",
            "Each pair shows a dark ramp with dither and without; the second has its contrast raised to show "
            "the bands.",
            { 520, 300 }, drawDarkRamps, {} },
    };
}

} // namespace vxr::demo
