#include <vxr/platform/polygons/gpc.h>

#include <vxr/platform/polygons/ClipWork.h>
#include <vxr/platform/polygons/ContourNesting.h>

#include <polyclipping/clipper.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace vxr {
namespace {

/// An array of `count` records from malloc; none for 0.
template <class T> T* allocateArray(std::size_t count)
{
    if (count == 0)
        return nullptr;
    auto* array = static_cast<T*>(std::malloc(count * sizeof(T)));
    if (!array)
        throw std::bad_alloc();
    return array;
}

template <class T> void growArray(T*& array, std::size_t count)
{
    auto* grown = static_cast<T*>(std::realloc(array, count * sizeof(T)));
    if (!grown)
        throw std::bad_alloc();
    array = grown;
}

struct Box {
    double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;

    void add(const Box& b)
    {
        x0 = std::min(x0, b.x0);
        y0 = std::min(y0, b.y0);
        x1 = std::max(x1, b.x1);
        y1 = std::max(y1, b.y1);
    }
    bool meets(const Box& b) const { return x0 <= b.x1 && b.x0 <= x1 && y0 <= b.y1 && b.y0 <= y1; }
};

/// An operand as the clip sees it: contours that can bound an area, with their boxes.
struct Operand {
    struct Contour {
        const gpc_vertex_list* list;
        Box box;
    };
    std::vector<Contour> contours;
    Box bounds;
    std::size_t vertices = 0;

    bool isEmpty() const { return contours.empty(); }

    /// False when a coordinate is NaN or infinite.
    bool read(const gpc_polygon& polygon)
    {
        contours.reserve(std::size_t(polygon.num_contours));
        for (int i = 0; i < polygon.num_contours; ++i) {
            const gpc_vertex_list& contour = polygon.contour[i];
            Box box;
            double check = 0; // NaN as soon as any coordinate is not finite
            for (int k = 0; k < contour.num_vertices; ++k) {
                const gpc_vertex v = contour.vertex[k];
                check += v.x * 0 + v.y * 0;
                box.add({ v.x, v.y, v.x, v.y });
            }
            if (check != 0)
                return false;
            if (contour.num_vertices < 3)
                continue;
            contours.push_back({ &contour, box });
            count(contours.back());
        }
        return true;
    }

    /// Drops the contours that don't reach `area`: they can't change what is inside within it.
    void keepMeeting(const Box& area)
    {
        if (std::erase_if(contours, [&](const Contour& c) { return !c.box.meets(area); }) == 0)
            return;
        bounds = {};
        vertices = 0;
        for (const Contour& contour : contours)
            count(contour);
    }

private:
    void count(const Contour& contour)
    {
        bounds.add(contour.box);
        vertices += std::size_t(contour.list->num_vertices);
    }
};

/// Maps coordinates to whole numbers of at most 2^45 and back. The scale is a power of two and the
/// centre lies on the grid, so coordinates on the grid survive the round trip exactly; 45 bits leave
/// Clipper's intersections, computed in double, exact to about a grid step.
class Grid {
public:
    explicit Grid(const Box& bounds)
    {
        constexpr int bits = 45;
        const double half = std::max(bounds.x1 / 2 - bounds.x0 / 2, bounds.y1 / 2 - bounds.y0 / 2);
        int exponent = 0;
        std::frexp(half, &exponent); // 2^(exponent - 1) <= half < 2^exponent
        const int shift = std::clamp(bits - 1 - exponent, -1022, 1022);
        mScale = std::ldexp(1.0, shift);
        mStep = std::ldexp(1.0, -shift);
        mCentreX = std::floor((bounds.x0 / 2 + bounds.x1 / 2) * mScale) * mStep;
        mCentreY = std::floor((bounds.y0 / 2 + bounds.y1 / 2) * mScale) * mStep;
    }

    ClipperLib::IntPoint toGrid(const gpc_vertex& v) const
    {
        return { rounded((v.x - mCentreX) * mScale), rounded((v.y - mCentreY) * mScale) };
    }
    gpc_vertex fromGrid(const ClipperLib::IntPoint& p) const
    {
        return { double(p.X) * mStep + mCentreX, double(p.Y) * mStep + mCentreY };
    }

private:
    static ClipperLib::cInt rounded(double x) { return ClipperLib::cInt(x < 0 ? x - 0.5 : x + 0.5); }

