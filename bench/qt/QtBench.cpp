// The same scenes on VXR, the subject, and on Qt's Graphics View, the baseline: the same path data, colours
// and pens, antialiased, 1600 by 1200 pixels on white. Qt paints with its raster engine on the "offscreen"
// platform, VXR into the memory of its window.

#include <bench/Compare.h>
#include <bench/qt/QtPage.h>

#include <vxr/compositing/canvas/VXRCanvas.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>

#include <QGraphicsDropShadowEffect>
#include <QGraphicsPathItem>

#include <cmath>
#include <numbers>

namespace vxr::bench {

namespace {

constexpr Size windowSize { 1600, 1200 };
constexpr Size cell { 40, 48 };
constexpr float strokeWidth = 2;

struct Flower {
    std::shared_ptr<Path> path;
    float red, green, blue, alpha;
};

/// Five to seven round petals, larger than a cell, so that neighbours overlap.
Flower flower(int index, Point center, float radius)
{
    const int petals = 5 + index % 3;
    const auto at = [&](float turn, float reach) {
        const float angle = (turn + float(index % 7) / 7) * 2 * std::numbers::pi_v<float> / float(petals);
        return Point { center.x + std::cos(angle) * radius * reach,
            center.y + std::sin(angle) * radius * reach };
    };
    auto path = Path::path();
    path->moveTo(at(0, 0.7f));
    for (int petal = 0; petal < petals; ++petal) {
        const auto from = float(petal);
        path->curveTo(at(from + 0.1f, 1.1f), at(from + 0.9f, 1.1f), at(from + 1, 0.7f));
    }
    path->close();
    return { path, float(index % 5) / 4, float(index % 11) / 10, float(index % 7) / 6, index % 3 ? 1 : 0.7f };
}

std::vector<Flower> pageOf(int columns, int rows)
{
    std::vector<Flower> page;
    for (int i = 0; i < columns * rows; ++i) {
        const Point center { (float(i % columns) + 0.5f) * cell.width,
            (float(i / columns) + 0.5f) * cell.height };
        page.push_back(flower(i, center, 32));
    }
    return page;
}

class PageCanvas final : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;
    RenderableList page;
    const RenderableList& objectsToRender() const override { return page; }
};

struct VxrPage {
    Window window { { { 0, 0 }, windowSize } };
    std::shared_ptr<PageCanvas> canvas;

