#pragma once

#include <vxr/renderables/VXRRenderable.h>

namespace vxr {

class MemberBounds;

/// Renderables that share a placement, an opacity, a shadow and a clip.
///
/// To its canvas a group is one renderable with one layer. To its members it is the canvas, so that a change
/// of a member reaches the layer that shows it; their canvas coordinates are the group's local frame. A
/// member belongs to the group until it is removed, and detaches from any canvas it had before.
///
/// A member's shadow keeps its direction on the canvas, and its offset and blur shrink or grow with the
/// group, by the smaller factor where the group's transform stretches.
class VXR_EXPORT VXRGroup : public VXRRenderable {
public:
    using Members = std::vector<std::shared_ptr<VXRRenderable>>;
    using ClipPaths = std::vector<std::shared_ptr<const Path>>;

    VXRGroup();
    ~VXRGroup() override; ///< detaches the members
    static std::shared_ptr<VXRGroup> groupWithRenderables(Members);

    // Members, back to front. None, the group itself, a group around it or a member twice throws an
    // `InvalidArgumentException`.
    const Members& renderables() const { return mMembers; }
    void setRenderables(Members);
    void insertRenderableAtIndex(std::shared_ptr<VXRRenderable>, std::size_t index); ///< past the end: on top
    void removeRenderable(VXRRenderable&); ///< nothing happens for one that is no member
    /// The frontmost member that contains a point of the canvas, within the clip; none if there is none.
    std::shared_ptr<VXRRenderable> renderableAtPoint(Point) const;

    /// The members are clipped to what all paths have in common. The paths are in the local frame and are
    /// shared with the caller, who leaves them as they are. Without paths nothing is clipped.
    const ClipPaths& clipPaths() const { return mClip; }
    void setClipPaths(ClipPaths);

    void setCanvas(VXRCanvasRole*) override;
    void setDynamicallyTransforming(bool) override;
    void invalidateBoundingBox() override;
    Size naturalSize() const override; ///< of what the members cover in the local frame
    Rect computeGeometricBounds() const override; ///< of the members' own ones within the clip
    Rect computeAlignmentBounds() const override; ///< of all that the members may paint within the clip
    bool containsPoint(Point) const override; ///< some member does, within the clip
    bool intersectsRect(const Rect&) const override; ///< some member does
    void renderIntoContext(Context&) override;
    bool requiresQuickdraw() const override;
    void addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo&) override;

private:
    class MemberCanvas;

    void checkMember(const VXRRenderable*) const;
    bool contains(const VXRRenderable&) const;
    void adopt(VXRRenderable&);
    Rect clipped(Rect) const;
    bool clipContains(Point local) const;
    Rect localGeometricBounds() const;
    void leave(VXRRenderable&);
    void membersChanged(); ///< other ones, or in another order
    void memberChanged(const Rect& area); ///< in the local frame
    void contentChanged();

    Members mMembers;
    ClipPaths mClip;
    std::unique_ptr<MemberCanvas> mMemberCanvas;
    std::unique_ptr<MemberBounds> mMemberBounds;
};

} // namespace vxr
