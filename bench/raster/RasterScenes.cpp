#include <bench/raster/RasterScenes.h>

#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/Shading.h>

#include <cmath>
#include <numbers>
#include <random>

namespace vxr::bench {

namespace {

constexpr float pageWidth = RasterScene::width, pageHeight = RasterScene::height;
constexpr float fullTurn = 2 * std::numbers::pi_v<float>;

class Random {
public:
    explicit Random(unsigned seed)
        : mEngine(seed)
    {
    }
    float within(float low, float high) { return low + (high - low) * float(mEngine() >> 8) * 0x1p-24f; }
    /// As many small numbers as large ones.
    float spread(float low, float high) { return low * std::pow(high / low, within(0, 1)); }
    Point onPage(float margin)
    {
        const float x = within(margin, pageWidth - margin);
        return { x, within(margin, pageHeight - margin) };
    }
    Rgba color(float alpha)
    {
        const float red = within(0, 1), green = within(0, 1);
        return { red, green, within(0, 1), alpha };
    }

private:
    std::mt19937 mEngine;
};

Point around(Point center, float angle, float radius)
{
    return { center.x + std::cos(angle) * radius, center.y + std::sin(angle) * radius };
}

/// A closed outline of five to nine curves.
Path blob(Random& random, Point center, float radius)
{
    const int curves = int(random.within(5, 10));
    const float first = random.within(0, fullTurn), step = fullTurn / float(curves);
    Path path;
    path.moveTo(around(center, first, radius * random.within(0.6f, 1)));
    const Point start = path.currentPoint();
    for (int i = 0; i < curves; ++i) {
        const float angle = first + step * float(i);
        const Point control1 = around(center, angle + step / 3, radius * random.within(0.6f, 1.2f));
        const Point control2 = around(center, angle + step * 2 / 3, radius * random.within(0.6f, 1.2f));
        path.curveTo(control1, control2,
            i == curves - 1 ? start : around(center, angle + step, radius * random.within(0.6f, 1)));
    }
    path.close();
    return path;
}

SharedScene fills(float alpha)
{
    Random random(1);
    auto scene = std::make_shared<RasterScene>();
    for (int i = 0; i < 2000; ++i) {
        const float radius = random.spread(4, 90);
        const Point center = random.onPage(radius);
        scene->fills.push_back({ blob(random, center, radius), random.color(alpha) });
    }
    return scene;
}

SharedScene strokes(bool areDashed)
{
    Random random(2);
    auto scene = std::make_shared<RasterScene>();
    for (int i = 0; i < 2000; ++i) {
        const Point center = random.onPage(100);
        const auto beside = [&] {
            const float x = random.within(-100, 100);
            return Point { center.x + x, center.y + random.within(-100, 100) };
        };
        Path path;
        path.moveTo(beside());
        for (int curve = 0; curve < 2; ++curve) {
            const Point control1 = beside(), control2 = beside();
            path.curveTo(control1, control2, beside());
        }
        LineStyle style { .width = random.within(1, 8), .cap = LineCap::Round, .join = LineJoin::Round };
        if (areDashed)
            style.dash = { style.width * 3, style.width * 2 };
        scene->strokes.push_back({ path, style, random.color(1) });
    }
    return scene;
}

Path roundedRectangle(const Rect& r, float radius)
{
    const float handle = radius * 0.4477f, x0 = r.minX(), y0 = r.minY(), x1 = r.maxX(), y1 = r.maxY();
    Path path;
    path.moveTo({ x0 + radius, y0 });
    path.lineTo({ x1 - radius, y0 });
    path.curveTo({ x1 - handle, y0 }, { x1, y0 + handle }, { x1, y0 + radius });
    path.lineTo({ x1, y1 - radius });
    path.curveTo({ x1, y1 - handle }, { x1 - handle, y1 }, { x1 - radius, y1 });
    path.lineTo({ x0 + radius, y1 });
    path.curveTo({ x0 + handle, y1 }, { x0, y1 - handle }, { x0, y1 - radius });
    path.lineTo({ x0, y0 + radius });
    path.curveTo({ x0, y0 + handle }, { x0 + handle, y0 }, { x0 + radius, y0 });
    path.close();
    return path;
}

SharedScene gradients(bool areRadial)
{
    Random random(3);
    auto scene = std::make_shared<RasterScene>();
    for (int i = 0; i < 500; ++i) {
        const float width = random.within(40, 160), height = areRadial ? width : random.within(40, 160);
        const Point center = random.onPage(80);
        const Rect box { center.x - width / 2, center.y - height / 2, width, height };
        RasterScene::Gradient g {};
        g.isRadial = areRadial;
        g.path = areRadial ? *Path::pathWithOvalInRect(box) : roundedRectangle(box, 12);
        const float angle = random.within(0, fullTurn);
        g.start = areRadial ? center : around(center, angle, width / 2);
        g.end = areRadial ? center : around(center, angle + fullTurn / 2, width / 2);
        g.radius = width / 2;
        for (Rgba& color : g.colors)
            color = random.color(i % 3 ? 1 : 0.7f);
        scene->gradients.push_back(g);
    }
    return scene;
}

/// Waves of colour under some noise.
RasterScene::Image image(Random& random)
{
    constexpr int side = RasterScene::imageSide;
    RasterScene::Image pixels;
    const float across = random.within(0.02f, 0.1f), down = random.within(0.02f, 0.1f);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            std::uint32_t pixel = 0xff000000u;
            for (int channel = 0; channel < 3; ++channel) {
                const float wave = std::sin(float(x) * across + float(y) * down + float(channel));
                pixel |= std::uint32_t(127 + 100 * wave + random.within(0, 20)) << 8 * channel;
            }
            pixels.push_back(pixel);
        }
    return pixels;
}

std::shared_ptr<RasterScene> pageOfImages(Random& random, InterpolationQuality quality)
{
    auto scene = std::make_shared<RasterScene>();
    for (int i = 0; i < 20; ++i)
        scene->images.push_back(image(random));
    scene->quality = quality;
    return scene;
}

/// `angle` turns at most; 0 for upright pictures.
SharedScene pictures(InterpolationQuality quality, float angle, float leastScale, float mostScale)
{
    constexpr float middle = RasterScene::imageSide / 2.0f;
    Random random(4);
    auto scene = pageOfImages(random, quality);
    for (std::size_t i = 0; i < 200; ++i) {
        const float scale = random.within(leastScale, mostScale);
        const Point center = random.onPage(128);
        AffineTransform place = AffineTransform::makeTranslation(-middle, -middle);
        place = concat(place, AffineTransform::makeScale(scale, scale));
        place = concat(place, AffineTransform::makeRotation(random.within(0, angle)));
        place = concat(place, AffineTransform::makeTranslation(center.x, center.y));
        scene->pictures.push_back({ i % scene->images.size(), place });
    }
    return scene;
}

SharedScene picturesAtWholePixels()
{
    Random random(5);
    auto scene = pageOfImages(random, InterpolationQuality::Low);
    for (std::size_t i = 0; i < 400; ++i) {
        const Point corner = random.onPage(128);
        scene->pictures.push_back({ i % scene->images.size(),
            AffineTransform::makeTranslation(std::floor(corner.x) - 128, std::floor(corner.y) - 128) });
    }
    return scene;
}

SharedScene polygon(bool hasLongEdges)
{
    constexpr int vertices = 20000;
    Random random(6);
    auto scene = std::make_shared<RasterScene>();
    Path path;
    for (int i = 0; i < vertices; ++i) {
        const Point p = hasLongEdges ? random.onPage(10)
                                     : around({ pageWidth / 2, pageHeight / 2 },
                                         fullTurn * float(i) / vertices, random.within(540, 580));
        if (i == 0)
            path.moveTo(p);
        else
            path.lineTo(p);
    }
    path.close();
    scene->fills.push_back({ path, random.color(1) });
    return scene;
}

constexpr auto low = InterpolationQuality::Low, high = InterpolationQuality::High;

const RasterLine lines[] = {
    { "curved-fills", 0.23, 1.3, [] { return fills(1); } },
    { "half-transparent-fills", 0.18, 1.3, [] { return fills(0.5f); } },
    { "round-strokes", 0.20, 1.3, [] { return strokes(false); } },
    { "dashed-strokes", 0.22, 1.3, [] { return strokes(true); } },
    { "linear-gradients", 0.12, 1.3, [] { return gradients(false); } },
    { "radial-gradients", 0.10, 1.3, [] { return gradients(true); } },
    { "turned-pictures", 0.38, 2, [] { return pictures(low, fullTurn, 0.8f, 1.6f); } },
    { "pictures-at-whole-pixels", 0.36, 2, picturesAtWholePixels },
    { "upright-pictures", 1, 2, [] { return pictures(low, 0, 0.8f, 1.6f); } },
    { "upright-pictures-enlarged-at-best", 1, 2, [] { return pictures(high, 0, 1.1f, 1.6f); } },
    { "turned-pictures-enlarged-at-best", 1, 2, [] { return pictures(high, fullTurn, 1.1f, 1.6f); } },
    { "pictures-reduced-at-best", 1, 2, [] { return pictures(high, fullTurn, 0.3f, 0.7f); } },
    { "polygon-of-short-edges", 0.15, 1.3, [] { return polygon(false); } },
    { "polygon-of-long-edges", 0.05, 1.3, [] { return polygon(true); } },
};

ColorValue colorOf(const Rgba& c) { return ColorValue::rgb(c[0], c[1], c[2], c[3]); }

std::shared_ptr<const Shading> shadingOf(const RasterScene::Gradient& g)
{
    using Colors = std::array<Rgba, 3>;
    const auto function = std::make_shared<ShadingFunction>(
        new Colors(g.colors),
        [](void* info, const float* input, float* output) {
            const Colors& colors = *static_cast<const Colors*>(info);
            const std::size_t half = *input < 0.5f ? 0 : 1;
            const float t = *input * 2 - float(half);
            for (std::size_t i = 0; i < 4; ++i)
                output[i] = colors[half][i] * (1 - t) + colors[half + 1][i] * t;
        },
        [](void* info) { delete static_cast<Colors*>(info); });
    constexpr float hints[] = { 0.5f };
    if (g.isRadial)
        return Shading::createRadial(nullptr, g.start, 0, g.start, g.radius, function, true, true, hints);
    return Shading::createAxial(nullptr, g.start, g.end, function, true, true, hints);
}

} // namespace