    VxrPage(const std::vector<Flower>& flowers, Size size, bool compositor)
        : canvas(std::make_shared<PageCanvas>(Rect { { 0, 0 }, size }))
    {
        const auto scrollView = std::make_shared<ScrollView>(Rect { { 0, 0 }, windowSize });
        window.contentView()->addSubview(scrollView);
        scrollView->setDocumentView(canvas);
        canvas->setUsesCompositor(compositor);
        canvas->setBackgroundColor(Color::colorWithCalibratedRGB(1, 1, 1));
        for (const Flower& each : flowers)
            add(each);
        window.display();
    }
    std::shared_ptr<VXRShape> add(const Flower& from)
    {
        auto shape = VXRShape::shapeWithBezierPath(from.path->copy());
        shape->setFill(Color::colorWithCalibratedRGB(from.red, from.green, from.blue, from.alpha));
        shape->setStroke(
            VXRStroke::strokeWithColorWidth(Color::colorWithCalibratedRGB(0, 0, 0), strokeWidth));
        shape->setCanvas(canvas.get());
        canvas->page.push_back(shape);
        return shape;
    }
};

QGraphicsPathItem* add(QtPage& page, const Flower& from)
{
    auto* item = page.page.addPath(painterPath(*from.path));
    item->setBrush(
        QColor::fromRgbF(double(from.red), double(from.green), double(from.blue), double(from.alpha)));
    QPen pen(Qt::black, double(strokeWidth), Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin);
    pen.setMiterLimit(4); // that of VXRStroke
    item->setPen(pen);
    return item;
}

/// A view that shows the upper left corner of its page.
std::shared_ptr<QtPage> qtPageOf(
    const std::vector<Flower>& flowers, Size size, QGraphicsItem::CacheMode cacheMode)
{
    auto page = std::make_shared<QtPage>(size);
    for (const Flower& each : flowers)
        add(*page, each)->setCacheMode(cacheMode);
    page->showPage(windowSize);
    return page;
}

/// Every shape of 1,000 is drawn from its path. Qt renders the scene into an image, VXR redraws its window on
/// the direct road.
[[maybe_unused]] const int fullRedraw = compare("QT/redraw-1000-shapes", atMost(1.5), [] {
    startQt();
    const auto flowers = pageOf(40, 25);
    const auto vxr = std::make_shared<VxrPage>(flowers, windowSize, false);
    const auto qt = qtPageOf(flowers, windowSize, QGraphicsItem::NoCache);
    const auto image = std::make_shared<QImage>(
        int(windowSize.width), int(windowSize.height), QImage::Format_ARGB32_Premultiplied);
    return Pair { [vxr] { vxr->window.display(); },
        [qt, image] {
            QPainter painter(image.get());
            painter.setRenderHint(QPainter::Antialiasing);
            qt->page.render(&painter, image->rect(), image->rect());
        } };
});

/// Some shapes of 10,000 have to be found and drawn from their paths. Both sides mark the rectangle in a view
/// and have it redrawn at once, VXR on the direct road; Qt has its index of the scene.
[[maybe_unused]] const int dirtyRectangle = compare("QT/dirty-rectangle-of-10000-shapes", atMost(1), [] {
    startQt();
    const auto flowers = pageOf(100, 100);
    constexpr Size pageSize { 100 * cell.width, 100 * cell.height };
    const auto vxr = std::make_shared<VxrPage>(flowers, pageSize, false);
    const auto qt = qtPageOf(flowers, pageSize, QGraphicsItem::NoCache);
    return Pair { [vxr] {
                     vxr->canvas->setNeedsDisplayInRect({ 600, 600, 100, 100 });
                     vxr->window.displayIfNeeded();
                 },
        [qt] {
            qt->viewport()->update(600, 600, 100, 100);
            qt->displayIfNeeded();
        } };
});

/// A large shape with a soft shadow is dragged over 1,000 others. Both sides keep the pixels of shapes that
/// stay as they are: VXR on the compositor road, Qt in the caches of its items.
[[maybe_unused]] const int shadowDrag = compare("QT/drag-a-soft-shadow", atLeast(2), [] {
    startQt();
    const auto flowers = pageOf(40, 25);
    const auto vxr = std::make_shared<VxrPage>(flowers, windowSize, true);
    const Flower dragged = flower(1, { 300, 300 }, 150);
    const auto shape = vxr->add(dragged);
    shape->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
        45, 8, 20, 0.6f, Color::colorWithCalibratedRGB(0, 0, 0)));
    vxr->window.display();

    const auto qt = qtPageOf(flowers, windowSize, QGraphicsItem::DeviceCoordinateCache);
    auto* item = add(*qt, dragged);
    auto* shadow = new QGraphicsDropShadowEffect; // the item's from here on
    shadow->setBlurRadius(20);
    shadow->setOffset(8 * std::numbers::sqrt2 / 2);
    shadow->setColor(QColor::fromRgbF(0, 0, 0, 0.6));
    item->setGraphicsEffect(shadow);
    qt->displayIfNeeded();

    const auto thereAndBack = [](auto moveAndDisplay) {
        for (int step = 0; step < 40; ++step)
            moveAndDisplay(step < 20 ? 5 : -5, step < 20 ? 3 : -3);
    };
    return Pair { [=] {
                     thereAndBack([&](int dx, int dy) {
                         shape->offsetBy(float(dx), float(dy));
                         vxr->window.displayIfNeeded();
                     });
                 },
        [=] {
            thereAndBack([&](int dx, int dy) {
                item->moveBy(dx, dy);
                qt->displayIfNeeded();
            });
        } };
});

} // namespace

} // namespace vxr::bench
