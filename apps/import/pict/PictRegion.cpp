#include <apps/import/pict/PictRegion.h>

#include <algorithm>
#include <vector>

namespace vxr::importing {
namespace {

constexpr int endOfRow = 0x7FFF;
constexpr std::size_t rectangleLimit = 300'000;
constexpr int widestErosion = 64;

/// The spans between the first and second, third and fourth, … of the places at which a row changes.
void addRows(std::vector<cairo_rectangle_int_t>& rects, const std::vector<int>& edges, int top, int bottom)
{
    if (bottom <= top)
        return;
    for (std::size_t i = 0; i + 1 < edges.size(); i += 2)
        rects.push_back({ edges[i], top, edges[i + 1] - edges[i], bottom - top });
    if (rects.size() > rectangleLimit)
        throw PictError("A region has too many parts.");
}

/// Places that occur in one of the lists alone: a row's changes turn what the rows above had.
std::vector<int> toggled(const std::vector<int>& edges, std::vector<int>& changes)
{
    std::sort(changes.begin(), changes.end());
    std::vector<int> result;
    std::set_symmetric_difference(
        edges.begin(), edges.end(), changes.begin(), changes.end(), std::back_inserter(result));
    return result;
}

} // namespace

PictRegion::PictRegion()
    : PictRegion(cairo_region_create())
{
}

PictRegion::PictRegion(const PictRect& rect)
    : PictRegion(cairo_region_create())
{
    const cairo_rectangle_int_t r { rect.left, rect.top, rect.width(), rect.height() };
    if (!rect.isEmpty())
        cairo_region_union_rectangle(mRegion.get(), &r);
}

PictRegion PictRegion::read(PictReader& reader)
{
    const std::size_t size = reader.u16();
    if (size < 10)
        throw PictError("A region is damaged.");
    const PictRect bounds = reader.rect();
    PictReader rows(reader.bytes(size - 10));
    if (size == 10)
        return PictRegion(bounds);
    std::vector<cairo_rectangle_int_t> rects;
    std::vector<int> edges;
    int top = 0;
    while (!rows.isAtEnd()) {
        const int y = rows.s16();
        if (y == endOfRow)
            break;
        addRows(rects, edges, top, y);
        top = y;
        std::vector<int> changes;
        for (int x = rows.s16(); x != endOfRow; x = rows.s16())
            changes.push_back(x);
        edges = toggled(edges, changes);
    }
    return PictRegion(cairo_region_create_rectangles(rects.data(), static_cast<int>(rects.size())));
}

PictRect PictRegion::bounds() const
{
    cairo_rectangle_int_t r;
    cairo_region_get_extents(mRegion.get(), &r);
    return { r.x, r.y, r.x + r.width, r.y + r.height };
}

void PictRegion::appendTo(cairo_t* context) const
{
    for (int i = 0; i < rectangleCount(); ++i) {
        cairo_rectangle_int_t r;
        cairo_region_get_rectangle(mRegion.get(), i, &r);
        cairo_rectangle(context, r.x, r.y, r.width, r.height);
    }
}

PictRegion PictRegion::border(int width, int height) const
{
    // A pixel whose neighbours on both sides are inside stays inside; the rest is border.
    cairo_region_t* const inside = cairo_region_copy(mRegion.get());
    const auto keepNeighboured = [&](int dx, int dy) {
        cairo_region_t* const before = cairo_region_copy(inside);
        cairo_region_t* const after = cairo_region_copy(inside);
        cairo_region_translate(before, -dx, -dy);
        cairo_region_translate(after, dx, dy);
        cairo_region_intersect(inside, before);
        cairo_region_intersect(inside, after);
        cairo_region_destroy(before);
        cairo_region_destroy(after);
    };
    for (int i = 0; i < std::min(width, widestErosion); ++i)
        keepNeighboured(1, 0);
    for (int i = 0; i < std::min(height, widestErosion); ++i)
        keepNeighboured(0, 1);
    cairo_region_t* const border = cairo_region_copy(mRegion.get());
    cairo_region_subtract(border, inside);
    cairo_region_destroy(inside);
    return PictRegion(border);
}

} // namespace vxr::importing
