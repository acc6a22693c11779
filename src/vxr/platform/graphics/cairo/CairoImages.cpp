#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/cairo/CairoEngine.h>
#include <vxr/platform/graphics/cairo/CairoImage.h>
#include <vxr/platform/graphics/cairo/PlacedPages.h>
#include <vxr/platform/imaging/PageMark.h>

namespace vxr {

namespace {

/// Maps the image's pixels, first row on top, into the rectangle of user space and on to the device.
cairo_matrix_t imageMatrix(const Rect& rect, const Image& image, const cairo_matrix_t& toDevice)
{
    cairo_matrix_t toUser { rect.size.width / static_cast<double>(image.width()), 0, 0,
        -rect.size.height / static_cast<double>(image.height()), rect.minX(),
        static_cast<double>(rect.minY()) + rect.size.height };
    cairo_matrix_t result;
    cairo_matrix_multiply(&result, &toUser, &toDevice);
    return result;
}

bool isUsable(const cairo_matrix_t& m)
{
    const double determinant = m.xx * m.yy - m.xy * m.yx;
    return std::isfinite(determinant) && determinant != 0 && std::isfinite(m.x0) && std::isfinite(m.y0);
}

/// Whether every pixel of the image falls on one of the device; then `m` is made exact. The limit is
/// half of what a 8-bit image can show at its far edge.
bool snapToPixels(cairo_matrix_t& m, int width, int height)
{
    constexpr double limit = 1 / 512.0;
    cairo_matrix_t snapped { std::round(m.xx), std::round(m.yx), std::round(m.xy), std::round(m.yy),
        std::round(m.x0), std::round(m.y0) };
    const bool turnsByQuarters = std::abs(snapped.xx) + std::abs(snapped.xy) == 1
        && std::abs(snapped.yx) + std::abs(snapped.yy) == 1
        && std::abs(snapped.xx) + std::abs(snapped.yx) == 1;
    const double error = (std::abs(m.xx - snapped.xx) + std::abs(m.yx - snapped.yx)) * width
        + (std::abs(m.xy - snapped.xy) + std::abs(m.yy - snapped.yy)) * height + std::abs(m.x0 - snapped.x0)
        + std::abs(m.y0 - snapped.y0);
    if (!turnsByQuarters || !(error < limit))
        return false;
    m = snapped;
    return true;
}

/// Low looks at the nearest four pixels only; the better ones weigh all that fall into one.
cairo_filter_t filterFor(InterpolationQuality most)
{
    switch (most) {
    case InterpolationQuality::None:
        return CAIRO_FILTER_NEAREST;
    case InterpolationQuality::Low:
        return CAIRO_FILTER_BILINEAR;
    case InterpolationQuality::Default:
    case InterpolationQuality::High:
        break;
    }
    return CAIRO_FILTER_GOOD;
}

/// How often a side of a smooth image can be halved before its pixels, `scale` of the device's long, are
/// as large as the device's.
int halvingsFor(double scale)
{
    int halvings = 0;
    for (; halvings < mostImageThinning && scale <= 0.5; scale *= 2)
        ++halvings;
    return halvings;
}

/// The way back from the device to a picture's pixels, in steps that the engine's 16.16 arithmetic takes
/// exactly. It rounds other ways with regard to what is painted; by these each device pixel is sampled at
/// one place, whatever part is painted and at whichever whole pixel the device begins.
cairo_matrix_t steadyInverse(const cairo_matrix_t& m)
{
    const auto inSteps = [](double value, double steps) { return std::floor(value * steps + 0.5) / steps; };
    constexpr double linearSteps = 1 << 15, originSteps = 1 << 8, offsetSteps = 1 << 16;
    cairo_matrix_t exact = m;
    cairo_matrix_invert(&exact);
    const double x = inSteps(m.x0, originSteps), y = inSteps(m.y0, originSteps);
    cairo_matrix_t steady { inSteps(exact.xx, linearSteps), inSteps(exact.yx, linearSteps),
        inSteps(exact.xy, linearSteps), inSteps(exact.yy, linearSteps), 0, 0 };
    steady.x0 = inSteps(-(steady.xx * x + steady.xy * y), offsetSteps);
    steady.y0 = inSteps(-(steady.yx * x + steady.yy * y), offsetSteps);
    return steady.xx * steady.yy != steady.xy * steady.yx ? steady : exact;
}

/// Makes a picture the source that `m` maps to a bitmap's pixels. The engine's own matrix stays.
void setSteadySource(cairo_t* cr, cairo_surface_t* surface, const cairo_matrix_t& m, cairo_filter_t filter)
{
    cairo_matrix_t current;
    cairo_get_matrix(cr, &current);
    cairo_identity_matrix(cr);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_set_matrix(cr, &current);
    const cairo_matrix_t toPicture = steadyInverse(m);
    cairo_pattern_set_matrix(cairo_get_source(cr), &toPicture);
    cairo_pattern_set_filter(cairo_get_source(cr), filter);
}

/// Makes a smooth image the source. The nearest of its pixels is as good as a mixture, and keeps the
/// dither, up to where single pixels could be seen. `m` maps the image's pixels to the device's.
void setSmoothSource(cairo_t* cr, const Image& image, const cairo_matrix_t& m)
{
    constexpr double limit = 2;
    const double xScale = std::hypot(m.xx, m.yx), yScale = std::hypot(m.xy, m.yy);
    int x = halvingsFor(xScale), y = halvingsFor(yScale);
    cairo_surface_t* surface = thinnedCairoSurface(image, x, y);
    if (!surface) {
        surface = cairoSurface(image);
        x = y = 0;
    }
    cairo_matrix_t fromThinned = m;
    cairo_matrix_scale(&fromThinned, 1 << x, 1 << y);
    setSteadySource(cr, surface, fromThinned,
        xScale <= limit && yScale <= limit ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
}

/// Whether the image, mapped by `m`, reaches over all of `box`.
bool covers(const Image& image, const cairo_matrix_t& m, const DeviceBox& box)
{
    cairo_matrix_t toImage = m;
    if (cairo_matrix_invert(&toImage) != CAIRO_STATUS_SUCCESS)
        return false;
    for (const double cornerX : { box.x0, box.x1 })
        for (const double cornerY : { box.y0, box.y1 }) {
            double x = cornerX, y = cornerY;
            cairo_matrix_transform_point(&toImage, &x, &y);
            if (!(x >= 0 && y >= 0 && x <= image.width() && y <= image.height()))
                return false;
        }
    return true;
}

} // namespace

void CairoEngine::drawImage(const Rect& rect, const Image& image)
{
    if (!canDraw())
        return;
    cairo_matrix_t toDevice = imageMatrix(rect, image, matrix());
    cairo_surface_t* surface = isUsable(toDevice) ? cairoSurface(image) : nullptr;
    if (!surface)
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { drawImage(rect, image); });
    const bool exact = snapToPixels(toDevice, image.width(), image.height());
    CairoSaver saved(cr());
    setStyle();
    cairo_set_matrix(cr(), &toDevice);
    if (onPaper || exact) {
        cairo_set_source_surface(cr(), surface, 0, 0);
        cairo_pattern_set_filter(
            cairo_get_source(cr()), exact ? CAIRO_FILTER_NEAREST : filterFor(state.quality));
    } else if (image.layout().smooth) {
        setSmoothSource(cr(), image, toDevice);
    } else {
        setSteadySource(cr(), surface, toDevice, filterFor(state.quality));
    }
    if (!onPaper) {
        // Nothing bleeds in from beside the image.
        cairo_pattern_set_extend(cairo_get_source(cr()), CAIRO_EXTEND_PAD);
        if (!covers(image, toDevice, state.clip))
            clipToPixelsOf(image, toDevice);
    }
    paintSource();
    noteInk(deviceBounds(std::array { rect.origin, Point { rect.maxX(), rect.minY() },
        Point { rect.maxX(), rect.maxY() }, Point { rect.minX(), rect.maxY() } }));
    finishOperation();
}

// The mark is a picture like any other to cairo; pixels that come with it are what a shadow is made of.
bool CairoEngine::placePage(
    const Rect& rect, const std::shared_ptr<const Data>& document, const Context::PagePixels& pixels)
{
    if (!onPaper || !document)
        return false;
    if (!canDraw())
        return true;
    const std::string jpeg = pageMarkJPEG(markForPage(document));
    const auto mark = Data::dataWithBytes(jpeg.data(), jpeg.size());
    std::shared_ptr<const Image> shown;
    if (state.castsShadow() || isInLayer() || kind == Kind::Recording)
        shown = pixels();
    static constexpr std::uint32_t oneGreyPixel = 0xff808080;
    const auto image = shown
        ? Image::createWithJPEG(shown->layout(), shown->pixels(),
            shown->layout().bytesPerRow * static_cast<std::size_t>(shown->height()), shown, mark)
        : Image::createWithJPEG(
            ImageLayout::nativeARGB(1, 1, 4), &oneGreyPixel, sizeof oneGreyPixel, nullptr, mark);
    drawImage(rect, *image);
    return true;
}

} // namespace vxr
