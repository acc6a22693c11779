#include <vxr/platform/graphics/CairoImpl.h>
#include <vxr/platform/graphics/Shading.h>

namespace vxr {

namespace {

bool isFinite(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

/// Coincident ends leave nothing to blend between.
bool isDrawable(const Shading& s)
{
    if (!isFinite(s.start()) || !isFinite(s.end()))
        return false;
    if (s.kind() == Shading::Kind::Axial)
        return s.start() != s.end();
    return s.startRadius() >= 0 && s.endRadius() >= 0 && std::isfinite(s.startRadius())
        && std::isfinite(s.endRadius()) && (s.start() != s.end() || s.startRadius() != s.endRadius());
}

CairoPatternPtr makeGradient(const Shading& s)
{
    const Point a = s.start(), b = s.end();
    CairoPatternPtr pattern(s.kind() == Shading::Kind::Axial
            ? cairo_pattern_create_linear(a.x, a.y, b.x, b.y)
            : cairo_pattern_create_radial(a.x, a.y, s.startRadius(), b.x, b.y, s.endRadius()));
    for (const ShadingStop& stop : s.stops()) {
        const auto& [red, green, blue, alpha] = stop.rgba;
        cairo_pattern_add_color_stop_rgba(pattern.get(), stop.position, red, green, blue, alpha);
    }
    const bool extends = s.extendsStart() || s.extendsEnd();
    cairo_pattern_set_extend(pattern.get(), extends ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE);
    return pattern;
}

cairo_pattern_t* cachedGradient(const Shading& s)
{
    auto& cache = s.backendCache();
    if (!cache)
        cache = std::shared_ptr<cairo_pattern_t>(makeGradient(s).release(), CairoRelease());
    return static_cast<cairo_pattern_t*>(cache.get());
}

/// The side of the line through `at`, square to the axis, on which `at + inwards` lies.
void appendHalfPlane(cairo_t* cr, Point at, Point inwards, double size)
{
    const double length = std::hypot(inwards.x, inwards.y);
    const double ux = inwards.x / length * size, uy = inwards.y / length * size;
    cairo_move_to(cr, at.x - uy, at.y + ux);
    cairo_line_to(cr, at.x - uy + ux, at.y + ux + uy);
    cairo_line_to(cr, at.x + uy + ux, at.y - ux + uy);
    cairo_line_to(cr, at.x + uy, at.y - ux);
    cairo_close_path(cr);
}

} // namespace

void CairoContext::Impl::drawShading(const Shading& shading)
{
    if (!canDraw() || !isDrawable(shading))
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { drawShading(shading); });
    CairoSaver saved(cr());
    setStyle();
    cairo_set_source(cr(), cachedGradient(shading));
    clipToShadingSide(shading);
    paintSource();
    noteInk(state.clip);
    finishOperation();
}

// The engine extends a blend on both sides or none; for one side alone, the other is clipped away.
void CairoContext::Impl::clipToShadingSide(const Shading& s)
{
    if (s.extendsStart() == s.extendsEnd())
        return;
    const Rect visible = clipBounds();
    const Point a = s.start(), b = s.end();
    const double size = std::hypot(visible.size.width, visible.size.height)
        + std::hypot(visible.midX() - a.x, visible.midY() - a.y)
        + std::hypot(visible.midX() - b.x, visible.midY() - b.y) + s.startRadius() + s.endRadius();
    cairo_new_path(cr());
    if (s.kind() == Shading::Kind::Axial) {
        if (s.extendsStart())
            appendHalfPlane(cr(), b, { a.x - b.x, a.y - b.y }, size);
        else
            appendHalfPlane(cr(), a, { b.x - a.x, b.y - a.y }, size);
    }
    cairo_clip(cr());
}

} // namespace vxr
