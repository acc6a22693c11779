#include <vxr/textwrap/VXRTextWrap.h>

#include <vxr/textwrap/PlainCrossings.h>
#include <vxr/textwrap/WrapPolygon.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace vxr {
namespace {

/// The most recent path and its polygon. Never destroyed.
class WrapCache {
public:
    WrapPolygon& polygonOf(const std::shared_ptr<const Path>& path)
    {
        if (mPath != path || !mPolygon) {
            if (path)
                mPolygon.emplace(*path);
            else
                mPolygon.emplace(Path());
            mPath = path;
        }
        return *mPolygon;
    }

private:
    std::shared_ptr<const Path> mPath;
    std::optional<WrapPolygon> mPolygon;
};

/// The polygon of a rectangle, as an operand that needs no allocation.
class RectPolygon {
public:
    explicit RectPolygon(const Rect& r)
    {
        const double x = r.origin.x, y = r.origin.y, right = x + r.size.width, end = y + r.size.height;
        const gpc_vertex corners[] = { { x, y }, { right, y }, { right, end }, { x, end } };
        std::copy(corners, corners + 4, mCorners);
    }
    RectPolygon(const RectPolygon&) = delete;
    RectPolygon& operator=(const RectPolygon&) = delete;

    const gpc_polygon& operator*() const { return mSet; }

private:
    gpc_vertex mCorners[4];
    gpc_vertex_list mContour { 4, mCorners };
    int mHole = 0;
    gpc_polygon mSet { 1, &mHole, &mContour };
};

/// Owns the result of a clip.
class Clipped {
public:
    Clipped(gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip)
    {
        VXRClipPolygons(operation, subject, clip, mSet);
    }
    Clipped(const Clipped&) = delete;
    Clipped& operator=(const Clipped&) = delete;
    ~Clipped() { gpc_free_polygon(&mSet); }

    const gpc_polygon& operator*() const { return mSet; }
    const gpc_polygon* operator->() const { return &mSet; }

private:
    gpc_polygon mSet {};
};

/// The part of the cached polygon at the heights of `rect`.
const gpc_polygon& near(WrapPolygon& polygon, const Rect& rect)
{
    const double y = rect.origin.y, end = y + rect.size.height;
    return polygon.near(std::min(y, end), std::max(y, end));
}

/// The gaps between the boxes. Sorts the boxes.
std::vector<Rect> piecesBetween(std::vector<Rect>& boxes, const Rect& line)
{
    std::sort(
        boxes.begin(), boxes.end(), [](const Rect& a, const Rect& b) { return compareRects(a, b) < 0; });
    const std::vector<Rect> spans = mergeRects(boxes);
    if (spans.empty())
        return { line };

    std::vector<Rect> pieces;
    pieces.reserve(spans.size() + 1);
    const auto addPiece = [&](float from, float to) {
        pieces.push_back({ from, line.origin.y, to - from, line.size.height });
    };
    if (spans.front().origin.x > line.origin.x)
        addPiece(line.origin.x, spans.front().origin.x);
    for (std::size_t i = 1; i < spans.size(); ++i)
        addPiece(spans[i - 1].maxX(), spans[i].origin.x);
    if (line.maxX() > spans.back().maxX())
        addPiece(spans.back().maxX(), line.maxX());
    return pieces;
}

/// Distance within which edges may touch on the clipper's grid, with a wide margin.
double clearanceOf(const WrapPolygon& polygon, const Rect& line)
{
    const double reach = std::max({ std::abs(line.minX()), std::abs(line.maxX()), std::abs(line.minY()),
        std::abs(line.maxY()), float(polygon.extent()) });
    return 1e-9 * reach;
}

std::vector<Rect> wrappedSubrects(const Rect& line, WrapPolygon& polygon, int type)
{
    static PlainCrossings crossings; // keeps its storage
    const gpc_polygon& nearLine = near(polygon, line);
    if (polygon.isFinite() && crossings.find(nearLine, line, clearanceOf(polygon, line))) {
        std::vector<Rect> boxes;
        crossings.appendBoxes(type != 0, boxes);
        return piecesBetween(boxes, line);
    }
    const RectPolygon linePolygon(line);
    const Clipped result(type == 0 ? GPC_DIFF : GPC_INT, *linePolygon, nearLine);
    return wrappedSubrectsFromPolygon(&*result, line);
}

/// From the line's bottom to the first free area below it, or to the end of the shape's bounds; 1 at least.
int skipBelowLine(const Rect& line, const Rect& bounds, const gpc_polygon& polygon)
{
    const float remaining = bounds.origin.y + bounds.size.height - line.origin.y;
    if (!(remaining > 0))
        return 1;
    // Column minus shape equals (column united with shape) minus shape, but a single clip leaves no
    // slivers along the shape's outline.
    const RectPolygon column({ line.origin.x, line.origin.y, line.size.width, remaining });
    const RectPolygon linePolygon(line);
    const Clipped outside(GPC_DIFF, *column, polygon);
    const Clipped free(GPC_DIFF, *outside, *linePolygon);

    float distance = (remaining + line.origin.y) - (line.size.height + line.origin.y);
    if (free->num_contours > 0) {
        const auto freePath = bezierFromPolygon(&*free);
        if (!freePath->isEmpty())
            distance = freePath->bounds().origin.y - (line.origin.y + line.size.height);
    }
    constexpr float largest = float(std::numeric_limits<int>::max() / 2);
    return distance > 1 ? int(std::min(distance, largest)) : 1;
}

/// The heights of all vertices, in ascending order.
std::vector<double> vertexHeights(const gpc_polygon& polygon)
{
    std::vector<double> heights;
    for (const gpc_vertex_list& contour : std::span(polygon.contour, std::size_t(polygon.num_contours)))
        for (const gpc_vertex& v : std::span(contour.vertex, std::size_t(contour.num_vertices)))
            heights.push_back(v.y);
    std::sort(heights.begin(), heights.end());
    return heights;
}

/// Bounds of the part of a rectangle that obstacles cover; the zero rectangle if it is free.
Rect occupiedWithin(WrapPolygon& obstacles, const Rect& rect)
{
    const RectPolygon rectPolygon(rect);
    const Clipped obstruction(GPC_INT, *rectPolygon, near(obstacles, rect));
    Rect occupied;
    for (int i = 0; i < obstruction->num_contours; ++i)
        occupied = unionRect(occupied, boundsForVertexList(obstruction->contour[i]));
    return occupied;
}

/// The smallest rectangle around both, even if one has no height.
Rect spanning(const Rect& a, const Rect& b)
{
    const float x = std::min(a.minX(), b.minX()), y = std::min(a.minY(), b.minY());
    return { x, y, std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y };
}

} // namespace

