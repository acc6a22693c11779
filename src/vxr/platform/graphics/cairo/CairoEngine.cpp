#include <vxr/platform/graphics/cairo/CairoEngine.h>

#include <vxr/platform/graphics/cairo/CairoFactory.h>

#include <cassert>
#include <new>
#include <utility>

namespace vxr {

CairoEngine::CairoEngine(Kind surfaceKind, CairoSurfacePtr surface, int width, int height)
    : kind(surfaceKind)
    , onPaper(surfaceKind == Kind::Document)
    , pixelWidth(width)
    , pixelHeight(height)
{
    if (surface)
        startSurface(
            std::move(surface), { 0, 0, static_cast<double>(width), static_cast<double>(height) }, height);
}

// Layers that are still open go with what was drawn into them.
CairoEngine::~CairoEngine()
{
    while (targets.size() > 1)
        releaseLayer(popLayerTarget());
}

std::unique_ptr<DrawingEngine> makeCairoBitmapEngine(
    std::uint8_t* pixels, int width, int height, std::size_t bytesPerRow)
{
    CairoSurfacePtr surface(cairo_image_surface_create_for_data(
        pixels, CAIRO_FORMAT_ARGB32, width, height, static_cast<int>(bytesPerRow)));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    return std::make_unique<CairoEngine>(CairoEngine::Kind::Bitmap, std::move(surface), width, height);
}

void CairoEngine::startSurface(CairoSurfacePtr surface, const DeviceBox& extents, double height)
{
    CairoTarget target;
    target.cairo.reset(cairo_create(surface.get()));
    target.surface = std::move(surface);
    target.extents = extents;
    targets.clear();
    targets.push_back(std::move(target));
    DrawingEngine::startSurface(extents, height);
}

void CairoEngine::stopSurface()
{
    DrawingEngine::stopSurface();
    targets.clear();
}

void CairoEngine::didSaveState()
{
    if (targets.empty())
        return;
    cairo_save(cr());
    targets.back().savedClips.push_back(state.clip);
}

void CairoEngine::didRestoreState()
{
    if (targets.empty())
        return;
    cairo_restore(cr());
    targets.back().savedClips.pop_back();
}

void CairoEngine::setStyle()
{
    cairo_t* c = cr();
    const cairo_matrix_t m = matrix();
    cairo_set_matrix(c, &m);
    cairo_set_operator(c, cairoOperator());
    cairo_set_antialias(c, cairoAntialias());
    cairo_set_tolerance(c, tolerance());
}

// On paper nothing can be taken away, so there a copy lies over what is there.
cairo_operator_t CairoEngine::cairoOperator() const
{
    if (onPaper)
        return CAIRO_OPERATOR_OVER;
    switch (state.operation) {
    case CompositeOperation::Clear:
        return CAIRO_OPERATOR_CLEAR;
    case CompositeOperation::Copy:
        return CAIRO_OPERATOR_SOURCE;
    case CompositeOperation::SourceOver:
        break;
    }
    return CAIRO_OPERATOR_OVER;
}

// An engine that has stopped on an error never draws again. Its clip is lost with it; the box around
// the clip takes its place.
void CairoEngine::recoverFromError()
{
    CairoTarget& target = targets.back();
    target.cairo.reset(cairo_create(target.surface.get()));
    const auto clipTo = [&](const DeviceBox& box) {
        cairo_rectangle(cr(), box.x0, box.y0, box.width(), box.height());
        cairo_clip(cr());
    };
    for (const DeviceBox& clip : target.savedClips) {
        clipTo(clip);
        cairo_save(cr());
    }
    clipTo(state.clip);
}

void CairoEngine::finishOperation()
{
    if (cairo_status(cr()) == CAIRO_STATUS_SUCCESS)
        return;
    assert(cairo_status(cr()) == CAIRO_STATUS_NO_MEMORY);
    recoverFromError();
}

void CairoEngine::noteInk(const DeviceBox& box)
{
    if (!isInLayer())
        return;
    // One pixel more: a filter or a smoothed edge reaches into the next.
    DeviceBox& ink = targets.back().ink;
    ink = united(ink, intersection(box.grown(1).roundedOut(), state.clip.roundedOut()));
}

bool CairoEngine::lock() { return kind == Kind::Bitmap && !isInLayer() && pixels(); }

void CairoEngine::unlock() { cairo_surface_mark_dirty(targets.front().surface.get()); }

std::uint8_t* CairoEngine::pixels() const
{
    if (kind != Kind::Bitmap)
        return nullptr;
    cairo_surface_t* surface = targets.front().surface.get();
    cairo_surface_flush(surface);
    return cairo_image_surface_get_data(surface);
}

std::size_t CairoEngine::bytesPerRow() const
{
    if (kind != Kind::Bitmap)
        return 0;
    return static_cast<std::size_t>(cairo_image_surface_get_stride(targets.front().surface.get()));
}

} // namespace vxr
