#include <bench/Compare.h>

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadingRep.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Shading.h>
#include <vxr/protocols/VXRPaintedShape.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

// Shapes filled with gradients by the library, beside the same outlines filled by hand with the engine's
// own gradient patterns of the same colours.

namespace {

using namespace vxr;
using bench::atMost;
using bench::Pair;

constexpr int side = 1200;
constexpr std::size_t shapeCount = 500;

/// A shape with its outline in canvas coordinates, as a painter sees it.
class Shape final : public VXRPaintedShape {
public:
    Shape(std::shared_ptr<Path> outline, const AffineTransform& placed, float rotation)
        : mPath(std::move(outline))
        , mTransformed(mPath->transformedBy(placed))
        , mTransform(placed)
        , mAngle(rotation)
    {
    }

    VXRCanvasRole* canvas() const override { return nullptr; }
    std::shared_ptr<Path> path() const override { return mPath; }
    std::shared_ptr<Path> transformedPath() const override { return mTransformed->copy(); }
    AffineTransform transform() const override { return mTransform; }
    Size naturalSize() const override { return mPath->bounds().size; }
    Point center() const override
    {
        const Rect bounds = mTransformed->bounds();
        return { bounds.midX(), bounds.midY() };
    }
    float angle() const override { return mAngle; }
    Rect alignmentBounds() const override { return mTransformed->bounds(); }
    bool wantsInteriorStroke() const override { return false; }
    void clip() const override { mTransformed->addClip(); }

private:
    std::shared_ptr<Path> mPath, mTransformed;
    AffineTransform mTransform;
    float mAngle;
};

struct Item {
    std::shared_ptr<Shape> shape;
    std::shared_ptr<VXRGradient> gradient;
    cairo_pattern_t* pattern = nullptr; ///< the same gradient in the shape's own frame
};

struct Page {
    std::vector<Item> items;
    std::shared_ptr<BitmapContext> bitmap = BitmapContext::createBitmap(side, side);
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);

    Page() = default;
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;
    ~Page()
    {
        for (const Item& item : items)
            cairo_pattern_destroy(item.pattern);
        cairo_surface_destroy(surface);
    }
};

std::shared_ptr<Path> roundedRect(float width, float height, float radius)
{
    const float k = radius * 0.44771525f;
    auto path = Path::path();
    path->moveTo({ radius, 0 });
    path->lineTo({ width - radius, 0 });
    path->curveTo({ width - k, 0 }, { width, k }, { width, radius });
    path->lineTo({ width, height - radius });
    path->curveTo({ width, height - k }, { width - k, height }, { width - radius, height });
    path->lineTo({ radius, height });
    path->curveTo({ k, height }, { 0, height - k }, { 0, height - radius });
    path->lineTo({ 0, radius });
    path->curveTo({ 0, k }, { k, 0 }, { radius, 0 });
    path->close();
    return path;
}

void addStops(cairo_pattern_t* pattern, const VXRGradient& gradient)
{
    for (const auto& stop : gradient.gradientStops()) {
        const auto& color = *stop->color();
        cairo_pattern_add_color_stop_rgba(pattern, stop->fraction(), color.redComponent(),
            color.greenComponent(), color.blueComponent(), color.alphaComponent());
    }
}

void addPath(cairo_t* cr, const Path& path)
{
    struct Adder {
        cairo_t* cr;
        void moveTo(Point p) { cairo_move_to(cr, p.x, p.y); }
        void lineTo(Point p) { cairo_line_to(cr, p.x, p.y); }
        void curveTo(Point a, Point b, Point p) { cairo_curve_to(cr, a.x, a.y, b.x, b.y, p.x, p.y); }
        void close() { cairo_close_path(cr); }
    };
    path.visit(Adder { cr });
}

void paintByLibrary(const Page& page)
{
    const CurrentContextScope scope(*page.bitmap, true, false);
    for (const Item& item : page.items)
        item.gradient->paintShape(*item.shape);
}

void paintByHand(const Page& page)
{
    cairo_t* cr = cairo_create(page.surface);
    cairo_translate(cr, 0, side);
    cairo_scale(cr, 1, -1);
    for (const Item& item : page.items) {
        const AffineTransform t = item.shape->transform();
        const cairo_matrix_t matrix { t.m11, t.m12, t.m21, t.m22, t.tX, t.tY };
        cairo_save(cr);
        cairo_transform(cr, &matrix);
        addPath(cr, *item.shape->path());
        cairo_set_source(cr, item.pattern);
        cairo_fill(cr);
        cairo_restore(cr);
    }
    cairo_destroy(cr);
}

class Random {
public:
    float operator()(float least, float most)
    {
        return least + (most - least) * static_cast<float>(mEngine() % 100000) / 100000;
    }
    std::shared_ptr<Color> color()
    {
        return Color::colorWithCalibratedRGB((*this)(0, 1), (*this)(0, 1), (*this)(0, 1));
    }

private:
    std::mt19937 mEngine { 7 };
};

