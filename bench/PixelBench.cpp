#include <bench/Compare.h>

#include <vxr/platform/graphics/pixels/GradientSpans.h>
#include <vxr/platform/graphics/pixels/ImageSampler.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <cairo.h>
#include <pixman.h>

#include <cmath>
#include <memory>
#include <vector>

// The loops over pixels against those of pixman, and gradients and images against cairo painting them.

namespace vxr::bench {

namespace {

struct PixmanUnref {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using PixmanImage = std::unique_ptr<pixman_image_t, PixmanUnref>;

/// A page, half transparent pixels of its size and a mask.
struct Spans {
    int width, height;
    std::vector<std::uint32_t> page, source;
    std::vector<std::uint8_t> mask;
    PixmanImage pageImage, sourceImage, maskImage, color, fade;

    Spans(int w, int h)
        : width(w)
        , height(h)
        , page(std::size_t(w) * std::size_t(h), 0xffffffff)
        , source(page.size(), 0x80402010)
        , mask(page.size(), 100)
        , pageImage(pixman_image_create_bits(PIXMAN_x8r8g8b8, w, h, page.data(), w * 4))
        , sourceImage(pixman_image_create_bits(PIXMAN_a8r8g8b8, w, h, source.data(), w * 4))
        , maskImage(
              pixman_image_create_bits(PIXMAN_a8, w, h, reinterpret_cast<std::uint32_t*>(mask.data()), w))
        , color(solid({ 0x4040, 0x2020, 0x1010, 0x8080 }))
        , fade(solid({ 0, 0, 0, 0x8080 }))
    {
    }

    static PixmanImage solid(const pixman_color_t& c)
    {
        return PixmanImage(pixman_image_create_solid_fill(&c));
    }

    void byPixman(const PixmanImage& from, pixman_image_t* through) const
    {
        pixman_image_composite32(
            PIXMAN_OP_OVER, from.get(), through, pageImage.get(), 0, 0, 0, 0, 0, 0, width, height);
    }

    template <class Row> void byRows(Row row)
    {
        for (int y = 0; y < height; ++y) {
            const std::size_t at = std::size_t(y) * std::size_t(width);
            row(spanKernels().over(), page.data() + at, std::size_t(width), at);
        }
    }
};

Pair overPair(int width, int height, std::uint8_t fade)
{
    const auto spans = std::make_shared<Spans>(width, height);
    return { [spans, fade] {
                spans->byRows(
                    [&](const SpanOperation& over, std::uint32_t* to, std::size_t count, std::size_t at) {
                        over.pixels(to, count, spans->source.data() + at, fade);
                    });
            },
        [spans, fade] { spans->byPixman(spans->sourceImage, fade == 255 ? nullptr : spans->fade.get()); } };
}

Pair colorPair(int width, int height, bool masked)
{
    const auto spans = std::make_shared<Spans>(width, height);
    return { [spans, masked] {
                spans->byRows(
                    [&](const SpanOperation& over, std::uint32_t* to, std::size_t count, std::size_t at) {
                        if (masked)
                            over.colorMask(to, count, 0x80402010, spans->mask.data() + at);
                        else
                            over.color(to, count, 0x80402010, 255);
                    });
            },
        [spans, masked] { spans->byPixman(spans->color, masked ? spans->maskImage.get() : nullptr); } };
}

constexpr int side = 600;

/// A bitmap that cairo paints a pattern onto, and the same pixels for the library's loops.
struct Canvas {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
    cairo_t* cr = cairo_create(surface);
    cairo_pattern_t* pattern = nullptr;
    std::vector<std::uint32_t> picture = std::vector<std::uint32_t>(1024 * 1024);
    cairo_surface_t* image = nullptr;
    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(side * side),
                               row = std::vector<std::uint32_t>(side);

    Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas()
    {
        cairo_pattern_destroy(pattern);
        if (image)
            cairo_surface_destroy(image);
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }

