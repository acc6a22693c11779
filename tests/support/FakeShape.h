#pragma once

#include <tests/support/FakeCanvas.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/VXRPaintedShape.h>

namespace vxr::test {

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
