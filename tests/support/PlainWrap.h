#pragma once

#include <vxr/textwrap/VXRTextWrap.h>

#include <algorithm>
#include <cmath>

namespace vxr::testing {

/// Text wrap step by step on the whole polygon, nothing remembered: what the library's road is compared with.
inline std::vector<Rect> plainlyWrapped(const Rect& line, const Path& path, int type)
{
    const VXRPolygonOwner shape(polygonFromBezier(path)), rect(polygonFromRect(line)), result(emptyPolygon());
    gpc_polygon_clip(type == 0 ? GPC_DIFF : GPC_INT, rect.get(), shape.get(), result.get());
    return wrappedSubrectsFromPolygon(result.get(), line);
}

/// Whether two lists of pieces have the same rows and nearly the same ends.
inline bool samePieces(const std::vector<Rect>& a, const std::vector<Rect>& b, float tolerance)
{
    return std::ranges::equal(a, b, [&](const Rect& p, const Rect& q) {
        return p.origin.y == q.origin.y && p.size.height == q.size.height
            && std::abs(p.minX() - q.minX()) < tolerance && std::abs(p.maxX() - q.maxX()) < tolerance;
    });
}

} // namespace vxr::testing
