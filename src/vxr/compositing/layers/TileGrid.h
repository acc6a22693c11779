#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <vector>

namespace vxr {

/// How the pixels of a layer are divided into square tiles, numbered row by row from the upper left corner.
/// All rectangles are in pixels; unless stated otherwise they count from that corner.
class TileGrid {
public:
    explicit TileGrid(int side) ///< a single tile, whatever its size
        : mSide(side)
    {
    }
    TileGrid(Size layer, int side);

    int wide() const { return mWide; }
    int high() const { return mHigh; }
    Point offset(int index) const; ///< of the tile's upper left corner

    /// The tiles that `rect` overlaps, row by row. Both rectangles count from the same point.
    std::vector<int> tilesHit(const Rect& rect, const Rect& layer) const;
    /// The tiles to draw for what shows in `rect`: also a last column or row less than a pixel wide, and the
    /// outer tiles where only what sticks out of the layer, by up to `outset`, is in it.
    std::vector<int> tilesThatShow(const Rect& rect, const Rect& layer, float outset) const;
    int tileAt(Point p) const { return int(p.x / float(mSide)) + int(p.y / float(mSide)) * mWide; }
    bool tileMeets(int index, const Rect&) const;
    /// The sides on which another tile of the grid follows: bits of `VXRTileSide`.
    int neighbours(int index) const;

private:
    int mSide;
    int mWide = 1, mHigh = 1; ///< 0 for an empty layer
};

} // namespace vxr
