#pragma once

#include <vxr/host/utility/VXUFlushable.h>
#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <list>
#include <map>

namespace vxr {

class Context;
class Image;
class PDFDocument;

/// Pixels of a document's page at the resolutions that it is drawn at. The page is rendered in areas as they
/// come into sight; what is kept counts against the flusher's budget.
class VXR_EXPORT VXRPagePixels final : public Object, public VXUFlushable {
public:
    /// One object for all who draw the document, while any of them holds it.
    static std::shared_ptr<VXRPagePixels> pixelsOfDocument(const std::shared_ptr<const PDFDocument>&);

    explicit VXRPagePixels(std::shared_ptr<const PDFDocument>);
    ~VXRPagePixels() override;

    /// Draws the media box into the rectangle: as vectors where that can be, else from pixels of the
    /// context's resolution. With `stretched` pixels of another resolution do, while something is being
    /// dragged. A page that can't be rendered is drawn as a broken picture.
    void draw(Context&, const Rect&, bool stretched);

    bool isFlushable() const override { return !mRenderings.empty(); }
    std::size_t bytesUsed() const override { return mBytes; }
    void flushLocalData() override;

private:
    /// The page at one resolution.
    struct Rendering {
        double scaleX, scaleY; ///< pixels a point
        Size offset; ///< of the page's corner from that of the first pixel
        int width, height; ///< of the whole page, the offset included
        std::map<std::pair<int, int>, std::shared_ptr<const Image>> areas; ///< by column and row
    };

    Rendering& renderingForSize(double width, double height, Size offset = {});
    std::shared_ptr<const Image> area(Rendering&, int column, int row);
    bool drawAligned(Context&, const Rect&, const AffineTransform&);
    bool drawTurned(Context&, const Rect&, const AffineTransform&);
    bool drawStretched(Context&, const Rect&);

    std::shared_ptr<const PDFDocument> mDocument;
    std::list<Rendering> mRenderings; ///< used last in front
    std::size_t mBytes = 0;
    bool mFailed = false; ///< not tried again: it may have taken seconds
};

} // namespace vxr
