#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/IntRect.h>

#include <vector>

namespace vxr {

class Context;
class ScrollView;
class Window;

/// What a view is asked to draw, from the window on to all that takes part in it.
struct DrawRequest {
    Rect dirty; ///< in the view's coordinates
    Context& context; ///< in the view's coordinates, and clipped to what is to be drawn
    Window* window = nullptr; ///< whose pixels are drawn; none on paper and in pictures
    IntRect pixels {}; ///< of the window, from its upper left corner; no others may change
};

/// A rectangle of a window that draws itself and holds other views.
///
/// The frame is given in the superview's bounds coordinates. The view's own coordinates (bounds) have an
/// origin and a scale of their own and grow downwards in a flipped view, upwards in others. Window
/// coordinates grow upwards from the window's lower left corner, one unit one pixel.
class VXR_EXPORT View : public Object {
public:
    explicit View(const Rect& frame = {});
    ~View() override;
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // The tree. A view keeps its subviews alive.
    View* superview() const { return mSuperview; }
    const std::vector<std::shared_ptr<View>>& subviews() const { return mSubviews; } ///< back to front
    void addSubview(std::shared_ptr<View>); ///< in front of the others; leaves its former superview
    void removeFromSuperview(); ///< does nothing without a superview; may end the view's life
    Window* window() const { return mWindow; }
    bool isDescendantOf(const View& ancestor) const; ///< a view descends from itself
    virtual ScrollView* enclosingScrollView() const; ///< the nearest one above

    // Geometry. Nothing here draws; a changed frame or bounds needs display, before and after.
    const Rect& frame() const { return mFrame; }
    virtual void setFrame(const Rect&);
    void setFrameOrigin(Point origin) { setFrame({ origin, mFrame.size }); }
    void setFrameSize(Size size) { setFrame({ mFrame.origin, size }); }
    Rect bounds() const; ///< the frame in the view's own coordinates
    virtual void setBoundsOrigin(Point);
    /// Multiplies the size of a unit of this view, measured in the superview. Subviews scale with it.
    void scaleUnitSquareToSize(Size);
    virtual bool isFlipped() const { return false; }
    virtual bool isOpaque() const { return false; } ///< covers its whole frame with each redraw
    bool isHidden() const { return mHidden; } ///< of this view alone
    void setHidden(bool);
    /// The part of the bounds that no ancestor's bounds cut off; the zero rectangle when one is hidden.
    virtual Rect visibleRect() const;

    // Conversion; no view stands for the window.
    Point convertPointToView(Point, const View* to) const;
    Point convertPointFromView(Point p, const View* from) const;
    Rect convertRectToView(const Rect&, const View* to) const; ///< not negative in size
    Rect convertRectFromView(const Rect&, const View* from) const;

    // What has to be drawn again, in the view's own coordinates.
    virtual void setNeedsDisplay(bool); ///< all of it, or nothing
    virtual void setNeedsDisplayInRect(const Rect&); ///< what lies outside the bounds is dropped
    bool needsDisplay() const { return !mDirtyRects.empty(); }
    const std::vector<Rect>& dirtyRects() const { return mDirtyRects; }
    Rect unionDirtyRects() const; ///< the zero rectangle when there are none
    void display(); ///< redraws all of the view at once
    void displayIfNeeded();

    // Drawing.
    /// Draws at least what is visible of the rectangle into the current context, which is clipped and in
    /// the view's coordinates. What a view leaves out keeps what its superview drew.
    virtual void drawRect(const Rect&) { }
    /// Asked by a window, and for paper. A view that wants to know more than the rectangle overrides this.
    virtual void draw(const DrawRequest& request) { drawRect(request.dirty); }
    /// Makes the window's pixels the current context, in this view's coordinates and clipped to its
    /// visible rectangle, until the matching `unlockFocus`. Throws `GenericException` without a window.
    void lockFocus();
    void unlockFocus(); ///< of the view focused last, which is this one
    static View* focusView(); ///< the view focused last; none outside
    /// Draws the view and its subviews into a context that is in this view's coordinates, as for paper.
    void drawTreeIntoContext(Context&, const Rect& area, bool drawsToScreen);

    void scrollPoint(Point); ///< brings the point to the upper left of the clip view above, if there is one
    bool scrollRectToVisible(const Rect&); ///< whether anything moved

    // Changes of frame and bounds are posted as notifications unless that is switched off.
    static void disablePosting();
    static void enablePosting();
    static bool isPostingEnabled();

protected:
    virtual void viewWillMoveToWindow(Window*) { } ///< none when the view leaves its window
    virtual void viewDidMoveToWindow() { }
    virtual void didAddSubview(View&) { }
    virtual void willRemoveSubview(View&) { }
    /// Called before a redraw. A view that is not opaque makes its dirty areas those of its superviews,
    /// up to the first opaque one, since they draw what shows through.
    virtual void _propagateDirtyRectsToOpaqueAncestors();
    /// Whether the window draws the subviews after this view; a view that draws them itself says no.
    virtual bool drawsSubviewsSeparately() const { return true; }
    /// Called after a scroll by a clip view that doesn't copy, with what was seen before in this view's
    /// coordinates. A view that can use its pixels all the same marks what would look different once they
    /// are moved, and says yes: then they are moved, and of the rest only what came into sight is redrawn.
    virtual bool keepsPixelsOnScroll(const Rect&) { return false; }

private:
    friend class ClipView;
    friend class Window;

    /// Own coordinates to those of an ancestor: x' = sx x + tx, y' = sy y + ty.
    struct Mapping {
        double sx = 1, sy = 1, tx = 0, ty = 0;
        void then(const Mapping& outer);
        Point map(Point) const;
        Rect map(const Rect&) const;
        Mapping inverse() const;
    };
    Mapping mappingToSuperview() const;
    Mapping mappingToWindow() const;
    void moveToWindow(Window*);
    void geometryDidChange(const char* notification);
    void drawSubtree(Context&, const Rect& area);

    View* mSuperview = nullptr;
    Window* mWindow = nullptr;
    std::vector<std::shared_ptr<View>> mSubviews;
    Rect mFrame;
    Point mBoundsOrigin;
    double mUnitX = 1, mUnitY = 1; ///< size of an own unit in the superview
    bool mHidden = false;
    std::vector<Rect> mDirtyRects;
};

/// Focuses a view for the length of a scope.
class FocusLock {
public:
    explicit FocusLock(View& view)
        : mView(view)
    {
        mView.lockFocus();
    }
    ~FocusLock() { mView.unlockFocus(); }
    FocusLock(const FocusLock&) = delete;
    FocusLock& operator=(const FocusLock&) = delete;

private:
    View& mView;
};

inline constexpr char NSViewFrameDidChangeNotification[] = "NSViewFrameDidChangeNotification";
inline constexpr char NSViewBoundsDidChangeNotification[] = "NSViewBoundsDidChangeNotification";

} // namespace vxr
