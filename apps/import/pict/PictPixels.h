#pragma once

#include <apps/import/pict/PictReader.h>

#include <vector>

namespace vxr::importing {

/// A bitmap or pixel map of a picture, read into 32-bit pixels.
struct PictPixels {
    PictRect bounds; ///< in the bitmap's own coordinates
    bool isBitmap = false; ///< of one bit: the set bits take the foreground colour, the others the background
    std::vector<std::uint32_t> pixels; ///< row by row, opaque: 0xffRRGGBB; of a bitmap 1 or 0

    int width() const { return bounds.width(); }
    int height() const { return bounds.height(); }
};

/// How a picture stores an image: the record that stands in front of its pixels.
struct PictPixelFormat {
    bool isBitmap = true;
    int rowBytes = 0;
    PictRect bounds;
    int packType = 0;
    int pixelSize = 1;
    int componentCount = 1;
    std::vector<std::uint32_t> colors; ///< of the colour table, by index

    /// Reads the record of an indexed or one-bit image: `rowBytes` decides which.
    static PictPixelFormat read(PictReader&);
    /// Reads the record of an image of direct colours, with its four bytes in front.
    static PictPixelFormat readDirect(PictReader&);

    /// Reads the rows. `isPacked` is false for images that are never packed.
    PictPixels readPixels(PictReader&, bool isPacked) const;

private:
    void readPixelMap(PictReader&);
    void readColorTable(PictReader&);
    void check() const;
};

} // namespace vxr::importing
