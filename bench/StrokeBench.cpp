#include <bench/Compare.h>

#include <vxr/platform/graphics/path/PathStroker.h>

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
        struct Appender {
            cairo_t* cr;
            void moveTo(Point p) { cairo_move_to(cr, p.x, p.y); }
            void lineTo(Point p) { cairo_line_to(cr, p.x, p.y); }
            void curveTo(Point a, Point b, Point p) { cairo_curve_to(cr, a.x, a.y, b.x, b.y, p.x, p.y); }
            void close() { cairo_close_path(cr); }
        };
        cairo_t* cr = mContext.get();
        path.visit(Appender { cr });
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
            const std::vector<double> dash(style.dash.begin(), style.dash.end());
            cairo_set_dash(cr, dash.data(), static_cast<int>(dash.size()), 0);
            cairo_stroke(cr);
        }
    }
};

/// Counts vertices, so that the contours are of use.
class VertexCount final : public ContourSink {
public:
    void addContour(std::span<const Vec2> vertices) override { mCount += vertices.size(); }

private:
    std::size_t mCount = 0;
};

/// What a rasteriser pays for the contours of strokes, before it fills them.
Pair contoursAgainstStroke(float width, std::vector<float> dash)
{
    auto scene = std::make_shared<Scene>();
    scene->style.width = width;
    scene->style.dash = std::move(dash);
    auto stroker = std::make_shared<PathStroker>();
    return { [scene, stroker] {
                VertexCount count;
                for (const Path& path : scene->paths)
                    stroker->stroke(path, scene->style, tolerance, count);
            },
        [scene] { scene->stroke(); } };
}

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
    compare("STROKE/contours-to-cairo-stroke", atMost(0.05), [] { return contoursAgainstStroke(12, {}); }),
    compare("STROKE/contours-of-dashes-to-cairo-stroke", atMost(0.1),
        [] {
            return contoursAgainstStroke(3, { 8, 5 });
        }),
    compare("STROKE/filled-outline-to-cairo-stroke", atMost(1.5), filledOutlineAgainstStroke),
    compare("STROKE/long-to-short-paths", atMost(1.5), longAgainstShort),
    compare("PATH/flatten-to-cairo", atMost(1.1), flatteningAgainstCairo),
};

} // namespace

} // namespace vxr::bench