    double mScale, mStep, mCentreX, mCentreY;
};

void addTo(ClipperLib::Clipper& clipper, const Operand& operand, ClipperLib::PolyType role, const Grid& grid,
    ClipperLib::Path& scratch)
{
    for (const auto& [contour, box] : operand.contours) {
        scratch.resize(std::size_t(contour->num_vertices));
        std::transform(contour->vertex, contour->vertex + contour->num_vertices, scratch.begin(),
            [&](const gpc_vertex& v) { return grid.toGrid(v); });
        clipper.AddPath(scratch, role, true);
    }
}

/// Whether the operands stay within the bounds that the header states.
bool isWithinBounds(const Operand& a, const Operand& b)
{
    const std::size_t vertices = a.vertices + b.vertices;
    if (vertices <= clipWorkNeverTooMuch)
        return true;
    std::vector<const gpc_vertex_list*> contours;
    contours.reserve(a.contours.size() + b.contours.size());
    for (const Operand* operand : { &a, &b })
        for (const auto& contour : operand->contours)
            contours.push_back(contour.list);
    return clipWorkIsBounded(contours, vertices);
}

gpc_polygon toPolygon(const ClipperLib::Paths& contours, const Grid& grid)
{
    struct Result : gpc_polygon {
        Result()
            : gpc_polygon {}
        {
        }
        ~Result() { gpc_free_polygon(this); }
    } result;

    if (contours.size() > std::size_t(std::numeric_limits<int>::max()))
        return {};
    const std::vector<int> holes = holeFlags(contours);
    result.hole = allocateArray<int>(contours.size());
    result.contour = allocateArray<gpc_vertex_list>(contours.size());
    std::copy(holes.begin(), holes.end(), result.hole);
    for (const auto& path : contours) {
        auto* vertices = allocateArray<gpc_vertex>(path.size());
        std::transform(path.begin(), path.end(), vertices, [&](const auto& p) { return grid.fromGrid(p); });
        result.contour[result.num_contours++] = { int(path.size()), vertices };
    }
    const gpc_polygon answer = result;
    static_cast<gpc_polygon&>(result) = {};
    return answer;
}

ClipperLib::ClipType clipType(gpc_op operation)
{
    switch (operation) {
    case GPC_DIFF:
        return ClipperLib::ctDifference;
    case GPC_INT:
        return ClipperLib::ctIntersection;
    case GPC_XOR:
        return ClipperLib::ctXor;
    case GPC_UNION:
        break;
    }
    return ClipperLib::ctUnion;
}

gpc_polygon clipped(gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip)
{
    Operand a, b;
    if (!a.read(subject) || !b.read(clip))
        return {};
    if (operation == GPC_INT)
        a.keepMeeting(b.bounds);
    if (operation == GPC_INT || operation == GPC_DIFF)
        b.keepMeeting(a.bounds);

    const bool emptyResult = (operation == GPC_INT && b.isEmpty())
        || ((operation == GPC_INT || operation == GPC_DIFF) && a.isEmpty()) || (a.isEmpty() && b.isEmpty());
    if (emptyResult)
        return {};

    Box bounds = a.bounds;
    bounds.add(b.bounds);
    if (bounds.x0 == bounds.x1 || bounds.y0 == bounds.y1 || !isWithinBounds(a, b))
        return {};

    const Grid grid(bounds);
    ClipperLib::Clipper clipper;
    // Without it Clipper also removes the vertices in the middle of straight sides.
    clipper.PreserveCollinear(true);
    ClipperLib::Path scratch;
    scratch.reserve(std::max(a.vertices, b.vertices));
    addTo(clipper, a, ClipperLib::ptSubject, grid, scratch);
    addTo(clipper, b, ClipperLib::ptClip, grid, scratch);
    ClipperLib::Paths contours;
    if (!clipper.Execute(clipType(operation), contours, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd))
        return {};
    return toPolygon(contours, grid);
}

} // namespace

void gpc_add_contour(gpc_polygon* polygon, const gpc_vertex_list* contour, int hole)
{
    const auto count = std::size_t(polygon->num_contours) + 1;
    growArray(polygon->hole, count);
    growArray(polygon->contour, count);
    auto* vertices = allocateArray<gpc_vertex>(std::size_t(contour->num_vertices));
    std::copy(contour->vertex, contour->vertex + contour->num_vertices, vertices);
    polygon->hole[count - 1] = hole;
    polygon->contour[count - 1] = { contour->num_vertices, vertices };
    polygon->num_contours = int(count);
}

void gpc_polygon_clip(
    gpc_op operation, const gpc_polygon* subject, const gpc_polygon* clip, gpc_polygon* result)
{
    try {
        *result = clipped(operation, *subject, *clip);
    } catch (const ClipperLib::clipperException&) {
        *result = {};
    }
}

void gpc_free_polygon(gpc_polygon* polygon)
{
    for (int i = 0; i < polygon->num_contours; ++i)
        std::free(polygon->contour[i].vertex);
    std::free(polygon->hole);
    std::free(polygon->contour);
    *polygon = {};
}

} // namespace vxr
