#pragma once

#include "Clips.h"

#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/renderables/VXRRenderable.h>

namespace app {

/// Renderables that share an opacity, a shadow, a transform and a clip. To its canvas it is one renderable
/// with one layer; to its children it is the canvas, so that a change of a child reaches the layer that
/// shows it. The children's canvas coordinates are the group's local frame.
class GroupRenderable final : public vxr::VXRRenderable {
public:
    using Children = std::vector<std::shared_ptr<vxr::VXRRenderable>>;

    /// Children back to front. The clip is the common part of its paths, given in the local frame; without
    /// paths nothing is clipped.
    GroupRenderable(Children children, ClipPaths clip);
    ~GroupRenderable() override;

    const Children& children() const { return mChildren; }
    const ClipPaths& clip() const { return mClip; }

    void renderIntoContext(vxr::Context&) override;
    vxr::Rect computeGeometricBounds() const override; ///< what the children may paint within the clip
    vxr::Rect computeAlignmentBounds() const override; ///< the same, on whole pixels for a compositor
    bool containsPoint(vxr::Point) const override; ///< some child does, within the clip

private:
    /// What the children take for their canvas. They draw into whatever the group draws into, so to them it
    /// has no compositor.
    class ChildCanvas final : public vxr::VXRCanvasRole {
    public:
        explicit ChildCanvas(GroupRenderable& group)
            : mGroup(group)
        {
        }

        void registerRenderable(VXRRenderable&) override { }
        void unregisterRenderable(VXRRenderable&) override { }
        void setNeedsDisplayInRect(const vxr::Rect&) override;
        void invalidateRenderable(VXRRenderable&) override;
        float viewScale() const override;
        bool usesCompositor() const override { return false; }
        int renderingDestination() const override;
        bool rendersBlackAndWhite() const override;
        bool isStatic() const override;
        std::optional<vxr::AffineTransform> additionalShadowTransform() const override;
        bool scaleShadowsWhenZooming() const override;
        vxr::VXRBitmapRenderingQualityInfo* bitmapRenderingQualityInfo() const override;
        bool isFlipped() const override;
        vxr::Rect clipViewVisibleRect() const override;
        vxr::Rect visibleRect() const override;
        vxr::Rect convertRectToWindow(const vxr::Rect&) const override;

    private:
        vxr::VXRCanvasRole* outer() const { return mGroup.canvas(); }

        GroupRenderable& mGroup;
    };

    void childChanged(const vxr::Rect& area); ///< in the local frame

    Children mChildren;
    ClipPaths mClip;
    ChildCanvas mChildCanvas { *this };
};

} // namespace app