std::vector<Rect> VXRTextWrap::wrappedSubrectsForRectPathType(
    const Rect& line, const std::shared_ptr<const Path>& path, int type)
{
    static WrapCache cache;
    return wrappedSubrects(line, cache.polygonOf(path), type);
}

std::vector<Rect> VXRTextWrap::wrappedSubrectsForRectPathTypeSkipHint(
    const Rect& line, const std::shared_ptr<const Path>& path, int type, int& skipHint)
{
    static WrapCache cache;
    WrapPolygon& polygon = cache.polygonOf(path);
    std::vector<Rect> pieces = wrappedSubrects(line, polygon, type);
    const Rect bounds = path ? path->bounds() : Rect();
    skipHint = pieces.empty() ? skipBelowLine(line, bounds, polygon.whole()) : 1;
    return pieces;
}

float VXRTextWrap::unobstructedSpanForPathStartingSpanContainerBounds(
    const Path& path, const Rect& span, const Rect& container)
{
    const float bottom = container.origin.y + container.size.height;
    const VXRPolygonOwner shape(polygonFromBezier(path));
    const RectPolygon column({ span.origin.x, span.origin.y, span.size.width, bottom - span.origin.y });
    VXRPolygonOwner clippedShape(emptyPolygon());
    VXRClipPolygons(GPC_INT, *shape, *column, *clippedShape);
    const std::vector<double> heights = vertexHeights(*clippedShape);
    WrapPolygon obstacles(std::move(clippedShape));

    float y = span.origin.y;
    for (;;) {
        const Rect place(span.origin.x, y, span.size.width, span.size.height);
        const Rect occupied = occupiedWithin(obstacles, place);
        if (occupied.size.height < 1.0f)
            return y;
        float below = occupied.origin.y + occupied.size.height + 1.0f;
        // Between vertex heights the obstacles do not change: if this position is obstructed, so is every
        // position up to the next vertex.
        const auto next = std::lower_bound(heights.begin(), heights.end(), double(y));
        const double vertex = next == heights.end() ? y : *next;
        if (place.maxY() < vertex) {
            while (below > y && bottom >= below && below + span.size.height < vertex) {
                y = below;
                below = y + span.size.height + 1.0f;
            }
        }
        if (!(below > y))
            return y;
        y = below;
        if (!(bottom >= y))
            return y;
    }
}

std::vector<Rect> wrappedSubrectsFromPolygon(const gpc_polygon* polygon, const Rect& line)
{
    std::vector<Rect> boxes;
    boxes.reserve(std::size_t(polygon->num_contours));
    for (int i = 0; i < polygon->num_contours; ++i) {
        const Rect box = boundsForVertexList(polygon->contour[i]);
        if (!std::isnan(box.origin.x)) // NaN cannot be sorted
            boxes.push_back(box);
    }
    return piecesBetween(boxes, line);
}

std::vector<Rect> mergeRects(std::span<const Rect> sorted)
{
    std::vector<Rect> merged;
    if (sorted.empty())
        return merged;
    Rect current = sorted.front();
    for (const Rect& r : sorted.subspan(1)) {
        if (r.size.width == 0)
            continue;
        if (VXROverlapsRectHorizontally(current, r)) {
            current = spanning(current, r);
        } else {
            merged.push_back(current);
            current = r;
        }
    }
    merged.push_back(current);
    return merged;
}

int compareRects(const Rect& a, const Rect& b)
{
    return a.origin.x < b.origin.x ? -1 : a.origin.x > b.origin.x ? 1 : 0;
}

bool VXROverlapsRectHorizontally(const Rect& a, const Rect& b)
{
    if (a.size.width <= 0 || b.size.width <= 0)
        return false;
    if (b.origin.x > a.origin.x)
        return b.origin.x < a.origin.x + a.size.width;
    return a.origin.x < b.origin.x + b.size.width;
}

} // namespace vxr
