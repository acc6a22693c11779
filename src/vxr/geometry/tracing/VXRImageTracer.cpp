#include <vxr/geometry/tracing/VXRImageTracer.h>

#include <vxr/geometry/tracing/OutlineFitter.h>
#include <vxr/platform/graphics/Image.h>

#include <cmath>

namespace vxr {

VXRTrace VXRImageTracer::traceMask(const MaskView& mask, const VXRTraceOptions& options)
{
    const MaskOutlines found = outlinesOfMask(mask, options.outlines);
    VXRTrace trace { Path::path(), 0, found.dropped, found.complete };
    OutlineFitter fitter(options.tolerance > 0 ? options.tolerance : 0, *trace.path);
    for (const MaskOutlines::Outline& outline : found.outlines) {
        if (outline.area < 0 && !options.holes)
            continue;
        fitter.add(std::span(found.corners).subspan(outline.first, outline.count));
        ++trace.outlines;
    }
    return trace;
}

namespace {

/// Reads pixels of every layout as 8-bit components in their order.
class PixelReader {
public:
    explicit PixelReader(const Image& image)
        : mLayout(image.layout())
        , mBytes(mLayout.bytesPerPixel())
    {
        const AlphaFormat alpha = mLayout.alpha;
        const bool first = alpha == AlphaFormat::PremultipliedFirst || alpha == AlphaFormat::First
            || alpha == AlphaFormat::NoneSkipFirst;
        const bool hasByte = alpha != AlphaFormat::None;
        mHasAlpha = hasByte && alpha != AlphaFormat::NoneSkipLast && alpha != AlphaFormat::NoneSkipFirst;
        mPremultiplied = alpha == AlphaFormat::PremultipliedFirst || alpha == AlphaFormat::PremultipliedLast;
        mAlphaAt = first ? 0 : mBytes - 1;
        mColorAt = hasByte && first ? 1 : 0;
        mColors = mBytes - hasByte;
        mReversed = mLayout.nativeOrder && mBytes == 4;
    }

    bool hasAlpha() const { return mHasAlpha; }

    int alpha(const std::uint8_t* pixel) const { return mHasAlpha ? component(pixel, mAlphaAt) : 255; }

    /// How much black a pixel puts on white.
    int darkness(const std::uint8_t* pixel) const
    {
        double light = 0;
        if (mColors >= 4) {
            const int black = component(pixel, mColorAt + 3);
            for (int i = 0; i < 3; ++i)
                light += weights[i] * std::max(0, 255 - component(pixel, mColorAt + i) - black);
        } else if (mColors == 3) {
            for (int i = 0; i < 3; ++i)
                light += weights[i] * component(pixel, mColorAt + i);
        } else {
            light = component(pixel, mColorAt);
        }
        const int opaque = alpha(pixel);
        const double dark = mPremultiplied && mColors < 4 ? opaque - light : (255 - light) * opaque / 255.0;
        return static_cast<int>(std::lround(std::clamp(dark, 0.0, 255.0)));
    }

private:
    static constexpr double weights[] = { 0.3, 0.59, 0.11 };

    int component(const std::uint8_t* pixel, int i) const { return pixel[mReversed ? mBytes - 1 - i : i]; }

    const ImageLayout& mLayout;
    int mBytes, mAlphaAt = 0, mColorAt = 0, mColors = 0;
    bool mHasAlpha = false, mPremultiplied = false, mReversed = false;
};

} // namespace

VXRTrace VXRImageTracer::traceImageInRect(
    const Image& image, const Rect& frame, VXRTraceSource source, const VXRTraceOptions& options)
{
    const PixelReader reader(image);
    const ImageLayout& layout = image.layout();
    const auto width = static_cast<std::size_t>(layout.width);
    std::vector<std::uint8_t> mask(width * static_cast<std::size_t>(layout.height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(layout.height); ++y) {
        const std::uint8_t* pixel = image.pixels() + y * layout.bytesPerRow;
        for (std::size_t x = 0; x < width; ++x, pixel += layout.bytesPerPixel())
            mask[y * width + x] = static_cast<std::uint8_t>(
                source == VXRTraceSource::Alpha ? reader.alpha(pixel) : reader.darkness(pixel));
    }
    VXRTrace trace = traceMask({ mask.data(), layout.width, layout.height, width }, options);
    AffineTransform placement = AffineTransform::makeTranslation(frame.minX(), frame.minY());
    placement.scale(frame.size.width / static_cast<float>(layout.width),
        frame.size.height / static_cast<float>(layout.height));
    trace.path->transformUsingAffineTransform(placement);
    return trace;
}

} // namespace vxr
