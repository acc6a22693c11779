#pragma once

#include <vxr/compositing/canvas/VXRCanvas.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/views/Window.h>

#include <array>
#include <memory>
#include <vector>

namespace vxr::bench {

/// An object of a page such as people make them: most are small, some lie over others, a few are see-through.
struct MixedObject {
    Path path;
    bool isFilled;
    std::array<float, 4> color, secondColor; ///< the second of a gradient from left to right
    bool isGradient;
    float strokeWidth; ///< 0 for none
};

constexpr Size mixedPageSize { 1600, 1200 };
std::vector<MixedObject> mixedObjects(int count);

/// A window that shows them.
class MixedPage {
public:
    MixedPage(const std::vector<MixedObject>&, bool usesCompositor);

    void display() { window.display(); } ///< all of it
    void redraw(const Rect& dirty);

private:
    class Canvas;

    Window window { { { 0, 0 }, mixedPageSize } };
    std::shared_ptr<Canvas> canvas;
};

} // namespace vxr::bench
