#include <vxr/renderables/VXRGroup.h>

#include <vxr/geometry/TransformAdditions.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/renderables/MemberBounds.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vxr {

/// What the members take for their canvas. They draw into whatever the group draws into, so to them it has no
/// compositor.
class VXRGroup::MemberCanvas final : public VXRCanvasRole {
public:
    explicit MemberCanvas(VXRGroup& group)
        : mGroup(group)
    {
    }

    void registerRenderable(VXRRenderable&) override { }
    void unregisterRenderable(VXRRenderable&) override { }
    void setNeedsDisplayInRect(const Rect& rect) override { mGroup.memberChanged(rect); }
    void renderableBoundsMayChange(const VXRRenderable& member) override
    {
        const std::size_t place = member.mIndexEntry;
        if (place < mGroup.mMembers.size() && mGroup.mMembers[place].get() == &member)
            mGroup.mMemberBounds->mayChange(place);
    }
    void invalidateRenderable(VXRRenderable& member) override
    {
        mGroup.memberChanged(member.erasableBounds());
    }
    bool usesCompositor() const override { return false; }
    float viewScale() const override { return (outer() ? outer()->viewScale() : 1) * scaleOfGroup(); }
    int renderingDestination() const override
    {
        const bool onPaper = outer() && outer()->renderingDestination() == VXRDestinationNonScreen;
        return onPaper ? VXRDestinationNonScreen : VXRDestinationDirect;
    }
    bool rendersBlackAndWhite() const override { return outer() && outer()->rendersBlackAndWhite(); }
    bool isStatic() const override { return outer() && outer()->isStatic(); }
    /// A shadow is laid out on the canvas: its offset, scaled as `viewScale` has it, is turned back into the
    /// local frame.
    std::optional<AffineTransform> additionalShadowTransform() const override
    {
        AffineTransform linear = mGroup.transform();
        linear.tX = linear.tY = 0;
        const std::optional<AffineTransform> back = linear.inverted();
        const auto extra = outer() ? outer()->additionalShadowTransform() : std::nullopt;
        if (!back)
            return extra;
        const float scale = scaleOfGroup();
        const AffineTransform scaled = AffineTransform::makeScale(scale, scale).append(*back);
        return extra ? AffineTransform(*extra).append(scaled) : scaled;
    }
    bool scaleShadowsWhenZooming() const override { return !outer() || outer()->scaleShadowsWhenZooming(); }
    VXRBitmapRenderingQualityInfo* bitmapRenderingQualityInfo() const override
    {
        return outer() ? outer()->bitmapRenderingQualityInfo() : nullptr;
    }
    bool isFlipped() const override { return !outer() || outer()->isFlipped(); }
    Rect clipViewVisibleRect() const override
    {
        return toLocal(outer() ? outer()->clipViewVisibleRect() : Rect {});
    }
    Rect visibleRect() const override { return toLocal(outer() ? outer()->visibleRect() : Rect {}); }
    Rect convertRectToWindow(const Rect& rect) const override
    {
        const Rect onCanvas = boundsOfTransformedRect(mGroup.transform(), rect);
        return outer() ? outer()->convertRectToWindow(onCanvas) : onCanvas;
    }

    /// The smaller singular value of the group's transform.
    float scaleOfGroup() const
    {
        const AffineTransform t = mGroup.transform();
        if (t.m11 == 1 && t.m22 == 1 && t.m12 == 0 && t.m21 == 0)
            return 1;
        const double a = t.m11, b = t.m12, c = t.m21, d = t.m22;
        const double larger = (std::hypot(a + d, b - c) + std::hypot(a - d, b + c)) / 2;
        return larger > 0 ? static_cast<float>(std::fabs(a * d - b * c) / larger) : 0;
    }

private:
    VXRCanvasRole* outer() const { return mGroup.canvas(); }

    Rect toLocal(const Rect& rect) const
    {
        const std::optional<AffineTransform> inverse = mGroup.transform().inverted();
        return inverse ? boundsOfTransformedRect(*inverse, rect) : Rect {};
    }

