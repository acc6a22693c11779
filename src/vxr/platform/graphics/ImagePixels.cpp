#include <vxr/platform/graphics/ImageImpl.h>

#include <algorithm>
#include <bit>
#include <cstring>

// Conversion of any layout to the two forms the output knows: straight RGBA bytes for files and
// premultiplied native ARGB for drawing.

namespace vxr {

namespace {

bool isAlphaFirst(AlphaFormat alpha)
{
    return alpha == AlphaFormat::PremultipliedFirst || alpha == AlphaFormat::First
        || alpha == AlphaFormat::NoneSkipFirst;
}

bool hasAlpha(AlphaFormat alpha)
{
    return alpha != AlphaFormat::None && alpha != AlphaFormat::NoneSkipLast
        && alpha != AlphaFormat::NoneSkipFirst;
}

bool isPremultiplied(AlphaFormat alpha)
{
    return alpha == AlphaFormat::PremultipliedFirst || alpha == AlphaFormat::PremultipliedLast;
}

/// round(value * alpha / 255), exact for all bytes.
constexpr std::uint32_t premultiplied(std::uint32_t value, std::uint32_t alpha)
{
    const std::uint32_t t = value * alpha + 128;
    return (t + (t >> 8)) >> 8;
}

/// round(value * 255 / alpha), at most 255; 0 where alpha is 0. Undoes `premultiplied` and is undone by it.
constexpr std::uint8_t unpremultiplied(std::uint32_t value, std::uint32_t alpha)
{
    if (alpha == 0)
        return 0;
    const std::uint32_t straight = (value * 255 + alpha / 2) / alpha;
    return static_cast<std::uint8_t>(straight < 255 ? straight : 255);
}

const std::uint8_t* rowOf(const ImageLayout& layout, const std::uint8_t* pixels, int y)
{
    return pixels + static_cast<std::size_t>(y) * layout.bytesPerRow;
}

/// Splits a row into its colour components, straight, and its alpha.
void splitRow(
    const ImageLayout& layout, const std::uint8_t* row, std::uint8_t* components, std::uint8_t* alpha)
{
    const int pixelSize = layout.bytesPerPixel();
    const int count = pixelSize - (layout.alpha == AlphaFormat::None ? 0 : 1);
    const bool reversed = layout.nativeOrder && std::endian::native == std::endian::little;
    const int first = isAlphaFirst(layout.alpha) ? 1 : 0;
    const int alphaAt = isAlphaFirst(layout.alpha) ? 0 : count;
    const bool premultiply = isPremultiplied(layout.alpha);
    const auto at = [&](int byte) { return reversed ? pixelSize - 1 - byte : byte; };
    for (int x = 0; x < layout.width; ++x, row += pixelSize, components += count) {
        alpha[x] = hasAlpha(layout.alpha) ? row[at(alphaAt)] : std::uint8_t { 255 };
        for (int c = 0; c < count; ++c) {
            const std::uint8_t value = row[at(first + c)];
            components[c] = premultiply ? unpremultiplied(value, alpha[x]) : value;
        }
    }
}

/// Rows of any layout one after the other, with the memory that converting them takes.
class RowReader {
public:
    explicit RowReader(const ImageLayout& layout)
        : mLayout(layout)
        , mSpace(layout.space ? layout.space : ColorSpace::deviceRGB())
        , mComponents(static_cast<std::size_t>(layout.width) * mSpace->componentCount())
        , mRGB(static_cast<std::size_t>(layout.width) * 3)
        , mAlpha(static_cast<std::size_t>(layout.width))
    {
    }

    void read(const std::uint8_t* row)
    {
        splitRow(mLayout, row, mComponents.data(), mAlpha.data());
        mSpace->convertToSRGB8(mComponents.data(), mRGB.data(), mAlpha.size());
    }

