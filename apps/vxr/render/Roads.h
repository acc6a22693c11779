#pragma once

#include <apps/vxr/import/Import.h>

#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/Image.h>

#include <optional>

namespace app {

/// A drawing and how it is to be drawn.
struct Page {
    const ImportedDrawing& drawing;
    int width = 0, height = 0; ///< pixels, or points of a PDF
    float scale = 1; ///< pixels per unit of the drawing
    std::optional<svg::Rgba> background; ///< none for no background
    bool blackAndWhite = false;
};

/// Premultiplied ARGB32 pixels, top row first.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    std::shared_ptr<const vxr::Image> image() const;
};

/// Each renderable draws into a bitmap, as printing and exporting draw.
Picture drawOffScreen(const Page&);
/// Each renderable draws into a window.
Picture drawDirect(const Page&);

/// A window on either road, whose pixels are the picture. With the compositor, which blends the renderables'
/// layers, the page's background must be opaque. Can be displayed again, from layers that are kept.
class ShownPage {
public:
    ShownPage(const Page&, bool usesCompositor);
    ~ShownPage();

    void display(); ///< all of the window
    Picture picture() const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

/// A page in vectors.
void drawPDFPage(const Page&, vxr::DocumentContext&);
/// One page in vectors, and the end of the document.
void drawPDF(const Page&, vxr::DocumentContext&);

/// How two pictures of one size differ.
struct Difference {
    double share = 0; ///< of the pixels that are off by more than `tolerance` in some channel, 0 to 1
    int largest = 0; ///< levels
};
Difference compare(const Picture& a, const Picture& b, int tolerance);

/// Side of the compositor's tiles in pixels; must be set before the first page is composited.
void setTileSize(int pixels);

} // namespace app
