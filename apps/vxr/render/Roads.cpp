#include "Roads.h"

#include "DrawingCanvas.h"

#include <apps/vxr/import/Convert.h>

#include <vxr/platform/base/UserDefaults.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/views/Window.h>

#include <algorithm>
#include <cstdlib>

namespace app {

namespace {

std::shared_ptr<DrawingCanvas> makeCanvas(const Page& page, bool usesCompositor)
{
    const vxr::Rect frame { 0, 0, static_cast<float>(page.width), static_cast<float>(page.height) };
    auto canvas
        = std::make_shared<DrawingCanvas>(frame, page.drawing.renderables, page.scale, usesCompositor);
    canvas->setBackgroundColor(page.background ? colorFrom(*page.background) : nullptr);
    canvas->setRendersBlackAndWhite(page.blackAndWhite);
    return canvas;
}

/// Draws the whole page into an off-screen context of its size.
void drawInto(const Page& page, vxr::Context& context)
{
    const std::shared_ptr<DrawingCanvas> canvas = makeCanvas(page, false);
    const vxr::StateSaver saved(context);
    context.translate(0, static_cast<float>(page.height));
    context.scale(page.scale, -page.scale);
    canvas->drawTreeIntoContext(context, canvas->bounds(), false);
}

} // namespace

std::shared_ptr<const vxr::Image> Picture::image() const
{
    vxr::ImageLayout layout;
    layout.width = width;
    layout.height = height;
    layout.bytesPerRow = static_cast<std::size_t>(width) * 4;
    layout.alpha = vxr::AlphaFormat::PremultipliedFirst;
    layout.nativeOrder = true;
    return vxr::Image::createWithCopy(layout, pixels.data(), pixels.size() * sizeof pixels[0]);
}

Picture drawOffScreen(const Page& page)
{
    Picture picture { page.width, page.height, {} };
    picture.pixels.resize(static_cast<std::size_t>(page.width) * static_cast<std::size_t>(page.height));
    const auto context = vxr::BitmapContext::createWithPixels(
        picture.pixels.data(), page.width, page.height, static_cast<std::size_t>(page.width) * 4);
    drawInto(page, *context);
    context->pixels(); // everything drawn has arrived
    return picture;
}

Picture drawDirect(const Page& page)
{
    ShownPage shown(page, false);
    shown.display();
    return shown.picture();
}

struct ShownPage::Impl {
    std::shared_ptr<DrawingCanvas> canvas;
    std::unique_ptr<vxr::Window> window;
};

ShownPage::ShownPage(const Page& page, bool usesCompositor)
    : mImpl(std::make_unique<Impl>())
{
    mImpl->canvas = makeCanvas(page, usesCompositor);
    mImpl->window = std::make_unique<vxr::Window>(mImpl->canvas->frame());
    mImpl->window->setContentView(mImpl->canvas);
}

ShownPage::~ShownPage() = default;

void ShownPage::display() { mImpl->window->display(); }

Picture ShownPage::picture() const
{
    const vxr::Window& window = *mImpl->window;
    const std::uint32_t* first = window.pixels();
    const auto count = static_cast<std::size_t>(window.width()) * static_cast<std::size_t>(window.height());
    return { window.width(), window.height(), { first, first + count } };
}

void drawPDFPage(const Page& page, vxr::DocumentContext& context)
{
    vxr::PDFPageBoxes boxes;
    boxes.media = { 0, 0, static_cast<float>(page.width), static_cast<float>(page.height) };
    context.beginPage(boxes);
    drawInto(page, context);
    context.endPage();
}

void drawPDF(const Page& page, vxr::DocumentContext& context)
{
    drawPDFPage(page, context);
    context.close();
}

Difference compare(const Picture& a, const Picture& b, int tolerance)
{
    Difference result;
    std::size_t count = 0;
    for (std::size_t i = 0; i < a.pixels.size() && i < b.pixels.size(); ++i) {
        int most = 0;
        for (int shift = 0; shift < 32; shift += 8)
            most = std::max(most,
                std::abs(static_cast<int>(a.pixels[i] >> shift & 255)
                    - static_cast<int>(b.pixels[i] >> shift & 255)));
        result.largest = std::max(result.largest, most);
        count += most > tolerance;
    }
    result.share = a.pixels.empty() ? 0 : static_cast<double>(count) / static_cast<double>(a.pixels.size());
    return result;
}

void setTileSize(int pixels)
{
    vxr::UserDefaults::standardUserDefaults().setObjectForKey(std::to_string(pixels), "VXRenderingTileSize");
}

} // namespace app
