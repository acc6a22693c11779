#pragma once

#include <vxr/platform/graphics/Context.h>

#include <functional>
#include <string>

namespace vxr {

/// A context drawn by cairo: over a bitmap, over a PDF document, or recorded.
class VXR_EXPORT CairoContext : public Context {
public:
    /// A bitmap of its own, transparent at first: 32-bit premultiplied ARGB in native byte order, top
    /// row first. Throws `InvalidArgumentException` for a side below 1 or above 32767.
    static std::shared_ptr<CairoContext> createBitmap(int width, int height);
    /// The caller's pixels, which outlive the context. `bytesPerRow` is a multiple of 4.
    static std::shared_ptr<CairoContext> createWithPixels(
        void* pixels, int width, int height, std::size_t bytesPerRow);
    ~CairoContext() override;

    /// The bitmap after everything drawn so far. Null for documents.
    const std::uint32_t* pixels() const;
    std::uint32_t* pixels();
    int width() const;
    int height() const;
    std::size_t bytesPerRow() const; ///< 0 for documents
    /// A copy of the bitmap as it is now. None for documents.
    std::shared_ptr<const Image> makeImage() const;

    // The Context interface.
    void saveState() override;
    void restoreState() override;
    std::size_t stateDepth() const override;
    void unwindToDepth(std::size_t) override;
    AffineTransform currentTransform() const override;
    AffineTransform baseTransform() const override;
    void setBaseTransform(const AffineTransform&) override;
    void concatTransform(const AffineTransform&) override;
    using Context::fillPath;
    using Context::strokePath;
    void clipToPath(const Path&, WindingRule) override;
    void clipToRect(const Rect&) override;
    Rect clipBounds() const override;
    void fillPath(const Path&, WindingRule) override;
    void strokePath(const Path&, const LineStyle&) override;
    void fillRect(const Rect&) override;
    void clearRect(const Rect&) override;
    void setFillColor(const ColorValue&) override;
    void setStrokeColor(const ColorValue&) override;
    void setFillPattern(std::shared_ptr<const Pattern>, float alpha) override;
    void setStrokePattern(std::shared_ptr<const Pattern>, float alpha) override;
    const LineStyle& lineStyle() const override;
    void setLineStyle(const LineStyle&) override;
    float flatness() const override;
    void setFlatness(float devicePixels) override;
    void setAlpha(float alpha) override;
    void setCompositeOperation(CompositeOperation) override;
    void setShouldAntialias(bool) override;
    void setInterpolationQualityRange(InterpolationQuality least, InterpolationQuality most) override;
    void setShadow(Size offset, float blur, const ColorValue&) override;
    void clearShadow() override;
    void beginTransparencyLayer() override;
    void endTransparencyLayer() override;
    void setLayerReach(const Rect&) override;
    void drawImage(const Rect&, const Image&) override;
    void drawShading(const Shading&) override;
    PixelAccess* pixelAccess() override;

    struct Impl;

protected:
    explicit CairoContext(std::unique_ptr<Impl>);

    Impl& impl() const { return *mImpl; }

private:
    std::unique_ptr<Impl> mImpl;
};

/// The boxes of a PDF page, in points. Empty boxes are left out.
struct PDFPageBoxes {
    Rect media;
    Rect crop, bleed, trim, art;
};

/// A PDF document. Vectors stay vectors; a shadow is one soft mask beside them. What is on the page can't
/// be taken away again: there clearing draws nothing, and a copy is drawn over what lies below it.
class VXR_EXPORT PDFContext final : public CairoContext {
public:
    using Write = std::function<bool(const unsigned char* data, std::size_t size)>;

    /// Throws `GenericException` with the reason when the file can't be created.
    static std::shared_ptr<PDFContext> createWithFile(const std::string& path);
    static std::shared_ptr<PDFContext> createWithWriter(Write write);
    ~PDFContext() override; ///< closes the document

    /// Starts a page with a fresh state; the media box's lower left corner becomes the origin's place, and
    /// the other boxes keep theirs on the media. Nothing is drawn outside of pages. Throws
    /// `InvalidArgumentException` for a media box without an area.
    void beginPage(const PDFPageBoxes&);
    void endPage();
    /// Ends the page and writes the document. Throws `GenericException` when writing failed; later calls do
    /// nothing.
    void close();

private:
    struct Document;

    PDFContext(std::unique_ptr<Impl>, Write);

    std::unique_ptr<Document> mDocument;
};

} // namespace vxr
