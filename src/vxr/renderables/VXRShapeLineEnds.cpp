#include <vxr/renderables/VXRShape.h>

#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/renderables/VXRLineEnd.h>

// Line ends of an open shape.

namespace vxr {

void VXRShape::setLineEnd(std::shared_ptr<VXRLineEnd>& field, std::shared_ptr<VXRLineEnd> lineEnd)
{
    autoErase();
    field = std::move(lineEnd);
    invalidateBoundingBox();
    autoInvalidate();
}

void VXRShape::setHeadLineEnd(std::shared_ptr<VXRLineEnd> lineEnd)
{
    setLineEnd(mHeadLineEnd, std::move(lineEnd));
}

void VXRShape::setTailLineEnd(std::shared_ptr<VXRLineEnd> lineEnd)
{
    setLineEnd(mTailLineEnd, std::move(lineEnd));
}

bool VXRShape::pathIsOpen() const { return mPath && isOpen(*mPath); }

namespace {

constexpr double quarterTurn = 1.5707963267948966;

/// From an end back to its control point, and a quarter turn on to the decoration's own direction.
float outwardAngle(Point control, Point end)
{
    return static_cast<float>(VXRAngleFromDelta(control.x - end.x, control.y - end.y) + quarterTurn);
}

/// The segments of the last run; one of no length at the origin for a path that has none.
std::vector<VXRPathSegment> lastRun(const VXRShape& shape)
{
    auto runs = pathAsSegments(*shape.transformedPath());
    return runs.empty() ? std::vector<VXRPathSegment>(1) : std::move(runs.back().segments);
}

} // namespace

Point VXRShape::headPoint() const { return lastRun(*this).back().end; }

float VXRShape::headAngle() const
{
    const VXRPathSegment last = lastRun(*this).back();
    return outwardAngle(last.in, last.end);
}

Point VXRShape::tailPoint() const { return lastRun(*this).front().start; }

float VXRShape::tailAngle() const
{
    const VXRPathSegment first = lastRun(*this).front();
    return outwardAngle(first.out, first.start);
}

/// The decoration's outline where it is drawn. Thick strokes have decorations that grow at 60 % of the
/// width's growth.
std::shared_ptr<Path> VXRShape::placedPath(const VXRLineEnd& lineEnd, Point p, float radians) const
{
    const float width = strokeWidth();
    const float scale = width <= 1 ? width : static_cast<float>((double { width } - 1) * 0.6 + 1);
    AffineTransform placement;
    placement.translate(p.x, p.y).scale(scale).rotate(radians);
    placement.translate(-lineEnd.endPoint().x, -lineEnd.endPoint().y);
    return lineEnd.path() ? lineEnd.path()->transformedBy(placement) : Path::path();
}

void VXRShape::renderLineEndStyleAtPointAngle(const VXRLineEnd* lineEnd, Point p, float radians) const
{
    if (!lineEnd)
        return;
    const auto path = placedPath(*lineEnd, p, radians);
    if (lineEnd->isFilled()) {
        path->fill();
        return;
    }
    path->setLineWidth(strokeWidth());
    path->setLineJoin(LineJoin::Round);
    path->stroke();
}

Rect VXRShape::alignmentBoundsForLineEndAtPointAngle(const VXRLineEnd* lineEnd, Point p, float radians) const
{
    if (!lineEnd)
        return {};
    const Rect bounds = placedPath(*lineEnd, p, radians)->bounds();
    if (lineEnd->isFilled())
        return bounds;
    const float half = strokeWidth() * 0.5f;
    return insetRect(bounds, -half, -half);
}

} // namespace vxr
