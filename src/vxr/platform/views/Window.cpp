#include <vxr/platform/views/Window.h>

#include <vxr/platform/base/FirstFailure.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/pixels/PixelRegion.h>

#include <cmath>
#include <cstring>
#include <utility>

namespace vxr {

namespace {

/// The pixels touched by a rectangle in window coordinates.
IntRect touchedPixels(const Rect& r, int height)
{
    if (r.isEmpty())
        return {};
    const double x = double(r.origin.x), y = double(r.origin.y);
    return vxr::touchedPixels(x, height - (y + double(r.size.height)), x + double(r.size.width), height - y);
}

Rect inWindow(const IntRect& box, int height)
{
    return { float(box.x0), float(height - box.y1), float(box.x1 - box.x0), float(box.y1 - box.y0) };
}

/// Boxes that fill most of the area around them are drawn faster as a single box.
void joinBoxes(PixelRegion& region)
{
    double area = 0;
    for (const IntRect& box : region.boxes())
        area += box.area();
    if (region.boxCount() > 1 && region.extents().area() <= area * 1.25)
        region = PixelRegion(region.extents());
}

/// Keeps a view alive while it is drawn. Null if only its creator owns it.
std::shared_ptr<View> ownerOf(const View& view)
{
    if (View* above = view.superview())
        for (const auto& subview : above->subviews())
            if (subview.get() == &view)
                return subview;
    return nullptr;
}

int newWindowNumber()
{
    static int last = 0;
    return ++last;
}

struct FocusedView {
    View* view;
    std::shared_ptr<Context> context; ///< the window's context; the view may leave the window while focused
    std::size_t depth; ///< states saved in the context before
};

/// The focused views of all windows, in order of focusing.
std::vector<FocusedView>& focusStack()
{
    static std::vector<FocusedView> stack;
    return stack;
}

} // namespace

struct Window::Damage {
    PixelRegion region;
};

Window::Window(const Rect& frame, bool deferred)
    : mFrame(integralRect(frame))
    , mDamage(std::make_unique<Damage>())
{
    if (!deferred)
        mNumber = newWindowNumber();
    makeStore();
    setContentView(std::make_shared<View>(Rect { 0, 0, mFrame.size.width, mFrame.size.height }));
}

Window::~Window() { mContentView->moveToWindow(nullptr); }

void Window::makeStore()
{
    mWidth = std::clamp(int(mFrame.size.width), 1, 32767);
    mHeight = std::clamp(int(mFrame.size.height), 1, 32767);
    mPixels.assign(std::size_t(mWidth) * std::size_t(mHeight), 0);
    mContext.reset();
    mDamage->region = PixelRegion({ 0, 0, mWidth, mHeight });
}

void Window::setFrame(const Rect& frame)
{
    const Rect whole = integralRect(frame);
    const bool resized = whole.size != mFrame.size;
    mFrame = whole;
    if (!resized)
        return;
    makeStore();
    mContentView->setFrame({ 0, 0, mFrame.size.width, mFrame.size.height });
    mContentView->setNeedsDisplay(true);
}

void Window::setContentView(std::shared_ptr<View> view)
{
    if (mContentView)
        mContentView->moveToWindow(nullptr);
    if (!view)
        view = std::make_shared<View>();
    view->removeFromSuperview();
    mContentView = std::move(view);
    mContentView->moveToWindow(this);
    mContentView->setFrame({ 0, 0, mFrame.size.width, mFrame.size.height });
    mContentView->setNeedsDisplay(true);
}

void Window::orderFront()
{
    if (!mNumber)
        mNumber = newWindowNumber();
    mVisible = true;
}

void Window::orderOut() { mVisible = false; }

// Backing store.

std::optional<WindowBits> Window::lockBits(const Rect& area)
{
    if (mNumber <= 0)
        return std::nullopt;
    ++mLocks;
    WindowBits bits;
    bits.colorBase = reinterpret_cast<std::uint8_t*>(mPixels.data());
    bits.colorBytesPerRow = int(bytesPerRow());
    mDamage->region.add(intersection(touchedPixels(area, mHeight), { 0, 0, mWidth, mHeight }));
    return bits;
}

void Window::unlockBits()
{
    if (mLocks > 0)
        --mLocks;
}

std::shared_ptr<const Image> Window::copyPixels(const IntRect& box) const
{
    if (box.isEmpty())
        return nullptr;
    ImageLayout layout;
    layout.width = box.width();
    layout.height = box.height();
    layout.bytesPerRow = std::size_t(box.width()) * 4;
    layout.alpha = AlphaFormat::PremultipliedLast;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(layout.bytesPerRow * std::size_t(box.height()));
    for (int y = box.y0; y < box.y1; ++y) {
        for (int x = box.x0; x < box.x1; ++x) {
            const bool isInside = x >= 0 && y >= 0 && x < mWidth && y < mHeight;
            const std::uint32_t pixel
                = isInside ? mPixels[std::size_t(y) * std::size_t(mWidth) + std::size_t(x)] : 0;
            for (const int shift : { 16, 8, 0 })
                bytes.push_back(std::uint8_t(pixel >> shift));
            bytes.push_back(255);
        }
    }
    return Image::createWithCopy(layout, bytes.data(), bytes.size());
}

bool Window::movePixels(const Rect& area, float dx, float dy)
{
    const IntRect box = intersection(touchedPixels(area, mHeight), { 0, 0, mWidth, mHeight });
    for (const float v : { area.minX(), area.minY(), area.maxX(), area.maxY(), dx, dy })
        if (!isNearlyWhole(v))
            return false;
    const int right = int(std::lround(dx)), down = int(-std::lround(dy));
    const IntRect to = intersection(box, { box.x0 + right, box.y0 + down, box.x1 + right, box.y1 + down });
    mDamage->region.add(box);
    if (to.isEmpty())
        return true;
    const std::size_t rowBytes = std::size_t(to.x1 - to.x0) * 4;
    for (int i = 0; i < to.y1 - to.y0; ++i) {
        const int y = down > 0 ? to.y1 - 1 - i : to.y0 + i;
        std::uint32_t* row = mPixels.data() + std::ptrdiff_t(y) * mWidth + to.x0;
        std::memmove(row, row - std::ptrdiff_t(down) * mWidth - right, rowBytes);
    }
    return true;
}

std::vector<Rect> Window::takeDamage()
{
    std::vector<Rect> rects;
    if (areScreenUpdatesDisabled())
        return rects;
    for (const IntRect& box : mDamage->region.boxes())
        rects.push_back(box.rect());
    mDamage->region.clear();
    return rects;
}

void Window::enableScreenUpdates()
{
    if (mUpdatesDisabled > 0)
        --mUpdatesDisabled;
}

// Focus.

void Window::focus(View& view)
{
    if (!mContext)
        mContext = BitmapContext::createWithPixels(mPixels.data(), mWidth, mHeight, bytesPerRow());
    const View::Mapping m = view.mappingToWindow();
    focusStack().push_back({ &view, mContext, mContext->stateDepth() });
    mContext->saveState();
    mContext->setBaseTransform({});
    // Whole pixels: an antialiased edge would let less of what lies below show through with each redraw.
    mContext->clipToRect(inWindow(touchedPixels(m.map(view.visibleRect()), mHeight), mHeight));
    mContext->concatTransform({ float(m.sx), 0, 0, float(m.sy), float(m.tx), float(m.ty) });
    GraphicsContext::push(std::make_shared<GraphicsContext>(mContext, true, view.isFlipped()));
}

void Window::unfocus(View& view)
{
    auto& stack = focusStack();
    if (stack.empty() || stack.back().view != &view)
        return;
    stack.back().context->unwindToDepth(stack.back().depth);
    stack.pop_back();
    GraphicsContext::pop();
}

View* Window::focusedView() { return focusStack().empty() ? nullptr : focusStack().back().view; }

// Display.

void Window::display()
{
    mContentView->setNeedsDisplay(true);
    displayIfNeeded();
}

void Window::displayIfNeeded() { displayViewIfNeeded(*mContentView); }

void Window::displayViewIfNeeded(View& view)
{
    const std::shared_ptr<View> contentView = mContentView; // drawing may replace it
    propagate(view);
    // What shows through a view that is not opaque is drawn by the views above, which then draw it as well.
    View* top = &view;
    for (View* above = &view; above; above = above->superview())
        if (above->needsDisplay())
            top = above;
    FirstFailure failure;
    const std::shared_ptr<View> owner = ownerOf(*top);
    PixelRegion drawn = drawView(*top, {}, failure);
    // The views in front of it, and in front of its superviews, cover what was drawn.
    for (View* behind = top; !drawn.isEmpty() && behind->window() == this && behind->superview();
         behind = behind->superview())
        drawSubviews(*behind->superview(), drawn, behind, failure);
    failure.rethrow();
}

void Window::propagate(View& view)
{
    if (view.isHidden())
        return;
    view._propagateDirtyRectsToOpaqueAncestors();
    if (view.drawsSubviewsSeparately())
        for (const auto& subview : view.subviews())
            propagate(*subview);
}

PixelRegion Window::drawView(View& view, const PixelRegion& beneath, FirstFailure& failure)
{
    if (view.isHidden())
        return {};
    const View::Mapping toWindow = view.mappingToWindow();
    const IntRect visible
        = intersection(touchedPixels(toWindow.map(view.visibleRect()), mHeight), { 0, 0, mWidth, mHeight });
    const bool covers = view.isOpaque() || !view.superview();
    const std::vector<Rect> dirtyRects = std::exchange(view.mDirtyRects, {}); // drawing may add new ones
    PixelRegion drawn = beneath;
    for (const Rect& dirty : dirtyRects) {
        const IntRect box = intersection(touchedPixels(toWindow.map(dirty), mHeight), visible);
        if (covers)
            drawn.add(box);
        else if (!beneath.contains(box))
            view.mDirtyRects.push_back(dirty); // until what shows through has been drawn, too
    }
    drawn.limitTo(visible);
    if (covers)
        joinBoxes(drawn);

    mDamage->region.add(drawn);
    for (const IntRect& box : drawn.boxes())
        if (view.window() == this)
            drawBoxOfView(view, box, failure);
    if (view.drawsSubviewsSeparately())
        drawSubviews(view, drawn, nullptr, failure);
    return drawn;
}

/// Draws the subviews in front of `behind`, or all of them if it is null. Each is drawn wherever the views
/// behind it were drawn.
void Window::drawSubviews(View& view, PixelRegion& drawn, const View* behind, FirstFailure& failure)
{
    const std::vector<std::shared_ptr<View>> subviews = view.subviews(); // drawing may remove some
    for (const auto& subview : subviews) {
        if (!behind && subview->superview() == &view && subview->window() == this)
            drawn.add(drawView(*subview, drawn, failure));
        if (subview.get() == behind)
            behind = nullptr;
    }
}

void Window::drawBoxOfView(View& view, const IntRect& box, FirstFailure& failure)
{
    const Rect area = inWindow(box, mHeight);
    const Rect dirty = view.mappingToWindow().inverse().map(area);
    failure.attempt([&] {
        const FocusLock focused(view);
        // Exact pixels: a rectangle in the view's own coordinates need not map to them exactly.
        const AffineTransform current = mContext->currentTransform();
        mContext->setBaseTransform({});
        mContext->clipToRect(area);
        mContext->concatTransform(current);
        view.draw({ dirty, *mContext, this, box });
    });
}

// Miniaturizing and closing.

void Window::miniaturize()
{
    if (mMiniaturized)
        return;
    NotificationCenter::defaultCenter().post(NSWindowWillMiniaturizeNotification, this);
    mMiniaturized = true;
    NotificationCenter::defaultCenter().post(NSWindowDidMiniaturizeNotification, this);
}

void Window::deminiaturize()
{
    if (!mMiniaturized)
        return;
    mMiniaturized = false;
    NotificationCenter::defaultCenter().post(NSWindowDidDeminiaturizeNotification, this);
}

void Window::close()
{
    NotificationCenter::defaultCenter().post(NSWindowWillCloseNotification, this);
    orderOut();
}

} // namespace vxr
