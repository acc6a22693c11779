#pragma once

#include <vxr/platform/views/View.h>

namespace vxr {

class Color;

/// Shows a part of a document view and scrolls by changing the origin of its own bounds. Flipped if the
/// document view is.
class VXR_EXPORT ClipView : public View {
public:
    explicit ClipView(const Rect& frame = {});

    View* documentView() const { return mDocumentView.get(); }
    void setDocumentView(std::shared_ptr<View>); ///< replaces the former one
    Rect documentRect() const; ///< the document view's frame; the zero rectangle if there is none
    Rect documentVisibleRect() const; ///< in the document view's coordinates

    /// Whether scrolling moves the pixels that stay visible and redraws only the rest. If not, the document
    /// view decides (`keepsPixelsOnScroll`).
    bool copiesOnScroll() const { return mCopiesOnScroll; }
    void setCopiesOnScroll(bool copies) { mCopiesOnScroll = copies; }

    /// The nearest origin that shows as little as possible beyond the document, in whole units.
    Point constrainScrollPoint(Point) const;
    /// Scrolls to exactly this origin. Pixels are moved only if the distance is a whole number of pixels.
    void scrollToPoint(Point);

    bool isFlipped() const override { return mDocumentView && mDocumentView->isFlipped(); }

private:
    bool canMovePixels() const;

    std::shared_ptr<View> mDocumentView;
    bool mCopiesOnScroll = true;
};

} // namespace vxr
