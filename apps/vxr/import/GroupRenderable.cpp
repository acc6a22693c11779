#include "GroupRenderable.h"

#include "PixelBounds.h"

#include <vxr/geometry/TransformAdditions.h>
#include <vxr/platform/graphics/Context.h>

#include <algorithm>

namespace app {

GroupRenderable::GroupRenderable(Children children, ClipPaths clip)
    : mChildren(std::move(children))
    , mClip(std::move(clip))
{
    for (const auto& child : mChildren)
        child->setCanvas(&mChildCanvas);
}

GroupRenderable::~GroupRenderable()
{
    for (const auto& child : mChildren)
        child->setCanvas(nullptr);
}

void GroupRenderable::renderIntoContext(vxr::Context& context)
{
    const vxr::StateSaver saved(context);
    context.concatTransform(transform());
    for (const auto& path : mClip)
        context.clipToPath(*path, path->windingRule());
    const vxr::Rect visible = context.clipBounds();
    for (const auto& child : mChildren) {
        if (vxr::rectsIntersect(child->erasableBounds(), visible))
            child->renderLayeredIntoContext(context);
    }
}

vxr::Rect GroupRenderable::computeGeometricBounds() const
{
    vxr::Rect bounds;
    for (const auto& child : mChildren)
        bounds = vxr::unionRect(bounds, child->erasableBounds());
    for (const auto& path : mClip)
        bounds = vxr::intersectionRect(bounds, path->bounds());
    return bounds.isEmpty() ? vxr::Rect {} : vxr::boundsOfTransformedRect(transform(), bounds);
}

vxr::Rect GroupRenderable::computeAlignmentBounds() const
{
    return boundsOnPixels(VXRRenderable::computeAlignmentBounds(), canvas());
}

bool GroupRenderable::containsPoint(vxr::Point p) const
{
    const std::optional<vxr::AffineTransform> inverse = transform().inverted();
    if (!inverse)
        return false;
    const vxr::Point local = inverse->map(p);
    return std::all_of(
               mClip.begin(), mClip.end(), [&](const auto& path) { return path->containsPoint(local); })
        && std::any_of(mChildren.begin(), mChildren.end(),
            [&](const auto& child) { return child->containsPoint(local); });
}

void GroupRenderable::childChanged(const vxr::Rect& area)
{
    const vxr::Rect before = erasableBounds();
    invalidateBoundingBox();
    if (!canvas())
        return;
    // Of other bounds the layer starts at another place, where all of its pixels lie differently.
    if (erasableBounds() == before)
        setNeedsDisplayInRect(area);
    else
        invalidate();
}

void GroupRenderable::ChildCanvas::setNeedsDisplayInRect(const vxr::Rect& rect) { mGroup.childChanged(rect); }

void GroupRenderable::ChildCanvas::invalidateRenderable(VXRRenderable& child)
{
    mGroup.childChanged(child.erasableBounds());
}

float GroupRenderable::ChildCanvas::viewScale() const { return outer() ? outer()->viewScale() : 1; }

int GroupRenderable::ChildCanvas::renderingDestination() const
{
    const bool onPaper = outer() && outer()->renderingDestination() == vxr::VXRDestinationNonScreen;
    return onPaper ? vxr::VXRDestinationNonScreen : vxr::VXRDestinationDirect;
}

bool GroupRenderable::ChildCanvas::rendersBlackAndWhite() const
{
    return outer() && outer()->rendersBlackAndWhite();
}

bool GroupRenderable::ChildCanvas::isStatic() const { return outer() && outer()->isStatic(); }

std::optional<vxr::AffineTransform> GroupRenderable::ChildCanvas::additionalShadowTransform() const
{
    return outer() ? outer()->additionalShadowTransform() : std::nullopt;
}

bool GroupRenderable::ChildCanvas::scaleShadowsWhenZooming() const
{
    return !outer() || outer()->scaleShadowsWhenZooming();
}

vxr::VXRBitmapRenderingQualityInfo* GroupRenderable::ChildCanvas::bitmapRenderingQualityInfo() const
{
    return outer() ? outer()->bitmapRenderingQualityInfo() : nullptr;
}

bool GroupRenderable::ChildCanvas::isFlipped() const { return !outer() || outer()->isFlipped(); }

vxr::Rect GroupRenderable::ChildCanvas::clipViewVisibleRect() const
{
    return outer() ? outer()->clipViewVisibleRect() : vxr::Rect {};
}

vxr::Rect GroupRenderable::ChildCanvas::visibleRect() const
{
    return outer() ? outer()->visibleRect() : vxr::Rect {};
}

vxr::Rect GroupRenderable::ChildCanvas::convertRectToWindow(const vxr::Rect& rect) const
{
    return outer() ? outer()->convertRectToWindow(rect) : rect;
}

} // namespace app
