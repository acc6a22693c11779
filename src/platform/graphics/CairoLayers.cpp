#include <vxr/platform/graphics/CairoImpl.h>
#include <vxr/platform/graphics/LayerBlend.h>

#include <cstring>
#include <new>
#include <span>
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

/// A pixel of an image surface that is a window of device space.
std::uint32_t* pixelAt(const CairoTarget& target, double x, double y)
{
    std::uint8_t* row = cairo_image_surface_get_data(target.surface.get())
        + static_cast<std::ptrdiff_t>(y - target.extents.y0)
            * cairo_image_surface_get_stride(target.surface.get());
    return reinterpret_cast<std::uint32_t*>(row) + static_cast<std::ptrdiff_t>(x - target.extents.x0);
}

void clearRow(const CairoTarget& layer, const DeviceBox& ink, double y)
{
    std::memset(pixelAt(layer, ink.x0, y), 0, 4 * static_cast<std::size_t>(ink.width()));
}

/// The clip as boxes of whole pixels; nothing when it is anything else.
std::vector<DeviceBox> clipBoxes(cairo_t* cr)
{
    std::vector<DeviceBox> boxes;
    cairo_rectangle_list_t* list = cairo_copy_clip_rectangle_list(cr);
    if (list->status == CAIRO_STATUS_SUCCESS)
        for (const auto& r : std::span(list->rectangles, static_cast<std::size_t>(list->num_rectangles)))
            boxes.push_back({ r.x, r.y, r.x + r.width, r.y + r.height });
    cairo_rectangle_list_destroy(list);
    return boxes;
}

} // namespace

// Further away exactness isn't worth the memory.
DeviceBox CairoContext::Impl::layerClip() const
{
    constexpr double farthest = 4096;
    DeviceBox box = state.clip;
    if (kind != Kind::Bitmap || state.layerReach.isEmpty() || box.isEmpty())
        return box;
    const double room = std::clamp((maxLayerSide - std::ceil(box.width())) / 2 - 1, 0.0, farthest);
    box.x0 = std::clamp(state.layerReach.x0, box.x0 - room, box.x0);
    box.x1 = std::clamp(state.layerReach.x1, box.x1, box.x1 + room);
    return box;
}

void CairoContext::Impl::pushLayerTarget()
{
    CairoTarget layer;
    layer.extents = state.castsShadow() ? casterExtents() : layerClip().roundedOut();
    layer.stackDepth = stack.size();
    if (kind == Kind::Bitmap && !layer.extents.isEmpty()) {
        layer.memory = layerMemory.take(4 * static_cast<std::size_t>(layer.extents.width())
            * static_cast<std::size_t>(layer.extents.height()));
        layer.surface.reset(windowOnto(layer.extents, layer.memory.bytes));
    } else {
        layer.surface.reset(recordingOf(layer.extents));
    }
    layer.cairo.reset(cairo_create(layer.surface.get()));
    targets.push_back(std::move(layer));
}

CairoTarget CairoContext::Impl::popLayerTarget()
{
    CairoTarget layer = std::move(targets.back());
    targets.pop_back();
    stack.resize(layer.stackDepth);
    layer.cairo.reset();
    return layer;
}

void CairoContext::Impl::releaseLayer(CairoTarget layer)
{
    if (layer.memory.bytes) {
        const DeviceBox ink = intersection(layer.ink, layer.extents);
        for (double y = ink.y0; y < ink.y1; ++y)
            clearRow(layer, ink, y);
    }
    layer.surface.reset();
    layerMemory.giveBack(layer.memory);
}

void CairoContext::Impl::beginLayer()
{
    if (targets.empty())
        return;
    stack.push_back(state);
    cairo_save(cr());
    pushLayerTarget();
    state.clip = targets.back().extents;
    state.layerReach = {};
    state.alpha = 1;
    state.operation = CompositeOperation::SourceOver;
    state.shadow = {};
}

CairoTarget CairoContext::Impl::leaveLayer()
{
    CairoTarget layer = popLayerTarget();
    state = std::move(stack.back());
    stack.pop_back();
    cairo_restore(cr());
    return layer;
}

void CairoContext::Impl::endLayer()
{
    if (!isInLayer())
        return;
    CairoTarget layer = leaveLayer();
    if (!state.clip.isEmpty()) {
        if (state.operation == CompositeOperation::Copy)
            clearClip();
        if (state.castsShadow())
            drawShadowOf(layer);
        drawLayer(layer);
    }
    releaseLayer(std::move(layer));
    finishOperation();
}

void CairoContext::Impl::drawLayer(CairoTarget& layer)
{
    CairoSaver saved(cr());
    cairo_identity_matrix(cr());
    if (layer.memory.bytes && layerOperator() == CAIRO_OPERATOR_OVER && blendLayer(layer))
        return;
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

// What the engine would do with the same bytes in three passes, in one: a row is blended and cleared while
// it is near.
bool CairoContext::Impl::blendLayer(CairoTarget& layer)
{
    const std::vector<DeviceBox> boxes = clipBoxes(cr());
    const CairoTarget& target = targets.back();
    if (boxes.empty() || cairo_image_surface_get_format(target.surface.get()) != CAIRO_FORMAT_ARGB32)
        return false;
    cairo_surface_flush(layer.surface.get());
    cairo_surface_flush(target.surface.get());
    const LayerBlendLoops& loops = layerBlendLoops();
    const std::uint8_t fade = channelByte(state.alpha);
    const DeviceBox ink = intersection(layer.ink, layer.extents);
    for (double y = ink.y0; y < ink.y1; ++y) {
        for (const DeviceBox& box : boxes) {
            const DeviceBox run = intersection({ ink.x0, y, ink.x1, y + 1 }, box);
            if (run.isEmpty())
                continue;
            const auto width = static_cast<std::size_t>(run.width());
            if (fade == 255)
                loops.over(pixelAt(target, run.x0, y), pixelAt(layer, run.x0, y), width);
            else
                loops.overFaded(pixelAt(target, run.x0, y), pixelAt(layer, run.x0, y), width, fade);
        }
        clearRow(layer, ink, y);
    }
    cairo_surface_mark_dirty(target.surface.get());
    noteInk(layer.ink);
    layer.ink = {};
    return true;
}

// A layer's copy takes the place of everything within the clip.
void CairoContext::Impl::clearClip()
{
    if (onPaper)
        return;
    CairoSaver saved(cr());
    cairo_set_operator(cr(), CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr());
}

// What a layer clears is what it covers.
cairo_operator_t CairoContext::Impl::layerOperator() const
{
    if (state.operation == CompositeOperation::Clear)
        return onPaper ? CAIRO_OPERATOR_DEST : CAIRO_OPERATOR_DEST_OUT;
    return CAIRO_OPERATOR_OVER;
}

} // namespace vxr
