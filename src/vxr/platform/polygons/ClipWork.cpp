#include <vxr/platform/polygons/ClipWork.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {
namespace {

using Contours = std::span<const gpc_vertex_list* const>;

template <class Visit> void forEachEdge(Contours contours, Visit visit)
{
    for (const gpc_vertex_list* c : contours) {
        const gpc_vertex* from = c->vertex + c->num_vertices - 1;
        for (const gpc_vertex* to = c->vertex; to < c->vertex + c->num_vertices; from = to++)
            visit(*from, *to);
    }
}

struct Range {
    double low, high;
};

Range heightRange(Contours contours)
{
    Range r { contours[0]->vertex[0].y, contours[0]->vertex[0].y };
    forEachEdge(contours, [&](const gpc_vertex&, const gpc_vertex& v) {
        r.low = std::min(r.low, v.y);
        r.high = std::max(r.high, v.y);
    });
    return r;
}

/// Sum over the edges of the vertices at their height, at least the pairs of edges that share a
/// height: of two such edges one begins or ends beside the other. The sweep visits each edge once
/// per such vertex, and no more edges than these pairs can cross.
double edgePairBound(Contours contours, std::size_t vertices)
{
    const Range range = heightRange(contours);
    const std::size_t bins = std::clamp<std::size_t>(vertices / 8, 64, 1 << 18);
    const double perUnit = double(bins - 1) / std::max(range.high - range.low, 1e-300);
    const auto binOf
        = [&](double y) { return std::min(bins - 1, std::size_t(std::max(0.0, (y - range.low) * perUnit))); };
    std::vector<std::uint32_t> below(bins + 1, 0);
    forEachEdge(contours, [&](const gpc_vertex&, const gpc_vertex& v) { ++below[binOf(v.y) + 1]; });
    for (std::size_t b = 1; b <= bins; ++b)
        below[b] += below[b - 1];
    double pairs = 0;
    forEachEdge(contours, [&](const gpc_vertex& u, const gpc_vertex& v) {
        pairs += below[binOf(std::max(u.y, v.y)) + 1] - below[binOf(std::min(u.y, v.y))];
    });
    return pairs;
}

double turn(const gpc_vertex& a, const gpc_vertex& b, const gpc_vertex& c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

struct Work {
    double pairs, crossings;
};

/// Extrapolates from evenly drawn edges compared with all of them. The same input always draws the same.
Work sampledWork(Contours contours, std::size_t vertices)
{
    constexpr std::uint64_t samples = 64;
    std::vector<std::pair<gpc_vertex, gpc_vertex>> drawn;
    drawn.reserve(samples);
    std::uint64_t random = 0x9e3779b97f4a7c15u;
    std::uint64_t seen = 0, next = 0;
    forEachEdge(contours, [&](const gpc_vertex& u, const gpc_vertex& v) {
        if (seen++ != next)
            return;
        drawn.emplace_back(u, v);
        // One edge out of each of the equal stretches of the edge list.
        random = random * 6364136223846793005u + 1442695040888963407u;
        const std::uint64_t stretch = vertices / samples;
        next = std::max<std::uint64_t>(
            seen, drawn.size() * stretch + (random >> 33) % std::max<std::uint64_t>(stretch, 1));
    });
    double pairs = 0, crossings = 0;
    forEachEdge(contours, [&](const gpc_vertex& u, const gpc_vertex& v) {
        const double low = std::min(u.y, v.y), high = std::max(u.y, v.y);
        for (const auto& [a, b] : drawn) {
            if (high < std::min(a.y, b.y) || low > std::max(a.y, b.y))
                continue;
            ++pairs;
            crossings += turn(a, b, u) * turn(a, b, v) < 0 && turn(u, v, a) * turn(u, v, b) < 0;
        }
    });
    const double scale = double(vertices) / double(drawn.size());
    return { pairs * scale, crossings * scale / 2 };
}

} // namespace

bool clipWorkIsBounded(Contours contours, std::size_t vertices)
{
    if (double(vertices) > gpcMaximumVertices)
        return false;
    constexpr double cheap = 1 << 22; // edge pairs, all of which may cross
    if (edgePairBound(contours, vertices) <= cheap)
        return true;
    const Work work = sampledWork(contours, vertices);
    return work.pairs <= gpcMaximumEdgePairs && work.crossings <= gpcMaximumCrossings;
}

} // namespace vxr
