#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vxr {

class Context;
class Image;
class PDFDocument;

/// A page at one resolution, rendered in areas as they are wanted.
class VXRPageRendering {
public:
    /// Pixels a point, where the page's corner lies within the first pixel, and whether areas are drawn
    /// turned.
    struct Key {
        double scaleX = 1, scaleY = 1;
        Size offset;
        bool isTurned = false;

        friend bool operator==(const Key&, const Key&) = default;
    };
    using Place = std::pair<int, int>; ///< column and row of an area
    static constexpr int areaSide = 512; ///< pixels

    /// `width` and `height` are those of the whole page in pixels, the offset included.
    VXRPageRendering(const Key&, int width, int height);
    /// A page that has been rendered in one piece.
    explicit VXRPageRendering(const std::shared_ptr<const Image>& whole, Size media);

    const Key& key() const { return mKey; }
    int width() const { return mWidth; }
    int height() const { return mHeight; }
    bool isEmpty() const { return mAreas.empty(); }
    bool isComplete() const; ///< every area is there
    std::size_t bytesUsed() const;

    /// Areas that meet a part of the page, in pixels from its upper left corner.
    std::vector<Place> placesWithin(double left, double top, double right, double bottom) const;
    bool hasAreas(const std::vector<Place>&) const;
    /// Renders it when it is not there; null, with a reason, when that fails.
    std::shared_ptr<const Image> area(const PDFDocument&, Place, std::string* reason);

    /// Draws what is there with the page's corners at those of the rectangle.
    void drawAreas(Context&, const Rect&, const std::vector<Place>&) const;
    void drawAllAreas(Context&, const Rect&) const;

private:
    /// Of an area, in pixels of the page, what it shares with its neighbours included.
    Rect pixelsOf(Place) const;

    Key mKey;
    int mWidth, mHeight;
    int mMargin; ///< that areas share, so that neighbours are at hand where pixels are mixed
    int mAreaSide = areaSide;
    std::map<Place, std::shared_ptr<const Image>> mAreas;
};

} // namespace vxr
