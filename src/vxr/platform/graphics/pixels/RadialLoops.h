#pragma once

// The loops of radial blends for one instruction set; see SpanLoops.h.
// Coordinates are taken in double precision at every 16th column and in single
// precision between, so that a pixel's don't depend on the span.

#include <vxr/platform/graphics/pixels/RadialBlend.h>
#include <vxr/platform/graphics/pixels/SpanVectors.h>

namespace vxr {

namespace {

constexpr int radialGroup = 16;

/// The place of a parameter that may lie beyond the table's ends, or not be a
/// number.
VXR_SPAN_INLINE std::int32_t placeWithin(float at, float last)
{
    float within = at > 0 ? at : 0;
    within = within < last ? within : last;
    const auto place = std::int32_t(within + 0.5f);
    const std::int32_t end = std::int32_t(last) + 1;
    return at < 0 ? -1 : at > last ? end : place;
}

VXR_SPAN_INLINE void placesWithin(const RadialBlend& blend, float u0, float v0, std::int32_t* places)
{
    const float du = float(blend.columnU), dv = float(blend.columnV);
    for (int i = 0; i < radialGroup; ++i) {
        const float u = u0 + float(i) * du, v = v0 + float(i) * dv;
        const float at = blend.origin + blend.slope * u + blend.side * __builtin_sqrtf(u * u + v * v);
        places[i] = placeWithin(at, blend.last);
    }
}

VXR_SPAN_INLINE void placesOnCone(const RadialBlend& blend, float u0, float v0, std::int32_t* places)
{
    const float du = float(blend.columnU), dv = float(blend.columnV), last = blend.last;
    const float least = blend.extendsStart ? -3e38f : 0, most = blend.extendsEnd ? 3e38f : last;
    const float side = blend.side, origin = blend.origin, slope = blend.slope;
    const std::int32_t none = std::int32_t(last) + 2;
    for (int i = 0; i < radialGroup; ++i) {
        const float u = u0 + float(i) * du, v = v0 + float(i) * dv;
        const float square = u * u - v * v;
        const float root = __builtin_sqrtf(square > 0 ? square : 0), middle = origin + slope * u;
        const float greater = middle + root, smaller = middle - root;
        const float inside = greater < least ? smaller : greater, at = inside > most ? smaller : inside;
        std::int32_t place = placeWithin(at, last);
        place = at < least ? none : place;
        place = at > most ? none : place;
        place = square < 0 ? none : place;
        places[i] = u * side < 0 ? none : place;
    }
}

template <bool isCone>
VXR_SPAN_INLINE void radialSpan(
    const RadialBlend& blend, double u, double v, int x, std::size_t count, std::uint32_t* colors)
{
    const std::int64_t begin = x, end = begin + std::int64_t(count);
    for (std::int64_t group = begin & -std::int64_t(radialGroup); group < end; group += radialGroup) {
        std::int32_t places[radialGroup];
        const float u0 = float(u + blend.columnU * double(group));
        const float v0 = float(v + blend.columnV * double(group));
        if (isCone)
            placesOnCone(blend, u0, v0, places);
        else
            placesWithin(blend, u0, v0, places);
        const std::int64_t first = group < begin ? begin - group : 0;
        const std::int64_t stop = end - group < radialGroup ? end - group : radialGroup;
        std::uint32_t* to = colors + (group - begin);
        for (std::int64_t i = first; i < stop; ++i)
            to[i] = blend.colors[places[i]];
    }
}

void radial(const RadialBlend& blend, double u, double v, int x, std::size_t count, std::uint32_t* colors)
{
    if (blend.isCone)
        radialSpan<true>(blend, u, v, x, count, colors);
    else
        radialSpan<false>(blend, u, v, x, count, colors);
}

} // namespace

} // namespace vxr
