#include <bench/raster/MixedPage.h>

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>

#include <cmath>
#include <numbers>
#include <random>

namespace vxr::bench {

namespace {

/// Five to seven round petals.
Path flower(Point center, float radius, int petals)
{
    const auto at = [&](float turn, float reach) {
        const float angle = turn * 2 * std::numbers::pi_v<float> / float(petals);
        return Point { center.x + std::cos(angle) * radius * reach,
            center.y + std::sin(angle) * radius * reach };
    };
    Path path;
    path.moveTo(at(0, 0.7f));
    for (int petal = 0; petal < petals; ++petal) {
        const auto from = float(petal);
        path.curveTo(at(from + 0.1f, 1.1f), at(from + 0.9f, 1.1f), at(from + 1, 0.7f));
    }
    path.close();
    return path;
}

std::shared_ptr<Color> colorOf(const std::array<float, 4>& c)
{
    return Color::colorWithCalibratedRGB(c[0], c[1], c[2], c[3]);
}

} // namespace

std::vector<MixedObject> mixedObjects(int count)
{
    std::mt19937 random(11);
    const auto within
        = [&](float low, float high) { return low + (high - low) * float(random() >> 8) * 0x1p-24f; };
    std::vector<MixedObject> objects;
    for (int i = 0; i < count; ++i) {
        const float radius = 8 * std::pow(12.0f, within(0, 1)); // 8 to 96
        const float x = within(radius, mixedPageSize.width - radius);
        const Point center { x, within(radius, mixedPageSize.height - radius) };
        const Rect box { center.x - radius, center.y - radius * 0.7f, 2 * radius, 1.4f * radius };
        MixedObject object {};
        for (auto* color : { &object.color, &object.secondColor })
            *color = { within(0, 1), within(0, 1), within(0, 1), i % 7 == 0 ? 0.5f : 1.0f };
        object.isGradient = i % 5 == 1;
        object.isFilled = i % 5 != 4;
        object.strokeWidth = i % 5 == 4 ? within(1, 6) : i % 2 == 0 ? 1.5f : 0;
        switch (i % 4) {
        case 0:
            object.path = *Path::pathWithRect(box);
            break;
        case 1:
            object.path = *Path::pathWithOvalInRect(box);
            break;
        default:
            object.path = flower(center, radius, 5 + i % 3);
            break;
        }
        objects.push_back(object);
    }
    return objects;
}

class MixedPage::Canvas final : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;
    RenderableList page;
    const RenderableList& objectsToRender() const override { return page; }
};

MixedPage::MixedPage(const std::vector<MixedObject>& objects, bool usesCompositor)
    : canvas(std::make_shared<Canvas>(Rect { { 0, 0 }, mixedPageSize }))
{
    const auto scrollView = std::make_shared<ScrollView>(Rect { { 0, 0 }, mixedPageSize });
    window.contentView()->addSubview(scrollView);
    scrollView->setDocumentView(canvas);
    canvas->setUsesCompositor(usesCompositor);
    canvas->setBackgroundColor(Color::colorWithCalibratedRGB(1, 1, 1));
    for (const MixedObject& object : objects) {
        auto shape = VXRShape::shapeWithBezierPath(object.path.copy());
        shape->setFill(nullptr);
        if (object.isFilled && object.isGradient)
            shape->setFill(VXRAngleGradient::linearGradientWithStartColorEndColor(
                colorOf(object.color), colorOf(object.secondColor)));
        else if (object.isFilled)
            shape->setFill(colorOf(object.color));
        shape->setStroke(object.strokeWidth > 0
                ? VXRStroke::strokeWithColorWidth(Color::colorWithCalibratedRGB(0, 0, 0), object.strokeWidth)
                : nullptr);
        shape->setCanvas(canvas.get());
        canvas->page.push_back(shape);
    }
}

void MixedPage::redraw(const Rect& dirty)
{
    canvas->setNeedsDisplayInRect(dirty);
    window.displayIfNeeded();
}

} // namespace vxr::bench
