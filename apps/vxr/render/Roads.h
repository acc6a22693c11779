#pragma once

#include <apps/vxr/import/Import.h>

#include <vxr/platform/graphics/CairoContext.h>
#include <vxr/platform/graphics/Image.h>

#include <optional>

namespace app {

/// A drawing with how it is to appear.
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

/// Each renderable draws into the picture; `toScreen` as a window would show it, otherwise as printing
/// and exporting draw.
Picture drawDirect(const Page&, bool toScreen);

/// The compositor blends the renderables' layers into a window, whose pixels are the picture. The page's
/// background must be opaque. Can be asked for the picture again, when only what changed is made anew.
class CompositedPage {
public:
    explicit CompositedPage(const Page&);
    ~CompositedPage();

    void display(); ///< all of the window, from layers that are kept
    Picture picture() const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

/// One page in vectors, and the end of the document.
void drawPDF(const Page&, vxr::PDFContext&);

/// How two pictures of one size differ.
struct Difference {
    double share = 0; ///< of the pixels that are off by more than `tolerance` in some channel, 0 to 1
    int largest = 0; ///< levels
};
Difference compare(const Picture& a, const Picture& b, int tolerance);

/// Side of the compositor's tiles in pixels; must be set before the first page is composited.
void setTileSize(int pixels);

} // namespace app
