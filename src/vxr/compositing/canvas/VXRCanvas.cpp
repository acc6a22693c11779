#include <vxr/compositing/canvas/VXRCanvas.h>

#include <vxr/compositing/canvas/RenderableIndex.h>
#include <vxr/compositing/canvas/VXRTransformableViewRenderable.h>
#include <vxr/compositing/canvas/WindowComposite.h>
#include <vxr/compositing/layers/LayerPlacement.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/FirstFailure.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/base/UserDefaults.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

VXRCanvas::VXRCanvas(const Rect& frame)
    : VXRSubviewAbsolverView(frame)
    , mIndex(std::make_unique<RenderableIndex>(*this))
{
    if (UserDefaults::standardUserDefaults().boolForKey("VXRAcceleratedCanvas"))
        setAccelerated(true);
}

VXRCanvas::~VXRCanvas()
{
    for (VXRRenderable* renderable : mRegisteredRenderables.allObjects())
        renderable->setCanvas(nullptr);
    NotificationCenter::defaultCenter().removeObserver(this);
}

const VXRCanvas::RenderableList& VXRCanvas::objectsToRender() const
{
    static const RenderableList none;
    return none;
}

// Settings.

void VXRCanvas::setUsesCompositor(bool uses)
{
    _usesCompositor = uses;
    ScrollView* scrollView = enclosingScrollView();
    if (uses) {
        setRenderingDestination(VXRDestinationCompositor);
        if (scrollView)
            scrollView->contentView().setCopiesOnScroll(false);
        for (const auto& renderable : objectsToRender())
            renderable->invalidate();
    } else {
        setRenderingDestination(VXRDestinationDirect);
        if (scrollView)
            scrollView->contentView().setCopiesOnScroll(true);
        setAccelerated(false);
    }
}

int VXRCanvas::renderingDestination() const
{
    return GraphicsContext::currentContextDrawingToScreen() ? _destination : VXRDestinationNonScreen;
}

VXRBitmapRenderingQualityInfo* VXRCanvas::bitmapRenderingQualityInfo() const
{
    return mBitmapRenderingQualityInfo.get();
}

void VXRCanvas::setAccelerated(bool accelerated)
{
    mAccelerated = false;
    if (accelerated)
        VXULog_Fn(VXULogLevelWarning, "VXRCanvas.cpp", "WARNING, no accelerated road is built in.");
}

// Registration.

void VXRCanvas::registerRenderable(VXRRenderable& renderable)
{
    mRegisteredRenderables.addObject(renderable);
}

void VXRCanvas::unregisterRenderable(VXRRenderable& renderable)
{
    mRegisteredRenderables.removeObject(renderable);
    mIndex->remove(renderable);
}

// Scale.

void VXRCanvas::setScaleScrollingToMaintainCenter(float scale, bool keepCenter)
{
    const double ratio = 1.0 / double(_scale) * double(scale);
    if (!(scale > 0 && float(ratio) > 0 && std::isfinite(float(ratio))))
        throw InvalidArgumentException("A canvas's scale is a positive number.");
    const float old = _scale;
    if (isAccelerated() && window() && window()->isVisible())
        disableScreenUpdates();
    const Point center = VXRCenterOfRect(visibleRect());
    _scale = scale;
    scaleUnitSquareToSize({ float(ratio), float(ratio) });
    if (!keepCenter) {
        setNeedsDisplay(true);
        return;
    }
    const auto scaled
        = [&](float length) { return float(double(length) * (1.0 / double(old)) * double(scale)); };
    const Size size { scaled(frame().size.width), scaled(frame().size.height) };
    if (size != frame().size)
        setFrameSize(size);
    const Size seen = visibleRect().size;
    scrollPoint({ center.x - seen.width * 0.5f, center.y - seen.height * 0.5f });
    setNeedsDisplay(true);
}

// Damage.

void VXRCanvas::setNeedsDisplayInRect(const Rect& rect)
{
    // Far zoomed out, the slack of what is erased is less than what a layer's place is rounded by.
    const float missing = usesCompositor() ? placementSlack / _scale - erasingSlack : 0;
    View::setNeedsDisplayInRect(missing > 0 && !rect.isEmpty() ? insetRect(rect, -missing, -missing) : rect);
}