    VXRGroup& mGroup;
};

VXRGroup::VXRGroup()
    : mMemberCanvas(std::make_unique<MemberCanvas>(*this))
    , mMemberBounds(std::make_unique<MemberBounds>())
{
}

VXRGroup::~VXRGroup()
{
    for (const auto& member : mMembers)
        leave(*member);
}

std::shared_ptr<VXRGroup> VXRGroup::groupWithRenderables(Members members)
{
    auto group = std::make_shared<VXRGroup>();
    group->setRenderables(std::move(members));
    return group;
}

// Members.

bool VXRGroup::contains(const VXRRenderable& renderable) const
{
    return &renderable == this || std::any_of(mMembers.begin(), mMembers.end(), [&](const auto& member) {
        const auto* group = dynamic_cast<const VXRGroup*>(member.get());
        return member.get() == &renderable || (group && group->contains(renderable));
    });
}

void VXRGroup::checkMember(const VXRRenderable* member) const
{
    const auto* group = dynamic_cast<const VXRGroup*>(member);
    if (!member || member == this || (group && group->contains(*this)))
        throw InvalidArgumentException("A group can't hold none, itself, or a group that it is in.");
}

void VXRGroup::adopt(VXRRenderable& member)
{
    member.setCanvas(mMemberCanvas.get());
    member.invalidateBoundingBox(); // shadows lie elsewhere in another group
}

void VXRGroup::leave(VXRRenderable& member)
{
    member.mIndexEntry = UINT32_MAX;
    member.setCanvas(nullptr);
}

void VXRGroup::membersChanged()
{
    mMemberBounds->forget();
    for (std::size_t i = 0; i < mMembers.size(); ++i)
        mMembers[i]->mIndexEntry = static_cast<std::uint32_t>(i);
    contentChanged();
}

void VXRGroup::setRenderables(Members members)
{
    Members sorted = members;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
        throw InvalidArgumentException("A group can't hold a renderable twice.");
    for (const auto& member : members)
        checkMember(member.get());
    autoErase();
    const Members old = std::exchange(mMembers, {});
    for (const auto& member : old) {
        if (!std::binary_search(sorted.begin(), sorted.end(), member))
            leave(*member);
    }
    mMembers = std::move(members);
    for (const auto& member : mMembers)
        adopt(*member);
    membersChanged();
}

void VXRGroup::insertRenderableAtIndex(std::shared_ptr<VXRRenderable> member, std::size_t index)
{
    checkMember(member.get());
    if (std::find(mMembers.begin(), mMembers.end(), member) != mMembers.end())
        throw InvalidArgumentException("A group can't hold a renderable twice.");
    autoErase();
    adopt(*member);
    mMembers.insert(
        mMembers.begin() + static_cast<std::ptrdiff_t>(std::min(index, mMembers.size())), std::move(member));
    membersChanged();
}

void VXRGroup::removeRenderable(VXRRenderable& member)
{
    const auto place = std::find_if(
        mMembers.begin(), mMembers.end(), [&](const auto& held) { return held.get() == &member; });
    if (place == mMembers.end())
        return;
    autoErase();
    const std::shared_ptr<VXRRenderable> kept = *place; // until it has left its canvas
    mMembers.erase(place);
    leave(*kept);
    membersChanged();
}

void VXRGroup::setClipPaths(ClipPaths paths)
{
    if (std::find(paths.begin(), paths.end(), nullptr) != paths.end())
        throw InvalidArgumentException("A path of a clip can't be none.");
    autoErase();
    mClip = std::move(paths);
    contentChanged();
}

void VXRGroup::contentChanged()
{
    VXRRenderable::invalidateBoundingBox();
    autoInvalidate();
}

