#include <vxr/renderables/VXRLine.h>

#include <vxr/geometry/VXRGeometry.h>
#include <vxr/geometry/curves/PathPlaces.h>

// Ends that keep to other renderables.

namespace vxr {

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
