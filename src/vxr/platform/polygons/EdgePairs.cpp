#include <vxr/platform/polygons/EdgePairs.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {
namespace {

/// Calls `visit(from, to)` with the heights of each edge's ends.
template <class Visit> void forEachEdge(const ClipOperand& operand, Visit visit)
{
    for (const ClipOperand::Contour& contour : operand.contours) {
        const gpc_vertex* first = contour.list->vertex;
        const gpc_vertex* end = first + contour.list->num_vertices;
        double from = end[-1].y;
        for (const gpc_vertex* v = first; v < end; ++v) {
            visit(from, v->y);
            from = v->y;
        }
    }
}

} // namespace

double edgePairBound(const ClipOperand& a, const ClipOperand& b)
{
    const double low = std::min(a.bounds.y0, b.bounds.y0), high = std::max(a.bounds.y1, b.bounds.y1);
    const std::size_t bins = std::clamp<std::size_t>((a.vertices + b.vertices) / 8, 64, 1 << 18);
    const double perUnit = double(bins - 1) / std::max(high - low, 1e-300);
    const auto binOf = [&](double y) { return std::min(bins - 1, std::size_t((y - low) * perUnit)); };
    std::vector<std::uint32_t> below(bins + 1, 0);
    for (const ClipOperand* operand : { &a, &b })
        forEachEdge(*operand, [&](double, double y) { ++below[binOf(y) + 1]; });
    for (std::size_t bin = 1; bin <= bins; ++bin)
        below[bin] += below[bin - 1];
    double pairs = 0;
    for (const ClipOperand* operand : { &a, &b })
        forEachEdge(*operand, [&](double y, double other) {
            const auto [lower, upper] = std::minmax(y, other);
            pairs += below[binOf(upper) + 1] - below[binOf(lower)];
        });
    return pairs;
}

} // namespace vxr
