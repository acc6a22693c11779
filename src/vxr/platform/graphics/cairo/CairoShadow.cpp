#include <vxr/platform/graphics/cairo/CairoEngine.h>
#include <vxr/platform/graphics/pixels/Blur.h>

#include <utility>

namespace vxr {

namespace {

// Resolutions of a shadow on paper, in samples a point: 144 and 300 to the inch.
constexpr double coarsestOnPaper = 2;
constexpr double finestOnPaper = 300.0 / 72;
constexpr double samplesPerSigma = 3; ///< enough for a Gaussian's edge
constexpr double maxSamples = 1 << 24;

constexpr double farthestCaster = 8192; ///< device units beyond the clip that still cast into it

/// A shadow's shape: an A8 surface with `resolution` samples a device unit that covers `box` of the
/// device space of what casts it.
struct ShadowMask {
    CairoSurfacePtr surface;
    DeviceBox box;
    double resolution;
};

ShadowMask emptyMask(const DeviceBox& wanted, double resolution)
{
    const DeviceBox box = wanted.roundedOut();
    CairoSurfacePtr surface(
        cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(std::ceil(box.width() * resolution)),
            static_cast<int>(std::ceil(box.height() * resolution))));
    return { std::move(surface), box, resolution };
}

/// Copies the alpha bytes of `part` of a bitmap layer; what lies around stays 0.
void takeAlpha(const ShadowMask& mask, const CairoTarget& layer, const DeviceBox& part)
{
    cairo_surface_t* surface = layer.surface.get();
    cairo_surface_flush(surface);
    const DeviceBox common = intersection(part, mask.box);
    const int stride = cairo_image_surface_get_stride(mask.surface.get());
    const auto width = static_cast<std::size_t>(common.width());
    for (double y = common.y0; y < common.y1; ++y) {
        const auto sourceOffset = static_cast<std::ptrdiff_t>(
            (y - layer.extents.y0) * layer.extents.width() + (common.x0 - layer.extents.x0));
        const auto targetOffset
            = static_cast<std::ptrdiff_t>((y - mask.box.y0) * stride + (common.x0 - mask.box.x0));
        const auto* source = reinterpret_cast<const std::uint32_t*>(layer.memory.bytes) + sourceOffset;
        std::uint8_t* target = cairo_image_surface_get_data(mask.surface.get()) + targetOffset;
        for (std::size_t x = 0; x < width; ++x)
            target[x] = static_cast<std::uint8_t>(source[x] >> 24);
    }
}

void drawAlpha(const ShadowMask& mask, cairo_surface_t* recording)
{
    CairoPtr cr(cairo_create(mask.surface.get()));
    cairo_scale(cr.get(), mask.resolution, mask.resolution);
    cairo_translate(cr.get(), -mask.box.x0, -mask.box.y0);
    cairo_set_source_surface(cr.get(), recording, 0, 0);
    cairo_paint(cr.get());
}

void blur(const ShadowMask& mask, double sigma)
{
    cairo_surface_t* surface = mask.surface.get();
    cairo_surface_flush(surface);
    std::uint8_t* pixels = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    blurA8(pixels, stride, cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface),
        static_cast<float>(sigma * mask.resolution), pixels, stride);
    cairo_surface_mark_dirty(surface);
}

DeviceBox inkOf(const CairoTarget& layer)
{
    if (layer.memory.bytes)
        return intersection(layer.ink, layer.extents);
    DeviceBox ink;
    double width = 0, height = 0;
    cairo_recording_surface_ink_extents(layer.surface.get(), &ink.x0, &ink.y0, &width, &height);
    ink.x1 = ink.x0 + width;
    ink.y1 = ink.y0 + height;
    return intersection(ink, layer.extents);
}

double resolutionOnPaper(const DeviceBox& box, double sigma)
{
    const double wanted = std::clamp(samplesPerSigma / sigma, coarsestOnPaper, finestOnPaper);
    return std::min(wanted, std::sqrt(maxSamples / (box.width() * box.height())));
}

} // namespace

// The shadow is given in base space: scaled and turned by the base transform alone. On bitmaps it moves
// by whole pixels, so that it looks the same wherever it is drawn from.
CairoEngine::DeviceShadow CairoEngine::deviceShadow() const
{
    const Size offset = baseTransform().map(state.shadow.offset);
    const double scale = std::sqrt(std::abs(baseTransform().determinant()));
    const double sigma = std::min<double>(state.shadow.blur * scale / 3, maxBlurSigma);
    const double reach = std::ceil(3 * sigma) + 1;
    if (!std::isfinite(offset.width) || !std::isfinite(offset.height) || !std::isfinite(sigma))
        return {};
    const auto placed = [this](double v) { return kind == Kind::Bitmap ? std::floor(v + 0.5) : v; };
    return { placed(offset.width), -placed(offset.height), sigma, reach };
}

// What lies outside of the clip may cast its shadow into it.
DeviceBox CairoEngine::casterExtents() const
{
    const DeviceShadow shadow = deviceShadow();
    const DeviceBox casters = state.clip.moved(-shadow.dx, -shadow.dy).grown(shadow.reach);
    const DeviceBox clip = state.clip.roundedOut();
    const double room = std::floor((maxLayerSide - std::max(clip.width(), clip.height())) / 2);
    const DeviceBox around = clip.grown(std::clamp(room, 0.0, farthestCaster));
    return intersection(united(clip, casters.roundedOut()), around);
}

void CairoEngine::drawShadowOf(const CairoTarget& layer)
{
    const DeviceShadow shadow = deviceShadow();
    const DeviceBox ink = inkOf(layer);
    const DeviceBox shown = intersection(ink.grown(shadow.reach).moved(shadow.dx, shadow.dy), state.clip);
    if (ink.isEmpty() || shown.isEmpty())
        return;
    // Only what casts into `shown` counts, and it needs room to spread.
    const DeviceBox near = shown.moved(-shadow.dx, -shadow.dy).grown(shadow.reach);
    const DeviceBox area = intersection(ink.grown(shadow.reach), near);
    const bool isBitmap = layer.memory.bytes;
    const ShadowMask mask = emptyMask(area, isBitmap ? 1 : resolutionOnPaper(area, shadow.sigma));
    if (cairo_surface_status(mask.surface.get()) != CAIRO_STATUS_SUCCESS)
        return;
    if (isBitmap)
        takeAlpha(mask, layer, ink);
    else
        drawAlpha(mask, layer.surface.get());
    blur(mask, shadow.sigma);

    CairoSaver saved(cr());
    cairo_identity_matrix(cr());
    cairo_set_operator(cr(), CAIRO_OPERATOR_OVER);
    const auto& [red, green, blue, alpha] = state.shadow.rgba;
    cairo_set_source_rgba(cr(), red, green, blue, static_cast<double>(alpha) * state.alpha);
    CairoPatternPtr pattern(cairo_pattern_create_for_surface(mask.surface.get()));
    cairo_matrix_t toMask;
    cairo_matrix_init_scale(&toMask, mask.resolution, mask.resolution);
    cairo_matrix_translate(&toMask, -mask.box.x0 - shadow.dx, -mask.box.y0 - shadow.dy);
    cairo_pattern_set_matrix(pattern.get(), &toMask);
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_BILINEAR);
    cairo_mask(cr(), pattern.get());
    noteInk(shown);
}

} // namespace vxr
