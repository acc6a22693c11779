#include "Compare.h"

#include <vxr/platform/graphics/BitmapContext.h>

#include <cairo.h>

#include <memory>
#include <random>
#include <vector>

namespace vxr::bench {

namespace {

constexpr int side = 800;

/// 2,000 closed paths of six curves, each about 60 pixels large, anywhere on the bitmap.
std::shared_ptr<const std::vector<Path>> curvedPaths()
{
    auto paths = std::make_shared<std::vector<Path>>();
    std::mt19937 random(7);
    const auto within
        = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); };
    for (int i = 0; i < 2000; ++i) {
        const Point center { within(40, side - 40), within(40, side - 40) };
        const auto beside = [&] { return Point { center.x + within(-30, 30), center.y + within(-30, 30) }; };
        Path path;
        path.moveTo(beside());
        for (int curve = 0; curve < 6; ++curve) {
            const Point control1 = beside(), control2 = beside();
            path.curveTo(control1, control2, beside());
        }
        path.close();
        paths->push_back(path);
    }
    return paths;
}

/// cairo called by hand on a bitmap of its own, with y up.
std::shared_ptr<cairo_t> bareCairo()
{
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
    std::shared_ptr<cairo_t> cairo(cairo_create(surface), cairo_destroy);
    cairo_surface_destroy(surface);
    cairo_translate(cairo.get(), 0, side);
    cairo_scale(cairo.get(), 1, -1);
    return cairo;
}

void append(cairo_t* cairo, const Path& path)
{
    const Point* p = path.points().data();
    for (const PathElementKind kind : path.kinds()) {
        if (kind == PathElementKind::MoveTo) {
            cairo_move_to(cairo, p->x, p->y);
            ++p;
        } else if (kind == PathElementKind::LineTo) {
            cairo_line_to(cairo, p->x, p->y);
            ++p;
        } else if (kind == PathElementKind::CurveTo) {
            cairo_curve_to(cairo, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
            p += 3;
        } else {
            cairo_close_path(cairo);
        }
    }
}

Pair fillCurves()
{
    const auto paths = curvedPaths();
    const auto context = BitmapContext::createBitmap(side, side);
    const auto cairo = bareCairo();
    return { [=] {
                for (const Path& path : *paths) {
                    context->setFillColor(ColorValue::rgb(0.2f, 0.4f, 0.8f, 0.5f));
                    context->fillPath(path, WindingRule::NonZero);
                }
            },
        [=] {
            for (const Path& path : *paths) {
                cairo_set_source_rgba(cairo.get(), 0.2, 0.4, 0.8, 0.5);
                append(cairo.get(), path);
                cairo_fill(cairo.get());
            }
        } };
}

Pair strokeCurves()
{
    const auto paths = curvedPaths();
    const auto context = BitmapContext::createBitmap(side, side);
    const auto cairo = bareCairo();
    LineStyle style;
    style.width = 2;
    return { [=] {
                for (const Path& path : *paths) {
                    context->setStrokeColor(ColorValue::rgb(0.2f, 0.4f, 0.8f, 0.5f));
                    context->strokePath(path, style);
                }
            },
        [=] {
            for (const Path& path : *paths) {
                cairo_set_source_rgba(cairo.get(), 0.2, 0.4, 0.8, 0.5);
                cairo_set_line_width(cairo.get(), 2);
                append(cairo.get(), path);
                cairo_stroke(cairo.get());
            }
        } };
}

/// A layer with a shadow around an object of 200 x 200 pixels.
Work shadowLayerOn(int width, int height)
{
    return [context = BitmapContext::createBitmap(width, height)] {
        StateSaver saved(*context);
        context->setShadow({ 4, -4 }, 9, ColorValue::gray(0, 0.5f));
        context->beginTransparencyLayer();
        context->setFillColor(ColorValue::rgb(0.8f, 0.2f, 0.1f));
        context->fillPath(*Path::pathWithOvalInRect({ 100, 100, 200, 200 }), WindingRule::NonZero);
        context->endTransparencyLayer();
    };
}

const int registered[] = {
    compare("CONTEXT/fill-curves", atMost(1.10), fillCurves),
    compare("CONTEXT/stroke-curves", atMost(1.10), strokeCurves),
    compare("CONTEXT/shadow-layer-proportional", atMost(1.3),
        [] {
            return Pair { shadowLayerOn(1600, 1200), shadowLayerOn(400, 400) };
        }),
};

} // namespace

} // namespace vxr::bench
