#include "Scene.h"

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageData.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/PDFDocument.h>
#include <vxr/renderables/VXRImageRenderable.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>
#include <cmath>

// Pictures: fills with each technique, tiles, crops and masks, placeholders. They are made here, so that the
// scenes look the same whether foreign files can be read or not.

namespace vxr::demo {

namespace {

constexpr int photoWidth = 240, photoHeight = 160;

std::uint32_t pixel(float red, float green, float blue)
{
    const auto byte = [](float value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255));
    };
    return 0xff000000 | byte(red) << 16 | byte(green) << 8 | byte(blue);
}

/// Hills under an evening sky.
std::uint32_t landscape(float x, float y)
{
    const float sun = std::exp(-40 * ((x - 0.7f) * (x - 0.7f) + (y - 0.42f) * (y - 0.42f)));
    std::uint32_t color
        = pixel(0.35f + 0.55f * y + 0.6f * sun, 0.45f + 0.2f * y + 0.5f * sun, 0.75f - 0.3f * y + 0.1f * sun);
    for (int hill = 0; hill < 3; ++hill) {
        const float depth = static_cast<float>(hill) / 3;
        const float ridge
            = 0.55f + 0.15f * depth + 0.08f * std::sin(9 * x * (1 - 0.2f * depth) + 2.1f * hill);
        if (y > ridge)
            color = pixel(0.25f - 0.15f * depth, 0.40f - 0.15f * depth, 0.38f - 0.2f * depth);
    }
    return color;
}

std::shared_ptr<const Image> imageOf(
    int width, int height, const std::function<std::uint32_t(float, float)>& paint)
{
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.push_back(paint((static_cast<float>(x) + 0.5f) / static_cast<float>(width),
                (static_cast<float>(y) + 0.5f) / static_cast<float>(height)));
    return Image::createWithCopy(ImageLayout::nativeARGB(width, height, 4 * static_cast<std::size_t>(width)),
        pixels.data(), 4 * pixels.size());
}

std::shared_ptr<const Image> photo()
{
    static const auto image = imageOf(photoWidth, photoHeight, landscape);
    return image;
}

/// A leaf on nothing.
std::shared_ptr<const Image> leaf()
{
    static const auto image = imageOf(120, 120, [](float x, float y) {
        const float along = (x + y) / 2, across = std::abs(x - y);
        const bool inside
            = across < 0.75f * std::sin(3.1416f * std::clamp(1.15f * along - 0.08f, 0.0f, 1.0f));
        if (!inside)
            return 0u;
        return across < 0.02f ? pixel(0.75f, 0.85f, 0.55f) : pixel(0.25f, 0.45f + 0.3f * along, 0.25f);
    });
    return image;
}

/// A picture whose decoded form is known, as a host makes it that draws its own.
class ReadyImageData final : public VXRImageData {
public:
    ReadyImageData(std::shared_ptr<VXEData> data, std::shared_ptr<const Image> image)
        : VXRImageData(std::move(data))
        , mImage(std::move(image))
    {
    }

    Size naturalSize() const override
    {
        return { static_cast<float>(mImage->width()), static_cast<float>(mImage->height()) };
    }
    std::shared_ptr<VXRImageRenderer> imageRenderer() override
    {
        return VXRBitmapRenderer::imageRendererWithImageRef(mImage);
    }
    std::size_t bytesUsed() const override { return 0; }

private:
    std::shared_ptr<const Image> mImage;
};

std::shared_ptr<VXRImageBinary> pictureOf(const std::shared_ptr<const Image>& image)
{
    auto binary = std::make_shared<VXRImageBinary>();
    binary->setData(
        std::make_shared<VXEData>(Data::dataWithBytes("made", 4), "made", "made.png", 0, nullptr));
    binary->setImageData(std::make_shared<ReadyImageData>(binary->data(), image));
    binary->setNaturalImageSize(binary->imageData()->naturalSize());
    return binary;
}

std::shared_ptr<VXRShape> frameOf(std::shared_ptr<Path> path, std::shared_ptr<VXRImageFill> fill)
{
    auto shape = VXRShape::shapeWithBezierPath(std::move(path));
    shape->setFill(std::move(fill));
    shape->setStroke(VXRStroke::strokeWithColorWidth(Color::colorWithCalibratedWhite(0.4f), 1));
    return shape;
}

Renderables techniques()
{
    Renderables list;
    for (int technique = 0; technique < 5; ++technique)
        for (int row = 0; row < 2; ++row) {
            auto fill = VXRImageFill::imageFillWithImageRef(photo());
            fill->renderer()->setNaturalSize({ 60, 40 });
            fill->setTechnique(technique);
            const Rect place { 12.0f + 92 * static_cast<float>(technique), row == 0 ? 12.0f : 112.0f, 80,
                row == 0 ? 80.0f : 50.0f };
            auto shape = frameOf(
                row == 0 ? Path::pathWithRect(place) : Path::pathWithOvalInRect(place), std::move(fill));
            if (row == 0)
                shape->rotateByRadiansPivot(0.06f * static_cast<float>(technique - 2), shape->center());
            list.push_back(std::move(shape));
        }
    return list;
}

