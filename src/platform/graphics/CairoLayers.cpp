#include <vxr/platform/graphics/CairoImpl.h>

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

void clearRows(const CairoTarget& layer)
{
    const DeviceBox ink = intersection(layer.ink, layer.extents);
    const std::size_t stride = 4 * static_cast<std::size_t>(layer.extents.width());
    const std::size_t left = 4 * static_cast<std::size_t>(ink.x0 - layer.extents.x0);
    const std::size_t length = 4 * static_cast<std::size_t>(ink.width());
    for (double y = ink.y0; y < ink.y1; ++y)
        std::memset(
            layer.memory.bytes + static_cast<std::size_t>(y - layer.extents.y0) * stride + left, 0, length);
}

} // namespace

void CairoContext::Impl::pushLayerTarget()
{
    CairoTarget layer;
    layer.extents = state.castsShadow() ? casterExtents() : state.clip.roundedOut();
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
    layer.surface.reset();
    if (!layer.memory.bytes)
        return;
    clearRows(layer);
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

void CairoContext::Impl::drawLayer(const CairoTarget& layer)
{
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