    const std::uint8_t* rgb() const { return mRGB.data(); }
    const std::uint8_t* alpha() const { return mAlpha.data(); }

private:
    const ImageLayout& mLayout;
    std::shared_ptr<const ColorSpace> mSpace;
    std::vector<std::uint8_t> mComponents, mRGB, mAlpha;
};

void convertToNative(const ImageLayout& layout, const std::uint8_t* pixels, std::uint8_t* target, int stride)
{
    RowReader reader(layout);
    const bool opaque = !hasAlpha(layout.alpha);
    for (int y = 0; y < layout.height; ++y) {
        reader.read(rowOf(layout, pixels, y));
        auto* out = reinterpret_cast<std::uint32_t*>(target + static_cast<std::ptrdiff_t>(y) * stride);
        const std::uint8_t* rgb = reader.rgb();
        const std::uint8_t* alpha = reader.alpha();
        for (int x = 0; x < layout.width; ++x, rgb += 3) {
            const std::uint32_t a = alpha[x];
            if (opaque)
                out[x]
                    = 0xff000000u | std::uint32_t { rgb[0] } << 16 | std::uint32_t { rgb[1] } << 8 | rgb[2];
            else
                out[x] = a << 24 | premultiplied(rgb[0], a) << 16 | premultiplied(rgb[1], a) << 8
                    | premultiplied(rgb[2], a);
        }
    }
}

/// RGB pixels of four bytes whose colours need no conversion: the common case, without a detour.
template <bool straight>
void convertRGBA(const ImageLayout& layout, const std::uint8_t* pixels, std::uint8_t* target, int stride)
{
    const int first = isAlphaFirst(layout.alpha) ? 1 : 0;
    const int alphaAt = isAlphaFirst(layout.alpha) ? 0 : 3;
    for (int y = 0; y < layout.height; ++y) {
        const std::uint8_t* in = rowOf(layout, pixels, y);
        auto* out = reinterpret_cast<std::uint32_t*>(target + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < layout.width; ++x, in += 4) {
            const std::uint32_t a = in[alphaAt], r = in[first], g = in[first + 1], b = in[first + 2];
            out[x] = straight
                ? a << 24 | premultiplied(r, a) << 16 | premultiplied(g, a) << 8 | premultiplied(b, a)
                : a << 24 | r << 16 | g << 8 | b;
        }
    }
}

/// Pixels that can be drawn from where they lie.
bool isNativeForm(const ImageLayout& layout, const std::uint8_t* pixels)
{
    const bool rgb = !layout.space || layout.space->model() == ColorModel::RGB;
    return rgb && (!layout.space || layout.space->convertsToOutputUnchanged()) && layout.nativeOrder
        && (layout.alpha == AlphaFormat::PremultipliedFirst || layout.alpha == AlphaFormat::NoneSkipFirst)
        && layout.bytesPerRow % 4 == 0 && layout.bytesPerRow <= 0x7fffffff
        && reinterpret_cast<std::uintptr_t>(pixels) % 4 == 0;
}

void releaseOwner(void* owner) { delete static_cast<std::shared_ptr<const void>*>(owner); }

/// A surface over the image's own pixels. It outlives the image where cairo still holds it (in a
/// document being written), so it keeps the owner too.
cairo_surface_t* wrapPixels(const Image::Impl& image, cairo_format_t format)
{
    static const cairo_user_data_key_t ownerKey {};
    cairo_surface_t* surface = cairo_image_surface_create_for_data(const_cast<std::uint8_t*>(image.pixels),
        format, image.layout.width, image.layout.height, static_cast<int>(image.layout.bytesPerRow));
    auto* owner = new std::shared_ptr<const void>(image.owner);
    if (cairo_surface_set_user_data(surface, &ownerKey, owner, releaseOwner) != CAIRO_STATUS_SUCCESS)
        delete owner;
    return surface;
}

cairo_surface_t* convertPixels(const Image::Impl& image, cairo_format_t format)
{
    const ImageLayout& layout = image.layout;
    cairo_surface_t* surface = cairo_image_surface_create(format, layout.width, layout.height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS)
        return surface;
    std::uint8_t* target = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const bool plainRGB = !layout.space
        || (layout.space->model() == ColorModel::RGB && layout.space->convertsToOutputUnchanged());
    if (!plainRGB || !hasAlpha(layout.alpha) || layout.nativeOrder)
        convertToNative(layout, image.pixels, target, stride);
    else if (isPremultiplied(layout.alpha))
        convertRGBA<false>(layout, image.pixels, target, stride);
    else
        convertRGBA<true>(layout, image.pixels, target, stride);
    cairo_surface_mark_dirty(surface);
    return surface;
}

/// An image surface of every 2^x-th pixel of every 2^y-th row.
cairo_surface_t* thin(cairo_surface_t* source, int x, int y)
{
    const int width = cairo_image_surface_get_width(source), height = cairo_image_surface_get_height(source);
    const int thinWidth = (width + (1 << x) - 1) >> x, thinHeight = (height + (1 << y) - 1) >> y;
    cairo_surface_t* target
        = cairo_image_surface_create(cairo_image_surface_get_format(source), thinWidth, thinHeight);
    if (cairo_surface_status(target) != CAIRO_STATUS_SUCCESS)
        return target;
    const std::uint8_t* from = cairo_image_surface_get_data(source);
    std::uint8_t* to = cairo_image_surface_get_data(target);
    for (int row = 0; row < thinHeight; ++row, to += cairo_image_surface_get_stride(target)) {
        const std::ptrdiff_t middle = std::min((row << y) + (1 << y) / 2, height - 1);
        const auto* in
            = reinterpret_cast<const std::uint32_t*>(from + middle * cairo_image_surface_get_stride(source));
        auto* out = reinterpret_cast<std::uint32_t*>(to);
        for (int column = 0; column < thinWidth; ++column)
            out[column] = in[std::min((column << x) + (1 << x) / 2, width - 1)];
    }
    cairo_surface_mark_dirty(target);
    return target;
}

} // namespace

void readStraightRow(const ImageLayout& layout, const std::uint8_t* pixels, int y, std::uint8_t* rgba)
{
    RowReader reader(layout);
    reader.read(rowOf(layout, pixels, y));
    for (std::size_t x = 0; x < static_cast<std::size_t>(layout.width); ++x) {
        std::memcpy(rgba + 4 * x, reader.rgb() + 3 * x, 3);
        rgba[4 * x + 3] = reader.alpha()[x];
    }
}

cairo_surface_t* Image::Impl::surface()
{
    if (mSurface)
        return mSurface;
    const cairo_format_t format = hasAlpha(layout.alpha) ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    cairo_surface_t* made
        = isNativeForm(layout, pixels) ? wrapPixels(*this, format) : convertPixels(*this, format);
    if (cairo_surface_status(made) == CAIRO_STATUS_SUCCESS)
        mSurface = made;
    else
        cairo_surface_destroy(made);
    return mSurface;
}

cairo_surface_t* Image::Impl::thinnedSurface(int x, int y)
{
    cairo_surface_t* whole = surface();
    if (!whole || (x == 0 && y == 0))
        return whole;
    cairo_surface_t*& thinned = mThinned[static_cast<std::size_t>(y * (mostThinning + 1) + x)];
    if (thinned)
        return thinned;
    cairo_surface_t* made = thin(whole, x, y);
    if (cairo_surface_status(made) == CAIRO_STATUS_SUCCESS)
        return thinned = made;
    cairo_surface_destroy(made);
    return nullptr;
}

} // namespace vxr
