#include <apps/import/pict/PictShapes.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace vxr::importing {
namespace {

/// An arc of the oval in the rectangle, joined to the current point. Angles as for wedges.
void addArc(cairo_t* context, const PictRect& rect, double start, double sweep)
{
    const auto radians = [](double degrees) { return (degrees - 90) * std::numbers::pi / 180; };
    cairo_save(context);
    cairo_translate(context, (rect.left + rect.right) / 2.0, (rect.top + rect.bottom) / 2.0);
    cairo_scale(context, rect.width() / 2.0, rect.height() / 2.0);
    (sweep < 0 ? cairo_arc_negative : cairo_arc)(context, 0, 0, 1, radians(start), radians(start + sweep));
    cairo_restore(context);
}

/// Twice the area of the triangle, positive when `c` lies to the right of the way from `a` to `b` as seen.
long turn(PictPoint a, PictPoint b, PictPoint c)
{
    return long(b.x - a.x) * (c.y - a.y) - long(b.y - a.y) * (c.x - a.x);
}

} // namespace

void addRect(cairo_t* context, const PictRect& rect)
{
    if (!rect.isEmpty())
        cairo_rectangle(context, rect.left, rect.top, rect.width(), rect.height());
}

void addOval(cairo_t* context, const PictRect& rect)
{
    if (rect.isEmpty())
        return;
    cairo_new_sub_path(context);
    addArc(context, rect, 0, 360);
    cairo_close_path(context);
}

void addRoundRect(cairo_t* context, const PictRect& rect, PictPoint ovalSize)
{
    const int width = std::min(ovalSize.x, rect.width()), height = std::min(ovalSize.y, rect.height());
    if (rect.isEmpty() || width <= 0 || height <= 0)
        return addRect(context, rect);
    const auto corner = [&](int left, int top, double start) {
        addArc(context, { left, top, left + width, top + height }, start, 90);
    };
    cairo_new_sub_path(context);
    corner(rect.right - width, rect.top, 0);
    corner(rect.right - width, rect.bottom - height, 90);
    corner(rect.left, rect.bottom - height, 180);
    corner(rect.left, rect.top, 270);
    cairo_close_path(context);
}

void addWedge(cairo_t* context, const PictRect& rect, int startAngle, int arcAngle)
{
    if (rect.isEmpty() || arcAngle == 0)
        return;
    if (std::abs(arcAngle) >= 360)
        return addOval(context, rect);
    cairo_move_to(context, (rect.left + rect.right) / 2.0, (rect.top + rect.bottom) / 2.0);
    addArc(context, rect, startAngle, arcAngle);
    cairo_close_path(context);
}

void addArcFrame(cairo_t* context, const PictRect& rect, int startAngle, int arcAngle, PictPoint pen)
{
    const PictRect inner = insetByPen(rect, pen);
    if (inner.isEmpty())
        return addWedge(context, rect, startAngle, arcAngle);
    if (rect.isEmpty() || arcAngle == 0)
        return;
    const double sweep = std::clamp(arcAngle, -360, 360);
    cairo_new_sub_path(context);
    addArc(context, rect, startAngle, sweep);
    addArc(context, inner, startAngle + sweep, -sweep);
    cairo_close_path(context);
}

void addPolygon(cairo_t* context, std::span<const PictPoint> points)
{
    if (points.empty())
        return;
    cairo_new_sub_path(context);
    for (const PictPoint& point : points)
        cairo_line_to(context, point.x, point.y);
    cairo_close_path(context);
}

void addLine(cairo_t* context, PictPoint from, PictPoint to, PictPoint pen)
{
    if (pen.x <= 0 || pen.y <= 0)
        return;
    std::array<PictPoint, 8> corners;
    std::size_t count = 0;
    for (const PictPoint at : { from, to }) {
        for (const PictPoint d : { PictPoint { 0, 0 }, { pen.x, 0 }, { pen.x, pen.y }, { 0, pen.y } })
            corners[count++] = { at.x + d.x, at.y + d.y };
    }
    std::sort(corners.begin(), corners.end(),
        [](PictPoint a, PictPoint b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
    // The convex hull, one side from left to right and the other back.
    std::array<PictPoint, 18> hull;
    std::size_t size = 0;
    const auto add = [&](PictPoint p, std::size_t floor) {
        while (size >= floor + 2 && turn(hull[size - 2], hull[size - 1], p) <= 0)
            --size;
        hull[size++] = p;
    };
    for (const PictPoint& p : corners)
        add(p, 0);
    const std::size_t lower = size - 1;
    for (std::size_t i = corners.size() - 1; i-- > 0;)
        add(corners[i], lower);
    addPolygon(context, std::span(hull).first(size - 1));
}

PictRect insetByPen(const PictRect& rect, PictPoint pen)
{
    return { rect.left + pen.x, rect.top + pen.y, rect.right - pen.x, rect.bottom - pen.y };
}

} // namespace vxr::importing