std::span<const RasterLine> rasterLines() { return lines; }

Work paintWithLibrary(const SharedScene& scene)
{
    struct Page {
        std::shared_ptr<BitmapContext> context
            = BitmapContext::createBitmap(RasterScene::width, RasterScene::height);
        std::vector<std::shared_ptr<const Shading>> shadings;
        std::vector<std::shared_ptr<const Image>> images;
    };
    constexpr int side = RasterScene::imageSide;
    const auto page = std::make_shared<Page>();
    for (const auto& gradient : scene->gradients)
        page->shadings.push_back(shadingOf(gradient));
    for (const RasterScene::Image& pixels : scene->images)
        page->images.push_back(Image::createWithCopy(
            ImageLayout::nativeARGB(side, side, 4 * side), pixels.data(), 4 * pixels.size()));
    return [scene, page] {
        Context& context = *page->context;
        for (const auto& fill : scene->fills) {
            context.setFillColor(colorOf(fill.color));
            context.fillPath(fill.path, WindingRule::NonZero);
        }
        for (const auto& stroke : scene->strokes) {
            context.setStrokeColor(colorOf(stroke.color));
            context.strokePath(stroke.path, stroke.style);
        }
        for (std::size_t i = 0; i < scene->gradients.size(); ++i) {
            StateSaver saved(context);
            context.clipToPath(scene->gradients[i].path, WindingRule::NonZero);
            context.drawShading(*page->shadings[i]);
        }
        context.setInterpolationQuality(scene->quality);
        for (const auto& picture : scene->pictures) {
            StateSaver saved(context);
            context.concatTransform(picture.place);
            context.drawImage({ 0, 0, side, side }, *page->images[picture.image]);
        }
    };
}

} // namespace vxr::bench
