#include <vxr/platform/graphics/Shading.h>
#include <vxr/platform/graphics/cairo/CairoEngine.h>

namespace vxr {

namespace {

constexpr double farthestExtension = 64; ///< lengths of a blend; positions lose precision with it

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

/// The stretch of a blend between the parameters `from` <= 0 and `to` >= 1, with the colours of its ends
/// beyond 0 and 1, and everything times `alpha`.
struct Stretch {
    double from = 0, to = 1;
    double alpha = 1;
};

cairo_extend_t extendOf(const Shading& s)
{
    return s.extendsStart() || s.extendsEnd() ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE;
}

CairoPatternPtr makeGradient(const Shading& s, cairo_extend_t extend, const Stretch& stretch = {})
{
    const auto& [from, to, alpha] = stretch;
    const Point a = s.start(), b = s.end();
    const auto x = [&](double t) { return a.x + (b.x - static_cast<double>(a.x)) * t; };
    const auto y = [&](double t) { return a.y + (b.y - static_cast<double>(a.y)) * t; };
    const auto radius = [&](double t) {
        return std::max(0.0, s.startRadius() + (s.endRadius() - static_cast<double>(s.startRadius())) * t);
    };
    CairoPatternPtr pattern(s.kind() == Shading::Kind::Axial
            ? cairo_pattern_create_linear(x(from), y(from), x(to), y(to))
            : cairo_pattern_create_radial(x(from), y(from), radius(from), x(to), y(to), radius(to)));
    const auto add = [&, from = from, to = to, alpha = alpha](double t, const std::array<float, 4>& rgba) {
        cairo_pattern_add_color_stop_rgba(
            pattern.get(), (t - from) / (to - from), rgba[0], rgba[1], rgba[2], rgba[3] * alpha);
    };
    // Before its first and behind its last stop a blend that is not extended may be transparent.
    if (from < 0)
        add(from, s.stops().front().rgba);
    for (const ShadingStop& stop : s.stops())
        add(stop.position, stop.rgba);
    if (to > 1)
        add(to, s.stops().back().rgba);
    cairo_pattern_set_extend(pattern.get(), extend);
    return pattern;
}

cairo_pattern_t* cachedGradient(const Shading& s)
{
    auto cache = s.engineCaches().find<cairo_pattern_t>();
    if (!cache) {
        cache = std::shared_ptr<cairo_pattern_t>(makeGradient(s, extendOf(s)).release(), CairoRelease());
        s.engineCaches().store(cache);
    }
    return cache.get();
}

/// Neither circle lies within the other: the extended blend is a cone or a strip.
bool isCone(const Shading& s)
{
    const double distance = std::hypot(s.end().x - s.start().x, s.end().y - s.start().y);
    return s.kind() == Shading::Kind::Radial && distance > std::abs(s.endRadius() - s.startRadius());
}

/// The blend of a cone with one side drawn out until it has left `visible` behind or closes.
CairoPatternPtr drawnOutCone(const Shading& s, const Rect& visible, double alpha)
{
    const bool atEnd = s.extendsEnd();
    const Point from = atEnd ? s.end() : s.start();
    const double step = std::hypot(s.end().x - s.start().x, s.end().y - s.start().y);
    const double growth = atEnd ? s.endRadius() - s.startRadius() : s.startRadius() - s.endRadius();
    const double radius = atEnd ? s.endRadius() : s.startRadius();
    const double away = std::hypot(visible.midX() - from.x, visible.midY() - from.y)
        + std::hypot(visible.size.width, visible.size.height);
    double extension = std::min((away + radius) / (step - std::max(0.0, growth)), farthestExtension);
    if (growth < 0)
        extension = std::min(extension, radius / -growth);
    return makeGradient(s, CAIRO_EXTEND_NONE, { atEnd ? 0 : -extension, atEnd ? 1 + extension : 1, alpha });
}

/// The side of the line through `at`, square to the axis, towards which `inwards` points.
Path halfPlane(Point at, Point inwards, double size)
{
    const double factor = size / std::hypot(inwards.x, inwards.y);
    const auto ux = static_cast<float>(inwards.x * factor), uy = static_cast<float>(inwards.y * factor);
    Path path;
    path.moveTo({ at.x - uy, at.y + ux });
    path.lineTo({ at.x - uy + ux, at.y + ux + uy });
    path.lineTo({ at.x + uy + ux, at.y - ux + uy });
    path.lineTo({ at.x + uy, at.y - ux });
    path.close();
    return path;
}

/// The part of `visible` that a blend extended on one side may paint: an even-odd area. `size` reaches
/// from anywhere to anywhere.
Path extendedSide(const Shading& s, const Rect& visible, double size)
{
    const Point a = s.start(), b = s.end();
    if (s.kind() == Shading::Kind::Axial)
        return s.extendsStart() ? halfPlane(b, { a.x - b.x, a.y - b.y }, size)
                                : halfPlane(a, { b.x - a.x, b.y - a.y }, size);
    // The circle that ends the blend on the side that is not extended.
    const Point center = s.extendsStart() ? b : a;
    const float radius = s.extendsStart() ? s.endRadius() : s.startRadius();
    const float other = s.extendsStart() ? s.startRadius() : s.endRadius();
    Path path;
    path.appendOvalInRect({ center.x - radius, center.y - radius, 2 * radius, 2 * radius });
    if (other > radius)
        path.appendRect(insetRect(visible, -static_cast<float>(size), -static_cast<float>(size)));
    return path;
}

} // namespace

void CairoEngine::drawShading(const Shading& shading)
{
    if (!canDraw() || !isDrawable(shading))
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { drawShading(shading); });
    const bool oneSided = shading.extendsStart() != shading.extendsEnd();
    const bool drawsOut = oneSided && isCone(shading);
    // On paper the engine forgets the alpha that a gradient with stops of its own alpha is painted with.
    const double alpha = onPaper ? state.alpha : 1;
    CairoSaver saved(cr());
    setStyle();
    CairoPatternPtr own;
    if (drawsOut)
        own = drawnOutCone(shading, clipBounds(), alpha);
    else if (alpha < 1)
        own = makeGradient(shading, extendOf(shading), { .alpha = alpha });
    cairo_set_source(cr(), own ? own.get() : cachedGradient(shading));
    if (oneSided && !drawsOut)
        clipToExtendedSide(shading);
    if (onPaper)
        cairo_paint(cr());
    else
        paintSource();
    noteInk(state.clip);
    finishOperation();
}

// The engine extends a blend on both sides or none; for one side alone, the other is clipped away.
void CairoEngine::clipToExtendedSide(const Shading& s)
{
    const Rect visible = clipBounds();
    const double size = std::hypot(visible.size.width, visible.size.height)
        + std::hypot(visible.midX() - s.start().x, visible.midY() - s.start().y)
        + std::hypot(visible.midX() - s.end().x, visible.midY() - s.end().y) + s.startRadius()
        + s.endRadius();
    appendArea(extendedSide(s, visible, size));
    cairo_set_fill_rule(cr(), CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(cr());
}

} // namespace vxr
