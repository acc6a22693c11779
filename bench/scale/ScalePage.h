#pragma once

#include <vxr/compositing/canvas/VXRCanvas.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/renderables/VXRShape.h>

#include <array>
#include <memory>
#include <vector>

namespace vxr::bench {

inline constexpr Size scaleWindow { 1600, 1200 };

/// One object of a mixed page, as data for any engine.
struct ScaleObject {
    enum class Kind { Blob, Polyline, Gradient, Ellipse } kind;
    std::shared_ptr<Path> path; ///< at its place
    Rect frame;
    std::array<float, 4> fill; ///< red, green, blue, alpha; the gradient's start
    std::array<float, 3> line; ///< the stroke's; the gradient's end
    float strokeWidth; ///< 0 without a stroke
};

/// Objects of 16 to 72 units all over a page: 40 % are filled and stroked
/// outlines of 8 curves, 25 % open polylines, 25 % rectangles with a linear gradient of colours of their own,
/// 10 % ellipses. Three fills of ten are half transparent.
std::vector<ScaleObject> scaleObjects(int count, Size page);
Size scalePageSize(int count); ///< in the window's proportions; a window shows 1,000 objects then

std::shared_ptr<VXRShape> shapeOf(const ScaleObject&);

/// Shows a list that is changed only through it.
class ScaleCanvas final : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;
    const RenderableList& objectsToRender() const override { return mPage; }
    std::uint64_t objectsToRenderVersion() const override { return mVersion; }
    void reserve(std::size_t count) { mPage.reserve(count); }
    void add(std::shared_ptr<VXRRenderable> object)
    {
        object->setCanvas(this);
        mPage.push_back(std::move(object));
        ++mVersion;
    }

private:
    RenderableList mPage;
    std::uint64_t mVersion = 1;
};

/// A page in a window's scroll view.
struct ScalePage {
    Window window { { { 0, 0 }, scaleWindow } };
    std::shared_ptr<ScrollView> scrollView = std::make_shared<ScrollView>(Rect { { 0, 0 }, scaleWindow });
    std::shared_ptr<ScaleCanvas> canvas;

    ScalePage(Size size, bool layers);
    void show(const std::vector<ScaleObject>&);
    void scrollTo(Point upperLeft)
    {
        canvas->scrollPoint(upperLeft);
        window.displayIfNeeded();
    }
};

} // namespace vxr::bench