Renderables tiles()
{
    Renderables list;
    float x = 12;
    for (const float zoom : { 0.5f, 1.0f, 1.5f, 3.0f }) {
        auto shape = frameOf(Path::pathWithRect({ 0, 0, 100 / zoom, 100 / zoom }),
            VXRImageFill::imageFillWithImageRef(imageOf(16, 12, [](float u, float v) {
                return (u < 0.5f) == (v < 0.5f) ? pixel(0.85f, 0.65f, 0.4f) : landscape(u, v);
            })));
        shape->setTransform({ zoom, 0, 0, zoom, x, 12 });
        list.push_back(std::move(shape));
        x += 112;
    }
    return list;
}

Renderables cropsAndMasks()
{
    const auto shadow = [] {
        return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(315, 4, 4, 0.6f, Color::blackColor());
    };
    Renderables list;
    const auto place = [&](const std::shared_ptr<const Image>& image, const Rect& frame) {
        auto picture = VXRImageRenderable::imageRenderableWithImageBinary(pictureOf(image));
        picture->setFrame(frame);
        picture->setShadow(shadow());
        list.push_back(picture);
        return picture;
    };
    place(photo(), { 12, 12, 120, 80 });
    place(photo(), { 150, 12, 80, 80 })->setCrop({ 120, 20, 90, 90 });
    const auto masked = place(photo(), { 248, 12, 120, 80 });
    masked->setMaskPath(Path::pathWithOvalInRect({ 10, 5, 100, 70 }).get());
    const auto alpha = place(leaf(), { 386, 12, 80, 80 });
    alpha->setMasksByAlpha(true);
    return list;
}

Renderables placeholders()
{
    Renderables list;
    float x = 12;
    for (const float side : { 80.0f, 24.0f })
        for (const bool missing : { true, false }) {
            auto fill = missing ? VXRImageFill::imageFillWithMissingImageOfSize({ side, side })
                                : VXRImageFill::imageFillWithBrokenImageOfSize({ side, side });
            fill->setTechnique(VXRImageFillStretch);
            auto shape = frameOf(Path::pathWithRect({ x, 12, side, side }), std::move(fill));
            shape->setStroke(nullptr);
            list.push_back(std::move(shape));
            x += side + 16;
        }
    return list;
}

Renderables colorsAndPages()
{
    // Cyan, magenta and yellow from left to right, more black further down.
    std::vector<std::uint8_t> inks;
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 120; ++x)
            for (int ink = 0; ink < 4; ++ink)
                inks.push_back(static_cast<std::uint8_t>(ink == 3 ? 2 * y : x / 40 == ink ? 230 : 20));
    const ImageLayout layout {
        .width = 120, .height = 80, .bytesPerRow = 480, .space = ColorSpace::deviceCMYK()
    };
    auto cmyk = VXRImageFill::imageFillWithImageRef(Image::createWithCopy(layout, inks.data(), inks.size()));
    auto page = VXRImageFill::imageFillWithPDFRef(
        PDFDocument::createWithDrawing({ 0, 0, 60, 40 }, { 0, 0, 60, 40 }, [](Context& context) {
            context.setFillColor(ColorValue::rgb(0.95f, 0.93f, 0.88f));
            context.fillRect({ 0, 0, 60, 40 });
            context.setFillColor(ColorValue::rgb(0.2f, 0.35f, 0.6f));
            context.fillPath(*Path::pathWithOvalInRect({ 6, 6, 28, 28 }), WindingRule::NonZero);
            for (int line = 0; line < 5; ++line)
                context.fillRect({ 38, 8 + 5 * static_cast<float>(line), 16, 2 });
        }));
    Renderables list;
    float x = 12;
    for (auto& fill : { cmyk, page }) {
        fill->setTechnique(VXRImageFillScaleToFit);
        list.push_back(frameOf(Path::pathWithRect({ x, 12, 120, 80 }), fill));
        x += 138;
    }
    return list;
}

} // namespace

std::vector<Scene> imageScenes()
{
    return {
        sceneOfRenderables("image-techniques",
            "A picture in its natural size, stretched, tiled, scaled to fill and scaled to fit.",
            { 472, 174 }, techniques),
        sceneOfRenderables("image-tiles", "One tile at four zooms.", { 460, 124 }, tiles),
        sceneOfRenderables("image-crops-and-masks",
            "A placed picture, a crop of it, a mask of it, and one masked by its own alpha; each casts a "
            "shadow.",
            { 480, 108 }, cropsAndMasks),
        sceneOfRenderables("image-placeholders",
            "Missing and broken pictures, with their icons where there is room for them.", { 284, 104 },
            placeholders),
        sceneOfRenderables("image-colors-and-pages", "A picture of four inks, and a page that stays vectors.",
            { 282, 104 }, colorsAndPages),
    };
}

} // namespace vxr::demo
