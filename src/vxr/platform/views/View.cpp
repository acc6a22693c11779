#include <vxr/platform/views/View.h>

#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/views/ClipView.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>

#include <algorithm>

namespace vxr {

namespace {

int postingDisabled = 0;

/// More dirty rectangles than this are merged: finding what each touches would cost more than drawing.
constexpr std::size_t mostDirtyRects = 48;

} // namespace

View::View(const Rect& frame)
    : mFrame(frame)
{
}

View::~View()
{
    for (const auto& subview : mSubviews) {
        subview->mSuperview = nullptr;
        subview->moveToWindow(nullptr);
    }
}

// The tree.

void View::addSubview(std::shared_ptr<View> view)
{
    if (!view || isDescendantOf(*view))
        throw InvalidArgumentException("A view can't become its own subview.");
    view->removeFromSuperview();
    view->mSuperview = this;
    mSubviews.push_back(view);
    view->moveToWindow(mWindow);
    didAddSubview(*view);
    view->setNeedsDisplay(true);
}

void View::removeFromSuperview()
{
    if (!mSuperview)
        return;
    View& from = *mSuperview;
    from.setNeedsDisplayInRect(mFrame);
    from.willRemoveSubview(*this);
    const auto place = std::find_if(from.mSubviews.begin(), from.mSubviews.end(),
        [this](const auto& view) { return view.get() == this; });
    const std::shared_ptr<View> self = *place; // the superview may hold the last reference
    from.mSubviews.erase(place);
    mSuperview = nullptr;
    moveToWindow(nullptr);
}

void View::moveToWindow(Window* window)
{
    if (window == mWindow)
        return;
    viewWillMoveToWindow(window);
    mWindow = window;
    for (const auto& subview : mSubviews)
        subview->moveToWindow(window);
    viewDidMoveToWindow();
}

bool View::isDescendantOf(const View& ancestor) const
{
    for (const View* view = this; view; view = view->mSuperview)
        if (view == &ancestor)
            return true;
    return false;
}

ScrollView* View::enclosingScrollView() const
{
    for (View* view = mSuperview; view; view = view->mSuperview)
        if (auto* scrollView = dynamic_cast<ScrollView*>(view))
            return scrollView;
    return nullptr;
}

void View::setHidden(bool hidden)
{
    if (hidden == mHidden)
        return;
    mHidden = hidden;
    if (mSuperview)
        mSuperview->setNeedsDisplayInRect(mFrame);
}

// Geometry.

void View::geometryDidChange(const char* notification)
{
    setNeedsDisplay(true);
    if (isPostingEnabled())
        NotificationCenter::defaultCenter().post(notification, this);
}

void View::setFrame(const Rect& frame)
{
    if (frame == mFrame)
        return;
    if (mSuperview)
        mSuperview->setNeedsDisplayInRect(mFrame);
    mFrame = frame;
    if (mSuperview)
        mSuperview->setNeedsDisplayInRect(mFrame);
    geometryDidChange(NSViewFrameDidChangeNotification);
}

Rect View::bounds() const
{
    return { mBoundsOrigin,
        { float(double(mFrame.size.width) / mUnitX), float(double(mFrame.size.height) / mUnitY) } };
}

void View::setBoundsOrigin(Point origin)
{
    if (origin == mBoundsOrigin)
        return;
    mBoundsOrigin = origin;
    geometryDidChange(NSViewBoundsDidChangeNotification);
}

void View::scaleUnitSquareToSize(Size unit)
{
    if (!(unit.width > 0 && unit.height > 0))
        throw InvalidArgumentException("A view's unit has a positive size.");
    mUnitX *= double(unit.width);
    mUnitY *= double(unit.height);
    geometryDidChange(NSViewBoundsDidChangeNotification);
}

void View::Mapping::then(const Mapping& outer)
{
    *this = { sx * outer.sx, sy * outer.sy, tx * outer.sx + outer.tx, ty * outer.sy + outer.ty };
}

View::Mapping View::Mapping::inverse() const { return { 1 / sx, 1 / sy, -tx / sx, -ty / sy }; }

Point View::Mapping::map(Point p) const
{
    return { float(double(p.x) * sx + tx), float(double(p.y) * sy + ty) };
}

Rect View::Mapping::map(const Rect& r) const
{
    const double x0 = double(r.origin.x) * sx + tx, y0 = double(r.origin.y) * sy + ty;
    const double width = double(r.size.width) * sx, height = double(r.size.height) * sy;
    return { float(std::min(x0, x0 + width)), float(std::min(y0, y0 + height)), float(std::abs(width)),
        float(std::abs(height)) };
}

// Window coordinates grow upwards, and so do those of a missing superview.
View::Mapping View::mappingToSuperview() const
{
    const bool superFlipped = mSuperview && mSuperview->isFlipped();
    Mapping m;
    m.sx = mUnitX;
    m.tx = double(mFrame.origin.x) - double(mBoundsOrigin.x) * mUnitX;
    if (isFlipped() == superFlipped) {
        m.sy = mUnitY;
        m.ty = double(mFrame.origin.y) - double(mBoundsOrigin.y) * mUnitY;
    } else {
        m.sy = -mUnitY;
        m.ty = double(mFrame.origin.y) + double(mFrame.size.height) + double(mBoundsOrigin.y) * mUnitY;
    }
    return m;
}

View::Mapping View::mappingToWindow() const
{
    Mapping m = mappingToSuperview();
    for (const View* view = mSuperview; view; view = view->mSuperview)
        m.then(view->mappingToSuperview());
    return m;
}

Point View::convertPointToView(Point p, const View* to) const
{
    Mapping m = mappingToWindow();
    if (to)
        m.then(to->mappingToWindow().inverse());
    return m.map(p);
}

Point View::convertPointFromView(Point p, const View* from) const
{
    Mapping m = from ? from->mappingToWindow() : Mapping {};
    m.then(mappingToWindow().inverse());
    return m.map(p);
}

Rect View::convertRectToView(const Rect& r, const View* to) const
{
    Mapping m = mappingToWindow();
    if (to)
        m.then(to->mappingToWindow().inverse());
    return m.map(r);
}

Rect View::convertRectFromView(const Rect& r, const View* from) const
{
    Mapping m = from ? from->mappingToWindow() : Mapping {};
    m.then(mappingToWindow().inverse());
    return m.map(r);
}

Rect View::visibleRect() const
{
    if (mHidden)
        return {};
    if (!mSuperview)
        return bounds();
    const Rect above = mSuperview->visibleRect();
    return intersectionRect(bounds(), mappingToSuperview().inverse().map(above));
}

// Dirty areas.

void View::setNeedsDisplay(bool needs)
{
    mDirtyRects.clear();
    if (needs)
        setNeedsDisplayInRect(bounds());
}

void View::setNeedsDisplayInRect(const Rect& rect)
{
    const Rect dirty = intersectionRect(rect, bounds());
    if (dirty.isEmpty())
        return;
    for (const Rect& known : mDirtyRects)
        if (rectContainsRect(known, dirty))
            return;
    std::erase_if(mDirtyRects, [&](const Rect& known) { return rectContainsRect(dirty, known); });
    mDirtyRects.push_back(dirty);
    if (mDirtyRects.size() > mostDirtyRects)
        mDirtyRects = { unionDirtyRects() };
}

Rect View::unionDirtyRects() const
{
    Rect all;
    for (const Rect& dirty : mDirtyRects)
        all = unionRect(all, dirty);
    return all;
}

void View::_propagateDirtyRectsToOpaqueAncestors()
{
    if (!needsDisplay() || isOpaque() || !mSuperview || mHidden)
        return;
    const Rect visible = visibleRect();
    for (const Rect& dirty : mDirtyRects) {
        const Rect seen = intersectionRect(dirty, visible);
        for (View* above = mSuperview; above && !seen.isEmpty(); above = above->mSuperview) {
            above->setNeedsDisplayInRect(convertRectToView(seen, above));
            if (above->isOpaque())
                break;
        }
    }
}

void View::display()
{
    setNeedsDisplay(true);
    displayIfNeeded();
}

void View::displayIfNeeded()
{
    if (mWindow)
        mWindow->displayViewIfNeeded(*this);
}

// Drawing.

void View::lockFocus()
{
    if (!mWindow)
        throw GenericException("A view without a window can't be focused.");
    mWindow->focus(*this);
}

void View::unlockFocus() { Window::unfocus(*this); }

View* View::focusView() { return Window::focusedView(); }

void View::drawTreeIntoContext(Context& context, const Rect& area, bool drawsToScreen)
{
    const CurrentContextScope scope(context, drawsToScreen, isFlipped());
    drawSubtree(context, intersectionRect(area, bounds()));
}

void View::drawSubtree(Context& context, const Rect& area)
{
    if (mHidden || area.isEmpty())
        return;
    const StateSaver saved(context);
    context.clipToRect(area);
    draw({ area, context });
    for (const auto& subview : mSubviews) {
        const StateSaver inner(context);
        const Mapping m = subview->mappingToSuperview();
        context.concatTransform({ float(m.sx), 0, 0, float(m.sy), float(m.tx), float(m.ty) });
        subview->drawSubtree(context, intersectionRect(m.inverse().map(area), subview->bounds()));
    }
}

void View::scrollPoint(Point p)
{
    for (View* above = mSuperview; above; above = above->mSuperview) {
        if (auto* clipView = dynamic_cast<ClipView*>(above)) {
            clipView->scrollToPoint(clipView->constrainScrollPoint(convertPointToView(p, clipView)));
            return;
        }
    }
}

bool View::scrollRectToVisible(const Rect& rect)
{
    const Rect visible = visibleRect();
    const auto shift = [](float from, float length, float seenFrom, float seenLength) {
        if (from < seenFrom)
            return from - seenFrom;
        return std::max(0.0f, std::min(from - seenFrom, from + length - seenFrom - seenLength));
    };
    const float dx = shift(rect.minX(), rect.size.width, visible.minX(), visible.size.width);
    const float dy = shift(rect.minY(), rect.size.height, visible.minY(), visible.size.height);
    if (dx == 0 && dy == 0)
        return false;
    scrollPoint({ visible.origin.x + dx, visible.origin.y + dy });
    return true;
}

void View::disablePosting() { ++postingDisabled; }

void View::enablePosting()
{
    if (postingDisabled > 0)
        --postingDisabled;
}

bool View::isPostingEnabled() { return postingDisabled == 0; }

} // namespace vxr
