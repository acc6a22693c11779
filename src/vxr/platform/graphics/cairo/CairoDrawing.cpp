#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/cairo/CairoEngine.h>
#include <vxr/platform/graphics/cairo/CairoPathClip.h>
#include <vxr/platform/graphics/path/PointMagnitude.h>

#include <cmath>

namespace vxr {

namespace {

/// cairo keeps 24 bits before the binary point and wraps beyond; this leaves room for its own sums.
constexpr double engineRange = 1e6;

void appendElements(cairo_t* cr, const Path& path)
{
    struct Appender {
        cairo_t* cr;
        void moveTo(Point p) { cairo_move_to(cr, p.x, p.y); }
        void lineTo(Point p) { cairo_line_to(cr, p.x, p.y); }
        void curveTo(Point a, Point b, Point end) { cairo_curve_to(cr, a.x, a.y, b.x, b.y, end.x, end.y); }
        void close() { cairo_close_path(cr); }
    };
    path.visit(Appender { cr });
}

std::array<Point, 4> cornersOf(const Rect& r)
{
    return { r.origin, { r.maxX(), r.minY() }, { r.maxX(), r.maxY() }, { r.minX(), r.maxY() } };
}

Path pathOf(const Rect& r)
{
    Path path;
    path.appendRect(r);
    return path;
}

cairo_fill_rule_t cairoRule(WindingRule rule)
{
    return rule == WindingRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING;
}

/// Whether some length is on and none is impossible; cairo stops working on any other.
bool isDrawableDash(const LineStyle& style)
{
    double sum = 0;
    for (const float length : style.dash) {
        if (!(length >= 0) || !std::isfinite(length))
            return false;
        sum += length;
    }
    return sum > 0;
}

/// Whether cairo can hold all points with `reach` around them.
bool fitsEngine(std::span<const Point> points, const cairo_matrix_t& m, double reach = 0)
{
    const double magnitude = largestMagnitude(points);
    const double x = (std::abs(m.xx) + std::abs(m.xy)) * magnitude + std::abs(m.x0);
    const double y = (std::abs(m.yx) + std::abs(m.yy)) * magnitude + std::abs(m.y0);
    return x + reach < engineRange && y + reach < engineRange;
}

bool isUpright(const cairo_matrix_t& m) { return (m.xy == 0 && m.yx == 0) || (m.xx == 0 && m.yy == 0); }

/// A larger limit makes no difference that could be seen: at 500 the corner is a quarter of a degree.
float usableMiterLimit(const LineStyle& style)
{
    constexpr float largest = 500;
    return style.miterLimit >= 1 ? std::min(style.miterLimit, largest) : 1;
}

} // namespace

void CairoEngine::appendArea(const Path& path)
{
    cairo_new_path(cr());
    if (fitsEngine(path.points(), matrix())) {
        appendElements(cr(), path);
        return;
    }
    cairo_identity_matrix(cr());
    appendClippedArea(cr(), path, matrix(), state.clip.grown(2), tolerance());
}

bool CairoEngine::setSource(const Paint& paint, const DeviceBox& area)
{
    const auto& [red, green, blue, alpha] = paint.rgba;
    if (paint.pattern)
        return setPatternSource(*paint.pattern, area);
    cairo_set_source_rgba(cr(), red, green, blue, static_cast<double>(alpha) * state.alpha);
    return true;
}

void CairoEngine::setLineStyle(const LineStyle& style)
{
    static constexpr cairo_line_cap_t caps[]
        = { CAIRO_LINE_CAP_BUTT, CAIRO_LINE_CAP_ROUND, CAIRO_LINE_CAP_SQUARE };
    static constexpr cairo_line_join_t joins[]
        = { CAIRO_LINE_JOIN_MITER, CAIRO_LINE_JOIN_ROUND, CAIRO_LINE_JOIN_BEVEL };
    cairo_t* c = cr();
    cairo_set_line_width(c, style.width);
    cairo_set_line_cap(c, caps[static_cast<int>(style.cap)]);
    cairo_set_line_join(c, joins[static_cast<int>(style.join)]);
    cairo_set_miter_limit(c, usableMiterLimit(style));
    if (style.dash.empty() || !isDrawableDash(style)) {
        cairo_set_dash(c, nullptr, 0, 0);
        return;
    }
    const std::vector<double> lengths(style.dash.begin(), style.dash.end());
    const double phase = std::isfinite(style.dashPhase) ? style.dashPhase : 0;
    cairo_set_dash(c, lengths.data(), static_cast<int>(lengths.size()), phase);
}

// Half the width times what a miter or a square cap multiplies it by, in the transform's largest scale.
double CairoEngine::strokeReach(const LineStyle& style) const
{
    const double corner
        = style.join == LineJoin::Miter ? std::max<double>(usableMiterLimit(style), M_SQRT2) : M_SQRT2;
    const cairo_matrix_t m = matrix();
    return style.width * 0.5 * corner * std::sqrt(m.xx * m.xx + m.xy * m.xy + m.yx * m.yx + m.yy * m.yy);
}

void CairoEngine::clipToPath(const Path& path, WindingRule rule)
{
    if (!canDraw()) {
        state.clip = {};
        return;
    }
    setStyle();
    appendArea(path);
    cairo_set_fill_rule(cr(), cairoRule(rule));
    cairo_clip(cr());
    state.clip = intersection(state.clip, deviceBounds(path.points()));
    state.clipIsPixels = false;
    finishOperation();
}

void CairoEngine::clipToRect(const Rect& rect)
{
    const auto corners = cornersOf(rect);
    if (!canDraw() || !fitsEngine(corners, matrix()))
        return clipToPath(pathOf(rect), WindingRule::NonZero);
    setStyle();
    cairo_new_path(cr());
    cairo_rectangle(cr(), rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_clip(cr());
    const DeviceBox box = deviceBounds(corners);
    state.clip = intersection(state.clip, box);
    state.clipIsPixels = state.clipIsPixels && box == box.roundedOut() && isUpright(matrix());
    finishOperation();
}

void CairoEngine::clipToPixelsOf(const Image& image, const cairo_matrix_t& toDevice)
{
    const Rect area(0, 0, static_cast<float>(image.width()), static_cast<float>(image.height()));
    cairo_new_path(cr());
    if (fitsEngine(cornersOf(area), toDevice)) {
        cairo_rectangle(cr(), 0, 0, image.width(), image.height());
    } else {
        cairo_identity_matrix(cr());
        appendClippedArea(cr(), pathOf(area), toDevice, state.clip.grown(2), tolerance());
    }
    cairo_clip(cr());
}

void CairoEngine::fillPath(const Path& path, WindingRule rule)
{
    if (!canDraw())
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { fillPath(path, rule); });
    if (state.fill.pattern && drawPatternWithAlpha(state.fill, [&] { fillPath(path, rule); }))
        return;
    const bool wantsBounds = isInLayer() || state.fill.pattern;
    const DeviceBox bounds = wantsBounds ? deviceBounds(path.points()) : DeviceBox {};
    setStyle();
    if (!setSource(state.fill, bounds))
        return;
    appendArea(path);
    cairo_set_fill_rule(cr(), cairoRule(rule));
    cairo_fill(cr());
    noteInk(bounds);
    finishOperation();
}

void CairoEngine::fillRect(const Rect& rect)
{
    if (!canDraw())
        return;
    const auto corners = cornersOf(rect);
    if (state.castsShadow() || state.fill.pattern || !fitsEngine(corners, matrix()))
        return fillPath(pathOf(rect), WindingRule::NonZero);
    setStyle();
    setSource(state.fill, {});
    cairo_new_path(cr());
    cairo_rectangle(cr(), rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_fill(cr());
    noteInk(deviceBounds(corners));
    finishOperation();
}

void CairoEngine::strokePath(const Path& path, const LineStyle& style)
{
    if (!canDraw() || !(style.width > 0) || !std::isfinite(style.width))
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { strokePath(path, style); });
    if (state.stroke.pattern && drawPatternWithAlpha(state.stroke, [&] { strokePath(path, style); }))
        return;
    const double reach = strokeReach(style);
    const bool wantsBounds = isInLayer() || state.stroke.pattern;
    const DeviceBox bounds = wantsBounds ? deviceBounds(path.points()).grown(reach) : DeviceBox {};
    setStyle();
    if (!setSource(state.stroke, bounds))
        return;
    if (!fitsEngine(path.points(), matrix(), reach)) {
        strokeHuge(path, style, reach);
    } else {
        setLineStyle(style);
        cairo_new_path(cr());
        appendElements(cr(), path);
        cairo_stroke(cr());
    }
    noteInk(bounds);
    finishOperation();
}

// Only what can be seen of the centre line is stroked, and of a pen too large for that the outline.
void CairoEngine::strokeHuge(const Path& path, const LineStyle& style, double reach)
{
    if (reach < engineRange / 4) {
        setLineStyle(style);
        strokeClippedLine(cr(), path, matrix(), state.clip.grown(reach + 2), tolerance());
        return;
    }
    fillOutlineOf(path, style);
}

void CairoEngine::fillOutlineOf(const Path& path, const LineStyle& style)
{
    const double scale = std::sqrt(std::abs(state.transform.determinant()));
    appendArea(*path.strokedOutline(style, static_cast<float>(tolerance() / scale)));
    cairo_set_fill_rule(cr(), CAIRO_FILL_RULE_WINDING);
    cairo_fill(cr());
}

void CairoEngine::clearRect(const Rect& rect)
{
    if (!canDraw() || onPaper)
        return;
    setStyle();
    appendArea(pathOf(rect));
    cairo_set_operator(cr(), CAIRO_OPERATOR_CLEAR);
    cairo_fill(cr());
    finishOperation();
}

void CairoEngine::paintSource()
{
    if (state.alpha >= 1)
        cairo_paint(cr());
    else
        cairo_paint_with_alpha(cr(), state.alpha);
}

} // namespace vxr
