#include <vxr/renderables/VXRLine.h>

#include <vxr/geometry/VXRGeometry.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRStroke.h>

namespace vxr {

std::shared_ptr<VXRLine> VXRLine::lineFromPointToPoint(Point start, Point end)
{
    auto line = std::make_shared<VXRLine>();
    line->setStartPointEndPoint(start, end);
    return line;
}

VXRLine::VXRLine()
{
    setFill(nullptr);
    place({}, {});
}

VXRLine::~VXRLine()
{
    for (const VXRLineConnection& connection : mConnections)
        if (connection.renderable)
            connection.renderable->removeFollower(*this);
}

// Ends.

Point VXRLine::handlePoint(int handle) const
{
    const auto points = path()->points();
    return points.empty() ? Point() : transform().map(handle == endHandle ? points.back() : points.front());
}

void VXRLine::setStartPointEndPoint(Point start, Point end)
{
    if (!isFinite(start) || !isFinite(end))
        return;
    place(start, end);
    keepConnections();
}

void VXRLine::place(Point start, Point end)
{
    const bool outer = !mPlacing;
    mPlacing = true;
    auto line = Path::path();
    line->moveTo(start);
    line->lineTo(end);
    const AffineTransform present = transform();
    const AffineTransform plain = AffineTransform::makeTranslation(present.tX, present.tY);
    if (present != plain)
        setTransform(plain);
    setPath(std::move(line));
    if (outer)
        mPlacing = false;
}

float VXRLine::length() const { return VXRDistance(startPoint(), endPoint()); }

// Handles.

int VXRLine::handleAtPoint(Point point, float reach) const
{
    const float toStart = VXRDistance(point, startPoint()), toEnd = VXRDistance(point, endPoint());
    // Of a line without length the end is the one that can be drawn out.
    if (toEnd <= toStart)
        return toEnd <= reach ? endHandle : noHandle;
    return toStart <= reach ? startHandle : noHandle;
}

void VXRLine::dragHandleToPoint(int handle, Point point, bool constrained)
{
    if (!isFinite(point))
        return;
    const Point other = handlePoint(handle == endHandle ? startHandle : endHandle);
    if (constrained)
        point = VXRAddPoints(other, VXRShiftConstrainDelta(VXRSubtractPoints(point, other)));
    disconnectHandle(handle);
    if (handle == endHandle)
        setStartPointEndPoint(other, point);
    else
        setStartPointEndPoint(point, other);
}

// The renderable's operations.

Rect VXRLine::computeGeometricBounds() const { return VXRRectWithPoints(startPoint(), endPoint()); }

bool VXRLine::containsPoint(Point p) const
{
    float width = stroke() ? stroke()->width() : 0;
    if (width < 5)
        width += 4;
    if (nearestPoint(cubicFromLine(startPoint(), endPoint()), p).distance <= width * 0.5f)
        return true;
    if (!pathIsOpen())
        return false;
    const auto onLineEnd = [&](const VXRLineEnd* lineEnd, Point at, float radians) {
        return lineEnd && placedPath(*lineEnd, at, radians)->containsPoint(p);
    };
    return onLineEnd(tailLineEnd().get(), tailPoint(), tailAngle())
        || onLineEnd(headLineEnd().get(), headPoint(), headAngle());
}

bool VXRLine::intersectsRect(const Rect& rect) const
{
    return !rect.isEmpty() && VXRLineIntersectsRect(startPoint(), endPoint(), rect);
}

} // namespace vxr
