#pragma once

#include <vxr/protocols/VXRRenderableFollower.h>
#include <vxr/renderables/VXRShape.h>

#include <array>

namespace vxr {

/// How an end of a line keeps to another renderable. The numbers are part of the contract.
enum VXRLineConnectionMode : int {
    VXRLineNotConnected = 0,
    VXRLineConnectedAtPlace = 1, ///< to one place of its outline, which moves and grows with it
    VXRLineConnectedTowardsCenter = 2, ///< where the way to its centre meets its outline
};

struct VXRLineConnection {
    VXRLineConnectionMode mode = VXRLineNotConnected;
    VXRRenderable* renderable = nullptr; ///< not owned; the end is set free when it goes
    Point place; ///< in parts of the renderable's natural size, in its local frame

    friend bool operator==(const VXRLineConnection&, const VXRLineConnection&) = default;
};

/// A straight line between two points of the canvas, with a shape's stroke, shadow and line ends: the tail at
/// its start, the head at its end. It has no inside, so that a fill paints nothing and an interior stroke is
/// drawn as an ordinary one.
///
/// Its transform maps the local frame, as that of every renderable does; setting an end makes it a plain
/// translation again.
class VXR_EXPORT VXRLine : public VXRShape, public VXRRenderableFollower {
public:
    static constexpr int startHandle = 0, endHandle = 1, handleCount = 2, noHandle = -1;

    static std::shared_ptr<VXRLine> lineFromPointToPoint(Point start, Point end);

    VXRLine(); ///< both ends at the origin, no fill
    ~VXRLine() override;

    // Ends, in canvas coordinates.
    Point startPoint() const { return handlePoint(startHandle); }
    Point endPoint() const { return handlePoint(endHandle); }
    /// Connected ends go back to their places. Coordinates that are not finite are refused.
    void setStartPointEndPoint(Point start, Point end);
    void setStartPoint(Point point) { setStartPointEndPoint(point, endPoint()); }
    void setEndPoint(Point point) { setStartPointEndPoint(startPoint(), point); }
    float length() const;

    // Handles: one at each end.
    Point handlePoint(int handle) const;
    /// The nearest handle within `reach` of a point, `noHandle` without one.
    int handleAtPoint(Point point, float reach) const;
    /// Drags an end; the other stays. Constrained, the line keeps to one of eight directions
    /// (`VXRShiftConstrainDelta`). An end that is dragged away is not connected any more.
    void dragHandleToPoint(int handle, Point point, bool constrained);

    // Connections.
    /// Connects an end to the outline of a renderable: that of a shape's path, else that of the local frame.
    /// `near`, in canvas coordinates, chooses the place; it counts in that mode alone. A line connects
    /// neither to itself nor to none.
    void connectHandle(int handle, VXRRenderable& renderable, VXRLineConnectionMode mode, Point near = {});
    void disconnectHandle(int handle); ///< the end stays where it is
    const VXRLineConnection& connection(int handle) const { return mConnections[index(handle)]; }
    /// For whoever reads lines: the end stays where it is until the renderable changes.
    void _setConnection(int handle, const VXRLineConnection& connection);

    // The renderable's operations.
    bool wantsInteriorStroke() const override { return false; }
    Rect computeGeometricBounds() const override; ///< spanned by the two ends: may lack width or height
    /// Within half the width of the line, two units more for one less than 5 wide, or on a line end. Canvas
    /// units, whatever the transform.
    bool containsPoint(Point) const override;
    bool intersectsRect(const Rect&) const override; ///< whether the line touches it

    void followedRenderableDidChange(VXRRenderable&) override;
    void followedRenderableWillGo(VXRRenderable&) override;

protected:
    void outlineDidChange() override;

private:
    static std::size_t index(int handle) { return handle == endHandle ? 1 : 0; }
    void place(Point start, Point end);
    void keepConnections();
    std::optional<Point> connectedPoint(int handle) const;
    bool isFollowing(const VXRRenderable*) const;

    std::array<VXRLineConnection, handleCount> mConnections;
    bool mPlacing = false;
    unsigned mRound = 0; ///< of changes, in which it has followed `mFollowed` times
    int mFollowed = 0;
};

} // namespace vxr
