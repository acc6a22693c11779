// A window of 20 scaled photographs, once decoded, beside the same pictures drawn by Qt's raster painter with
// smooth scaling. Cached: the compositor blends what the layers keep. Uncached: each is scaled again.

#include <bench/Compare.h>

#include <vxr/compositing/canvas/VXRCanvas.h>
#include <vxr/geometry/Color.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRShape.h>

#include <QImage>
#include <QPainter>

#include <cmath>

namespace vxr::bench {

namespace {

constexpr int windowWidth = 1600, windowHeight = 1200;
constexpr int photoWidth = 1600, photoHeight = 1200;
constexpr int columns = 5, rows = 4;

std::vector<std::uint32_t> photograph(int seed)
{
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < photoHeight; ++y)
        for (int x = 0; x < photoWidth; ++x) {
            const double wave = std::sin(x * 0.011 + seed) * std::cos(y * 0.007);
            const auto level = static_cast<std::uint32_t>(128 + 80 * wave) + (x * 7919u + y * 104729u) % 24;
            pixels.push_back(0xff000000 | level << 16 | (level / 2 + 40) << 8 | (255 - level));
        }
    return pixels;
}

Rect placeOf(int index)
{
    return { 8.0f + 318.5f * static_cast<float>(index % columns),
        8.0f + 297.25f * static_cast<float>(index / columns), 300, 225 };
}

class PageCanvas final : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;
    RenderableList page;
    const RenderableList& objectsToRender() const override { return page; }
};

struct Photographs {
    Window window { { { 0, 0 }, { windowWidth, windowHeight } } };
    std::shared_ptr<PageCanvas> canvas
        = std::make_shared<PageCanvas>(Rect { 0, 0, windowWidth, windowHeight });
    std::vector<QImage> images;
    QImage target { windowWidth, windowHeight, QImage::Format_RGB32 };

    explicit Photographs(bool compositor)
    {
        const auto scrollView = std::make_shared<ScrollView>(Rect { 0, 0, windowWidth, windowHeight });
        window.contentView()->addSubview(scrollView);
        scrollView->setDocumentView(canvas);
        canvas->setUsesCompositor(compositor);
        canvas->setBackgroundColor(Color::colorWithCalibratedRGB(1, 1, 1));
        for (int i = 0; i < columns * rows; ++i) {
            const auto pixels = photograph(i);
            const QImage shown(reinterpret_cast<const uchar*>(pixels.data()), photoWidth, photoHeight,
                4 * photoWidth, QImage::Format_RGB32);
            images.push_back(shown.copy());
            ImageLayout layout = ImageLayout::nativeARGB(photoWidth, photoHeight, 4 * photoWidth);
            layout.alpha = AlphaFormat::NoneSkipFirst;
            layout.isFullAlpha = true;
            auto fill = VXRImageFill::imageFillWithImageRef(
                Image::createWithCopy(layout, pixels.data(), 4 * pixels.size()));
            fill->setTechnique(VXRImageFillStretch);
            auto shape = VXRShape::shapeWithRect(placeOf(i));
            shape->setFill(fill);
            shape->setStroke(nullptr);
            shape->setCanvas(canvas.get());
            canvas->page.push_back(shape);
        }
        window.display();
    }

    void paintByQt()
    {
        QPainter painter(&target);
        painter.fillRect(target.rect(), Qt::white);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        for (int i = 0; i < columns * rows; ++i) {
            const Rect place = placeOf(i);
            painter.drawImage(QRectF(place.minX(), place.minY(), place.size.width, place.size.height),
                images[static_cast<std::size_t>(i)]);
        }
    }
};

Pair redraw(bool compositor)
{
    const auto page = std::make_shared<Photographs>(compositor);
    return { [page] { page->window.display(); }, [page] { page->paintByQt(); } };
}

const int cached
    = compare("IMAGE/redraw-20-photographs-cached-vs-qt", atMost(0.5), [] { return redraw(true); });
const int uncached
    = compare("IMAGE/redraw-20-photographs-uncached-vs-qt", atMost(1), [] { return redraw(false); });

} // namespace

} // namespace vxr::bench
