#include <vxr/compositing/layers/TilePixels.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

const std::uint32_t* rowAt(const TilePixels& tile, int y) { return tile.pixels + y * tile.rowLength; }

bool hasInk(const std::uint32_t* row, int x0, int x1)
{
    // In runs: the sum of a run is found without a branch per pixel.
    while (x0 < x1) {
        const int end = std::min(x1, x0 + 64);
        std::uint32_t any = 0;
        for (; x0 < end; ++x0)
            any |= row[x0];
        if (any)
            return true;
    }
    return false;
}

bool isOpaqueAt(std::uint32_t pixel) { return pixel >> 24 == 255; }

/// The opaque run of a row that contains `middle`, limited to [x0, x1).
std::pair<int, int> opaqueRun(const std::uint32_t* row, int middle, int x0, int x1)
{
    if (!isOpaqueAt(row[middle]))
        return { middle, middle };
    int left = middle, right = middle + 1;
    while (left > x0 && isOpaqueAt(row[left - 1]))
        --left;
    while (right < x1 && isOpaqueAt(row[right]))
        ++right;
    return { left, right };
}

} // namespace

bool isTransparent(const TilePixels& tile, const IntRect& within)
{
    for (int y = within.y0; y < within.y1; ++y)
        if (hasInk(rowAt(tile, y), within.x0, within.x1))
            return false;
    return true;
}

IntRect inkBox(const TilePixels& tile, const IntRect& within)
{
    IntRect ink = within;
    while (ink.y0 < ink.y1 && !hasInk(rowAt(tile, ink.y0), within.x0, within.x1))
        ++ink.y0;
    while (ink.y0 < ink.y1 && !hasInk(rowAt(tile, ink.y1 - 1), within.x0, within.x1))
        --ink.y1;
    if (ink.isEmpty())
        return {};

    int left = within.x1, right = within.x0;
    for (int y = ink.y0; y < ink.y1; ++y) {
        const std::uint32_t* row = rowAt(tile, y);
        for (int x = within.x0; x < left; ++x)
            if (row[x])
                left = x;
        for (int x = within.x1; x > right; --x)
            if (row[x - 1])
                right = x;
    }
    ink.x0 = left;
    ink.x1 = right;
    return ink;
}

IntRect opaqueBox(const TilePixels& tile, const IntRect& within)
{
    if (within.isEmpty())
        return {};
    const int middleX = (within.x0 + within.x1) / 2, middleY = (within.y0 + within.y1) / 2;
    auto [left, right] = opaqueRun(rowAt(tile, middleY), middleX, within.x0, within.x1);
    IntRect box { left, middleY, right, middleY + 1 }, best = box;
    if (box.isEmpty())
        return {};

    const auto area = [](const IntRect& b) { return double(b.width()) * b.height(); };
    bool up = true, down = true;
    const auto extend = [&, &l = left, &r = right](int y) {
        const auto [from, to] = opaqueRun(rowAt(tile, y), middleX, l, r);
        if (from >= to)
            return false;
        l = from;
        r = to;
        return true;
    };
    while (up || down) {
        up = up && box.y0 > within.y0 && extend(box.y0 - 1);
        if (up)
            --box.y0;
        down = down && box.y1 < within.y1 && extend(box.y1);
        if (down)
            ++box.y1;
        box.x0 = left;
        box.x1 = right;
        if (area(box) > area(best))
            best = box;
    }
    return best;
}

} // namespace vxr
