#pragma once

#include <vxr/platform/views/View.h>

namespace vxr {

class Color;

/// Shows a part of a document view, which it scrolls by the origin of its own bounds. Flipped like the
/// document view.
class VXR_EXPORT ClipView : public View {
public:
    explicit ClipView(const Rect& frame = {});

    View* documentView() const { return mDocumentView.get(); }
    void setDocumentView(std::shared_ptr<View>); ///< in place of the former one
    Rect documentRect() const; ///< the document view's frame; the zero rectangle without one
    Rect documentVisibleRect() const; ///< in the document view's coordinates

    /// Whether scrolling moves the pixels that stay visible and redraws only the rest. If not, it is for the
    /// document view to say (`keepsPixelsOnScroll`).
    bool copiesOnScroll() const { return mCopiesOnScroll; }
    void setCopiesOnScroll(bool copies) { mCopiesOnScroll = copies; }

    /// Nearest origin that shows no more beyond the document than it must, in whole units.
    Point constrainScrollPoint(Point) const;
    /// Scrolls to exactly this origin. Pixels are moved only by whole numbers of them.
    void scrollToPoint(Point);

    bool isFlipped() const override { return mDocumentView && mDocumentView->isFlipped(); }

private:
    bool canMovePixels() const;

    std::shared_ptr<View> mDocumentView;
    bool mCopiesOnScroll = true;
};

} // namespace vxr
