#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <cstddef>
#include <span>

namespace vxr {

/// The axis along which the clipper's sweep line moves.
enum class SweepAxis { X, Y };

/// What a clip costs: pairs of edges that the sweep line meets together, and crossings.
struct ClipWork {
    double pairs = 0, crossings = 0;
};

/// Sum over the edges of the vertices beside them, at least the pairs of edges that the sweep line meets
/// together: of two such edges one begins or ends beside the other. The sweep visits each edge about once per
/// such vertex, and no more edges than these pairs can cross. By a histogram, in linear time.
double edgePairBound(std::span<const gpc_vertex_list* const> contours, std::size_t vertices, SweepAxis axis);

/// An estimate in linear time, from evenly drawn edges compared with all of them. The same input always draws
/// the same.
ClipWork sampledClipWork(
    std::span<const gpc_vertex_list* const> contours, std::size_t vertices, SweepAxis axis);

} // namespace vxr
