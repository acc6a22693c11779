#include <bench/scale/ScalePage.h>

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/geometry/Color.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace vxr::bench {

namespace {

class Random {
public:
    float operator()(float least, float most)
    {
        return least + (most - least) * float(mEngine() % 100000) / 100000;
    }

private:
    std::mt19937 mEngine { 29 };
};

/// A closed outline of eight curves around the frame's middle.
std::shared_ptr<Path> blob(const Rect& frame, Random& random)
{
    constexpr int curves = 8;
    const Point middle { frame.midX(), frame.midY() };
    std::array<float, curves> reach;
    for (float& each : reach)
        each = random(0.6f, 1);
    const auto at = [&](float turn, float r) {
        const float angle = turn * 2 * std::numbers::pi_v<float> / curves;
        return Point { middle.x + std::cos(angle) * r * frame.size.width / 2,
            middle.y + std::sin(angle) * r * frame.size.height / 2 };
    };
    auto path = Path::path();
    path->moveTo(at(0, reach[0]));
    for (std::size_t i = 0; i < curves; ++i) {
        const float from = reach[i], to = reach[(i + 1) % curves];
        path->curveTo(at(float(i) + 0.33f, from), at(float(i) + 0.67f, to), at(float(i) + 1, to));
    }
    path->close();
    return path;
}

std::shared_ptr<Path> polyline(const Rect& frame, Random& random)
{
    auto path = Path::path();
    const int points = 4 + int(random(0, 5));
    for (int i = 0; i < points; ++i) {
        const Point p { random(frame.minX(), frame.maxX()), random(frame.minY(), frame.maxY()) };
        i == 0 ? path->moveTo(p) : path->lineTo(p);
    }
    return path;
}

ScaleObject::Kind kindOf(int index)
{
    using enum ScaleObject::Kind;
    const int place = index % 20;
    return place < 8 ? Blob : place < 13 ? Polyline : place < 18 ? Gradient : Ellipse;
}

} // namespace

Size scalePageSize(int count)
{
    const float side = std::max(1.0f, std::sqrt(float(count) / 1000));
    return { scaleWindow.width * side, scaleWindow.height * side };
}

std::vector<ScaleObject> scaleObjects(int count, Size page)
{
    Random random;
    std::vector<ScaleObject> objects;
    objects.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const float wide = random(16, 72), high = random(16, 72);
        ScaleObject object { kindOf(i), nullptr,
            { random(0, page.width - wide), random(0, page.height - high), wide, high },
            { random(0, 1), random(0, 1), random(0, 1), i % 10 < 3 ? 0.5f : 1 },
            { random(0, 1), random(0, 1), random(0, 1) }, random(0.5f, 4) };
        switch (object.kind) {
        case ScaleObject::Kind::Blob:
            object.path = blob(object.frame, random);
            break;
        case ScaleObject::Kind::Polyline:
            object.path = polyline(object.frame, random);
            break;
        case ScaleObject::Kind::Gradient:
            object.path = Path::pathWithRect(object.frame);
            object.strokeWidth = 0;
            break;
        case ScaleObject::Kind::Ellipse:
            object.path = Path::pathWithOvalInRect(object.frame);
            break;
        }
        objects.push_back(std::move(object));
    }
    return objects;
}

std::shared_ptr<VXRShape> shapeOf(const ScaleObject& object)
{
    const auto& [red, green, blue, alpha] = object.fill;
    const auto fill = Color::colorWithCalibratedRGB(red, green, blue, alpha);
    const auto line = Color::colorWithCalibratedRGB(object.line[0], object.line[1], object.line[2]);
    auto shape = VXRShape::shapeWithBezierPath(object.path->copy());
    if (object.kind == ScaleObject::Kind::Gradient)
        shape->setFill(VXRAngleGradient::linearGradientWithStartColorEndColor(fill, line));
    else
        shape->setFill(object.kind == ScaleObject::Kind::Polyline ? nullptr : fill);
    shape->setStroke(
        object.strokeWidth > 0 ? VXRStroke::strokeWithColorWidth(line, object.strokeWidth) : nullptr);
    return shape;
}

ScalePage::ScalePage(Size size, bool layers)
    : canvas(std::make_shared<ScaleCanvas>(Rect { { 0, 0 }, size }))
{
    window.contentView()->addSubview(scrollView);
    scrollView->setDocumentView(canvas);
    canvas->setUsesCompositor(layers);
    canvas->setBackgroundColor(Color::colorWithCalibratedRGB(1, 1, 1));
}

void ScalePage::show(const std::vector<ScaleObject>& objects)
{
    for (const ScaleObject& object : objects)
        canvas->add(shapeOf(object));
}

} // namespace vxr::bench
