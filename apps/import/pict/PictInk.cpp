#include <apps/import/pict/PictInk.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace vxr::importing {
namespace {

// Transfer modes. The first eight are boolean: 0 copy, 1 or, 2 exclusive or, 3 clear; 4 is added where the
// source is inverted first, 8 for patterns.
enum BooleanMode { ModeCopy = 0, ModeOr = 1, ModeXor = 2, ModeBic = 3 };
constexpr int invertsSource = 4;
enum ArithmeticMode {
    ModeBlend = 32,
    ModeAddPin = 33,
    ModeAddOver = 34,
    ModeTransparent = 36,
    ModeAddMax = 37,
    ModeAddMin = 39,
    ModeGrayishText = 49,
    ModeHighlight = 50
};

struct Ink {
    int boolean = ModeCopy;
    bool isInverted = false;
    cairo_operator_t blend = CAIRO_OPERATOR_OVER;
    double alpha = 1;
    bool dropsBackground = false;
};

Ink inkOf(int mode, const PictColors& colors)
{
    Ink ink;
    if (mode >= 0 && mode < 16) {
        ink.boolean = mode & 3;
        ink.isInverted = mode & invertsSource;
    }
    switch (mode) {
    case ModeBlend:
        ink.alpha = (colors.operation.red + colors.operation.green + colors.operation.blue) / 3;
        break;
    case ModeAddPin:
    case ModeAddOver:
        ink.blend = CAIRO_OPERATOR_SCREEN;
        break;
    case ModeTransparent:
        ink.dropsBackground = true;
        break;
    case ModeAddMax:
        ink.blend = CAIRO_OPERATOR_LIGHTEN;
        break;
    case ModeAddMin:
        ink.blend = CAIRO_OPERATOR_DARKEN;
        break;
    case ModeGrayishText:
        ink.alpha = 0.5;
        break;
    case ModeHighlight:
        ink.blend = CAIRO_OPERATOR_MULTIPLY;
        break;
    default:
        break;
    }
    if (ink.boolean == ModeXor)
        ink.blend = CAIRO_OPERATOR_DIFFERENCE;
    return ink;
}

std::uint32_t pixelOf(const PictColor& color)
{
    const auto byte
        = [](double v) { return static_cast<std::uint32_t>(std::lround(std::clamp(v, 0.0, 1.0) * 255)); };
    return 0xff000000u | byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue);
}

/// The pixels that set and unset bits become; 0 leaves what is there.
struct BitColors {
    std::uint32_t set, unset;
};

BitColors bitColors(const Ink& ink, const PictColors& colors)
{
    BitColors result { pixelOf(colors.foreground), pixelOf(colors.background) };
    if (ink.boolean == ModeOr || ink.dropsBackground)
        result.unset = 0;
    else if (ink.boolean == ModeBic)
        result = { result.unset, 0 };
    else if (ink.boolean == ModeXor)
        result = { 0xffffffffu, 0 };
    if (ink.isInverted)
        std::swap(result.set, result.unset);
    return result;
}

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

template <class PixelAt> Surface makeSurface(int width, int height, PixelAt pixelAt)
{
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height), cairo_surface_destroy);
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw PictError("An image is too large.");
    auto* const bytes = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; y < height; ++y) {
        auto* const row = reinterpret_cast<std::uint32_t*>(bytes + std::ptrdiff_t(y) * stride);
        for (int x = 0; x < width; ++x)
            row[x] = pixelAt(x, y);
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

void setSolidSource(cairo_t* context, std::uint32_t pixel, double alpha)
{
    cairo_set_source_rgba(
        context, (pixel >> 16 & 255) / 255.0, (pixel >> 8 & 255) / 255.0, (pixel & 255) / 255.0, alpha);
}

void setRepeatedSource(cairo_t* context, cairo_surface_t* tile)
{
    cairo_set_source_surface(context, tile, 0, 0);
    cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_REPEAT);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
}

/// The blend that boolean modes of coloured pixels come nearest to.
cairo_operator_t blendOfPixels(const Ink& ink)
{
    if (ink.boolean == ModeOr)
        return CAIRO_OPERATOR_MULTIPLY;
    return ink.boolean == ModeBic ? CAIRO_OPERATOR_SCREEN : ink.blend;
}

} // namespace

PictPattern PictPattern::read(PictReader& reader)
{
    PictPattern pattern;
    for (auto& row : pattern.bits)
        row = reader.u8();
    return pattern;
}

