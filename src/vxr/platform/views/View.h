#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/IntRect.h>

#include <vector>

namespace vxr {

class Context;
class ScrollView;
class Window;

/// What a view is asked to draw; passed from the window to everything that draws.
struct DrawRequest {
    Rect dirty; ///< in the view's coordinates
    Context& context; ///< in the view's coordinates, clipped to the area to draw
    Window* window = nullptr; ///< the window whose pixels are drawn; null on paper and in images
    IntRect pixels {}; ///< window pixels, from the upper left corner; no others may change
};

/// A rectangle of a window that draws itself and contains other views.
///
/// The frame is given in the superview's bounds coordinates. The view's own coordinates (bounds) have their
/// own origin and scale; y grows downwards in a flipped view, upwards otherwise. Window coordinates grow
/// upwards from the window's lower left corner, one unit per pixel.
class VXR_EXPORT View : public Object {
public:
    explicit View(const Rect& frame = {});
    ~View() override;
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // Hierarchy. A view keeps its subviews alive.
    View* superview() const { return mSuperview; }
    const std::vector<std::shared_ptr<View>>& subviews() const { return mSubviews; } ///< back to front
    void addSubview(std::shared_ptr<View>); ///< in front of the others; removed from its former superview
    void removeFromSuperview(); ///< does nothing without a superview; may destroy the view
    Window* window() const { return mWindow; }
    bool isDescendantOf(const View& ancestor) const; ///< a view is a descendant of itself
    virtual ScrollView* enclosingScrollView() const; ///< the nearest one above

    // Geometry. Nothing here draws; changing frame or bounds marks the old and new areas for display.
    const Rect& frame() const { return mFrame; }
    virtual void setFrame(const Rect&);
    void setFrameOrigin(Point origin) { setFrame({ origin, mFrame.size }); }
    void setFrameSize(Size size) { setFrame({ mFrame.origin, size }); }
    Rect bounds() const; ///< the frame in the view's own coordinates
    virtual void setBoundsOrigin(Point);
    /// Multiplies the size of this view's unit, measured in the superview. Subviews scale with it.
    void scaleUnitSquareToSize(Size);
    virtual bool isFlipped() const { return false; }
    virtual bool isOpaque() const { return false; } ///< whether each redraw covers the whole frame
    bool isHidden() const { return mHidden; } ///< the view's own flag only
    void setHidden(bool);
    /// The part of the bounds not clipped by ancestors; the zero rectangle if any of them is hidden.
    virtual Rect visibleRect() const;

    // Conversion; a null view stands for the window.
    Point convertPointToView(Point, const View* to) const;
    Point convertPointFromView(Point p, const View* from) const;
    Rect convertRectToView(const Rect&, const View* to) const; ///< with non-negative size
    Rect convertRectFromView(const Rect&, const View* from) const;

    // What needs to be drawn again, in the view's own coordinates.
    virtual void setNeedsDisplay(bool); ///< the whole view, or nothing
    virtual void setNeedsDisplayInRect(const Rect&); ///< areas outside the bounds are ignored
    bool needsDisplay() const { return !mDirtyRects.empty(); }
    const std::vector<Rect>& dirtyRects() const { return mDirtyRects; }
    Rect unionDirtyRects() const; ///< the zero rectangle if there are none
    void display(); ///< redraws the whole view immediately
    void displayIfNeeded();

    // Drawing.
    /// Draws at least the visible part of the rectangle into the current context, which is clipped and in the
    /// view's coordinates. Areas that a view leaves out keep what its superview drew.
    virtual void drawRect(const Rect&) { }
    /// Called by windows and for paper. Override it to learn more than the rectangle.
    virtual void draw(const DrawRequest& request) { drawRect(request.dirty); }
    /// Makes the window's pixels the current context, in this view's coordinates and clipped to its visible
    /// rectangle, until the matching `unlockFocus`. Throws `GenericException` without a window.
    void lockFocus();
    void unlockFocus(); ///< ends the last lockFocus, which must be this view's
    static View* focusView(); ///< the view focused last; null if none is
    /// Draws the view and its subviews, as for paper, into a context that is in this view's coordinates.
    void drawTreeIntoContext(Context&, const Rect& area, bool drawsToScreen);

    void scrollPoint(Point); ///< makes it the upper left of the clip view, if any
    bool scrollRectToVisible(const Rect&); ///< returns whether anything moved

    // Changes of frame and bounds post notifications unless that is switched off.
    static void disablePosting();
    static void enablePosting();
    static bool isPostingEnabled();

protected:
    virtual void viewWillMoveToWindow(Window*) { } ///< null when the view leaves its window
    virtual void viewDidMoveToWindow() { }
    virtual void didAddSubview(View&) { }
    virtual void willRemoveSubview(View&) { }
    /// Called before a redraw. A view that is not opaque passes its dirty areas to its superviews, up to the
    /// first opaque one, because they draw what shows through.
    virtual void _propagateDirtyRectsToOpaqueAncestors();
    /// Whether the window draws the subviews after this view; false if the view draws them itself.
    virtual bool drawsSubviewsSeparately() const { return true; }
    /// Called after a scroll by a clip view that does not copy, with the previously visible area in this
    /// view's coordinates. A view whose pixels can be reused marks what would look different after moving
    /// them and returns true: the pixels are moved, and of the rest only the newly visible part is redrawn.
    virtual bool keepsPixelsOnScroll(const Rect&) { return false; }

private:
    friend class ClipView;
    friend class Window;

    /// Maps own coordinates to those of an ancestor: x' = sx x + tx, y' = sy y + ty.
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
    double mUnitX = 1, mUnitY = 1; ///< size of this view's unit in the superview
    bool mHidden = false;
    std::vector<Rect> mDirtyRects;
};

/// Focuses a view for the duration of a scope.
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
