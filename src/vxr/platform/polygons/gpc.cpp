#include <vxr/platform/polygons/gpc.h>

#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/polygons/AreaSweep.h>
#include <vxr/platform/polygons/ClipClusters.h>
#include <vxr/platform/polygons/ClipGrid.h>
#include <vxr/platform/polygons/ClipResult.h>
#include <vxr/platform/polygons/ContourNesting.h>
#include <vxr/platform/polygons/EdgePairs.h>

#include <fmt/format.h>
#include <polyclipping/clipper.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace vxr {
namespace {

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

/// An operation under a fill rule.
struct Combination {
    gpc_op operation;
    ClipperLib::PolyFillType fill;
    AreaSweep::Rule isInside;
};

template <gpc_op operation> bool isInsideEvenOdd(int a, int b)
{
    const bool inA = a % 2 != 0, inB = b % 2 != 0;
    switch (operation) {
    case GPC_DIFF:
        return inA && !inB;
    case GPC_INT:
        return inA && inB;
    case GPC_XOR:
        return inA != inB;
    case GPC_UNION:
        break;
    }
    return inA || inB;
}

Combination evenOdd(gpc_op operation)
{
    constexpr AreaSweep::Rule rules[] = { isInsideEvenOdd<GPC_DIFF>, isInsideEvenOdd<GPC_INT>,
        isInsideEvenOdd<GPC_XOR>, isInsideEvenOdd<GPC_UNION> };
    return { operation, ClipperLib::pftEvenOdd, rules[operation] };
}

/// One clip. What is plain goes to Clipper, whose cost follows the edges side by side, and what is not to the
/// sweep, whose cost follows the crossings.
class Clip {
public:
    Clip(const Combination& how, const ClipBox& bounds)
        : mHow(how)
        , mGrid(bounds, 45) // leaves Clipper's crossings, computed in double, exact to about a step
    {
    }

    /// Throws when the work exceeds the limits that the header states.
    gpc_polygon execute(const ClipOperand& a, const ClipOperand& b)
    {
        const auto vertices = double(a.vertices + b.vertices);
        if (vertices > gpcMaximumVertices)
            refuse("vertices", vertices, gpcMaximumVertices);
        if (isPlain(a, b))
            clipPlain(a, b);
        else
            for (const ClipCluster& cluster : clipClusters(a, b))
                if (isPlain(cluster.a, cluster.b))
                    clipPlain(cluster.a, cluster.b);
                else
                    sweep(cluster.a, cluster.b);
        return mResult.take();
    }

private:
    static bool isPlain(const ClipOperand& a, const ClipOperand& b)
    {
        constexpr std::size_t few = 1024; // vertices, however their edges lie
        constexpr double cheap = 1 << 22; // pairs of edges, all of which may cross
        return a.vertices + b.vertices <= few || edgePairBound(a, b) <= cheap;
    }

    void clipPlain(const ClipOperand& a, const ClipOperand& b)
    {
        ClipperLib::Clipper clipper;
        // Without it Clipper also removes the vertices in the middle of straight sides.
        clipper.PreserveCollinear(true);
        addTo(clipper, a, ClipperLib::ptSubject);
        addTo(clipper, b, ClipperLib::ptClip);
        ClipperLib::Paths contours;
        // Clipper gives up on some input with edges that lie on each other.
        if (!isClipped(clipper, contours))
            return sweep(a, b);
        const std::vector<int> holes = holeFlags(contours);
        for (std::size_t i = 0; i < contours.size(); ++i) {
            const auto vertices = mResult.add(contours[i].size(), holes[i]);
            std::transform(contours[i].begin(), contours[i].end(), vertices.begin(),
                [&](const auto& p) { return mGrid.fromGrid(double(p.X), double(p.Y)); });
        }
    }

    bool isClipped(ClipperLib::Clipper& clipper, ClipperLib::Paths& contours) const
    {
        try {
            return clipper.Execute(clipType(mHow.operation), contours, mHow.fill, mHow.fill);
        } catch (const ClipperLib::clipperException&) {
            return false;
        }
    }

    void addTo(ClipperLib::Clipper& clipper, const ClipOperand& operand, ClipperLib::PolyType role)
    {
        for (const auto& contour : operand.contours) {
            mScratch.clear();
            for (int k = 0; k < contour.list->num_vertices; ++k) {
                const gpc_vertex& v = contour.list->vertex[k];
                mScratch.emplace_back(mGrid.gridX(v), mGrid.gridY(v));
            }
            clipper.AddPath(mScratch, role, true);
        }
    }

    /// On a grid of its own across the operands.
    void sweep(const ClipOperand& a, const ClipOperand& b)
    {
        ClipBox bounds = a.bounds;
        bounds.add(b.bounds);
        const ClipGrid grid(bounds, 30);
        AreaSweep sweep;
        std::vector<GridPoint> points;
        for (const int role : { 0, 1 })
            for (const auto& contour : (role == 0 ? a : b).contours) {
                points.clear();
                for (int k = 0; k < contour.list->num_vertices; ++k) {
                    const gpc_vertex& v = contour.list->vertex[k];
                    points.push_back({ std::int32_t(grid.gridX(v)), std::int32_t(grid.gridY(v)) });
                }
                sweep.addContour(points, role);
            }
        OutlineLinks outline;
        mCrossings += sweep.run(mHow.isInside, gpcMaximumCrossings - mCrossings, outline);
        if (mCrossings > gpcMaximumCrossings)
            refuse("crossings of edges", mCrossings, gpcMaximumCrossings);
        outline.visitContours([&](std::span<const gpc_vertex> contour, bool isHole) {
            const auto vertices = mResult.add(contour.size(), isHole);
            std::transform(contour.begin(), contour.end(), vertices.begin(),
                [&](const gpc_vertex& v) { return grid.fromGrid(v.x, v.y); });
        });
    }

    Combination mHow;
    ClipGrid mGrid;
    ClipperLib::Path mScratch;
    ClipResult mResult;
    double mCrossings = 0;
};

gpc_polygon clipped(const Combination& how, const gpc_polygon& subject, const gpc_polygon& clip)
{
    const gpc_op operation = how.operation;
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
    return Clip(how, bounds).execute(a, b);
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
    *result = clipped(evenOdd(operation), *subject, *clip);
}

void gpc_unite_nonzero(const gpc_polygon* polygon, gpc_polygon* result)
{
    const auto isInside = [](int winding, int) { return winding != 0; };
    *result = clipped({ GPC_UNION, ClipperLib::pftNonZero, isInside }, *polygon, {});
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
