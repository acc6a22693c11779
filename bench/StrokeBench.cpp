#include <bench/Compare.h>

#include <vxr/platform/graphics/path/Path.h>

#include <cairo.h>

#include <memory>
#include <random>

namespace vxr::bench {

namespace {

constexpr float extent = 256;
constexpr double tolerance = 0.1; // device pixels, cairo's own default

Point randomPoint(std::mt19937& engine)
{
    const auto coordinate = [&] { return static_cast<float>(engine() >> 8) * 0x1p-24f * extent; };
    const float x = coordinate();
    return { x, coordinate() };
}

Path curvedPath(std::mt19937& engine, int curves)
{
    Path path;
    path.moveTo(randomPoint(engine));
    for (int i = 0; i < curves; ++i) {
        const Point control1 = randomPoint(engine), control2 = randomPoint(engine);
        path.curveTo(control1, control2, randomPoint(engine));
    }
    path.setFlatness(static_cast<float>(tolerance));
    return path;
}

std::vector<Path> curvedPaths()
{
    std::mt19937 engine(5);
    std::vector<Path> paths;
    for (int i = 0; i < 200; ++i)
        paths.push_back(curvedPath(engine, 4));
    return paths;
}

/// A mask for cairo to draw into.
class Canvas {
public:
    Canvas()
        : mSurface(
            cairo_image_surface_create(CAIRO_FORMAT_A8, int(extent), int(extent)), cairo_surface_destroy)
        , mContext(cairo_create(mSurface.get()), cairo_destroy)
    {
        cairo_set_tolerance(mContext.get(), tolerance);
    }

    cairo_t* add(const Path& path)
    {
        const Point* p = path.points().data();
        cairo_t* cr = mContext.get();
        for (PathElementKind kind : path.kinds()) {
            if (kind == PathElementKind::MoveTo)
                cairo_move_to(cr, p->x, p->y);
            else if (kind == PathElementKind::LineTo)
                cairo_line_to(cr, p->x, p->y);
            else if (kind == PathElementKind::CurveTo)
                cairo_curve_to(cr, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
            else
                cairo_close_path(cr);
            p += kind == PathElementKind::CurveTo ? 3 : kind == PathElementKind::Close ? 0 : 1;
        }
        return cr;
    }

private:
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> mSurface;
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> mContext;
};

struct Scene {
    std::vector<Path> paths = curvedPaths();
    Canvas canvas;
    LineStyle style { .width = 12, .join = LineJoin::Round };

    void stroke()
    {
        for (const Path& path : paths) {
            cairo_t* cr = canvas.add(path);
            cairo_set_line_width(cr, style.width);
            cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
            cairo_stroke(cr);
        }
    }
};

/// Making the outline is a small part of what drawing the stroke costs.
Pair outlineAgainstStroke()
{
    auto scene = std::make_shared<Scene>();
    return { [scene] {
                for (const Path& path : scene->paths)
                    path.strokedOutline(scene->style, tolerance);
            },
        [scene] { scene->stroke(); } };
}

Pair filledOutlineAgainstStroke()
{
    auto scene = std::make_shared<Scene>();
    return { [scene] {
                for (const Path& path : scene->paths)
                    cairo_fill(scene->canvas.add(*path.strokedOutline(scene->style, tolerance)));
            },
        [scene] { scene->stroke(); } };
}

Pair flatteningAgainstCairo()
{
    auto scene = std::make_shared<Scene>();
    return { [scene] {
                for (const Path& path : scene->paths)
                    path.bezierPathByFlatteningPath();
            },
        [scene] {
            for (const Path& path : scene->paths) {
                cairo_t* cr = scene->canvas.add(path);
                cairo_path_destroy(cairo_copy_path_flat(cr));
                cairo_new_path(cr);
            }
        } };
}

/// One long path against the same curves in a hundred short ones.
Pair longAgainstShort()
{
    constexpr int pieces = 100, curves = 2000;
    std::mt19937 engine(6);
    auto all = std::make_shared<Path>();
    auto parts = std::make_shared<std::vector<Path>>();
    for (int i = 0; i < pieces; ++i) {
        parts->push_back(curvedPath(engine, curves));
        all->appendPath(parts->back());
    }
    const LineStyle style { .width = 2 };
    return { [all, style] { all->strokedOutline(style, tolerance); },
        [parts, style] {
            for (const Path& part : *parts)
                part.strokedOutline(style, tolerance);
        } };
}

const int registered[] = {
    compare("STROKE/outline-to-cairo-stroke", atMost(0.25), outlineAgainstStroke),
    compare("STROKE/filled-outline-to-cairo-stroke", atMost(1.5), filledOutlineAgainstStroke),
    compare("STROKE/long-to-short-paths", atMost(1.5), longAgainstShort),
    compare("PATH/flatten-to-cairo", atMost(1.1), flatteningAgainstCairo),
};

} // namespace

} // namespace vxr::bench
