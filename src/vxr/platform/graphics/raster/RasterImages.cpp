#include <vxr/platform/graphics/ImageImpl.h>
#include <vxr/platform/graphics/Shading.h>
#include <vxr/platform/graphics/pixels/GradientSpans.h>
#include <vxr/platform/graphics/pixels/ImageSampler.h>
#include <vxr/platform/graphics/raster/BlendSource.h>
#include <vxr/platform/graphics/raster/RasterEngine.h>

#include <optional>

namespace vxr {

namespace {

/// Maps the image's pixels, first row on top, into the rectangle of user space and on to the device.
DeviceMatrix imageMatrix(const Rect& rect, const Image& image, const DeviceMatrix& toDevice)
{
    DeviceMatrix toUser;
    toUser.xx = rect.size.width / static_cast<double>(image.width());
    toUser.yy = -rect.size.height / static_cast<double>(image.height());
    toUser.x0 = rect.minX();
    toUser.y0 = static_cast<double>(rect.minY()) + rect.size.height;
    return toDevice.after(toUser);
}

bool isUsable(const DeviceMatrix& m)
{
    const double determinant = m.determinant();
    return std::isfinite(determinant) && determinant != 0 && std::isfinite(m.x0) && std::isfinite(m.y0);
}

/// Whether every pixel of the image falls on one of the device; the matrix is made exact then. The limit is
/// half of what an 8-bit image can show at its far edge.
bool snapToPixels(DeviceMatrix& m, int width, int height)
{
    constexpr double limit = 1 / 512.0;
    DeviceMatrix s;
    s.xx = std::round(m.xx);
    s.xy = std::round(m.xy);
    s.x0 = std::round(m.x0);
    s.yx = std::round(m.yx);
    s.yy = std::round(m.yy);
    s.y0 = std::round(m.y0);
    const bool turnsByQuarters = std::abs(s.xx) + std::abs(s.xy) == 1 && std::abs(s.yx) + std::abs(s.yy) == 1
        && std::abs(s.xx) + std::abs(s.yx) == 1;
    const double error = (std::abs(m.xx - s.xx) + std::abs(m.yx - s.yx)) * width
        + (std::abs(m.xy - s.xy) + std::abs(m.yy - s.yy)) * height + std::abs(m.x0 - s.x0)
        + std::abs(m.y0 - s.y0);
    if (!turnsByQuarters || !(error < limit))
        return false;
    m = s;
    return true;
}

Sampling samplingFor(const Image& image, InterpolationQuality quality)
{
    if (image.layout().smooth)
        return Sampling::Dithered;
    switch (quality) {
    case InterpolationQuality::None:
        return Sampling::Nearest;
    case InterpolationQuality::Low:
        return Sampling::Linear;
    case InterpolationQuality::Default:
    case InterpolationQuality::High:
        break;
    }
    return Sampling::Best;
}

class ImageSource final : public SpanSource {
public:
    ImageSource(const NativePixels& image, const DeviceMatrix& toDevice, Sampling sampling)
        : mAnchor({ toDevice.x0, toDevice.y0 })
        , mSampler({ image.pixels, image.stride, image.width, image.height }, toImage(toDevice, mAnchor.rest),
              sampling)
    {
    }
    bool isEmpty() const { return mSampler.isEmpty(); }
    const std::uint32_t* span(int x, int y, int count, std::uint32_t* buffer) override
    {
        return mSampler.fetch(x - mAnchor.x, y - mAnchor.y, static_cast<std::size_t>(count), buffer);
    }

private:
    static DeviceToImage toImage(DeviceMatrix toDevice, Vec2 origin)
    {
        toDevice.x0 = origin.x;
        toDevice.y0 = origin.y;
        const DeviceMatrix m = toDevice.inverted();
        return { m.xx, m.xy, m.x0, m.yx, m.yy, m.y0 };
    }

