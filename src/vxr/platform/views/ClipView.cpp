#include <vxr/platform/views/ClipView.h>

#include <vxr/platform/views/Window.h>

#include <algorithm>
#include <cmath>

namespace vxr {

ClipView::ClipView(const Rect& frame)
    : View(frame)
{
}

void ClipView::setDocumentView(std::shared_ptr<View> view)
{
    if (view == mDocumentView)
        return;
    if (mDocumentView)
        mDocumentView->removeFromSuperview();
    mDocumentView = view;
    if (view)
        addSubview(std::move(view));
    setBoundsOrigin(documentRect().origin);
    setNeedsDisplay(true);
}

Rect ClipView::documentRect() const { return mDocumentView ? mDocumentView->frame() : Rect {}; }

Rect ClipView::documentVisibleRect() const
{
    return mDocumentView ? convertRectToView(bounds(), mDocumentView.get()) : Rect {};
}

// Whole units keep the document on the pixel grid, so that moved pixels and newly drawn ones
// agree.
Point ClipView::constrainScrollPoint(Point p) const
{
    const Rect document = documentRect();
    const Size shown = bounds().size;
    const auto constrain = [](float wanted, float first, float length, float seen) {
        const float last = std::max(first, first + length - seen);
        return std::floor(std::clamp(wanted, first, last) + 0.5f);
    };
    return { constrain(p.x, document.minX(), document.size.width, shown.width),
        constrain(p.y, document.minY(), document.size.height, shown.height) };
}

// Pixels that an ancestor has not drawn yet are stale wherever they are moved to, and those of a view in
// front must not move.
bool ClipView::canMovePixels() const
{
    if (!window() || visibleRect() != bounds())
        return false;
    for (const View* view = this; const View* above = view->superview(); view = above) {
        if (above->needsDisplay())
            return false;
        bool isInFront = false;
        for (const auto& sibling : above->subviews()) {
            if (isInFront && !sibling->isHidden() && rectsIntersect(sibling->frame(), view->frame()))
                return false;
            isInFront = isInFront || sibling.get() == view;
        }
    }
    return true;
}

void ClipView::scrollToPoint(Point p)
{
    const Rect before = bounds();
    if (p == before.origin)
        return;
    const bool canMove = canMovePixels();
    const Rect seenBefore = documentVisibleRect();
    const std::vector<Rect> stale = dirtyRects();
    const Point from = convertPointToView(before.origin, nullptr);
    setBoundsOrigin(p); // marks the whole view dirty
    const Point to = convertPointToView(before.origin, nullptr);
    const bool moves
        = canMove && (mCopiesOnScroll || (mDocumentView && mDocumentView->keepsPixelsOnScroll(seenBefore)));
    if (!moves || !window()->movePixels(convertRectToView(bounds(), nullptr), to.x - from.x, to.y - from.y))
        return;

    setNeedsDisplay(false);
    for (const Rect& dirty : stale)
        setNeedsDisplayInRect(dirty);
    // The newly visible area is what lies outside the part visible before.
    const Rect now = bounds();
    const float dx = p.x - before.origin.x, dy = p.y - before.origin.y;
    const float width = std::min(std::abs(dx), now.size.width);
    const float height = std::min(std::abs(dy), now.size.height);
    setNeedsDisplayInRect({ dx > 0 ? now.maxX() - width : now.minX(), now.minY(), width, now.size.height });
    setNeedsDisplayInRect({ now.minX(), dy > 0 ? now.maxY() - height : now.minY(), now.size.width, height });
}

} // namespace vxr
