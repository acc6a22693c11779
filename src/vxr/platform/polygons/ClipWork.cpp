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

double heightOf(const gpc_vertex& v, SweepAxis axis) { return axis == SweepAxis::Y ? v.y : v.x; }

struct Range {
    double low, high;
};

Range heightRange(Contours contours, SweepAxis axis)
{
    const double first = heightOf(contours[0]->vertex[0], axis);
    Range r { first, first };
    forEachEdge(contours, [&](const gpc_vertex&, const gpc_vertex& v) {
        r.low = std::min(r.low, heightOf(v, axis));
        r.high = std::max(r.high, heightOf(v, axis));
    });
    return r;
}

double turn(const gpc_vertex& a, const gpc_vertex& b, const gpc_vertex& c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

} // namespace

double edgePairBound(Contours contours, std::size_t vertices, SweepAxis axis)
{
    const Range range = heightRange(contours, axis);
    const std::size_t bins = std::clamp<std::size_t>(vertices / 8, 64, 1 << 18);
    const double perUnit = double(bins - 1) / std::max(range.high - range.low, 1e-300);
    const auto binOf
        = [&](double y) { return std::min(bins - 1, std::size_t(std::max(0.0, (y - range.low) * perUnit))); };
    std::vector<std::uint32_t> below(bins + 1, 0);
    forEachEdge(
        contours, [&](const gpc_vertex&, const gpc_vertex& v) { ++below[binOf(heightOf(v, axis)) + 1]; });
    for (std::size_t b = 1; b <= bins; ++b)
        below[b] += below[b - 1];
    double pairs = 0;
    forEachEdge(contours, [&](const gpc_vertex& u, const gpc_vertex& v) {
        const auto [low, high] = std::minmax({ heightOf(u, axis), heightOf(v, axis) });
        pairs += below[binOf(high) + 1] - below[binOf(low)];
    });
    return pairs;
}

ClipWork sampledClipWork(Contours contours, std::size_t vertices, SweepAxis axis)
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
        const auto [low, high] = std::minmax({ heightOf(u, axis), heightOf(v, axis) });
        for (const auto& [a, b] : drawn) {
            const auto [lowest, highest] = std::minmax({ heightOf(a, axis), heightOf(b, axis) });
            if (high < lowest || low > highest)
                continue;
            ++pairs;
            crossings += turn(a, b, u) * turn(a, b, v) < 0 && turn(u, v, a) * turn(u, v, b) < 0;
        }
    });
    const double scale = double(vertices) / double(drawn.size());
    return { pairs * scale, crossings * scale / 2 };
}

} // namespace vxr