void VXRCanvas::renderableBoundsMayChange(const VXRRenderable& renderable)
{
    mIndex->boundsMayChange(renderable);
}

void VXRCanvas::invalidateRenderableInRect(VXRRenderable&, const Rect& rect)
{
    if (usesCompositor() && !rect.isEmpty())
        View::setNeedsDisplayInRect(insetRect(rect, -placementSlack / _scale, -placementSlack / _scale));
}

namespace {

/// Whether the index knows which layers have to be looked at when the view scrolls to or from `seen`.
bool isSteadyScroll(const Rect& seen, float scale)
{
    const auto isWholePixel = [&](float v) {
        return std::abs(v) < RenderableIndex::steadyReach && std::nearbyint(v * scale) == v * scale;
    };
    return (scale == 1 || scale == 2 || scale == 4) && isWholePixel(seen.origin.x)
        && isWholePixel(seen.origin.y)
        && std::max(seen.size.width, seen.size.height) <= RenderableIndex::steadyView;
}

} // namespace

/// A composite needs no more than what comes into sight: every layer is put at whole pixels from the corner
/// of what is seen. One whose place now rounds the other way is composited anew.
bool VXRCanvas::keepsPixelsOnScroll(const Rect& seenBefore)
{
    if (!usesCompositor())
        return false;
    const Rect seen = clipViewVisibleRect();
    const float slack = placementSlack / _scale;
    const float dx = VXRRound((seenBefore.origin.x - seen.origin.x) * _scale);
    const float dy = VXRRound((seenBefore.origin.y - seen.origin.y) * _scale);
    const RenderableList& list = indexedObjects();
    const Rect area = insetRect(seenBefore, -slack, -slack);
    const bool isSteady = isFlipped() && isSteadyScroll(seenBefore, _scale) && isSteadyScroll(seen, _scale);
    for (const std::uint32_t rank : isSteady ? mIndex->findUnsteady(area) : mIndex->find(area)) {
        const VXRRenderable& renderable = *list[rank];
        const Rect bounds = renderable.alignmentBounds();
        const Point before = placeOfLayer(bounds, seenBefore, _scale, isFlipped());
        const Point now = placeOfLayer(bounds, seen, _scale, isFlipped());
        if (now == Point { before.x + dx, before.y + dy })
            continue;
        View::setNeedsDisplayInRect(insetRect(renderable.erasableBounds(), -slack, -slack));
    }
    return true;
}

void VXRCanvas::_propagateDirtyRectsToOpaqueAncestors()
{
    const Rect visible = visibleRect();
    std::vector<std::shared_ptr<View>> left = subviews();
    static const RenderableList none;
    for (const auto& renderable : left.empty() ? none : objectsToRender()) {
        View* view = renderable->view();
        auto* hosting = view ? dynamic_cast<VXRTransformableViewRenderable*>(renderable.get()) : nullptr;
        if (!hosting)
            continue;
        const Rect dirty = view->unionDirtyRects();
        std::erase_if(left, [view](const auto& subview) { return subview.get() == view; });
        if (dirty.isEmpty())
            continue;
        const Rect inCanvas = convertRectFromView(dirty, view);
        if (!rectsIntersect(inCanvas, visible)) {
            view->setNeedsDisplay(false);
            continue;
        }
        const Rect local = convertRectToView(hosting->shadowBoundsForRect(inCanvas), view);
        disablePosting();
        setNeedsDisplayInRect(boundsOfTransformedRect(hosting->transform(), local));
        enablePosting();
        hosting->setViewShouldRender(true);
    }
    for (const auto& subview : left)
        subview->setNeedsDisplay(false);
    View::_propagateDirtyRectsToOpaqueAncestors();
}

Rect VXRCanvas::superviewVisibleRect() const
{
    return superview() ? convertRectFromView(superview()->visibleRect(), superview()) : visibleRect();
}

/// Layers are placed from its corner, and so is what a composite locks.
Rect VXRCanvas::clipViewVisibleRect() const
{
    const ScrollView* scrollView = enclosingScrollView();
    if (!scrollView)
        return visibleRect();
    const ClipView& clipView = scrollView->contentView();
    return convertRectFromView(clipView.bounds(), &clipView);
}

// Drawing.

