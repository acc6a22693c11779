#include <bench/Compare.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>

#include <cmath>
#include <malloc.h>
#include <memory>
#include <vector>

// What the model costs beside the drawing itself.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::Pair;

constexpr int count = 1000;
constexpr int columns = 40;
constexpr float cell = 25;

/// A star of ten points, 20 across.
std::shared_ptr<Path> star()
{
    auto path = Path::path();
    path->reserve(11);
    for (int i = 0; i < 10; ++i) {
        const float angle = static_cast<float>(i) * 0.62831853f, radius = i % 2 ? 4.0f : 10.0f;
        const Point p { radius * std::cos(angle), radius * std::sin(angle) };
        i == 0 ? path->moveTo(p) : path->lineTo(p);
    }
    path->close();
    return path;
}

std::shared_ptr<VXRShape> placedStar(int i)
{
    auto shape = VXRShape::shapeWithBezierPath(star());
    shape->offsetTo(
        { cell * static_cast<float>(i % columns) + 3, cell * static_cast<float>(i / columns) + 3 });
    return shape;
}

struct Scene {
    std::shared_ptr<BitmapContext> context = BitmapContext::createBitmap(1000, 625);
    std::vector<std::shared_ptr<VXRShape>> shapes;
    std::vector<std::shared_ptr<Path>> outlines; ///< of the shapes, where they are drawn
    std::vector<ColorValue> fills;
    ColorValue stroke = VXRCGColorWithNSColor(*Color::blackColor());
    LineStyle style;
};

std::shared_ptr<Scene> starScene()
{
    auto scene = std::make_shared<Scene>();
    for (int i = 0; i < count; ++i) {
        auto shape = placedStar(i);
        const auto fill = Color::colorWithCalibratedRGB(static_cast<float>(i) / count, 0.5f, 0.2f);
        shape->setFill(fill);
        scene->fills.push_back(VXRCGColorWithNSColor(*fill));
        scene->outlines.push_back(shape->transformedPath());
        scene->shapes.push_back(std::move(shape));
    }
    Path styled;
    scene->shapes[0]->stroke()->applyToBezierPathInsideStroke(styled, false);
    scene->style = styled.lineStyle();
    return scene;
}

Pair directDrawing()
{
    const auto scene = starScene();
    return {
        [scene] {
            const CurrentContextScope scope(*scene->context, true, false);
            for (const auto& shape : scene->shapes)
                shape->renderLayeredIntoContext(*scene->context);
        },
        [scene] {
            Context& context = *scene->context;
            for (std::size_t i = 0; i < scene->outlines.size(); ++i) {
                const Path& outline = *scene->outlines[i];
                context.setFillColor(scene->fills[i]);
                context.fillPath(outline, outline.windingRule());
                context.setStrokeColor(scene->stroke);
                context.strokePath(outline, scene->style);
            }
        },
    };
}

double nanosecondsOfBounds(bool withShadow)
{
    const auto scene = starScene();
    for (const auto& shape : scene->shapes) {
        if (withShadow)
            shape->setShadow(
                VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(30, 5, 3, 1, Color::blackColor()));
        shape->erasableBounds();
    }
    float sum = 0;
    const double all = vxr::bench::nanosecondsPerCall([&] {
        for (const auto& shape : scene->shapes)
            sum += shape->erasableBounds().size.width;
    });
    // The sum is used, so that the bounds are asked for.
    return std::isnan(sum) ? NAN : all / count;
}

double bytesPerShape()
{
    std::vector<std::shared_ptr<VXRShape>> shapes;
    shapes.reserve(count);
    placedStar(0);
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < count; ++i)
        shapes.push_back(placedStar(i));
    return static_cast<double>(mallinfo2().uordblks - before) / count;
}

const int registered[] = {
    vxr::bench::compare("MODEL/direct-drawing", atMost(1.10), directDrawing),
    vxr::bench::measure("MODEL/erasable-bounds-ns", atMost(60), [] { return nanosecondsOfBounds(false); }),
    vxr::bench::measure(
        "MODEL/erasable-bounds-with-shadow-ns", atMost(60), [] { return nanosecondsOfBounds(true); }),
    vxr::bench::measure("MODEL/bytes-per-shape", atMost(1024), bytesPerShape),
};

} // namespace
