#include <vxr/platform/polygons/gpc.h>

#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/polygons/ClipClusters.h>
#include <vxr/platform/polygons/ClipWork.h>
#include <vxr/platform/polygons/ContourNesting.h>

#include <fmt/format.h>
#include <polyclipping/clipper.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
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

/// Maps coordinates to whole numbers of at most 2^45 and back. The scale is a power of two and the
/// centre lies on the grid, so coordinates on the grid survive the round trip exactly; 45 bits leave
/// Clipper's intersections, computed in double, exact to about a grid step.
class Grid {
public:
    explicit Grid(const ClipBox& bounds)
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

gpc_polygon toPolygon(const ClipperLib::Paths& contours, const std::vector<int>& holes, const Grid& grid)
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

[[noreturn]] void refuse(const char* what, double count, double limit)
{
    throw GenericException(
        fmt::format("Polygon clipping refused: {:.0f} {} exceed the limit of {:.0f}.", count, what, limit));
}

/// One clip: an operation under a fill rule, on a grid across both operands.
class Clip {
public:
    Clip(ClipperLib::ClipType operation, ClipperLib::PolyFillType rule, const ClipBox& bounds)
        : mOperation(operation)
        , mRule(rule)
        , mGrid(bounds)
    {
    }

    /// Throws when the work exceeds the limits that the header states.
    gpc_polygon execute(const ClipOperand& a, const ClipOperand& b)
    {
        const std::size_t vertices = a.vertices + b.vertices;
        if (double(vertices) > gpcMaximumVertices)
            refuse("vertices", double(vertices), gpcMaximumVertices);
        if (vertices <= neverTooMuch || edgePairBound(listsOf(a, b), vertices, SweepAxis::Y) <= cheap)
            run(a, b, SweepAxis::Y);
        else
            executeInClusters(a, b);
        return toPolygon(mContours, mHoles, mGrid);
    }

private:
    using Lists = std::vector<const gpc_vertex_list*>;

    static constexpr std::size_t neverTooMuch = 2048; ///< vertices, however their edges cross
    static constexpr double cheap = 1 << 22; ///< edge pairs, all of which may cross

    static Lists listsOf(const ClipOperand& a, const ClipOperand& b)
    {
        Lists lists;
        lists.reserve(a.contours.size() + b.contours.size());
        for (const ClipOperand* operand : { &a, &b })
            for (const auto& contour : operand->contours)
                lists.push_back(contour.list);
        return lists;
    }

    /// What lies apart is clipped apart, each cluster along the axis on which fewer edges lie beside each
    /// other.
    void executeInClusters(const ClipOperand& a, const ClipOperand& b)
    {
        const std::vector<ClipCluster> clusters = clipClusters(a, b);
        std::vector<SweepAxis> axes;
        axes.reserve(clusters.size());
        ClipWork work;
        for (const ClipCluster& cluster : clusters)
            axes.push_back(addWork(cluster, work));
        if (work.pairs > gpcMaximumEdgePairs)
            refuse("pairs of edges side by side", work.pairs, gpcMaximumEdgePairs);
        if (work.crossings > gpcMaximumCrossings)
            refuse("crossings of edges", work.crossings, gpcMaximumCrossings);
        for (std::size_t i = 0; i < clusters.size(); ++i)
            run(clusters[i].a, clusters[i].b, axes[i]);
    }

    static SweepAxis addWork(const ClipCluster& cluster, ClipWork& work)
    {
        const std::size_t vertices = cluster.a.vertices + cluster.b.vertices;
        if (vertices <= neverTooMuch)
            return SweepAxis::Y;
        const Lists lists = listsOf(cluster.a, cluster.b);
        const double alongX = edgePairBound(lists, vertices, SweepAxis::X);
        const double alongY = edgePairBound(lists, vertices, SweepAxis::Y);
        const SweepAxis axis = alongX < alongY ? SweepAxis::X : SweepAxis::Y;
        if (std::min(alongX, alongY) > cheap) {
            const ClipWork sampled = sampledClipWork(lists, vertices, axis);
            work.pairs += sampled.pairs;
            work.crossings += sampled.crossings;
        }
        return axis;
    }

    void run(const ClipOperand& a, const ClipOperand& b, SweepAxis axis)
    {
        ClipperLib::Clipper clipper;
        // Without it Clipper also removes the vertices in the middle of straight sides.
        clipper.PreserveCollinear(true);
        addTo(clipper, a, ClipperLib::ptSubject, axis);
        addTo(clipper, b, ClipperLib::ptClip, axis);
        ClipperLib::Paths contours;
        // Clipper gives up on some degenerate contours, which then have no area.
        if (!clipper.Execute(mOperation, contours, mRule, mRule))
            return;
        // While few contours lie side by side, and none of another cluster is near.
        const std::vector<int> holes = holeFlags(contours);
        mHoles.insert(mHoles.end(), holes.begin(), holes.end());
        if (axis == SweepAxis::X)
            for (ClipperLib::Path& contour : contours)
                transpose(contour);
        std::move(contours.begin(), contours.end(), std::back_inserter(mContours));
    }

    void addTo(
        ClipperLib::Clipper& clipper, const ClipOperand& operand, ClipperLib::PolyType role, SweepAxis axis)
    {
        for (const auto& [contour, box] : operand.contours) {
            mScratch.resize(std::size_t(contour->num_vertices));
            std::transform(contour->vertex, contour->vertex + contour->num_vertices, mScratch.begin(),
                [&](const gpc_vertex& v) { return mGrid.toGrid(v); });
            if (axis == SweepAxis::X)
                transpose(mScratch);
            clipper.AddPath(mScratch, role, true);
        }
    }

    /// Mirrored at the diagonal, and reversed so that it runs the same way round.
    static void transpose(ClipperLib::Path& contour)
    {
        for (ClipperLib::IntPoint& p : contour)
            std::swap(p.X, p.Y);
        std::reverse(contour.begin(), contour.end());
    }

    ClipperLib::ClipType mOperation;
    ClipperLib::PolyFillType mRule;
    Grid mGrid;
    ClipperLib::Path mScratch;
    ClipperLib::Paths mContours;
    std::vector<int> mHoles;
};

gpc_polygon clipped(gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip,
    ClipperLib::PolyFillType rule = ClipperLib::pftEvenOdd)
{
    ClipOperand a, b;
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

    ClipBox bounds = a.bounds;
    bounds.add(b.bounds);
    if (bounds.x0 == bounds.x1 || bounds.y0 == bounds.y1)
        return {};
    try {
        return Clip(clipType(operation), rule, bounds).execute(a, b);
    } catch (const ClipperLib::clipperException& failure) {
        throw GenericException(fmt::format("Polygon clipping failed: {}.", failure.what()));
    }
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
    *result = clipped(operation, *subject, *clip);
}

void gpc_unite_nonzero(const gpc_polygon* polygon, gpc_polygon* result)
{
    *result = clipped(GPC_UNION, *polygon, {}, ClipperLib::pftNonZero);
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
