#include <bench/raster/RasterScenes.h>

#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_conv_transform.h>
#include <agg_gradient_lut.h>
#include <agg_image_accessors.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_base.h>
#include <agg_renderer_scanline.h>
#include <agg_scanline_u.h>
#include <agg_span_allocator.h>
#include <agg_span_gradient.h>
#include <agg_span_image_filter_rgba.h>
#include <agg_span_interpolator_linear.h>

#include <string>

namespace vxr::bench {

namespace {

using Format = agg::pixfmt_bgra32_pre;
using Curves = agg::conv_curve<agg::path_storage>;

agg::rgba8 colorOf(const Rgba& c)
{
    return agg::rgba8(agg::rgba(double(c[0]), double(c[1]), double(c[2]), double(c[3]))).premultiply();
}

/// In rows from the top.
void setPath(agg::path_storage& storage, const Path& path)
{
    struct Appender {
        agg::path_storage& to;
        static double y(Point p) { return RasterScene::height - double(p.y); }
        void moveTo(Point p) { to.move_to(double(p.x), y(p)); }
        void lineTo(Point p) { to.line_to(double(p.x), y(p)); }
        void curveTo(Point a, Point b, Point p)
        {
            to.curve4(double(a.x), y(a), double(b.x), y(b), double(p.x), y(p));
        }
        void close() { to.close_polygon(); }
    };
    storage.remove_all();
    path.visit(Appender { storage });
}

/// AGG's painter with scanline rasteriser, span generators and tables that are made once.
class AggPage {
public:
    explicit AggPage(SharedScene scene)
        : mScene(std::move(scene))
        , mPixels(std::size_t { 4 } * RasterScene::width * RasterScene::height)
        , mBuffer(mPixels.data(), RasterScene::width, RasterScene::height, 4 * RasterScene::width)
        , mFormat(mBuffer)
        , mBase(mFormat)
    {
        mRasterizer.clip_box(0, 0, RasterScene::width, RasterScene::height);
        for (const auto& gradient : mScene->gradients) {
            auto& table = mTables.emplace_back();
            for (std::size_t i = 0; i < 3; ++i)
                table.add_color(double(i) / 2, colorOf(gradient.colors[i]));
            table.build_lut();
        }
    }

    void paint()
    {
        for (const auto& fill : mScene->fills) {
            setPath(mPath, fill.path);
            Curves curves(mPath);
            mRasterizer.add_path(curves);
            agg::render_scanlines_aa_solid(mRasterizer, mScanline, mBase, colorOf(fill.color));
        }
        for (const auto& stroke : mScene->strokes)
            paint(stroke);
        for (std::size_t i = 0; i < mTables.size(); ++i)
            paint(mScene->gradients[i], mTables[i]);
        for (const auto& picture : mScene->pictures)
            paint(picture);
    }

private:
    using Table = agg::gradient_lut<agg::color_interpolator<agg::rgba8>, 256>;
    using Interpolator = agg::span_interpolator_linear<>;

    template <class Source> void strokeOf(Source& source, const RasterScene::Stroke& stroke)
    {
        agg::conv_stroke<Source> outline(source);
        outline.width(double(stroke.style.width));
        outline.line_cap(agg::round_cap);
        outline.line_join(agg::round_join);
        mRasterizer.add_path(outline);
    }

    void paint(const RasterScene::Stroke& stroke)
    {
        setPath(mPath, stroke.path);
        Curves curves(mPath);
        const auto& dash = stroke.style.dash;
        if (dash.empty()) {
            strokeOf(curves, stroke);
        } else {
            agg::conv_dash<Curves> dashes(curves);
            dashes.add_dash(double(dash[0]), double(dash[1]));
            strokeOf(dashes, stroke);
        }
        agg::render_scanlines_aa_solid(mRasterizer, mScanline, mBase, colorOf(stroke.color));
    }

