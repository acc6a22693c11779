#pragma once

#include <vxr/host/utility/VXUFlushable.h>
#include <vxr/images/VXRPageRendering.h>
#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <list>
#include <optional>
#include <string_view>

namespace vxr {

/// Posted, by the pixels of a document, once all areas that were left for later have been rendered.
inline constexpr std::string_view VXRPagePixelsDidRenderNotification = "VXRPagePixelsDidRenderNotification";

/// What a page may be drawn from.
enum class VXRPageSharpness : int {
    Now, ///< pixels of the context's resolution
    Later, ///< what is at hand for now; what is missing waits
    Stretched, ///< pixels of any resolution, while something is being dragged
};

/// Of a page whose user is being dragged, or may be drawn again.
constexpr VXRPageSharpness sharpnessFor(bool isDragged, bool mayDrawLater)
{
    if (isDragged)
        return VXRPageSharpness::Stretched;
    return mayDrawLater ? VXRPageSharpness::Later : VXRPageSharpness::Now;
}

/// Pixels of a document's page at the resolutions that it is drawn at. The page is rendered in areas as they
/// come into sight; what is kept counts against the flusher's budget.
class VXR_EXPORT VXRPagePixels final : public Object,
                                       public VXUFlushable,
                                       public std::enable_shared_from_this<VXRPagePixels> {
public:
    /// One object for all who draw the document, while any of them holds it.
    static std::shared_ptr<VXRPagePixels> pixelsOfDocument(const std::shared_ptr<const PDFDocument>&);

    explicit VXRPagePixels(std::shared_ptr<const PDFDocument>);
    ~VXRPagePixels() override;

    /// Draws the media box into the rectangle: as vectors where that can be, else from pixels. A page that
    /// can't be rendered is drawn as a broken picture. True when pixels are still to be rendered.
    bool draw(Context&, const Rect&, VXRPageSharpness);

    /// For hosts that render pages when there is time: after a zoom, placed pages show at once from the
    /// pixels at hand, stretched, and are drawn again once `renderWaiting` has nothing left to do. NO at
    /// first: every drawing waits for its pixels.
    static bool rendersLater();
    static void setRendersLater(bool);
    /// Renders one area that waits. False when there was none; those who wait for it are then told.
    static bool renderWaiting();

    bool isFlushable() const override { return !mRenderings.empty(); }
    std::size_t bytesUsed() const override { return mBytes; }
    void flushLocalData() override;

private:
    struct Waiting {
        VXRPageRendering::Key key;
        int width, height;
        std::vector<VXRPageRendering::Place> places;
    };

    VXRPageRendering& rendering(const VXRPageRendering::Key&, int width, int height);
    bool drawUpright(Context&, const Rect&, const AffineTransform&, VXRPageSharpness, bool& waits);
    bool drawTurned(Context&, const Rect&, const AffineTransform&, VXRPageSharpness, bool& waits);
    bool render(VXRPageRendering&, const std::vector<VXRPageRendering::Place>&);
    bool isLeftForLater(const VXRPageRendering&, const std::vector<VXRPageRendering::Place>&);
    bool drawAtHand(Context&, const Rect&);
    bool drawStretched(Context&, const Rect&);
    bool renderOneWaiting();
    void noteBytes();
    void fail(const std::string& reason);

    std::shared_ptr<const PDFDocument> mDocument;
    std::list<VXRPageRendering> mRenderings; ///< used last in front
    std::size_t mBytes = 0;
    bool mFailed = false; ///< not tried again: it may have taken seconds
    std::optional<Waiting> mWaiting;
    std::optional<VXRPageRendering::Key> mAwaited; ///< what has waited before waits no second time
};

} // namespace vxr