    void paint() const
    {
        cairo_set_source(cr, pattern);
        cairo_paint(cr);
    }
    void blend(int y, const std::uint32_t* colors)
    {
        spanKernels().over().pixels(pixels.data() + std::size_t(y) * side, side, colors, 255);
    }
};

Pair gradientPair(bool radial)
{
    const auto canvas = std::make_shared<Canvas>();
    canvas->pattern = radial ? cairo_pattern_create_radial(300, 300, 0, 300, 300, 280)
                             : cairo_pattern_create_linear(10, 10, 500, 400);
    cairo_pattern_add_color_stop_rgba(canvas->pattern, 0, 1, 0, 0, 1);
    cairo_pattern_add_color_stop_rgba(canvas->pattern, 1, 0, 0, 1, 0.5);
    cairo_pattern_set_extend(canvas->pattern, CAIRO_EXTEND_PAD);
    const std::vector<GradientStop> stops { { 0, { 1, 0, 0, 1 } }, { 1, { 0, 0, 1, 0.5f } } };
    const auto table = std::make_shared<const GradientTable>(stops, true, true);
    const GradientSpans spans = radial ? GradientSpans::radial(table, { 300, 300 }, 0, { 300, 300 }, 280, {})
                                       : GradientSpans::axial(table, { 10, 10 }, { 500, 400 }, {});
    return { [canvas, spans] {
                for (int y = 0; y < side; ++y) {
                    spans.fill(0, y, side, canvas->row.data());
                    canvas->blend(y, canvas->row.data());
                }
            },
        [canvas] { canvas->paint(); } };
}

Pair imagePair(double scale, double angle, Sampling sampling, cairo_filter_t filter)
{
    const auto canvas = std::make_shared<Canvas>();
    std::uint32_t value = 1;
    for (auto& pixel : canvas->picture)
        pixel = 0xff000000u | (value = value * 1664525u + 1013904223u) >> 8;
    canvas->image = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(canvas->picture.data()), CAIRO_FORMAT_ARGB32, 1024, 1024, 4096);
    canvas->pattern = cairo_pattern_create_for_surface(canvas->image);
    cairo_matrix_t m;
    cairo_matrix_init_translate(&m, 512, 512);
    cairo_matrix_rotate(&m, angle);
    cairo_matrix_scale(&m, 1 / scale, 1 / scale);
    cairo_matrix_translate(&m, -side / 2.0, -side / 2.0);
    cairo_pattern_set_matrix(canvas->pattern, &m);
    cairo_pattern_set_filter(canvas->pattern, filter);
    cairo_pattern_set_extend(canvas->pattern, CAIRO_EXTEND_PAD);
    const ImageSampler sampler(
        { canvas->picture.data(), 1024, 1024, 1024 }, { m.xx, m.xy, m.x0, m.yx, m.yy, m.y0 }, sampling);
    return { [canvas, sampler] {
                for (int y = 0; y < side; ++y)
                    canvas->blend(y, sampler.fetch(0, y, side, canvas->row.data()));
            },
        [canvas] { canvas->paint(); } };
}

const int registered[] = {
    compare("PIXELS/over-page", atLeast(1.5), [] { return overPair(1600, 1200, 255); }),
    compare("PIXELS/over-256x256", atLeast(1.5), [] { return overPair(256, 256, 255); }),
    compare("PIXELS/faded-over-page", atLeast(1.5), [] { return overPair(1600, 1200, 128); }),
    compare("PIXELS/color-over-256x256", atLeast(1.5), [] { return colorPair(256, 256, false); }),
    compare("PIXELS/color-through-mask-256x256", atLeast(1.5), [] { return colorPair(256, 256, true); }),
    compare("PIXELS/linear-gradient", atMost(0.15), [] { return gradientPair(false); }),
    compare("PIXELS/radial-gradient", atMost(0.15), [] { return gradientPair(true); }),
    compare("PIXELS/image-turned-bilinear", atMost(0.6),
        [] { return imagePair(1.2, 0.4, Sampling::Linear, CAIRO_FILTER_BILINEAR); }),
    compare("PIXELS/image-reduced-to-0.7", atMost(0.25),
        [] { return imagePair(0.7, 0, Sampling::Best, CAIRO_FILTER_GOOD); }),
    compare("PIXELS/image-reduced-to-0.3", atMost(0.2),
        [] { return imagePair(0.3, 0, Sampling::Best, CAIRO_FILTER_GOOD); }),
    compare("PIXELS/image-reduced-to-0.1", atMost(0.12),
        [] { return imagePair(0.1, 0, Sampling::Best, CAIRO_FILTER_GOOD); }),
};

} // namespace

} // namespace vxr::bench