    template <class Generator> void paintSpans(Generator& generator)
    {
        agg::render_scanlines_aa(mRasterizer, mScanline, mBase, mSpans, generator);
    }

    void paint(const RasterScene::Gradient& gradient, Table& table)
    {
        setPath(mPath, gradient.path);
        Curves curves(mPath);
        mRasterizer.add_path(curves);
        const double x = double(gradient.start.x), y = RasterScene::height - double(gradient.start.y);
        const double dx = double(gradient.end.x) - x, dy = RasterScene::height - double(gradient.end.y) - y;
        agg::trans_affine toPage;
        if (!gradient.isRadial)
            toPage *= agg::trans_affine_rotation(std::atan2(dy, dx));
        toPage *= agg::trans_affine_translation(x, y);
        toPage.invert();
        Interpolator interpolator(toPage);
        if (gradient.isRadial) {
            agg::gradient_radial shape;
            agg::span_gradient<agg::rgba8, Interpolator, agg::gradient_radial, Table> spans(
                interpolator, shape, table, 0, double(gradient.radius));
            paintSpans(spans);
        } else {
            agg::gradient_x shape;
            agg::span_gradient<agg::rgba8, Interpolator, agg::gradient_x, Table> spans(
                interpolator, shape, table, 0, std::hypot(dx, dy));
            paintSpans(spans);
        }
    }

    void paint(const RasterScene::Picture& picture)
    {
        constexpr int side = RasterScene::imageSide;
        const AffineTransform& t = picture.place;
        agg::trans_affine toPage(1, 0, 0, -1, 0, side);
        toPage *= agg::trans_affine(
            double(t.m11), double(t.m12), double(t.m21), double(t.m22), double(t.tX), double(t.tY));
        toPage *= agg::trans_affine(1, 0, 0, -1, 0, RasterScene::height);

        mPath.remove_all();
        mPath.move_to(0, 0);
        mPath.line_to(side, 0);
        mPath.line_to(side, side);
        mPath.line_to(0, side);
        mPath.close_polygon();
        agg::conv_transform<agg::path_storage> outline(mPath, toPage);
        mRasterizer.add_path(outline);

        auto& pixels = const_cast<RasterScene::Image&>(mScene->images[picture.image]);
        agg::rendering_buffer buffer(reinterpret_cast<agg::int8u*>(pixels.data()), side, side, 4 * side);
        Format format(buffer);
        agg::image_accessor_clone<Format> accessor(format);
        toPage.invert();
        Interpolator interpolator(toPage);
        if (mScene->quality == InterpolationQuality::Low) {
            agg::span_image_filter_rgba_bilinear<decltype(accessor), Interpolator> spans(
                accessor, interpolator);
            paintSpans(spans);
        } else {
            agg::span_image_resample_rgba_affine<decltype(accessor)> spans(accessor, interpolator, filter());
            paintSpans(spans);
        }
    }

    static agg::image_filter_lut& filter()
    {
        static agg::image_filter<agg::image_filter_mitchell> mitchell;
        return mitchell;
    }

    SharedScene mScene;
    std::vector<agg::int8u> mPixels;
    agg::rendering_buffer mBuffer;
    Format mFormat;
    agg::renderer_base<Format> mBase;
    agg::rasterizer_scanline_aa<> mRasterizer;
    agg::scanline_u8 mScanline;
    agg::span_allocator<agg::rgba8> mSpans;
    agg::path_storage mPath;
    std::vector<Table> mTables;
};

[[maybe_unused]] const bool registered = [] {
    for (const RasterLine& line : rasterLines())
        compare(std::string("RASTER/agg-") + line.name, atMost(1), [&line] {
            const SharedScene scene = line.make();
            const auto page = std::make_shared<AggPage>(scene);
            return Pair { paintWithLibrary(scene), [page] { page->paint(); } };
        });
    return true;
}();

} // namespace

} // namespace vxr::bench
