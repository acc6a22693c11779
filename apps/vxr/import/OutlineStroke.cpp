#include "OutlineStroke.h"

#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <algorithm>
#include <cmath>

namespace app {

namespace {

/// How far the outline may be off, in pixels.
constexpr float outlineTolerance = 0.05f;

/// The stroked area of a shape, as a shape for the painter. It shares the shape's local frame, so that
/// gradients lie where the shape's own would.
class StrokedArea final : public vxr::VXRPaintedShape {
public:
    StrokedArea(vxr::VXRPaintedShape& shape, const vxr::Path& outline)
        : mShape(shape)
        , mOutline(outline)
    {
    }

    vxr::VXRCanvasRole* canvas() const override { return mShape.canvas(); }
    std::shared_ptr<vxr::Path> path() const override { return mOutline.copy(); }
    std::shared_ptr<vxr::Path> transformedPath() const override
    {
        return mOutline.transformedBy(transform());
    }
    vxr::AffineTransform transform() const override { return mShape.transform(); }
    vxr::Size naturalSize() const override { return mShape.naturalSize(); }
    vxr::Point center() const override { return mShape.center(); }
    float angle() const override { return mShape.angle(); }
    vxr::Rect alignmentBounds() const override { return mShape.alignmentBounds(); }
    bool wantsInteriorStroke() const override { return false; }
    void clip() const override { transformedPath()->addClip(); }

private:
    vxr::VXRPaintedShape& mShape;
    const vxr::Path& mOutline;
};

std::shared_ptr<vxr::Color> colorOf(const std::shared_ptr<vxr::VXRShapePainter>& painter)
{
    const auto color = std::dynamic_pointer_cast<vxr::Color>(painter);
    return color ? color : vxr::Color::blackColor();
}

} // namespace

OutlineStroke::OutlineStroke(
    vxr::LineStyle pen, float canvasWidth, std::shared_ptr<vxr::VXRShapePainter> painter)
    : VXRStroke(colorOf(painter), canvasWidth, static_cast<int>(pen.cap), static_cast<int>(pen.join),
        vxr::VXRStrokePattern::solidPattern())
    , mPen(std::move(pen))
    , mPainter(std::move(painter))
{
    setMiterLimit(mPen.miterLimit);
}

OutlineStroke::~OutlineStroke() = default;

std::shared_ptr<const vxr::Path> OutlineStroke::outlineOf(const vxr::VXRPaintedShape& shape)
{
    const vxr::AffineTransform t = shape.transform();
    const float zoom = shape.canvas() ? shape.canvas()->viewScale() : 1;
    const float stretch = std::max(std::hypot(t.m11, t.m12), std::hypot(t.m21, t.m22)) * zoom;
    const float tolerance = outlineTolerance / std::max(stretch, 1e-6f);
    const std::shared_ptr<const vxr::Path> path = shape.path();
    if (!mOutline || mOutlined.lock() != path || mTolerance != tolerance) {
        mOutline = path->strokedOutline(mPen, tolerance);
        mOutlined = path;
        mTolerance = tolerance;
    }
    return mOutline;
}

void OutlineStroke::paintShape(vxr::VXRPaintedShape& shape)
{
    if (!shouldRender() || !mPainter || !shape.path())
        return;
    const std::shared_ptr<const vxr::Path> outline = outlineOf(shape);
    StrokedArea area(shape, *outline);
    if (shape.canvas() && shape.canvas()->rendersBlackAndWhite()) {
        // As a stroke it is black; the painter, a fill, would be white.
        vxr::VXRSetColor(*vxr::Color::blackColor());
        area.transformedPath()->fill();
    } else {
        mPainter->paintShape(area);
    }
}

void OutlineStroke::paintShapeWithNormalClip(vxr::VXRPaintedShape& shape) { paintShape(shape); }

bool OutlineStroke::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* stroke = dynamic_cast<const OutlineStroke*>(&other);
    return stroke && VXRStroke::isEqual(other) && mPen == stroke->mPen && mPainter == stroke->mPainter;
}

std::shared_ptr<vxr::VXRStroke> OutlineStroke::copyWithZone() const
{
    return std::make_shared<OutlineStroke>(mPen, width(), mPainter);
}

} // namespace app