void VXRCanvas::drawRect(const Rect& dirty)
{
    Window* const seen = window();
    draw({ dirty, currentDrawingPort(), nullptr,
        seen ? IntRect { 0, 0, seen->width(), seen->height() } : IntRect {} });
}

/// What is drawn is chosen by bounds, and the edges of a renderable reach a little beyond them; so a window's
/// redraw asks for more than is dirty, and only the dirty pixels change.
void VXRCanvas::draw(const DrawRequest& request)
{
    DrawRequest grown = request;
    const float slack = request.window ? erasingSlack + placementSlack / _scale : 0;
    grown.dirty = insetRect(request.dirty, -slack, -slack);
    FirstFailure failure;
    failure.attempt([&] {
        if (renderingDestination() == VXRDestinationCompositor)
            composite(grown.dirty, grown.pixels); // nothing accelerated to hand it to
        else
            drawDirectly(grown);
    });
    clearSubviewCache();
    failure.rethrow();
}

void VXRCanvas::_adjustBitmapRenderingQualityInRenderablesUpdateRect(
    const RenderableList& renderables, const Rect& updateRect)
{
    mBitmapRenderingQualityInfo = std::make_shared<VXRBitmapRenderingQualityInfo>(mBitmapImageQuality);
    for (const auto& renderable : renderables)
        if (rectsIntersect(renderable->erasableBounds(), updateRect))
            renderable->addBitmapsToRenderingQualityInfo(*mBitmapRenderingQualityInfo);
}

void VXRCanvas::drawDirectly(const DrawRequest& request)
{
    const RenderableList hit = objectsToRedraw(request.dirty);
    if (mBitmapImageQuality != 2)
        _adjustBitmapRenderingQualityInRenderablesUpdateRect(hit, request.dirty);
    FirstFailure failure;
    mBackground.fill(request);
    for (const auto& renderable : hit) {
        failure.attempt([&] {
            const StateSaver saved(request.context);
            renderable->renderLayeredIntoContext(request.context);
        });
    }
    failure.rethrow();
}

void VXRCanvas::compositeRect(const Rect& dirty)
{
    if (const Window* seen = window())
        composite(dirty, { 0, 0, seen->width(), seen->height() });
}

/// Changes no other pixels of the window than those.
void VXRCanvas::composite(const Rect& dirty, const IntRect& pixels)
{
    Window* const seen = window();
    if (!seen || seen->windowNumber() <= 0)
        return;
    const ScrollView* scrollView = enclosingScrollView();
    const ClipView* clipView = scrollView ? &scrollView->contentView() : nullptr;
    const Rect visible = clipView ? clipView->convertRectToView(clipView->bounds(), nullptr)
                                  : convertRectToWindow(visibleRect());
    const CompositeArea area(*seen, visible);
    const IntRect changed = intersection(pixels, area.pixelsTouchedBy(convertRectToWindow(dirty)));
    if (changed.isEmpty())
        return;
    const Rect inWindow { float(changed.x0), float(seen->height() - changed.y1), float(changed.width()),
        float(changed.height()) };
    const WindowLock lock(*seen, intersectionRect(inWindow, visible));
    if (!lock)
        return;
    FirstFailure failure;
    VXRLayerBudget::Composite budget;
    WindowComposite composite(lock.bits(), area, changed, _backgroundLayer(), failure);
    const RenderableList hit = objectsToRedraw(dirty);
    // What needed parts will need them again.
    if (mCompositesInParts || !composite.drawAtOnce(hit))
        mCompositesInParts = !composite.drawInParts(hit, budget);
    failure.rethrow();
}

LayerInfo* VXRCanvas::_backgroundLayer() { return mBackground.layer(); }

std::uint32_t VXRCanvas::_colorAsLong(Color& color) { return CanvasBackground::packedColor(color); }

// The window.

void VXRCanvas::viewWillMoveToWindow(Window* window) { _registerForWindowNotifications(window); }

void VXRCanvas::viewDidMoveToWindow()
{
    // The clip view is known only now.
    if (ScrollView* scrollView = window() ? enclosingScrollView() : nullptr)
        scrollView->contentView().setCopiesOnScroll(!usesCompositor());
}

