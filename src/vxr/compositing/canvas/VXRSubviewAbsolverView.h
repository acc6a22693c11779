#pragma once

#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/views/View.h>

#include <vector>

namespace vxr {

/// A view that relieves its subviews of drawing themselves: they live in it for their events and their
/// layout, while their pictures are drawn by whoever asks for them here.
class VXR_EXPORT VXRSubviewAbsolverView : public View {
public:
    using View::View;

    /// Draws a subview and what is in it into the current context, whose coordinates are the subview's own
    /// from its bounds' upper left corner, y down, whether the subview is flipped or not. At other than
    /// whole pixels, and into anything but a screen, the view draws itself; a picture of it is kept
    /// otherwise, so that a redraw in many parts asks it only once.
    void drawSubviewIntoContext(View& subview, Context& context);

    /// Forgets the kept pictures; called at the end of each redraw.
    void clearSubviewCache() { mSubviewCache.clear(); }

protected:
    bool drawsSubviewsSeparately() const override { return false; }
    void willRemoveSubview(View&) override { clearSubviewCache(); }

private:
    struct CachedPicture {
        const View* view;
        float scale;
        std::shared_ptr<const Image> image;
    };
    std::shared_ptr<const Image> pictureOfSubview(View&, float scale);
    void drawUpright(View&, Context&, bool drawsToScreen);

    std::vector<CachedPicture> mSubviewCache;
};

} // namespace vxr
