#include <bench/raster/RasterScenes.h>

#include <cairo.h>

#include <string>

namespace vxr::bench {

namespace {

template <class T> struct Destroyer;
template <> struct Destroyer<cairo_t> {
    void operator()(cairo_t* cr) const { cairo_destroy(cr); }
};
template <> struct Destroyer<cairo_surface_t> {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
template <> struct Destroyer<cairo_pattern_t> {
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
template <class T> using Handle = std::unique_ptr<T, Destroyer<T>>;

void setPath(cairo_t* cr, const Path& path)
{
    struct Appender {
        cairo_t* cr;
        void moveTo(Point p) { cairo_move_to(cr, p.x, p.y); }
        void lineTo(Point p) { cairo_line_to(cr, p.x, p.y); }
        void curveTo(Point a, Point b, Point p) { cairo_curve_to(cr, a.x, a.y, b.x, b.y, p.x, p.y); }
        void close() { cairo_close_path(cr); }
    };
    cairo_new_path(cr);
    path.visit(Appender { cr });
}

void setColor(cairo_t* cr, const Rgba& c) { cairo_set_source_rgba(cr, c[0], c[1], c[2], c[3]); }

void setStyle(cairo_t* cr, const LineStyle& style)
{
    cairo_set_line_width(cr, style.width);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    const std::vector<double> dash(style.dash.begin(), style.dash.end());
    cairo_set_dash(cr, dash.data(), int(dash.size()), 0);
}

cairo_pattern_t* patternOf(const RasterScene::Gradient& g)
{
    cairo_pattern_t* pattern = g.isRadial
        ? cairo_pattern_create_radial(g.start.x, g.start.y, 0, g.start.x, g.start.y, g.radius)
        : cairo_pattern_create_linear(g.start.x, g.start.y, g.end.x, g.end.y);
    for (std::size_t i = 0; i < g.colors.size(); ++i) {
        const Rgba& c = g.colors[i];
        cairo_pattern_add_color_stop_rgba(pattern, double(i) / 2, c[0], c[1], c[2], c[3]);
    }
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    return pattern;
}

/// cairo called by hand, with patterns and surfaces that are made once.
class CairoPage {
public:
    explicit CairoPage(SharedScene scene)
        : mScene(std::move(scene))
        , mSurface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, RasterScene::width, RasterScene::height))
        , mContext(cairo_create(mSurface.get()))
    {
        constexpr int side = RasterScene::imageSide;
        cairo_translate(mContext.get(), 0, RasterScene::height);
        cairo_scale(mContext.get(), 1, -1);
        for (const auto& gradient : mScene->gradients)
            mPatterns.emplace_back(patternOf(gradient));
        for (const RasterScene::Image& pixels : mScene->images)
            mImages.emplace_back(cairo_image_surface_create_for_data(
                reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels.data())),
                CAIRO_FORMAT_ARGB32, side, side, 4 * side));
    }

    void paint()
    {
        cairo_t* cr = mContext.get();
        for (const auto& fill : mScene->fills) {
            setColor(cr, fill.color);
            setPath(cr, fill.path);
            cairo_fill(cr);
        }
        for (const auto& stroke : mScene->strokes) {
            setColor(cr, stroke.color);
            setStyle(cr, stroke.style);
            setPath(cr, stroke.path);
            cairo_stroke(cr);
        }
        for (std::size_t i = 0; i < mPatterns.size(); ++i) {
            cairo_set_source(cr, mPatterns[i].get());
            setPath(cr, mScene->gradients[i].path);
            cairo_fill(cr);
        }
        for (const auto& picture : mScene->pictures)
            paint(picture);
    }

private:
    void paint(const RasterScene::Picture& picture)
    {
        constexpr int side = RasterScene::imageSide;
        cairo_t* cr = mContext.get();
        const AffineTransform& t = picture.place;
        const cairo_matrix_t place { t.m11, t.m12, t.m21, t.m22, t.tX, t.tY };
        cairo_save(cr);
        cairo_transform(cr, &place);
        cairo_translate(cr, 0, side);
        cairo_scale(cr, 1, -1);
        cairo_set_source_surface(cr, mImages[picture.image].get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cr),
            mScene->quality == InterpolationQuality::Low ? CAIRO_FILTER_BILINEAR : CAIRO_FILTER_GOOD);
        cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
        cairo_rectangle(cr, 0, 0, side, side);
        cairo_fill(cr);
        cairo_restore(cr);
    }

    SharedScene mScene;
    Handle<cairo_surface_t> mSurface;
    Handle<cairo_t> mContext;
    std::vector<Handle<cairo_pattern_t>> mPatterns;
    std::vector<Handle<cairo_surface_t>> mImages;
};

bool hasWideVectors()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

[[maybe_unused]] const bool registered = [] {
    for (const RasterLine& line : rasterLines())
        compare(std::string("RASTER/cairo-") + line.name,
            atMost(hasWideVectors() ? line.goal : line.goal * line.goalWithout), [&line] {
                const SharedScene scene = line.make();
                const auto page = std::make_shared<CairoPage>(scene);
                return Pair { paintWithLibrary(scene), [page] { page->paint(); } };
            });
    return true;
}();

// How time grows: the same work in one shape and in many.

Work filling(std::vector<Path> paths)
{
    return [paths = std::move(paths),
               context = BitmapContext::createBitmap(RasterScene::width, RasterScene::height)] {
        context->setFillColor(ColorValue::rgb(0.2f, 0.4f, 0.8f, 0.5f));
        for (const Path& path : paths)
            context->fillPath(path, WindingRule::NonZero);
    };
}

std::vector<Path> ovals(int columns, int rows, float side)
{
    std::vector<Path> paths;
    for (int i = 0; i < columns * rows; ++i)
        paths.push_back(
            *Path::pathWithOvalInRect({ float(i % columns) * side, float(i / columns) * side, side, side }));
    return paths;
}

/// Zigzags of as many edges each, together as high as the page.
std::vector<Path> zigzags(int count, int edges)
{
    std::vector<Path> paths;
    const float height = float(RasterScene::height) / float(count);
    for (int i = 0; i < count; ++i) {
        Path path;
        path.moveTo({ 0, height * float(i) });
        for (int edge = 1; edge <= edges; ++edge)
            path.lineTo({ edge % 2 ? 1500.0f : 20.0f, height * (float(i) + float(edge) / float(edges)) });
        path.close();
        paths.push_back(path);
    }
    return paths;
}

[[maybe_unused]] const int growth[] = {
    compare("RASTER/growth-with-area", atMost(1.1),
        [] {
            return Pair { filling(ovals(1, 1, 1200)), filling(ovals(10, 10, 120)) };
        }),
    compare("RASTER/growth-with-edges", atMost(1.3),
        [] {
            return Pair { filling(zigzags(1, 40000)), filling(zigzags(40, 1000)) };
        }),
    compare("RASTER/growth-with-overlap", atMost(1.1),
        [] {
            std::vector<Path> pile(100, ovals(1, 1, 120).front());
            return Pair { filling(std::move(pile)), filling(ovals(10, 10, 120)) };
        }),
};

} // namespace

} // namespace vxr::bench
