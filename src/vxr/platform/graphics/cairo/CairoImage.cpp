#include <vxr/platform/graphics/cairo/CairoImage.h>

#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/ImageImpl.h>
#include <vxr/platform/graphics/cairo/CairoHandles.h>

#include <algorithm>
#include <array>

namespace vxr {

namespace {

struct CairoImageCache {
    CairoSurfacePtr whole;
    std::array<CairoSurfacePtr, (mostImageThinning + 1) * (mostImageThinning + 1)> thinned;
};

void releaseOwner(void* owner) { delete static_cast<std::shared_ptr<const void>*>(owner); }

/// Outlives the image where cairo still holds it (in a document being written), so it keeps the owner too.
CairoSurfacePtr wrap(const NativePixels& native)
{
    static const cairo_user_data_key_t ownerKey {};
    auto* pixels = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(native.pixels));
    CairoSurfacePtr surface(
        cairo_image_surface_create_for_data(pixels, native.opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32,
            native.width, native.height, static_cast<int>(4 * native.stride)));
    auto* owner = new std::shared_ptr<const void>(native.owner);
    if (cairo_surface_set_user_data(surface.get(), &ownerKey, owner, releaseOwner) != CAIRO_STATUS_SUCCESS)
        delete owner;
    return surface;
}

void releaseFile(void* file) { delete static_cast<std::shared_ptr<const Data>*>(file); }

/// A document takes the file in place of the pixels.
void attachFile(cairo_surface_t* surface, const std::shared_ptr<const Data>& jpeg)
{
    auto* file = new std::shared_ptr<const Data>(jpeg);
    const auto* bytes = reinterpret_cast<const unsigned char*>(jpeg->bytes().data());
    if (cairo_surface_set_mime_data(surface, CAIRO_MIME_TYPE_JPEG, bytes, jpeg->length(), releaseFile, file)
        != CAIRO_STATUS_SUCCESS)
        delete file;
}

cairo_surface_t* kept(CairoSurfacePtr& place, CairoSurfacePtr made)
{
    if (cairo_surface_status(made.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    place = std::move(made);
    return place.get();
}

/// An image surface of every 2^x-th pixel of every 2^y-th row.
CairoSurfacePtr thin(cairo_surface_t* source, int x, int y)
{
    const int width = cairo_image_surface_get_width(source), height = cairo_image_surface_get_height(source);
    const int thinWidth = (width + (1 << x) - 1) >> x, thinHeight = (height + (1 << y) - 1) >> y;
    CairoSurfacePtr target(
        cairo_image_surface_create(cairo_image_surface_get_format(source), thinWidth, thinHeight));
    if (cairo_surface_status(target.get()) != CAIRO_STATUS_SUCCESS)
        return target;
    const std::uint8_t* from = cairo_image_surface_get_data(source);
    std::uint8_t* to = cairo_image_surface_get_data(target.get());
    for (int row = 0; row < thinHeight; ++row, to += cairo_image_surface_get_stride(target.get())) {
        const std::ptrdiff_t middle = std::min((row << y) + (1 << y) / 2, height - 1);
        const auto* in
            = reinterpret_cast<const std::uint32_t*>(from + middle * cairo_image_surface_get_stride(source));
        auto* out = reinterpret_cast<std::uint32_t*>(to);
        for (int column = 0; column < thinWidth; ++column)
            out[column] = in[std::min((column << x) + (1 << x) / 2, width - 1)];
    }
    cairo_surface_mark_dirty(target.get());
    return target;
}

} // namespace

cairo_surface_t* cairoSurface(const Image& image)
{
    auto& cache = image.impl().caches.findOrMake<CairoImageCache>();
    if (cache.whole)
        return cache.whole.get();
    const NativePixels* native = image.impl().native();
    cairo_surface_t* surface = native ? kept(cache.whole, wrap(*native)) : nullptr;
    if (surface && image.impl().jpeg)
        attachFile(surface, image.impl().jpeg);
    return surface;
}

cairo_surface_t* thinnedCairoSurface(const Image& image, int x, int y)
{
    cairo_surface_t* whole = cairoSurface(image);
    if (!whole || (x == 0 && y == 0))
        return whole;
    auto& thinned = image.impl().caches.find<CairoImageCache>()->thinned;
    CairoSurfacePtr& place = thinned[static_cast<std::size_t>(y * (mostImageThinning + 1) + x)];
    return place ? place.get() : kept(place, thin(whole, x, y));
}

} // namespace vxr