PictPattern PictPattern::readPixelPattern(PictReader& reader)
{
    enum { FullColor = 1, DitheredColor = 2 };
    const int type = reader.u16();
    PictPattern pattern = read(reader); // for displays of one bit
    if (type == DitheredColor) {
        const std::uint32_t pixel = pixelOf(reader.color());
        pattern.pixels = PictPixels { { 0, 0, 1, 1 }, false, { pixel } };
    } else if (type == FullColor) {
        const auto format = PictPixelFormat::read(reader);
        pattern.pixels = format.readPixels(reader, true);
    }
    return pattern;
}

void fillPathWithPattern(cairo_t* context, const PictPattern& pattern, int mode, const PictColors& colors)
{
    const Ink ink = inkOf(mode, colors);
    cairo_save(context);
    cairo_set_operator(context, ink.blend);
    if (pattern.pixels) {
        const PictPixels& image = *pattern.pixels;
        if (image.pixels.size() == 1) {
            setSolidSource(context, image.pixels[0], ink.alpha);
        } else {
            const BitColors bits = bitColors(ink, colors);
            const Surface tile = makeSurface(image.width(), image.height(), [&](int x, int y) {
                const std::uint32_t pixel
                    = image.pixels[std::size_t(y) * std::size_t(image.width()) + std::size_t(x)];
                return image.isBitmap ? pixel ? bits.set : bits.unset : pixel;
            });
            setRepeatedSource(context, tile.get());
        }
        cairo_set_operator(context, blendOfPixels(ink));
        cairo_fill(context);
    } else {
        const BitColors bits = bitColors(ink, colors);
        const bool isFull
            = std::all_of(pattern.bits.begin(), pattern.bits.end(), [](auto b) { return b == 255; });
        const bool isBlank
            = std::all_of(pattern.bits.begin(), pattern.bits.end(), [](auto b) { return b == 0; });
        if (isFull || isBlank) {
            const std::uint32_t pixel = isFull ? bits.set : bits.unset;
            setSolidSource(context, pixel, pixel ? ink.alpha : 0);
            if (pixel)
                cairo_fill(context);
        } else {
            const Surface tile = makeSurface(8, 8, [&](int x, int y) {
                return pattern.bits[std::size_t(y)] >> (7 - x) & 1 ? bits.set : bits.unset;
            });
            setRepeatedSource(context, tile.get());
            cairo_fill(context);
        }
    }
    cairo_restore(context);
    cairo_new_path(context);
}

void invertPath(cairo_t* context)
{
    cairo_save(context);
    cairo_set_operator(context, CAIRO_OPERATOR_DIFFERENCE);
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_fill(context);
    cairo_restore(context);
    cairo_new_path(context);
}

void drawPixels(cairo_t* context, const PictPixels& image, const PictRect& source, const PictRect& target,
    int mode, const PictColors& colors)
{
    if (source.isEmpty() || target.isEmpty())
        return;
    // What the source rectangle shows of the image, and where that lies in the target.
    const PictRect part { std::max(source.left, image.bounds.left), std::max(source.top, image.bounds.top),
        std::min(source.right, image.bounds.right), std::min(source.bottom, image.bounds.bottom) };
    if (part.isEmpty())
        return;
    const Ink ink = inkOf(mode, colors);
    const BitColors bits = bitColors(ink, colors);
    const std::uint32_t background = pixelOf(colors.background);
    const Surface surface = makeSurface(part.width(), part.height(), [&](int x, int y) {
        const auto row = std::size_t(y + part.top - image.bounds.top);
        const auto column = std::size_t(x + part.left - image.bounds.left);
        const std::uint32_t pixel = image.pixels[row * std::size_t(image.width()) + column];
        if (image.isBitmap)
            return pixel ? bits.set : bits.unset;
        if (ink.dropsBackground && pixel == background)
            return std::uint32_t(0);
        return ink.isInverted ? pixel ^ 0x00ffffffu : pixel;
    });
    const double scaleX = double(target.width()) / source.width(),
                 scaleY = double(target.height()) / source.height();
    cairo_save(context);
    cairo_translate(context, target.left + (part.left - source.left) * scaleX,
        target.top + (part.top - source.top) * scaleY);
    cairo_scale(context, scaleX, scaleY);
    cairo_set_operator(context, image.isBitmap ? ink.blend : blendOfPixels(ink));
    cairo_set_source_surface(context, surface.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST); // enlarged pixels stay squares
    cairo_paint_with_alpha(context, ink.alpha);
    cairo_restore(context);
}

bool setMarkingSource(cairo_t* context, int mode, const PictColors& colors)
{
    const Ink ink = inkOf(mode, colors);
    const std::uint32_t pixel = bitColors(ink, colors).set;
    if (!pixel)
        return false;
    cairo_set_operator(context, ink.blend);
    setSolidSource(context, pixel, ink.alpha);
    return true;
}

} // namespace vxr::importing
