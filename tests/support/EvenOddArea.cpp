#include <tests/support/EvenOddArea.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace vxr::testing {
namespace {

using Real = long double;

struct Edge {
    Real x0, y0, x1, y1; // y0 < y1
    bool ofClip;

    Real slope() const { return (x1 - x0) / (y1 - y0); }
    Real xAt(Real y) const { return x0 + (y - y0) * slope(); }
};

void addEdges(const gpc_polygon& polygon, bool ofClip, std::vector<Edge>& edges, std::vector<Real>& heights)
{
    for (int i = 0; i < polygon.num_contours; ++i) {
        const gpc_vertex_list& c = polygon.contour[i];
        for (int k = 0; k < c.num_vertices; ++k) {
            const gpc_vertex u = c.vertex[k], v = c.vertex[(k + 1) % c.num_vertices];
            heights.push_back(u.y);
            if (u.y < v.y)
                edges.push_back({ u.x, u.y, v.x, v.y, ofClip });
            else if (v.y < u.y)
                edges.push_back({ v.x, v.y, u.x, u.y, ofClip });
        }
    }
}

void addCrossingHeights(const std::vector<Edge>& edges, std::vector<Real>& heights)
{
    for (std::size_t i = 0; i < edges.size(); ++i) {
        for (std::size_t j = i + 1; j < edges.size() && edges[j].y0 < edges[i].y1; ++j) {
            const Edge &a = edges[i], &b = edges[j];
            const Real low = b.y0, high = std::min(a.y1, b.y1); // sorted: b begins later
            const Real before = a.xAt(low) - b.x0, after = a.xAt(high) - b.xAt(high);
            if ((before < 0) != (after < 0) && before != after)
                heights.push_back(low + (high - low) * before / (before - after));
        }
    }
}

bool holds(gpc_op operation, bool inSubject, bool inClip)
{
    return operation == GPC_DIFF ? inSubject && !inClip
        : operation == GPC_INT   ? inSubject && inClip
        : operation == GPC_XOR   ? inSubject != inClip
                                 : inSubject || inClip;
}

} // namespace

double areaOfOperation(gpc_op operation, const gpc_polygon& subject, const gpc_polygon& clip)
{
    std::vector<Edge> edges;
    std::vector<Real> heights;
    addEdges(subject, false, edges, heights);
    addEdges(clip, true, edges, heights);
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.y0 < b.y0; });
    addCrossingHeights(edges, heights);
    std::sort(heights.begin(), heights.end());

    Real area = 0;
    std::vector<const Edge*> active;
    std::vector<std::pair<Real, bool>> crossings;
    std::size_t next = 0;
    for (std::size_t k = 0; k + 1 < heights.size(); ++k) {
        const Real low = heights[k], high = heights[k + 1], middle = (low + high) / 2;
        if (low == high)
            continue;
        std::erase_if(active, [&](const Edge* e) { return e->y1 <= middle; });
        for (; next < edges.size() && edges[next].y0 < middle; ++next)
            if (edges[next].y1 > middle)
                active.push_back(&edges[next]);
        crossings.clear();
        for (const Edge* e : active)
            crossings.emplace_back(e->xAt(middle), e->ofClip);
        std::sort(crossings.begin(), crossings.end());
        bool inside[2] = {};
        Real previous = 0;
        for (const auto& [x, ofClip] : crossings) {
            if (holds(operation, inside[0], inside[1]))
                area += (x - previous) * (high - low);
            inside[ofClip] = !inside[ofClip];
            previous = x;
        }
    }
    return double(area);
}

double evenOddArea(const gpc_polygon& polygon) { return areaOfOperation(GPC_UNION, polygon, gpc_polygon {}); }

} // namespace vxr::testing
