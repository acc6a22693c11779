#include <vxr/fills/VXRShadingRep.h>

#include <vxr/fills/VXRColorRGB64.h>
#include <vxr/fills/VXRShadingRepCache.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/pixels/ErrorDiffusion.h>

#include <algorithm>
#include <array>

namespace vxr {

namespace {

/// The position of a column between the colours. The last column does not reach the end colour.
constexpr float fractionOfColumn(int x) { return static_cast<float>(x) * 0.001953125f; }

constexpr int channelCount = 4;

/// Alpha, red, green, blue.
std::array<std::uint16_t, channelCount> channelsOf(const VXRColorRGB64& color)
{
    std::array<std::uint16_t, channelCount> c {};
    color.getRedGreenBlueAlpha(&c[1], &c[2], &c[3], &c[0]);
    return c;
}

/// What every row of a ramp is in 16 bits.
std::vector<std::uint16_t> rampRow(const VXRColorRGB64& start, const VXRColorRGB64& end)
{
    std::vector<std::uint16_t> row;
    row.reserve(std::size_t { VXRShadingRep::width } * channelCount);
    for (int x = 0; x < VXRShadingRep::width; ++x)
        for (const std::uint16_t value : channelsOf(start.blended(fractionOfColumn(x), end)))
            row.push_back(value);
    return row;
}

std::uint8_t byteOf(float component)
{
    const float value = component * 255.0f;
    return value >= 255.0f ? 255 : value > 0 ? static_cast<std::uint8_t>(value) : 0;
}

} // namespace

VXRShadingRep::VXRShadingRep()
    : _startColor(Color::whiteColor())
    , _endColor(Color::blackColor())
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
    made->makeImageForDrawing();
    cache.addShadingRep(made);
    return made;
}

void VXRShadingRep::update()
{
    _buildBitmapRepresentation64();
    _bigData = {};
}

void VXRShadingRep::_buildBitmapRepresentation64()
{
    _bigData = rampRow(VXRColorRGB64(*_startColor), VXRColorRGB64(*_endColor));
    _errorDither();
    _imageRef = Image::create(layout(), _data->data(), _data->size(), _data);
}

/// The ramp of the present colours, dithered where its pixels are asked for.
void VXRShadingRep::makeImageForDrawing()
{
    const VXRColorRGB64 start(*_startColor), end(*_endColor);
    mMadeForImage = std::make_shared<std::size_t>(0);
    _imageRef = Image::createWithBlend(
        layout(), { channelsOf(start), channelsOf(end) }, [start, end, made = mMadeForImage] {
            const std::shared_ptr<std::uint8_t[]> pixels
                = std::make_shared_for_overwrite<std::uint8_t[]>(bytes);
            diffuseErrors(rampRow(start, end).data(), width, height, pixels.get());
            *made += bytes;
            return std::shared_ptr<const std::uint8_t>(pixels, pixels.get());
        });
}

std::size_t VXRShadingRep::byteSize() const
{
    return sizeof *this + (_data ? _data->size() : 0) + (mMadeForImage ? *mMadeForImage : 0);
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
    _imageRef = Image::create(layout(), _data->data(), _data->size(), _data);
}

/// An image made earlier keeps its own pixels.
void VXRShadingRep::renewData()
{
    if (!_data || _data.use_count() > 1)
        _data = std::make_shared<std::vector<std::uint8_t>>(valueCount);
}

ImageLayout VXRShadingRep::layout() const
{
    const bool opaque = _startColor->alphaComponent() == 1 && _endColor->alphaComponent() == 1;
    ImageLayout layout;
    layout.width = width;
    layout.height = height;
    layout.bytesPerRow = std::size_t { width } * channels;
    layout.alpha = opaque ? AlphaFormat::NoneSkipFirst : AlphaFormat::First;
    layout.space = VXRGenericRGBColorSpace();
    layout.smooth = true;
    return layout;
}

} // namespace vxr
