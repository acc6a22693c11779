#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <functional>

namespace vxr {

class Context;
class Data;
class MemoryFile;
class Image;

/// The numbers are part of the contract.
enum class PDFBox : int { Media = 0, Crop = 1, Bleed = 2, Trim = 3, Art = 4 };

/// Page 1 of a PDF document: its boxes, and how it is drawn. Only the import program reads the bytes.
class VXR_EXPORT PDFDocument : public Object {
public:
    /// None when the import program refuses the bytes or is not there; `reason` is then a sentence.
    static std::shared_ptr<const PDFDocument> createWithData(
        std::shared_ptr<const Data>, std::string* reason = nullptr);
    /// A document that needs no import program: `draw` draws its page, in units of the media box.
    static std::shared_ptr<const PDFDocument> createWithDrawing(
        const Rect& media, const Rect& art, std::function<void(Context&)> draw);
    ~PDFDocument() override;

    const std::shared_ptr<const Data>& data() const { return mData; } ///< none for drawings
    int numberOfPages() const { return mPages; }
    Rect box(PDFBox box) const { return mBoxes[static_cast<int>(box)]; }
    int rotationAngle() const { return mRotation; } ///< degrees clockwise

    /// Draws the media box into the rectangle where that needs no pixels: a drawing anywhere, a page into a
    /// document. False when it has to be rendered. The page's rotation is not applied.
    bool drawAsVectors(Context&, const Rect&) const;
    /// Pixels of the media box at `scale` pixels per unit: columns `x` to x + width, rows `y` to y + height,
    /// from its upper left corner. With an offset, below 1, that corner lies so far to the right of and below
    /// the pixels' corner. None when the page can't be rendered.
    std::shared_ptr<const Image> renderArea(Size scale, int x, int y, int width, int height, Size offset = {},
        std::string* reason = nullptr) const;
    /// The whole media box in about a million pixels, fewer for a small one. None as above.
    std::shared_ptr<const Image> overview(std::string* reason = nullptr) const;
    /// The document that `normalisedDocument` of the import program makes of this one.
    std::shared_ptr<const Data> normalisedData(std::string* reason = nullptr) const;

private:
    PDFDocument() = default;

    std::shared_ptr<const Data> mData;
    std::shared_ptr<const MemoryFile> mFile; ///< of the same bytes; one file, so that it stays open there
    std::function<void(Context&)> mDraw;
    int mPages = 1;
    int mRotation = 0;
    Rect mBoxes[5];
};

} // namespace vxr
