#include <vxr/platform/graphics/ImageImpl.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

// Conversion of any layout to the two output forms: straight RGBA bytes for files and premultiplied
// native ARGB for drawing.

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

/// round(value * 255 / alpha), at most 255; 0 if alpha is 0. The inverse of `premultiplied`.
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

/// Splits a row into straight colour components and alpha.
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

/// Reads rows of any layout in order, with the buffers that the conversion needs.
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

/// RGB pixels of four bytes whose colours need no conversion: the common case, handled directly.
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

bool isPlainRGB(const ImageLayout& layout)
{
    return !layout.space
        || (layout.space->model() == ColorModel::RGB && layout.space->convertsToOutputUnchanged());
}

/// Whether the pixels can be drawn in place.
bool isNativeForm(const ImageLayout& layout, const std::uint8_t* pixels)
{
    const bool hasAlphaBytes = layout.alpha == AlphaFormat::PremultipliedFirst
        || (layout.alpha == AlphaFormat::NoneSkipFirst && layout.isFullAlpha);
    return isPlainRGB(layout) && layout.nativeOrder && hasAlphaBytes && layout.bytesPerRow % 4 == 0
        && layout.bytesPerRow <= 0x7fffffff && reinterpret_cast<std::uintptr_t>(pixels) % 4 == 0;
}

void convertPixels(const ImageLayout& layout, const std::uint8_t* pixels, std::uint8_t* target, int stride)
{
    if (!isPlainRGB(layout) || !hasAlpha(layout.alpha) || layout.nativeOrder)
        convertToNative(layout, pixels, target, stride);
    else if (isPremultiplied(layout.alpha))
        convertRGBA<false>(layout, pixels, target, stride);
    else
        convertRGBA<true>(layout, pixels, target, stride);
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

const NativePixels* Image::Impl::native()
{
    if (mNative.pixels)
        return &mNative;
    const bool opaque = !hasAlpha(layout.alpha);
    // Pixels that are made only for this form are not kept beside it.
    const std::shared_ptr<const void> owner = mPixels || !makePixels ? mOwner : makePixels();
    const std::uint8_t* pixels = mPixels ? mPixels : static_cast<const std::uint8_t*>(owner.get());
    if (isNativeForm(layout, pixels)) {
        mNative = { reinterpret_cast<const std::uint32_t*>(pixels), layout.width, layout.height,
            static_cast<std::ptrdiff_t>(layout.bytesPerRow / 4), opaque, owner };
        return &mNative;
    }
    const std::size_t count
        = static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(layout.height);
    const std::shared_ptr<std::uint32_t[]> converted(new (std::nothrow) std::uint32_t[count]);
    if (!converted)
        return nullptr;
    convertPixels(layout, pixels, reinterpret_cast<std::uint8_t*>(converted.get()), 4 * layout.width);
    mNative = { converted.get(), layout.width, layout.height, layout.width, opaque, converted };
    return &mNative;
}

} // namespace vxr
