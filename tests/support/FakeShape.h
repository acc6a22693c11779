#pragma once

#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>

#include <vector>

namespace vxr::test {

/// A canvas of which everything can be set, and that notes the damage it is told of.
class FakeCanvas : public VXRCanvasRole {
public:
    virtual ~FakeCanvas() = default;

    float scale = 1;
    bool compositor = false;
    int destination = VXRDestinationDirect;
    bool blackAndWhite = false;
    Rect visible { 0, 0, 1000, 1000 };
    std::vector<Rect> damage;

    void registerRenderable(VXRRenderable&) override { }
    void unregisterRenderable(VXRRenderable&) override { }
    void setNeedsDisplayInRect(const Rect& rect) override { damage.push_back(rect); }
    float viewScale() const override { return scale; }
    bool usesCompositor() const override { return compositor; }
    int renderingDestination() const override { return destination; }
    bool rendersBlackAndWhite() const override { return blackAndWhite; }
    Rect clipViewVisibleRect() const override { return visible; }
    Rect visibleRect() const override { return visible; }
    Rect convertRectToWindow(const Rect& rect) const override { return rect; }
};

/// A shape as painters see it: an outline in its local frame under a transform, all of it to be set.
class FakeShape : public VXRPaintedShape {
public:
    explicit FakeShape(std::shared_ptr<Path> path)
        : outline(std::move(path))
    {
    }
    /// A rectangle of that size at the origin of its local frame.
    explicit FakeShape(Size size)
        : outline(Path::pathWithRect({ { 0, 0 }, size }))
    {
    }
    virtual ~FakeShape() = default;

    std::shared_ptr<Path> outline;
    FakeCanvas* onCanvas = nullptr;
    AffineTransform placed;
    std::optional<AffineTransform> placedForGradients;
    float rotation = 0;
    bool interiorStroke = false;

    VXRCanvasRole* canvas() const override { return onCanvas; }
    std::shared_ptr<Path> path() const override { return outline; }
    std::shared_ptr<Path> transformedPath() const override { return outline->transformedBy(placed); }
    AffineTransform transform() const override { return placed; }
    Size naturalSize() const override { return outline->bounds().size; }
    Point center() const override
    {
        const Rect bounds = transformedPath()->bounds();
        return { bounds.midX(), bounds.midY() };
    }
    float angle() const override { return rotation; }
    Rect alignmentBounds() const override { return transformedPath()->bounds(); }
    bool wantsInteriorStroke() const override { return interiorStroke; }
    void clip() const override { transformedPath()->addClip(); }
    std::optional<AffineTransform> gradientTransform() const override { return placedForGradients; }
};

} // namespace vxr::test