    DeviceAnchor mAnchor;
    ImageSampler mSampler;
};

/// The colours of a shading, kept with it.
struct RasterColors {
    std::shared_ptr<const GradientTable> table;
};

std::shared_ptr<const GradientTable> tableOf(const Shading& shading)
{
    auto& kept = shading.engineCaches().findOrMake<RasterColors>();
    if (!kept.table) {
        std::vector<GradientStop> stops;
        stops.reserve(shading.stops().size());
        for (const ShadingStop& stop : shading.stops())
            stops.push_back({ stop.position, stop.rgba });
        kept.table
            = std::make_shared<const GradientTable>(stops, shading.extendsStart(), shading.extendsEnd());
    }
    return kept.table;
}

class GradientSource final : public SpanSource {
public:
    GradientSource(const Shading& shading, const DeviceMatrix& toDevice)
        : mAnchor(toDevice.map(shading.start()))
        , mSpans(spansOf(shading, toDevice, mAnchor.rest))
    {
    }
    bool isEmpty() const { return mSpans.isEmpty(); }
    const std::uint32_t* span(int x, int y, int count, std::uint32_t* buffer) override
    {
        mSpans.fill(x - mAnchor.x, y - mAnchor.y, static_cast<std::size_t>(count), buffer);
        return buffer;
    }

private:
    /// With the shading's start in the origin, which lies at `start` on the device.
    static GradientSpans spansOf(const Shading& s, const DeviceMatrix& m, Vec2 start)
    {
        const AffineTransform toDevice { float(m.xx), float(m.yx), float(m.xy), float(m.yy), float(start.x),
            float(start.y) };
        const Point end { s.end().x - s.start().x, s.end().y - s.start().y };
        if (s.kind() == Shading::Kind::Axial)
            return GradientSpans::axial(tableOf(s), {}, end, toDevice);
        return GradientSpans::radial(tableOf(s), {}, s.startRadius(), end, s.endRadius(), toDevice);
    }

    DeviceAnchor mAnchor;
    GradientSpans mSpans;
};

std::uint8_t fadeOf(float alpha) { return static_cast<std::uint8_t>(alpha * 255 + 0.5f); }

} // namespace

void RasterEngine::drawImage(const Rect& rect, const Image& image)
{
    if (!canDraw())
        return;
    DeviceMatrix toDevice = imageMatrix(rect, image, matrix());
    if (!isUsable(toDevice))
        return;
    const bool exact = snapToPixels(toDevice, image.width(), image.height());
    const ImageBlend* const blend = exact ? nullptr : blendToPaint(image, toDevice);
    const NativePixels* const native = blend ? nullptr : image.impl().native();
    if (!blend && !native)
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { drawImage(rect, image); });
    const Rect pixels(0, 0, static_cast<float>(image.width()), static_cast<float>(image.height()));
    mRaster.start(mClip.box, state.antialias);
    const auto upright = uprightBox(pixels, toDevice);
    if (!upright)
        OutlineFeeder(toDevice, tolerance(), mRaster).addRect(pixels);
    std::optional<ImageSource> imageSource;
    std::optional<BlendSource> blendSource;
    if (blend)
        blendSource.emplace(*blend, image.width(), toDevice);
    else
        imageSource.emplace(*native, toDevice, exact ? Sampling::Nearest : samplingFor(image, state.quality));
    if (imageSource && imageSource->isEmpty())
        return;
    startPainting(state.operation);
    mPainter.setSource(blend ? static_cast<SpanSource&>(*blendSource) : *imageSource, fadeOf(state.alpha));
    if (upright) {
        noteInk(mRaster.boxOf(*upright));
        mRaster.fillBox(*upright, mPainter);
    } else {
        noteInk(mRaster.box());
        mRaster.finish(WindingRule::NonZero, mPainter);
    }
}

void RasterEngine::drawShading(const Shading& shading)
{
    if (!canDraw())
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { drawShading(shading); });
    GradientSource source(shading, matrix());
    if (source.isEmpty())
        return;
    fillSource(mClip.box, source, fadeOf(state.alpha));
}

} // namespace vxr
