#include <vxr/renderables/VXRLine.h>

#include <vxr/geometry/VXRGeometry.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/PathPlaces.h>
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

// Ends that keep to other renderables.

namespace {

std::shared_ptr<Path> outlineOf(const VXRRenderable& renderable)
{
    const auto* shape = dynamic_cast<const VXRShape*>(&renderable);
    return shape && shape->path() ? shape->transformedPath() : renderable.geometricBoundsAsPath();
}

} // namespace

void VXRLine::connectHandle(int handle, VXRRenderable& renderable, VXRLineConnectionMode mode, Point near)
{
    if (&renderable == this || mode == VXRLineNotConnected)
        return;
    disconnectHandle(handle);
    VXRLineConnection& connection = mConnections[index(handle)];
    connection = { mode, &renderable, {} };
    if (mode == VXRLineConnectedAtPlace) {
        const auto inverse = renderable.transform().inverted();
        const auto onOutline = nearestPointOnPath(*outlineOf(renderable), near);
        const Size size = renderable.naturalSize();
        if (inverse && onOutline) {
            const Point local = inverse->map(onOutline->point());
            connection.place = { size.width != 0 ? local.x / size.width : 0,
                size.height != 0 ? local.y / size.height : 0 };
        }
    }
    renderable.addFollower(*this);
    keepConnections();
}

void VXRLine::_setConnection(int handle, const VXRLineConnection& connection)
{
    disconnectHandle(handle);
    if (!connection.renderable || connection.renderable == this || connection.mode == VXRLineNotConnected)
        return;
    mConnections[index(handle)] = connection;
    connection.renderable->addFollower(*this);
}

bool VXRLine::isFollowing(const VXRRenderable* renderable) const
{
    return mConnections[0].renderable == renderable || mConnections[1].renderable == renderable;
}

void VXRLine::disconnectHandle(int handle)
{
    VXRRenderable* old = mConnections[index(handle)].renderable;
    mConnections[index(handle)] = {};
    if (old && !isFollowing(old))
        old->removeFollower(*this);
}

std::optional<Point> VXRLine::connectedPoint(int handle) const
{
    const VXRLineConnection& connection = mConnections[index(handle)];
    if (!connection.renderable)
        return {};
    const VXRRenderable& renderable = *connection.renderable;
    const auto outline = outlineOf(renderable);
    std::optional<Vec2> found;
    if (connection.mode == VXRLineConnectedAtPlace) {
        const Size size = renderable.naturalSize();
        const Point p = renderable.transform().map(
            Point { connection.place.x * size.width, connection.place.y * size.height });
        found = nearestPointOnPath(*outline, p);
    } else {
        // Towards the other end, or the centre that the other end itself keeps to: two floating ends settle
        // at once.
        const int other = handle == endHandle ? startHandle : endHandle;
        const VXRLineConnection& far = mConnections[index(other)];
        const Vec2 from = far.renderable && far.mode == VXRLineConnectedTowardsCenter
            ? far.renderable->center()
            : handlePoint(other);
        found = firstCrossingOfPath(*outline, from, renderable.center());
        if (!found)
            found = nearestPointOnPath(*outline, from);
    }
    return found ? std::optional(found->point()) : std::nullopt;
}

void VXRLine::keepConnections()
{
    // The end at a place first: a floating one looks at it.
    Point ends[handleCount] = { startPoint(), endPoint() };
    for (const auto mode : { VXRLineConnectedAtPlace, VXRLineConnectedTowardsCenter })
        for (const int handle : { startHandle, endHandle })
            if (mConnections[index(handle)].mode == mode)
                if (const auto point = connectedPoint(handle); point && *point != handlePoint(handle)) {
                    ends[handle] = *point;
                    place(ends[startHandle], ends[endHandle]);
                }
}

void VXRLine::outlineDidChange()
{
    if (!mPlacing) {
        mPlacing = true;
        keepConnections();
        mPlacing = false;
    }
    VXRShape::outlineDidChange();
}

void VXRLine::followedRenderableDidChange(VXRRenderable&)
{
    // Lines that follow each other in a circle need not come to rest.
    constexpr int mostTimes = 4;
    if (mRound != followRound()) {
        mRound = followRound();
        mFollowed = 0;
    }
    if (mFollowed++ < mostTimes)
        keepConnections();
}

void VXRLine::followedRenderableWillGo(VXRRenderable& renderable)
{
    for (VXRLineConnection& connection : mConnections)
        if (connection.renderable == &renderable)
            connection = {};
}

} // namespace vxr
