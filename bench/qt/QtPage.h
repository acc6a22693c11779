#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainterPath>

namespace vxr::bench {

/// Makes the application, on the "offscreen" platform and on one processor.
void startQt();

QPainterPath painterPath(const Path&);

/// A view of a scene in a window of its own size, on white. Nothing scrolls.
struct QtPage : QGraphicsView {
    QGraphicsScene page;

    explicit QtPage(Size pageSize);
    void showPage(Size window); ///< exposes the window, which is painted
    void showPage() { showPage({ float(page.width()), float(page.height()) }); }
    void displayIfNeeded(); ///< paints what has changed, without waiting for anything

protected:
    void paintEvent(QPaintEvent*) override;

private:
    long mPaints = 0;
};

} // namespace vxr::bench
