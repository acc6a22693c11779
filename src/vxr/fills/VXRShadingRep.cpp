#include <vxr/fills/VXRShadingRep.h>

#include <vxr/fills/VXRColorRGB64.h>
#include <vxr/fills/VXRShadingRepCache.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/pixels/ErrorDiffusion.h>

#include <algorithm>

namespace vxr {

namespace {

/// The position of a column between the colours. The last column does not reach the end colour.
constexpr float fractionOfColumn(int x) { return static_cast<float>(x) * 0.001953125f; }

std::uint8_t byteOf(float component)
{
    const float value = component * 255.0f;
    return value >= 255.0f ? 255 : value > 0 ? static_cast<std::uint8_t>(value) : 0;
}

} // namespace

VXRShadingRep::VXRShadingRep()
    : _startColor(Color::whiteColor())
    , _endColor(Color::blackColor())
    , _data(std::make_shared<std::vector<std::uint8_t>>(valueCount))
{
}

VXRShadingRep::~VXRShadingRep() = default;

std::shared_ptr<VXRShadingRep> VXRShadingRep::shadingWithStartEnd(
    const std::shared_ptr<Color>& start, const std::shared_ptr<Color>& end)
{
    if (!start || !end)
        throw InvalidArgumentException("A ramp needs two colours.");
    VXRShadingRepCache& cache = VXRShadingRepCache::instance();
    if (auto cached = cache.shadingWithStartEnd(*start, *end))
        return cached;
    if (auto finished = cache.takeFinished(*start, *end)) {
        cache.addShadingRep(finished);
        return finished;
    }
    auto made = std::make_shared<VXRShadingRep>();
    made->setStartColor(start);
    made->setEndColor(end);
    made->update();
    cache.addShadingRep(made);
    return made;
}

void VXRShadingRep::update()
{
    _bigData.assign(std::size_t { width } * channels, 0);
    _buildBitmapRepresentation64();
    _bigData = {};
}

void VXRShadingRep::_buildBitmapRepresentation64()
{
    const VXRColorRGB64 start(*_startColor), end(*_endColor);
    for (int x = 0; x < width; ++x) {
        const VXRColorRGB64 color = start.blended(fractionOfColumn(x), end);
        std::uint16_t* pixel = &_bigData[static_cast<std::size_t>(x) * channels];
        color.getRedGreenBlueAlpha(pixel + 1, pixel + 2, pixel + 3, pixel);
    }
    _errorDither();
    makeImage();
}

void VXRShadingRep::_errorDither()
{
    renewData();
    diffuseErrors(_bigData.data(), width, height, _data->data());
}

void VXRShadingRep::_buildBitmapRepresentation32()
{
    renewData();
    for (int x = 0; x < width; ++x) {
        const auto mixed = _startColor->blendedColorWithFractionOfColor(fractionOfColumn(x), *_endColor);
        const auto color = mixed ? mixed->colorUsingColorSpaceName(NSCalibratedRGBColorSpace) : nullptr;
        if (!color)
            continue;
        const std::uint8_t pixel[channels] = { byteOf(color->alphaComponent()), byteOf(color->redComponent()),
            byteOf(color->greenComponent()), byteOf(color->blueComponent()) };
        for (int y = 0; y < height; ++y)
            std::copy_n(pixel, channels, _data->begin() + (y * width + x) * channels);
    }
    makeImage();
}

/// An image made earlier keeps its own pixels.
void VXRShadingRep::renewData()
{
    if (_data.use_count() > 1)
        _data = std::make_shared<std::vector<std::uint8_t>>(valueCount);
}

void VXRShadingRep::makeImage()
{
    const bool opaque = _startColor->alphaComponent() == 1 && _endColor->alphaComponent() == 1;
    ImageLayout layout;
    layout.width = width;
    layout.height = height;
    layout.bytesPerRow = std::size_t { width } * channels;
    layout.alpha = opaque ? AlphaFormat::NoneSkipFirst : AlphaFormat::First;
    layout.space = VXRGenericRGBColorSpace();
    layout.smooth = true;
    _imageRef = Image::create(layout, _data->data(), _data->size(), _data);
}

} // namespace vxr
