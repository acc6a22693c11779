// Pages of mixed objects on VXR with its layers, the subject, and on Qt's Graphics View with its items'
// caches, the baseline. Both may keep 256 MB of pixels.

#include <bench/Compare.h>
#include <bench/qt/QtPage.h>
#include <bench/scale/ScalePage.h>

#include <vxr/compositing/layers/VXRLayerBudget.h>

#include <QApplication>
#include <QGraphicsPathItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPixmapCache>
#include <QScrollBar>

#include <stdexcept>

namespace vxr::bench {

namespace {

QColor color(float red, float green, float blue, float alpha = 1)
{
    return QColor::fromRgbF(red, green, blue, alpha);
}

/// A view without bars, painted synchronously.
struct QtView final : QGraphicsView {
    QGraphicsScene page;
    QGraphicsScene blank;
    long paints = 0;

    QtView()
    {
        setScene(&blank);
        setRenderHint(QPainter::Antialiasing);
        setFrameShape(QFrame::NoFrame);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        resize(int(scaleWindow.width), int(scaleWindow.height));
        show();
        QCoreApplication::processEvents(); // exposes the window, which is painted
    }
    void fill(const std::vector<ScaleObject>& objects, Size size)
    {
        page.setSceneRect(0, 0, double(size.width), double(size.height));
        page.setBackgroundBrush(Qt::white);
        for (const ScaleObject& object : objects)
            add(object);
    }
    void add(const ScaleObject& object)
    {
        auto* item = page.addPath(painterPath(*object.path));
        const QColor start = color(object.fill[0], object.fill[1], object.fill[2], object.fill[3]);
        const QColor line = color(object.line[0], object.line[1], object.line[2]);
        if (object.kind == ScaleObject::Kind::Gradient) {
            const double middle = double(object.frame.midY());
            QLinearGradient gradient(
                double(object.frame.minX()), middle, double(object.frame.maxX()), middle);
            gradient.setColorAt(0, start);
            gradient.setColorAt(1, line);
            item->setBrush(gradient);
        } else if (object.kind != ScaleObject::Kind::Polyline) {
            item->setBrush(start);
        }
        if (object.strokeWidth > 0) {
            QPen pen(line, double(object.strokeWidth), Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin);
            pen.setMiterLimit(4); // that of VXRStroke
            item->setPen(pen);
        } else {
            item->setPen(Qt::NoPen);
        }
        item->setCacheMode(QGraphicsItem::DeviceCoordinateCache);
    }
    void displayIfNeeded()
    {
        const long before = paints;
        QCoreApplication::sendPostedEvents();
        if (paints == before)
            throw std::runtime_error("Qt has not painted");
    }
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        QGraphicsView::paintEvent(event);
    }
};

struct Pages {
    std::vector<ScaleObject> objects;
    std::unique_ptr<ScalePage> vxr;
    std::unique_ptr<QtView> qt;

