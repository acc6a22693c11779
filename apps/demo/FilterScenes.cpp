#include "Scene.h"

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/filters/VXRFilterAdaptor.h>
#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/geometry/Color.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/images/VXRImageRenderer.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/renderables/VXRGroup.h>
#include <vxr/renderables/VXRReflectionRenderable.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>
#include <cmath>

// Colour adjustments of a picture, and reflections.

namespace vxr::demo {

namespace {

constexpr int pictureWidth = 120, pictureHeight = 90;
constexpr float margin = 10;

struct Rgb {
    float r, g, b;
};

Rgb mix(const Rgb& a, const Rgb& b, float t)
{
    t = std::clamp(t, 0.0f, 1.0f);
    return { a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t };
}

/// Distance from an ellipse's edge, in parts of its size; negative inside.
float beyond(float x, float y, float cx, float cy, float rx, float ry)
{
    return std::hypot((x - cx) / rx, (y - cy) / ry) - 1;
}

/// Somebody in a striped shirt before a wall in the evening light, with chips of plain colours at the edge.
Rgb portrait(float x, float y)
{
    Rgb color = mix({ 0.42f, 0.50f, 0.58f }, { 0.78f, 0.70f, 0.58f }, 0.7f * x + 0.5f * (1 - y));
    const float shirt = beyond(x, y, 0.46f, 1.12f, 0.40f, 0.42f);
    if (shirt < 0) {
        const bool isStripe = std::fmod(y * 60 + 3 * std::sin(8 * x), 3.0f) < 1.2f;
        color = mix(isStripe ? Rgb { 0.85f, 0.85f, 0.82f } : Rgb { 0.20f, 0.28f, 0.45f },
            { 0.05f, 0.06f, 0.10f }, 0.6f * (x - 0.3f));
    }
    const float neck = beyond(x, y, 0.46f, 0.68f, 0.09f, 0.14f);
    const float face = beyond(x, y, 0.46f, 0.43f, 0.165f, 0.28f);
    const float hair = beyond(x, y, 0.45f, 0.36f, 0.21f, 0.29f);
    if (hair < 0) {
        const float strand = std::sin(150 * (x + 0.25f * y * y));
        color = mix(
            { 0.20f, 0.12f, 0.07f }, { 0.48f, 0.31f, 0.17f }, 0.35f + 0.3f * strand - 0.8f * (x - 0.4f));
    }
    if (face < 0 || neck < 0) {
        const float light = 0.75f - 1.6f * (x - 0.42f) - 0.3f * (y - 0.4f);
        color = mix({ 0.52f, 0.32f, 0.24f }, { 0.95f, 0.76f, 0.64f }, light);
        for (const float eye : { 0.40f, 0.53f }) {
            if (beyond(x, y, eye, 0.40f, 0.022f, 0.022f) < 0)
                color = { 0.16f, 0.18f, 0.20f };
        }
        if (beyond(x, y, 0.465f, 0.57f, 0.05f, 0.014f) < 0)
            color = { 0.70f, 0.30f, 0.28f };
    }
    if (x > 0.88f) {
        constexpr Rgb chips[] = { { 0.80f, 0.15f, 0.15f }, { 0.90f, 0.75f, 0.15f }, { 0.20f, 0.55f, 0.25f },
            { 0.15f, 0.30f, 0.70f }, { 0.50f, 0.50f, 0.50f }, { 0.95f, 0.95f, 0.95f } };
        color = chips[std::min(int(y * 6), 5)];
    }
    return color;
}

std::shared_ptr<const Image> picture(const std::function<Rgb(Rgb)>& change = nullptr)
{
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < pictureHeight; ++y)
        for (int x = 0; x < pictureWidth; ++x) {
            Rgb c = portrait((float(x) + 0.5f) / pictureWidth, (float(y) + 0.5f) / pictureHeight);
            if (change)
                c = change(c);
            const auto byte = [](float v) {
                return static_cast<std::uint32_t>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255));
            };
            pixels.push_back(0xff000000 | byte(c.r) << 16 | byte(c.g) << 8 | byte(c.b));
        }
    return Image::createWithCopy(
        ImageLayout::nativeARGB(pictureWidth, pictureHeight, 4 * std::size_t { pictureWidth }), pixels.data(),
        4 * pixels.size());
}

using Settings = std::vector<std::pair<std::string_view, float>>;

std::shared_ptr<VXRFilteredImage> filtered(
    const std::shared_ptr<const Image>& image, const Settings& settings)
{
    auto made = VXRFilteredImage::filteredImageWithImageRef(image);
    for (const auto& [property, value] : settings)
        VXRFilterAdaptor::adaptorForProperty(property)->setValueForPropertyOnStack(
            value, property, *made->effectStack());
    return made;
}

std::shared_ptr<VXRShape> framed(const std::shared_ptr<VXRFilteredImage>& image, int column, int row)
{
    auto shape = VXRShape::shapeWithRect({ margin + float(column) * (pictureWidth + margin),
        margin + float(row) * (pictureHeight + margin), pictureWidth, pictureHeight });
    auto fill = VXRImageFill::imageFillWithImageRenderer(image->imageRenderer());
    fill->setTechnique(VXRImageFillStretch);
    shape->setFill(std::move(fill));
    shape->setStroke(nullptr);
    return shape;
}

