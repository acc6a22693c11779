#include <vxr/compositing/layers/TileGrid.h>

#include <vxr/compositing/layers/VXRTile.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/values/IntRect.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

/// Along one side, so that every tile of the grid has a number.
constexpr int mostTiles = 1 << 15;

int tilesAlong(float length, int side)
{
    return std::clamp(pixelCoordinate(std::ceil(length / float(side))), 0, mostTiles);
}

/// The first and last tile between two places. What ends on a tile's edge doesn't touch the next one.
std::pair<int, int> tilesBetween(float from, float to, int side)
{
    const int end = pixelCoordinate(std::floor(to));
    const int last = end / side - (end % side == 0);
    return { pixelCoordinate(std::floor(from / float(side))), std::min(last, mostTiles - 1) };
}

} // namespace

TileGrid::TileGrid(Size layer, int side)
    : mSide(side)
    , mWide(tilesAlong(layer.width, side))
    , mHigh(tilesAlong(layer.height, side))
{
}

Point TileGrid::offset(int index) const
{
    const int wide = std::max(mWide, 1);
    return { float((index % wide) * mSide), float((index / wide) * mSide) };
}

std::vector<int> TileGrid::tilesHit(const Rect& rect, const Rect& layer) const
{
    const Rect hit = intersectionRect(rect, layer);
    if (hit == Rect {})
        return {};
    const auto [firstColumn, lastColumn]
        = tilesBetween(hit.origin.x - layer.origin.x, hit.origin.x + hit.size.width - layer.origin.x, mSide);
    const auto [firstRow, lastRow]
        = tilesBetween(hit.origin.y - layer.origin.y, hit.origin.y + hit.size.height - layer.origin.y, mSide);
    std::vector<int> indices;
    for (int row = firstRow; row <= lastRow; ++row)
        for (int column = firstColumn; column <= lastColumn; ++column)
            indices.push_back(row * mWide + column);
    return indices;
}

std::vector<int> TileGrid::tilesThatShow(const Rect& rect, const Rect& layer, float outset) const
{
    if (mWide == 0 || mHigh == 0 || !rectsIntersect(insetRect(layer, -outset, -outset), rect))
        return {};
    const auto cellAt = [](float tiles, int count) { return int(std::clamp(tiles, 0.0f, float(count - 1))); };
    const auto side = float(mSide);
    const int left = cellAt(std::floor((rect.minX() - layer.minX()) / side), mWide);
    const int right = cellAt(std::ceil((rect.maxX() - layer.minX()) / side) - 1, mWide);
    const int top = cellAt(std::floor((rect.minY() - layer.minY()) / side), mHigh);
    const int bottom = cellAt(std::ceil((rect.maxY() - layer.minY()) / side) - 1, mHigh);
    std::vector<int> indices;
    for (int row = top; row <= bottom; ++row)
        for (int column = left; column <= right; ++column)
            indices.push_back(row * mWide + column);
    return indices;
}

bool TileGrid::tileMeets(int index, const Rect& rect) const
{
    const int wide = std::max(mWide, 1);
    const int column = index % wide, row = index / wide;
    const auto tile = [this](float at) { return pixelCoordinate(at) / mSide; };
    return tile(rect.minX()) <= column && column <= tile(rect.maxX()) && tile(rect.minY()) <= row
        && row <= tile(rect.maxY());
}

int TileGrid::neighbours(int index) const
{
    const int wide = std::max(mWide, 1);
    int sides = VXRTileSideTop | VXRTileSideBottom | VXRTileSideLeft | VXRTileSideRight;
    if (index % wide == 0)
        sides &= ~VXRTileSideLeft;
    if ((index + 1) % wide == 0)
        sides &= ~VXRTileSideRight;
    if (index < wide)
        sides &= ~VXRTileSideTop;
    if (index >= wide * (mHigh - 1))
        sides &= ~VXRTileSideBottom;
    return sides;
}

} // namespace vxr
