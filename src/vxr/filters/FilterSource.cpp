#include <vxr/filters/FilterSource.h>

#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/ImageImpl.h>
#include <vxr/platform/pictures/BitmapImageRep.h>

namespace vxr {

namespace {

/// Straight red, green, blue and alpha of a byte each.
FilterFormat straightBytes(bool isOpaque)
{
    return { 8, 4, false, { 0, 1, 2, 3 },
        isOpaque ? FilterFormat::Alpha::None : FilterFormat::Alpha::Straight };
}

bool isWhite(const BitmapPlanes& planes) { return planes.colorSpaceName == kDeviceWhiteColorSpace; }

/// Whether the samples can be read where they lie with more than 8 bits.
bool hasWideSamples(const BitmapPlanes& planes)
{
    const int colors = isWhite(planes) ? 1 : 3;
    return planes.bitsPerSample == 16 && !planes.isPlanar && planes.planes[0]
        && (isWhite(planes) || planes.colorSpaceName == kDeviceRGBColorSpace)
        && planes.samplesPerPixel == colors + planes.hasAlpha && planes.bitsPerPixel % 16 == 0
        && planes.bitsPerPixel >= 16 * planes.samplesPerPixel;
}

FilterFormat formatOf(const BitmapPlanes& planes)
{
    const int colors = isWhite(planes) ? 1 : 3;
    const bool alphaFirst = planes.hasAlpha && (planes.bitmapFormat & kBitmapAlphaFirst);
    const int first = alphaFirst ? 1 : 0;
    FilterFormat format { 16, planes.bitsPerPixel / 16, isWhite(planes),
        { first, first + 1, first + 2, alphaFirst ? 0 : colors }, FilterFormat::Alpha::None };
    if (planes.hasAlpha)
        format.alpha = planes.bitmapFormat & kBitmapAlphaNonpremultiplied
            ? FilterFormat::Alpha::Straight
            : FilterFormat::Alpha::Premultiplied;
    return format;
}

} // namespace

FilterSource::FilterSource(int width, int height, const FilterFormat& format, const void* pixels,
    std::size_t bytesPerRow, std::shared_ptr<const void> owner)
    : FilterSource(width, height, format,
        [pixels = static_cast<const std::byte*>(pixels), bytesPerRow, owner = std::move(owner)](
            int y) { return pixels + std::size_t(y) * bytesPerRow; })
{
}

FilterSource FilterSource::ofImage(std::shared_ptr<const Image> image)
{
    const ImageLayout& layout = image->layout();
    const bool isPlain = !layout.space
        || (layout.space->model() == ColorModel::RGB && layout.space->convertsToOutputUnchanged());
    const int width = image->width(), height = image->height();
    if (isPlain && layout.nativeOrder && layout.alpha == AlphaFormat::PremultipliedFirst) {
        const std::uint8_t* const pixels = image->pixels();
        return { width, height, FilterFormat::nativeARGB(), pixels, layout.bytesPerRow, std::move(image) };
    }
    auto kept = std::make_shared<std::vector<std::uint8_t>>(4 * std::size_t(width));
    const bool isOpaque = image->isOpaque();
    return { width, height, straightBytes(isOpaque), [kept, image = std::move(image)](int y) {
                readStraightRow(image->layout(), image->pixels(), y, kept->data());
                return static_cast<const void*>(kept->data());
            } };
}

FilterSource FilterSource::ofRep(const std::shared_ptr<const BitmapImageRep>& rep)
{
    const BitmapPlanes& planes = rep->planes();
    if (hasWideSamples(planes))
        return { planes.pixelsWide, planes.pixelsHigh, formatOf(planes), planes.planes[0], planes.bytesPerRow,
            rep };
    auto image = rep->image(nullptr);
    return image ? ofImage(std::move(image)) : FilterSource(0, 0, straightBytes(true), nullptr, 0, nullptr);
}

void applyFilterOperations(std::span<const FilterOperation> operations, const FilterSource& source,
    const FilterFormat& output, void* out, std::size_t outBytesPerRow)
{
    if (source.isEmpty())
        return;
    auto* const rows = static_cast<std::byte*>(out);
    FilterPipeline pipeline(operations, source.width(), source.height(), source.format(), output,
        [&](int y) { return rows + std::size_t(y) * outBytesPerRow; });
    for (int y = 0; y < source.height(); ++y)
        pipeline.push(source.row(y));
}

} // namespace vxr