constexpr Size sizeOfGrid(int columns, int rows)
{
    return { margin + float(columns) * (pictureWidth + margin),
        margin + float(rows) * (pictureHeight + margin) };
}

struct Row {
    std::string_view property;
    float values[3];
};

Renderables gridOf(const std::vector<Row>& rows)
{
    Renderables list;
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (int column = 0; column < 3; ++column)
            list.push_back(framed(
                filtered(picture(), { { rows[row].property, rows[row].values[column] } }), column, int(row)));
    return list;
}

Renderables tones()
{
    return gridOf({ { kVXRExposureProperty, { -40, 20, 60 } }, { kVXRBrightnessProperty, { -50, 25, 60 } },
        { kVXRContrastProperty, { -60, 30, 80 } }, { kVXRBlackPointProperty, { 10, 25, 50 } },
        { kVXRWhitePointProperty, { 90, 75, 50 } } });
}

Renderables colors()
{
    return gridOf({ { kVXRSaturationProperty, { 0, 30, 90 } }, { kVXRHueProperty, { -80, 30, 100 } },
        { kVXRTemperatureProperty, { -80, 40, 100 } }, { kVXRSharpnessProperty, { -100, 50, 100 } } });
}

Renderables stackAndLevels()
{
    const auto flat = picture([](Rgb c) {
        return Rgb { 0.30f + 0.35f * c.r, 0.28f + 0.35f * c.g, 0.35f + 0.40f * c.b };
    });
    Renderables list { framed(filtered(picture(), {}), 0, 0),
        framed(filtered(picture(),
                   { { kVXRExposureProperty, 15 }, { kVXRContrastProperty, 20 },
                       { kVXRSaturationProperty, 60 }, { kVXRSharpnessProperty, 40 },
                       { kVXRTemperatureProperty, 30 }, { kVXRBlackPointProperty, 6 } }),
            1, 0),
        framed(filtered(flat, {}), 0, 1) };
    int column = 1;
    for (const auto kind : { VXRAutomaticLevels::Luminance, VXRAutomaticLevels::PerChannel }) {
        const auto image = filtered(flat, {});
        image->setAutomaticLevels(kind);
        list.push_back(framed(image, column++, 1));
    }
    return list;
}

Renderables reflections()
{
    const auto oval = VXRShape::shapeWithOvalInRect({ 14, 14, 90, 110 });
    oval->setFill(VXRAngleGradient::radialGradientWithStartColorEndColor(
        Color::colorWithCalibratedRGB(1, 0.9f, 0.5f), Color::colorWithCalibratedRGB(0.8f, 0.3f, 0.1f)));
    oval->setStroke(VXRStroke::strokeWithColorWidth(Color::colorWithCalibratedRGB(0.4f, 0.15f, 0), 3));
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(24, 58, 6);
    star->offsetTo({ 122, 8 });
    star->setFill(Color::colorWithCalibratedRGB(0.2f, 0.45f, 0.7f));
    star->setStroke(nullptr);
    star->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(45, 6, 5, 0.6f, Color::blackColor()));
    const auto photo = framed(filtered(picture(), {}), 0, 0);
    photo->offsetTo({ 256, 34 });
    const auto card = VXRShape::shapeWithRect({ 396, 14, 70, 110 });
    card->setFill(Color::colorWithCalibratedRGB(0.93f, 0.9f, 0.82f));
    card->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(60, 5, 4, 0.5f, Color::blackColor()));
    const auto mark = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(8, 20, 5);
    mark->offsetTo({ 411, 84 });
    mark->setFill(Color::colorWithCalibratedRGB(0.75f, 0.2f, 0.2f));
    mark->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(60, 5, 3, 0.5f, Color::blackColor()));
    const auto group = VXRGroup::groupWithRenderables({ card, mark });
    Renderables list;
    for (const std::shared_ptr<VXRRenderable>& object : Renderables { oval, star, photo, group }) {
        auto reflection = std::make_shared<VXRReflectionRenderable>();
        reflection->setRenderableToReflect(object);
        list.push_back(object);
        list.push_back(std::move(reflection));
    }
    return list;
}

} // namespace

std::vector<Scene> filterScenes()
{
    return {
        sceneOfRenderables("filter-tones",
            "Three values each of exposure, brightness, contrast, black point and white point.",
            sizeOfGrid(3, 5), tones),
        sceneOfRenderables("filter-colors",
            "Three values each of saturation, hue, temperature and sharpness.", sizeOfGrid(3, 4), colors),
        sceneOfRenderables("filter-stack-and-levels",
            "A picture, and six adjustments of it; a flat one, with automatic levels by its luminance, and "
            "by "
            "each of its colours.",
            sizeOfGrid(3, 2), stackAndLevels),
        sceneOfRenderables("reflections",
            "Reflections of a shape, a star with a shadow, a picture and a group.", { 488, 184 },
            reflections),
    };
}

} // namespace vxr::demo
