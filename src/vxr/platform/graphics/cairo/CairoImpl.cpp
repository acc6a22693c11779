#include <vxr/platform/graphics/cairo/CairoImpl.h>

#include <vxr/platform/graphics/Pattern.h>

#include <cassert>
#include <utility>

namespace vxr {

CairoContext::Impl::Impl(Kind surfaceKind, CairoSurfacePtr surface, int width, int height)
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
CairoContext::Impl::~Impl()
{
    while (isInLayer())
        releaseLayer(popLayerTarget());
}

std::shared_ptr<CairoContext> CairoContext::Impl::makeContext(std::unique_ptr<Impl> impl)
{
    return std::shared_ptr<CairoContext>(new CairoContext(std::move(impl)));
}

void CairoContext::Impl::startSurface(CairoSurfacePtr surface, const DeviceBox& extents, double height)
{
    CairoTarget target;
    target.cairo.reset(cairo_create(surface.get()));
    target.surface = std::move(surface);
    target.extents = extents;
    targets.clear();
    targets.push_back(std::move(target));
    stack.clear();
    state = {};
    state.clip = extents;
    deviceHeight = height;
    base = {};
    setTransform(base);
}

void CairoContext::Impl::stopSurface()
{
    while (isInLayer())
        endLayer();
    targets.clear();
    stack.clear();
}

void CairoContext::Impl::setTransform(const AffineTransform& t)
{
    state.transform = t;
    state.matrix = cairoMatrix(t, deviceHeight);
    const double d = t.determinant();
    state.drawable = std::isfinite(d) && d != 0 && std::isfinite(t.tX) && std::isfinite(t.tY);
}

void CairoContext::Impl::setStyle()
{
    cairo_t* c = cr();
    cairo_set_matrix(c, &state.matrix);
    cairo_set_operator(c, cairoOperator());
    cairo_set_antialias(c, state.cairoAntialias());
    cairo_set_tolerance(c, state.tolerance());
}

// On paper nothing can be taken away, so there a copy lies over what is there.
cairo_operator_t CairoContext::Impl::cairoOperator() const
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
void CairoContext::Impl::recoverFromError()
{
    CairoTarget& target = targets.back();
    target.cairo.reset(cairo_create(target.surface.get()));
    const auto clipTo = [&](const DeviceBox& box) {
        cairo_rectangle(cr(), box.x0, box.y0, box.width(), box.height());
        cairo_clip(cr());
    };
    for (std::size_t i = target.stackDepth; i < stack.size(); ++i) {
        clipTo(stack[i].clip);
        cairo_save(cr());
    }
    clipTo(state.clip);
}

void CairoContext::Impl::finishOperation()
{
    if (cairo_status(cr()) == CAIRO_STATUS_SUCCESS)
        return;
    assert(cairo_status(cr()) == CAIRO_STATUS_NO_MEMORY);
    recoverFromError();
}

Rect CairoContext::Impl::clipBounds() const
{
    const auto inverse = state.transform.inverted();
    if (!canDraw() || !inverse)
        return {};
    const DeviceBox& box = state.clip;
    const float top = static_cast<float>(deviceHeight - box.y0);
    const float bottom = static_cast<float>(deviceHeight - box.y1);
    const float left = static_cast<float>(box.x0), right = static_cast<float>(box.x1);
    DeviceBox user = inverseBox();
    for (const Point corner :
        { Point { left, bottom }, Point { right, bottom }, Point { left, top }, Point { right, top } }) {
        const Point p = inverse->map(corner);
        user.include(p.x, p.y);
    }
    const float x = static_cast<float>(user.x0), y = static_cast<float>(user.y0);
    return { x, y, static_cast<float>(user.x1) - x, static_cast<float>(user.y1) - y };
}

DeviceBox CairoContext::Impl::deviceBounds(std::span<const Point> points) const
{
    const cairo_matrix_t& m = state.matrix;
    DeviceBox box = inverseBox();
    for (const Point p : points)
        box.include(m.xx * p.x + m.xy * p.y + m.x0, m.yx * p.x + m.yy * p.y + m.y0);
    return box.x0 <= box.x1 ? box : DeviceBox {};
}

void CairoContext::Impl::noteInk(const DeviceBox& box)
{
    if (!isInLayer())
        return;
    // One pixel more: a filter or a smoothed edge reaches into the next.
    DeviceBox& ink = targets.back().ink;
    ink = united(ink, intersection(box.grown(1).roundedOut(), state.clip.roundedOut()));
}

bool CairoContext::Impl::lock() { return kind == Kind::Bitmap && !isInLayer() && pixels(); }

void CairoContext::Impl::unlock() { cairo_surface_mark_dirty(targets.front().surface.get()); }

std::uint8_t* CairoContext::Impl::pixels() const
{
    if (kind != Kind::Bitmap)
        return nullptr;
    cairo_surface_t* surface = targets.front().surface.get();
    cairo_surface_flush(surface);
    return cairo_image_surface_get_data(surface);
}

std::size_t CairoContext::Impl::bytesPerRow() const
{
    if (kind != Kind::Bitmap)
        return 0;
    return static_cast<std::size_t>(cairo_image_surface_get_stride(targets.front().surface.get()));
}

} // namespace vxr