void VXRGroup::memberChanged(const Rect& area)
{
    if (!canvas() || !autoInvalidates())
        return VXRRenderable::invalidateBoundingBox();
    const Rect before = erasableBounds();
    VXRRenderable::invalidateBoundingBox();
    // Of other bounds the layer starts at another place, where all of its pixels lie differently.
    if (erasableBounds() == before) {
        // A small group has made the slack of its members small, too.
        const float slack = 5 / std::clamp(mMemberCanvas->scaleOfGroup(), 1e-3f, 1.0f) - 5;
        setNeedsDisplayInRect(insetRect(area, -slack, -slack));
    } else {
        invalidate();
    }
}

void VXRGroup::setCanvas(VXRCanvasRole* newCanvas)
{
    if (newCanvas == canvas())
        return;
    VXRRenderable::setCanvas(newCanvas);
    invalidateBoundingBox(); // members' shadows depend on the canvas
}

void VXRGroup::setDynamicallyTransforming(bool flag)
{
    VXRRenderable::setDynamicallyTransforming(flag);
    for (const auto& member : mMembers)
        member->setDynamicallyTransforming(flag);
}

// Bounds.

void VXRGroup::invalidateBoundingBox()
{
    VXRRenderable::invalidateBoundingBox();
    mMemberBounds->forget(); // shadows lie elsewhere
    for (const auto& member : mMembers) {
        if (dynamic_cast<VXRGroup*>(member.get())) // only groups keep bounds with shadows in them
            member->invalidateBoundingBox();
    }
}

Rect VXRGroup::clipped(Rect bounds) const
{
    for (const auto& path : mClip)
        bounds = intersectionRect(bounds, path->bounds());
    return bounds;
}

Rect VXRGroup::localGeometricBounds() const
{
    return clipped(mMemberBounds->geometric(mMembers, *mMemberCanvas));
}

Size VXRGroup::naturalSize() const { return localGeometricBounds().size; }

Rect VXRGroup::computeGeometricBounds() const
{
    return boundsOfTransformedRect(transform(), localGeometricBounds());
}

Rect VXRGroup::computeAlignmentBounds() const
{
    const Rect local = clipped(mMemberBounds->erasable(mMembers, *mMemberCanvas));
    return local.isEmpty() ? Rect {} : boundsOfTransformedRect(transform(), local);
}

// Hit testing.

bool VXRGroup::clipContains(Point local) const
{
    return std::all_of(
        mClip.begin(), mClip.end(), [&](const auto& path) { return path->containsPoint(local); });
}

std::shared_ptr<VXRRenderable> VXRGroup::renderableAtPoint(Point p) const
{
    const std::optional<Point> local = localPointForHitTest(p);
    if (!local || !clipContains(*local))
        return nullptr;
    const auto hit = std::find_if(mMembers.rbegin(), mMembers.rend(),
        [&](const auto& member) { return member->containsPoint(*local); });
    return hit == mMembers.rend() ? nullptr : *hit;
}

bool VXRGroup::containsPoint(Point p) const { return renderableAtPoint(p) != nullptr; }

bool VXRGroup::intersectsRect(const Rect& rect) const
{
    const std::optional<AffineTransform> inverse = transform().inverted();
    if (!inverse || !VXRRenderable::intersectsRect(rect))
        return false;
    const Rect local = clipped(boundsOfTransformedRect(*inverse, rect));
    return std::any_of(
        mMembers.begin(), mMembers.end(), [&](const auto& member) { return member->intersectsRect(local); });
}

// Drawing.

void VXRGroup::renderIntoContext(Context& context)
{
    const StateSaver saved(context);
    context.concatTransform(transform());
    for (const auto& path : mClip)
        context.clipToPath(*path, path->windingRule());
    const Rect visible = insetRect(context.clipBounds(), -erasingSlack, -erasingSlack);
    for (const auto& member : mMembers) {
        if (rectsIntersect(member->erasableBounds(), visible))
            member->renderLayeredIntoContext(context);
    }
}

bool VXRGroup::requiresQuickdraw() const
{
    return std::any_of(
        mMembers.begin(), mMembers.end(), [](const auto& member) { return member->requiresQuickdraw(); });
}

void VXRGroup::addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo& info)
{
    for (const auto& member : mMembers)
        member->addBitmapsToRenderingQualityInfo(info);
}

} // namespace vxr