    explicit Pages(int count)
        : objects(scaleObjects(count, scalePageSize(count)))
    {
        startQt();
        const Size size = scalePageSize(count);
        vxr = std::make_unique<ScalePage>(size, true);
        vxr->show(objects);
        qt = std::make_unique<QtView>();
        qt->fill(objects, size);
    }
    void showFirst()
    {
        vxr->window.display();
        showQt();
    }
    void showQt()
    {
        qt->setScene(&qt->page);
        qt->displayIfNeeded();
    }
    /// Both scroll to the top, and have no pixels of anything any more.
    void startOver()
    {
        vxr->scrollTo({ 0, 0 });
        qt->verticalScrollBar()->setValue(0);
        QCoreApplication::sendPostedEvents();
        VXRLayerBudget::setLimit(0);
        VXRLayerBudget::setLimit(VXRLayerBudget::defaultLimit);
        QPixmapCache::clear();
    }
};

double firstPaint(int count)
{
    std::vector<double> ratios;
    for (int round = 0; round < 5; ++round) {
        Pages pages(count);
        const double vxr = processorSeconds([&] { pages.vxr->window.display(); });
        const double qt = processorSeconds([&] { pages.showQt(); });
        ratios.push_back(vxr / qt);
    }
    return median(ratios);
}

/// What comes into sight is painted for the first time, as it is where one reads on.
double pan(int count)
{
    constexpr int steps = 60, distance = 37;
    Pages pages(count);
    pages.showFirst();
    std::vector<double> ratios;
    for (int round = 0; round < 7; ++round) {
        pages.startOver();
        const double vxr = processorSeconds([&] {
            for (int i = 1; i <= steps; ++i)
                pages.vxr->scrollTo({ 0, float(i * distance) });
        });
        const double qt = processorSeconds([&] {
            for (int i = 1; i <= steps; ++i) {
                pages.qt->verticalScrollBar()->setValue(i * distance);
                pages.qt->displayIfNeeded();
            }
        });
        ratios.push_back(vxr / qt);
    }
    return median(ratios);
}

std::shared_ptr<Pages> shownPages(int count)
{
    auto pages = std::make_shared<Pages>(count);
    pages->showFirst();
    return pages;
}

Pair cachedRedraw(int count)
{
    const auto pages = shownPages(count);
    return { [pages] { pages->vxr->window.display(); },
        [pages] {
            pages->qt->viewport()->update();
            pages->qt->displayIfNeeded();
        } };
}

/// Rectangles all over the window.
Pair dirtyRectangles(int count)
{
    const auto pages = shownPages(count);
    const auto everywhere = [](auto redraw) {
        for (int i = 0; i < 31; ++i)
            redraw(i * 397 % 1500, i * 263 % 1100);
    };
    return { [=] {
                everywhere([&](int x, int y) {
                    pages->vxr->canvas->setNeedsDisplayInRect({ float(x), float(y), 100, 100 });
                    pages->vxr->window.displayIfNeeded();
                });
            },
        [=] {
            everywhere([&](int x, int y) {
                pages->qt->viewport()->update(x, y, 100, 100);
                pages->qt->displayIfNeeded();
            });
        } };
}

/// Objects of all kinds, one after the other there and back.
Pair moves(int count)
{
    const auto pages = shownPages(count);
    std::vector<std::size_t> moved;
    const auto isInSight = [](const Rect& frame) { return frame.maxX() < 1500 && frame.maxY() < 1100; };
    for (std::size_t i = 0; moved.size() < 40; ++i)
        if (isInSight(pages->objects[i].frame))
            moved.push_back(i);
    const auto items = pages->qt->page.items(Qt::AscendingOrder);
    const auto thereAndBack = [moved](auto move) {
        for (const std::size_t i : moved)
            for (const int step : { 2, 2, -2, -2 })
                move(i, step);
    };
    return { [=] {
                thereAndBack([&](std::size_t i, int step) {
                    pages->vxr->canvas->objectsToRender()[i]->offsetBy(float(step), 0);
                    pages->vxr->window.displayIfNeeded();
                });
            },
        [=] {
            thereAndBack([&](std::size_t i, int step) {
                items[qsizetype(i)]->moveBy(step, 0);
                pages->qt->displayIfNeeded();
            });
        } };
}

int registerAll()
{
    for (const int count : { 10'000, 100'000 }) {
        const auto name
            = [&](const char* what) { return std::string("SCALE/qt-") + what + "-" + std::to_string(count); };
        compare(
            name("dirty-rectangle"), atMost(0.7), [count] { return dirtyRectangles(count); },
            TimeOf::Processor);
        compare(
            name("move"), atMost(0.7), [count] { return moves(count); }, TimeOf::Processor);
        compare(
            name("cached-redraw"), atMost(0.7), [count] { return cachedRedraw(count); }, TimeOf::Processor);
        measure(name("pan"), atMost(0.7), [count] { return pan(count); });
        measure(name("first-paint"), atMost(0.7), [count] { return firstPaint(count); });
    }
    return 0;
}

[[maybe_unused]] const int registered = registerAll();

} // namespace

} // namespace vxr::bench