std::shared_ptr<Page> angledPage()
{
    auto page = std::make_shared<Page>();
    Random random;
    std::vector<std::pair<std::shared_ptr<Color>, std::shared_ptr<Color>>> pairs;
    for (int i = 0; i < 20; ++i)
        pairs.emplace_back(random.color(), random.color());
    for (std::size_t i = 0; i < shapeCount; ++i) {
        const float width = random(40, 160), height = random(30, 120), turn = i % 2 ? 0 : random(-3, 3);
        const auto placed = AffineTransform {}
                                .translate(random(80, side - 80), random(80, side - 80))
                                .rotate(turn)
                                .translate(-width / 2, -height / 2);
        const auto& [start, end] = pairs[i % pairs.size()];
        const auto gradient = VXRAngleGradient::linearGradientWithStartColorEndColor(start, end);
        gradient->setGradientAngle(random(-3, 3));
        const float a = -gradient->gradientAngle();
        const float length = gradient->_bestGradientLengthForRectAtAngle({ 0, 0, width, height }, a);
        const double dx = length * std::cos(a), dy = length * std::sin(a);
        cairo_pattern_t* pattern
            = cairo_pattern_create_linear(width / 2 - dx, height / 2 - dy, width / 2 + dx, height / 2 + dy);
        addStops(pattern, *gradient);
        page->items.push_back(
            { std::make_shared<Shape>(roundedRect(width, height, 10), placed, turn), gradient, pattern });
    }
    return page;
}

std::shared_ptr<Page> radialPage()
{
    auto page = std::make_shared<Page>();
    Random random;
    for (std::size_t i = 0; i < shapeCount; ++i) {
        const float diameter = random(40, 140), radius = diameter / 2;
        const auto placed
            = AffineTransform::makeTranslation(random(0, side - diameter), random(0, side - diameter));
        const auto gradient
            = VXRTransformGradient::radialGradientWithStartColorEndColor(random.color(), random.color());
        if (i % 2)
            gradient->insertGradientStop(
                VXRGradientStop::gradientStopWithColorFraction(random.color(), 0.4f));
        gradient->setStartPoint({ radius, radius });
        gradient->setEndPoint({ diameter, radius });
        cairo_pattern_t* pattern = cairo_pattern_create_radial(radius, radius, 0, radius, radius, radius);
        addStops(pattern, *gradient);
        page->items.push_back(
            { std::make_shared<Shape>(Path::pathWithOvalInRect({ 0, 0, diameter, diameter }), placed, 0.0f),
                gradient, pattern });
    }
    return page;
}

Pair pairOf(const std::shared_ptr<Page>& page)
{
    return { [page] { paintByLibrary(*page); }, [page] { paintByHand(*page); } };
}

/// Floyd and Steinberg pixel by pixel, over a ramp of 16 bits.
void ditherPixelByPixel(std::vector<std::uint16_t>& values, std::vector<std::uint8_t>& output)
{
    constexpr int width = VXRShadingRep::width, height = VXRShadingRep::height, channels = 4;
    constexpr std::ptrdiff_t row = std::ptrdiff_t { width } * channels;
    const auto add = [](std::uint16_t& value, int error) {
        value = static_cast<std::uint16_t>(std::min(value + error, 65535));
    };
    std::uint16_t* value = values.data();
    std::uint8_t* out = output.data();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int channel = 0; channel < channels; ++channel, ++value, ++out) {
                *out = static_cast<std::uint8_t>(*value / 257);
                const int error = *value - *out * 257;
                const int right = error * 7 / 16, belowLeft = error * 3 / 16, below = error * 5 / 16;
                if (x < width - 1)
                    add(value[channels], right);
                if (y == height - 1)
                    continue;
                if (x > 0)
                    add(value[row - channels], belowLeft);
                add(value[row], below);
                if (x < width - 1)
                    add(value[row + channels], error - right - belowLeft - below);
            }
}

Pair rampBuild()
{
    struct Buffers {
        VXRShadingRep ramp;
        std::vector<std::uint16_t> first, values;
        std::vector<std::uint8_t> output;
    };
    const auto buffers = std::make_shared<Buffers>();
    buffers->output.resize(VXRShadingRep::bytes);
    for (int y = 0; y < VXRShadingRep::height; ++y)
        for (int i = 0; i < VXRShadingRep::width * 4; ++i)
            buffers->first.push_back(static_cast<std::uint16_t>(65535 - i * 31));
    return { [buffers] { buffers->ramp.update(); },
        [buffers] {
            buffers->values = buffers->first;
            ditherPixelByPixel(buffers->values, buffers->output);
        } };
}

const int registered[] = {
    bench::compare("SCALE/ramp-build-against-a-plain-loop", atMost(0.1), rampBuild),
    bench::compare(
        "GRADIENT/angle-ramps-500-rounded-rects", atMost(1.5), [] { return pairOf(angledPage()); }),
    bench::compare("GRADIENT/radial-transform-500-circles", atMost(1.5), [] { return pairOf(radialPage()); }),
};

} // namespace
