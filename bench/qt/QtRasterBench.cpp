// The scenes of the rasteriser painted by Qt's raster painter, and a page of mixed objects in its Graphics
// View.

#include <bench/qt/QtPage.h>
#include <bench/raster/MixedPage.h>
#include <bench/raster/RasterScenes.h>

#include <QGraphicsPathItem>
#include <QImage>
#include <QPainter>
#include <QPen>

#include <string>

namespace vxr::bench {

namespace {

QColor colorOf(const Rgba& c) { return QColor::fromRgbF(c[0], c[1], c[2], c[3]); }

QTransform transformOf(const AffineTransform& t)
{
    return { double(t.m11), double(t.m12), double(t.m21), double(t.m22), double(t.tX), double(t.tY) };
}

QBrush brushOf(const RasterScene::Gradient& g)
{
    const auto withColors = [&](QGradient gradient) {
        for (std::size_t i = 0; i < g.colors.size(); ++i)
            gradient.setColorAt(double(i) / 2, colorOf(g.colors[i]));
        return QBrush(gradient);
    };
    const QPointF start(double(g.start.x), double(g.start.y)), end(double(g.end.x), double(g.end.y));
    if (g.isRadial)
        return withColors(QRadialGradient(start, double(g.radius)));
    return withColors(QLinearGradient(start, end));
}

/// Qt's painter on an image, with paths, brushes and pens that are made once.
class QtScene {
public:
    explicit QtScene(SharedScene scene)
        : mScene(std::move(scene))
    {
        constexpr int side = RasterScene::imageSide;
        for (const auto& fill : mScene->fills)
            mPaths.push_back(painterPath(fill.path));
        for (const auto& stroke : mScene->strokes) {
            mPaths.push_back(painterPath(stroke.path));
            QPen pen(colorOf(stroke.color), double(stroke.style.width), Qt::SolidLine, Qt::RoundCap,
                Qt::RoundJoin);
            if (!stroke.style.dash.empty())
                pen.setDashPattern({ 3, 2 }); // in widths
            mPens.push_back(pen);
        }
        for (const auto& gradient : mScene->gradients) {
            mPaths.push_back(painterPath(gradient.path));
            mBrushes.push_back(brushOf(gradient));
        }
        for (const RasterScene::Image& pixels : mScene->images)
            mImages.emplace_back(reinterpret_cast<const uchar*>(pixels.data()), side, side, 4 * side,
                QImage::Format_ARGB32_Premultiplied);
    }

    void paint()
    {
        QPainter painter(&mTarget);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setTransform({ 1, 0, 0, -1, 0, RasterScene::height });
        std::size_t path = 0;
        for (const auto& fill : mScene->fills)
            painter.fillPath(mPaths[path++], colorOf(fill.color));
        for (const QPen& pen : mPens)
            painter.strokePath(mPaths[path++], pen);
        for (const QBrush& brush : mBrushes)
            painter.fillPath(mPaths[path++], brush);
        const QTransform page = painter.transform();
        const QTransform upright(1, 0, 0, -1, 0, RasterScene::imageSide);
        for (const auto& picture : mScene->pictures) {
            painter.setTransform(upright * transformOf(picture.place) * page);
            painter.drawImage(0, 0, mImages[picture.image]);
        }
    }

private:
    SharedScene mScene;
    std::vector<QPainterPath> mPaths;
    std::vector<QPen> mPens;
    std::vector<QBrush> mBrushes;
    std::vector<QImage> mImages;
    QImage mTarget { RasterScene::width, RasterScene::height, QImage::Format_ARGB32_Premultiplied };
};

[[maybe_unused]] const bool registered = [] {
    for (const RasterLine& line : rasterLines())
        compare(std::string("RASTER/qt-") + line.name, atMost(1), [&line] {
            startQt();
            const SharedScene scene = line.make();
            const auto page = std::make_shared<QtScene>(scene);
            return Pair { paintWithLibrary(scene), [page] { page->paint(); } };
        });
    return true;
}();

void addTo(QtPage& page, const MixedObject& object)
{
    auto* item = page.page.addPath(painterPath(object.path));
    const QRectF box = item->path().boundingRect();
    if (object.isFilled && object.isGradient) {
        QLinearGradient gradient(box.topLeft(), box.topRight());
        gradient.setColorAt(0, colorOf(object.color));
        gradient.setColorAt(1, colorOf(object.secondColor));
        item->setBrush(gradient);
    } else if (object.isFilled) {
        item->setBrush(colorOf(object.color));
    }
    QPen pen(Qt::black, double(object.strokeWidth), Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin);
    pen.setMiterLimit(4);
    item->setPen(object.strokeWidth > 0 ? pen : Qt::NoPen);
}

std::shared_ptr<QtPage> qtPageOf(const std::vector<MixedObject>& objects)
{
    auto page = std::make_shared<QtPage>(mixedPageSize);
    for (const MixedObject& object : objects)
        addTo(*page, object);
    page->showPage();
    return page;
}

/// On the direct road, where each object is drawn from its path.
[[maybe_unused]] const int redraw = compare("RASTER/qt-redraw-of-1000-mixed-objects", atMost(0.8), [] {
    startQt();
    const auto objects = mixedObjects(1000);
    const auto vxr = std::make_shared<MixedPage>(objects, false);
    const auto qt = qtPageOf(objects);
    const auto image = std::make_shared<QImage>(
        int(mixedPageSize.width), int(mixedPageSize.height), QImage::Format_ARGB32_Premultiplied);
    vxr->display();
    return Pair { [vxr] { vxr->display(); },
        [qt, image] {
            QPainter painter(image.get());
            painter.setRenderHint(QPainter::Antialiasing);
            qt->page.render(&painter, image->rect(), image->rect());
        } };
});

[[maybe_unused]] const int dirtyRectangle
    = compare("RASTER/qt-dirty-rectangle-of-1000-mixed-objects", atMost(1), [] {
          startQt();
          const auto objects = mixedObjects(1000);
          const auto vxr = std::make_shared<MixedPage>(objects, false);
          const auto qt = qtPageOf(objects);
          vxr->display();
          return Pair { [vxr] {
                           vxr->redraw({ 600, 500, 100, 100 });
                       },
              [qt] {
                  qt->viewport()->update(600, 600, 100, 100);
                  qt->displayIfNeeded();
              } };
      });

} // namespace

} // namespace vxr::bench
