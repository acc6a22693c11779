#include "Scene.h"

#include <vxr/geometry/VXRPolygon.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/textwrap/VXRTextWrap.h>

#include <cmath>

namespace vxr::demo {

namespace {

constexpr float lineHeight = 9;

std::shared_ptr<Path> star(Point center, float outer, float inner, int points)
{
    auto path = Path::path();
    for (int i = 0; i < 2 * points; ++i) {
        const float angle = float(i) * float(M_PI) / float(points) - float(M_PI) / 2;
        const float radius = i % 2 ? inner : outer;
        const Point p { center.x + radius * std::cos(angle), center.y + radius * std::sin(angle) };
        i == 0 ? path->moveTo(p) : path->lineTo(p);
    }
    path->close();
    return path;
}

/// A drop that leans to the right.
std::shared_ptr<Path> drop(Point center, float size)
{
    const auto at = [&](float x, float y) { return Point { center.x + size * x, center.y + size * y }; };
    auto path = Path::path();
    path->moveTo(at(0.5f, -1));
    path->curveTo(at(0.6f, -0.4f), at(1.1f, 0), at(0.9f, 0.6f));
    path->curveTo(at(0.7f, 1.2f), at(-0.6f, 1.1f), at(-0.8f, 0.5f));
    path->curveTo(at(-1, -0.2f), at(0.2f, -0.3f), at(0.5f, -1));
    path->close();
    return path;
}

/// Words as bars, of widths that repeat irregularly.
void drawWords(Context& context, const Rect& piece, unsigned& word)
{
    float x = piece.minX() + 1;
    for (;;) {
        word = word * 1103515245u + 12345u;
        const float width = 5 + float((word >> 16) % 17);
        if (x + width > piece.maxX() - 1)
            return;
        context.fillRect({ x, piece.minY() + 2, width, piece.size.height - 4 });
        x += width + 3;
    }
}

/// Fills `column` with lines that wrap at `path`; where a line has no room, skips as far as the hint.
void drawColumn(Context& context, const Rect& column, const std::shared_ptr<const Path>& path, int type)
{
    unsigned word = 1;
    for (float y = column.minY(); y + lineHeight <= column.maxY();) {
        int skip = 1;
        const auto pieces = VXRTextWrap::wrappedSubrectsForRectPathTypeSkipHint(
            { column.minX(), y, column.size.width, lineHeight }, path, type, skip);
        for (const Rect& piece : pieces)
            drawWords(context, piece, word);
        y += pieces.empty() ? float(skip) : lineHeight;
    }
}

void drawTextWrap(Context& context)
{
    constexpr int inside = 0, around = 1;
    auto obstacles = star({ 110, 90 }, 70, 30, 5);
    obstacles->appendPath(*drop({ 90, 235 }, 60));
    context.setFillColor(ColorValue::rgb(0.95f, 0.85f, 0.62f));
    context.fillPath(*obstacles, WindingRule::EvenOdd);
    // A headline across the whole column goes to the first height that is free for it; the text makes room.
    const Rect column(20, 15, 180, 300);
    const float y = VXRTextWrap::unobstructedSpanForPathStartingSpanContainerBounds(
        *obstacles, { 20, 60, 180, 14 }, column);
    const auto taken = obstacles->copy();
    taken->appendRect({ 20, y, 180, 14 });
    context.setFillColor(ColorValue::gray(0.25f));
    drawColumn(context, column, taken, around);
    context.setFillColor(ColorValue::rgb(0.75f, 0.15f, 0.15f));
    context.fillRect({ 21, y + 3, 140, 8 });

    for (const auto& shape : { star({ 310, 90 }, 80, 40, 6), drop({ 305, 250 }, 80) }) {
        context.setFillColor(ColorValue::rgb(0.80f, 0.90f, 0.97f));
        context.fillPath(*shape, WindingRule::EvenOdd);
        context.setFillColor(ColorValue::rgb(0.10f, 0.25f, 0.45f));
        drawColumn(context, { 220, 5, 180, 350 }, shape, inside);
    }
}

void drawAreaOperations(Context& context)
{
    const auto a = star({ 65, 70 }, 60, 28, 5), b = drop({ 95, 90 }, 50);
    const VXRPolygonOwner first(polygonFromBezier(*a)), second(polygonFromBezier(*b));
    float x = 0;
    for (const gpc_op operation : { GPC_UNION, GPC_INT, GPC_DIFF, GPC_XOR }) {
        const VXRPolygonOwner result(emptyPolygon());
        gpc_polygon_clip(operation, first.get(), second.get(), result.get());
        auto area = bezierFromPolygon(result.get());
        const StateSaver saved(context);
        context.translate(x, 0);
        context.setFillColor(ColorValue::rgb(0.35f, 0.60f, 0.38f));
        context.fillPath(*area, WindingRule::EvenOdd);
        context.setStrokeColor(ColorValue::gray(0.1f));
        LineStyle style;
        style.width = 1;
        context.strokePath(*area, style);
        context.setStrokeColor(ColorValue::gray(0.6f));
        style.width = 0.5f;
        style.dash = { 2, 2 };
        context.strokePath(*a, style);
        context.strokePath(*b, style);
        x += 155;
    }
}

} // namespace

std::vector<Scene> textWrapScenes()
{
    return {
        { "text-wrap",
            "Lines flow around a star and a drop, a headline takes the first free height, lines fill two "
            "shapes.",
            { 420, 360 }, drawTextWrap, {} },
        { "area-operations", "Union, intersection, difference and exclusive-or of a star and a drop.",
            { 630, 160 }, drawAreaOperations, {} },
    };
}

} // namespace vxr::demo