void VXRCanvas::_registerForWindowNotifications(Window* newWindow)
{
    NotificationCenter& center = NotificationCenter::defaultCenter();
    const auto observe = [&](const char* name, void (VXRCanvas::*handler)(const Notification&)) {
        center.addObserver(
            this, name, newWindow, [this, handler](const Notification& n) { (this->*handler)(n); });
    };
    if (newWindow && isAccelerated()) {
        observe(NSWindowWillMiniaturizeNotification, &VXRCanvas::windowWillMiniaturize);
        observe(NSWindowDidDeminiaturizeNotification, &VXRCanvas::windowDidDeminiaturize);
        observe(NSWindowWillCloseNotification, &VXRCanvas::windowWillClose);
        return;
    }
    if (!window())
        return;
    for (const char* name : { NSWindowWillMiniaturizeNotification, NSWindowDidDeminiaturizeNotification,
             NSWindowWillCloseNotification })
        center.removeObserver(this, name, window());
}

void VXRCanvas::windowWillMiniaturize(const Notification& notification)
{
    if (isStatic() || !window() || notification.object != window())
        return;
    disableScreenUpdates();
    _buildMinimizedImage();
    display();
    enableScreenUpdatesIfNeeded();
}

void VXRCanvas::windowDidDeminiaturize(const Notification& notification)
{
    if (!window() || notification.object != window())
        return;
    disableScreenUpdates();
    mMinimizedImage = nullptr;
    enableScreenUpdatesIfNeeded();
}

void VXRCanvas::disableScreenUpdates()
{
    if (mScreenUpdatesDisabled || !window())
        return;
    mScreenUpdatesDisabled = true;
    window()->disableScreenUpdates();
}

void VXRCanvas::enableScreenUpdatesIfNeeded()
{
    if (!mScreenUpdatesDisabled || !window())
        return;
    mScreenUpdatesDisabled = false;
    window()->enableScreenUpdates();
}

void VXRCanvas::_buildMinimizedImage()
{
    if (mMinimizedImage)
        return;
    const Size seen = visibleRect().size;
    mMinimizedImage
        = imageRepFromFrame({ 0, 0, VXRRound(_scale * seen.width), VXRRound(_scale * seen.height) });
}

std::shared_ptr<const Image> VXRCanvas::imageRepFromFrame(const Rect& pixels)
{
    if (!window())
        return nullptr;
    const Rect seen = convertRectToWindow(visibleRect());
    const int x = pixelCoordinate(pixels.origin.x) + pixelCoordinate(seen.origin.x);
    const int y = pixelCoordinate(pixels.origin.y) + pixelCoordinate(seen.origin.y);
    const int bottom = window()->height() - y;
    return window()->copyPixels(
        { x, bottom - pixelCoordinate(pixels.size.height), x + pixelCoordinate(pixels.size.width), bottom });
}

// Hits.

/// Brings the index up to date with the list.
const VXRCanvas::RenderableList& VXRCanvas::indexedObjects()
{
    const RenderableList& list = objectsToRender();
    mIndex->update(list, objectsToRenderVersion());
    return list;
}

std::shared_ptr<VXRRenderable> VXRCanvas::objectAtPoint(Point p)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y))
        return nullptr;
    const RenderableList& list = indexedObjects();
    const std::vector<std::uint32_t> ranks = mIndex->find({ p, {} });
    const auto hit
        = std::find_if(ranks.rbegin(), ranks.rend(), [&](auto rank) { return list[rank]->containsPoint(p); });
    return hit == ranks.rend() ? nullptr : list[*hit];
}

VXRCanvas::RenderableList VXRCanvas::objectsMeetingRect(const Rect& rect)
{
    RenderableList met;
    if (rect.isEmpty() || !std::isfinite(rect.maxX()) || !std::isfinite(rect.maxY()))
        return met;
    const RenderableList& list = indexedObjects();
    for (const std::uint32_t rank : mIndex->find(rect))
        if (list[rank]->intersectsRect(rect))
            met.push_back(list[rank]);
    return met;
}

/// Those whose erasable bounds meet the rectangle, back to front.
VXRCanvas::RenderableList VXRCanvas::objectsToRedraw(const Rect& rect)
{
    RenderableList hit;
    const RenderableList& list = indexedObjects();
    for (const std::uint32_t rank : mIndex->find(rect))
        if (rectsIntersect(list[rank]->erasableBounds(), rect))
            hit.push_back(list[rank]);
    return hit;
}

} // namespace vxr
