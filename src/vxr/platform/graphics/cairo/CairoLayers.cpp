#include <vxr/platform/graphics/cairo/CairoEngine.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <cstring>
#include <new>
#include <utility>

namespace vxr {

namespace {

/// A bitmap layer's surface over `memory`: a window of device space, whose coordinates it keeps.
cairo_surface_t* windowOnto(const DeviceBox& extents, std::uint8_t* memory)
{
    cairo_surface_t* surface
        = cairo_image_surface_create_for_data(memory, CAIRO_FORMAT_ARGB32, static_cast<int>(extents.width()),
            static_cast<int>(extents.height()), 4 * static_cast<int>(extents.width()));
    cairo_surface_set_device_offset(surface, -extents.x0, -extents.y0);
    return surface;
}

cairo_surface_t* recordingOf(const DeviceBox& extents)
{
    const cairo_rectangle_t rectangle { extents.x0, extents.y0, extents.width(), extents.height() };
    return cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &rectangle);
}

/// Pixels of an image surface, which is a window of device space, within a box that lies in it.
struct Rows {
    std::uint32_t* first;
    std::ptrdiff_t stride; ///< in pixels
    std::size_t width, height;

    Rows(const CairoTarget& target, const DeviceBox& box)
        : stride(cairo_image_surface_get_stride(target.surface.get()) / 4)
        , width(static_cast<std::size_t>(box.width()))
        , height(static_cast<std::size_t>(box.height()))
    {
        auto* pixels = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(target.surface.get()));
        first = pixels + static_cast<std::ptrdiff_t>(box.y0 - target.extents.y0) * stride
            + static_cast<std::ptrdiff_t>(box.x0 - target.extents.x0);
    }
    std::uint32_t* operator[](std::size_t y) const { return first + static_cast<std::ptrdiff_t>(y) * stride; }
};

void clear(const CairoTarget& layer, const DeviceBox& box)
{
    if (box.isEmpty())
        return;
    const Rows rows(layer, box);
    for (std::size_t y = 0; y < rows.height; ++y)
        std::memset(rows[y], 0, 4 * rows.width);
}

void clearRest(const CairoTarget& layer)
{
    const DeviceBox ink = intersection(layer.ink, layer.extents);
    const DeviceBox& done = layer.cleared;
    if (done.isEmpty())
        return clear(layer, ink);
    clear(layer, { ink.x0, ink.y0, ink.x1, done.y0 });
    clear(layer, { ink.x0, done.y0, done.x0, done.y1 });
    clear(layer, { done.x1, done.y0, ink.x1, done.y1 });
    clear(layer, { ink.x0, done.y1, ink.x1, ink.y1 });
}

} // namespace

void CairoEngine::pushLayer()
{
    if (targets.empty())
        return;
    CairoTarget layer;
    layer.extents = state.castsShadow() ? casterExtents() : state.clip.roundedOut();
    if (kind == Kind::Bitmap && !layer.extents.isEmpty()) {
        layer.memory = layerMemory.take(4 * static_cast<std::size_t>(layer.extents.width())
            * static_cast<std::size_t>(layer.extents.height()));
        layer.surface.reset(windowOnto(layer.extents, layer.memory.bytes));
    } else {
        layer.surface.reset(recordingOf(layer.extents));
    }
    layer.cairo.reset(cairo_create(layer.surface.get()));
    state.clip = layer.extents;
    targets.push_back(std::move(layer));
}

CairoTarget CairoEngine::popLayerTarget()
{
    CairoTarget layer = std::move(targets.back());
    targets.pop_back();
    layer.cairo.reset();
    return layer;
}

void CairoEngine::releaseLayer(CairoTarget layer)
{
    if (layer.memory.bytes)
        clearRest(layer);
    layer.surface.reset();
    layerMemory.giveBack(layer.memory);
}

void CairoEngine::popLayer(LayerEnd end)
{
    CairoTarget layer = popLayerTarget();
    didRestoreState();
    if (end != LayerEnd::Drop && !state.clip.isEmpty()) {
        if (end == LayerEnd::Compose && state.operation == CompositeOperation::Copy)
            clearClip();
        if (state.castsShadow())
            drawShadowOf(layer);
        if (end == LayerEnd::Compose)
            drawLayer(layer);
    }
    releaseLayer(std::move(layer));
    finishOperation();
}

void CairoEngine::drawLayer(CairoTarget& layer)
{
    if (canBlend(layer))
        return blendLayer(layer);
    CairoSaver saved(cr());
    cairo_identity_matrix(cr());
    cairo_set_operator(cr(), layerOperator());
    cairo_set_source_surface(cr(), layer.surface.get(), 0, 0);
    if (layer.memory.bytes) {
        const DeviceBox ink = intersection(layer.ink, layer.extents);
        cairo_rectangle(cr(), ink.x0, ink.y0, ink.width(), ink.height());
        cairo_clip(cr());
    }
    paintSource();
    noteInk(layer.ink);
}

bool CairoEngine::canBlend(const CairoTarget& layer) const
{
    return layer.memory.bytes && state.clipIsPixels && layerOperator() == CAIRO_OPERATOR_OVER
        && cairo_image_surface_get_format(targets.back().surface.get()) == CAIRO_FORMAT_ARGB32;
}

// What the engine would do with the same bytes in three passes, in one: a row is blended and cleared while
// it is near.
void CairoEngine::blendLayer(CairoTarget& layer)
{
    const CairoTarget& target = targets.back();
    cairo_surface_flush(layer.surface.get());
    cairo_surface_flush(target.surface.get());
    const SpanOperation& over = spanKernels().over();
    const std::uint8_t fade = channelByte(state.alpha);
    const DeviceBox seen
        = intersection(intersection(layer.ink, layer.extents), intersection(state.clip, target.extents));
    if (seen.isEmpty())
        return;
    const Rows to(target, seen), from(layer, seen);
    for (std::size_t y = 0; y < from.height; ++y) {
        over.pixels(to[y], from.width, from[y], fade);
        std::memset(from[y], 0, 4 * from.width);
    }
    layer.cleared = seen;
    cairo_surface_mark_dirty(target.surface.get());
    noteInk(layer.ink);
}

// A layer's copy takes the place of everything within the clip.
void CairoEngine::clearClip()
{
    if (onPaper)
        return;
    CairoSaver saved(cr());
    cairo_set_operator(cr(), CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr());
}

// What a layer clears is what it covers.
cairo_operator_t CairoEngine::layerOperator() const
{
    if (state.operation == CompositeOperation::Clear)
        return onPaper ? CAIRO_OPERATOR_DEST : CAIRO_OPERATOR_DEST_OUT;
    return CAIRO_OPERATOR_OVER;
}

} // namespace vxr
