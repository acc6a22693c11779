#include <bench/qt/QtPage.h>

#include <QApplication>
#include <QPixmapCache>

#include <sched.h>

#include <stdexcept>

namespace vxr::bench {

void startQt()
{
    static int count = 1;
    static char name[] = "vxr_bench_qt", *arguments[] = { name, nullptr };
    // On one processor, as VXR has one thread: shared out among threads, small fills take Qt longer.
    cpu_set_t processor;
    CPU_ZERO(&processor);
    CPU_SET(std::size_t(sched_getcpu()), &processor);
    sched_setaffinity(0, sizeof processor, &processor);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never deleted: its destructor needs what is gone at the end of the process.
    [[maybe_unused]] static const auto* application = new QApplication(count, arguments);
    QPixmapCache::setCacheLimit(256 * 1024); // KB: what is cached stays
}

QPainterPath painterPath(const Path& path)
{
    struct Appender {
        QPainterPath& to;
        static QPointF point(Point p) { return { double(p.x), double(p.y) }; }
        void moveTo(Point p) { to.moveTo(point(p)); }
        void lineTo(Point p) { to.lineTo(point(p)); }
        void curveTo(Point a, Point b, Point p) { to.cubicTo(point(a), point(b), point(p)); }
        void close() { to.closeSubpath(); }
    };
    QPainterPath result;
    result.setFillRule(Qt::WindingFill);
    path.visit(Appender { result });
    return result;
}

QtPage::QtPage(Size pageSize)
    : page(0, 0, double(pageSize.width), double(pageSize.height))
{
    page.setBackgroundBrush(Qt::white);
    setScene(&page);
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
}

void QtPage::showPage(Size window)
{
    setSceneRect(0, 0, double(window.width), double(window.height)); // fits: nothing scrolls
    resize(int(window.width), int(window.height));
    show();
    QCoreApplication::processEvents();
}

void QtPage::displayIfNeeded()
{
    const long before = mPaints;
    QCoreApplication::sendPostedEvents();
    if (mPaints != before + 1)
        throw std::runtime_error("Qt has not painted once");
}

void QtPage::paintEvent(QPaintEvent* event)
{
    ++mPaints;
    QGraphicsView::paintEvent(event);
}

} // namespace vxr::bench
