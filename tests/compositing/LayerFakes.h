#pragma once

#include <vxr/compositing/layers/VXRCompositorLayer.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/pixels/LayerCompositor.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <vector>

namespace vxr::test {

/// A canvas that shows `visible` in a window whose pixels start at its upper left corner.
struct FakeCanvas : VXRCanvasRole {
    virtual ~FakeCanvas() = default;

    float scale = 1;
    Rect visible { 0, 0, 200, 150 };
    bool flipped = true;
    bool scalesShadows = true;

    void registerRenderable(VXRRenderable&) override { }
    void unregisterRenderable(VXRRenderable&) override { }
    void setNeedsDisplayInRect(const Rect&) override { }
    float viewScale() const override { return scale; }
    bool usesCompositor() const override { return true; }
    int renderingDestination() const override { return VXRDestinationCompositor; }
    bool rendersBlackAndWhite() const override { return false; }
    bool scaleShadowsWhenZooming() const override { return scalesShadows; }
    bool isFlipped() const override { return flipped; }
    Rect clipViewVisibleRect() const override { return visible; }
    Rect visibleRect() const override { return visible; }
    Rect convertRectToWindow(const Rect& r) const override
    {
        const float x = (r.minX() - visible.minX()) * scale;
        const float y = flipped ? (visible.maxY() - r.maxY()) * scale : (r.minY() - visible.minY()) * scale;
        return { x, y, r.size.width * scale, r.size.height * scale };
    }
};

/// A renderable that draws `paint` in its local frame.
struct FakeRenderable final : VXRLayeredRenderable {
    FakeCanvas* shownOn = nullptr;
    Rect bounds;
    AffineTransform placement;
    std::shared_ptr<VXRShadow> cast;
    bool tiles = true;
    float fade = 1;
    std::function<void(Context&)> paint;
    std::vector<Rect> drawn;
    std::vector<int> modes;

    /// A frame of this size, placed by `t`, filled by `paint`.
    FakeRenderable(FakeCanvas& canvas, const AffineTransform& t, Size size)
        : shownOn(&canvas)
        , placement(t)
        , mSize(size)
    {
        place(t);
    }
    void place(const AffineTransform& t)
    {
        placement = t;
        bounds = boundsOfTransformedRect(t, { { 0, 0 }, mSize });
    }

    VXRCanvasRole* canvas() const override { return shownOn; }
    Rect alignmentBounds() const override { return bounds; }
    AffineTransform transform() const override { return placement; }
    std::shared_ptr<VXRShadow> shadow() const override { return cast; }
    Rect shadowBoundsForRect(const Rect& r) const override { return cast ? cast->shadowBoundsForRect(r) : r; }
    bool allowsTiling() const override { return tiles; }
    bool layerShouldClearOnUpdate() const override { return true; }
    bool requiresQuickdraw() const override { return false; }
    float opacity() const override { return fade; }
    int renderingMode() const override { return modes.empty() ? 0 : modes.back(); }
    void setRenderingMode(int mode) override { modes.push_back(mode); }
    void drawRect(const Rect& rect) override
    {
        drawn.push_back(rect);
        Context& port = currentDrawingPort();
        const StateSaver saved(port);
        port.concatTransform(placement);
        if (paint)
            paint(port);
    }

private:
    Size mSize;
};

/// What a layer looks like on a white page of the canvas's visible size.
inline std::vector<std::uint32_t> compositedPage(const FakeCanvas& canvas, VXRCompositorLayer& layer)
{
    const int width = int(canvas.visible.size.width * canvas.scale + 0.5f);
    const int height = int(canvas.visible.size.height * canvas.scale + 0.5f);
    std::vector<std::uint32_t> pixels(std::size_t(width * height), 0xffffffff);
    std::vector<LayerInfo*> infos;
    layer.addLayerInfosToArray(infos);
    layer.addShadowInfosToArray(infos);
    layer.addShadowlessInfosToArray(infos);
    for (std::size_t i = 0; i < infos.size(); ++i)
        infos[i]->next = i + 1 < infos.size() ? infos[i + 1] : nullptr;
    LayerInfo page;
    page.layerInfoVersion = 1;
    page.bitmapType = LayerBitmap32;
    page.colorData = pixels.data();
    page.colorBytesPerRow = width * 4;
    page.frameMaxX = width;
    page.frameMaxY = height;
    page.clipMaxX = width - 1;
    page.clipMaxY = height - 1;
    page.fade = 1;
    if (!infos.empty())
        LayerCompositor::composite(page, infos.front());
    return pixels;
}

/// Says how many pixels differ, by how much and where.
inline ::testing::AssertionResult samePixels(const std::vector<std::uint32_t>& actual,
    const std::vector<std::uint32_t>& expected, int width, int tolerance = 0)
{
    if (actual.size() != expected.size())
        return ::testing::AssertionFailure() << actual.size() << " pixels, not " << expected.size();
    int count = 0, largest = 0, x0 = width, x1 = -1, y0 = INT_MAX, y1 = -1;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        int worst = 0;
        for (int shift : { 0, 8, 16, 24 })
            worst
                = std::max(worst, std::abs(int(actual[i] >> shift & 255) - int(expected[i] >> shift & 255)));
        if (worst <= tolerance)
            continue;
        const int x = int(i) % width, y = int(i) / width;
        ++count;
        largest = std::max(largest, worst);
        x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
    }
    if (!count)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << count << " pixels differ by up to " << largest << ", x " << x0
                                         << " to " << x1 << ", y " << y0 << " to " << y1;
}

inline std::shared_ptr<VXRShadow> blackShadow(float angle, float offset, int radius, float opacity = 0.75f)
{
    return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
        angle, offset, radius, opacity, Color::colorWithCalibratedRGB(0, 0, 0));
}

/// Stripes, a disc and a smooth line, so that every part of a frame of this size looks different.
inline void paintPattern(Context& port, float width, float height, float shade = 0)
{
    for (int i = 0; i * 40 < int(width); ++i) {
        port.setFillColor(ColorValue::rgb(float(i % 7) / 7, shade, 0.4f, i % 3 ? 1 : 0.5f));
        port.fillRect({ float(i) * 40, 0, 25, height });
    }
    port.setFillColor(ColorValue::rgb(0.1f, 0.9f, shade));
    port.beginPath();
    port.addPath(*Path::pathWithOvalInRect({ width * 0.1f, height * 0.2f, width * 0.7f, height * 0.5f }));
    port.fillPath(WindingRule::NonZero);
}

} // namespace vxr::test
