#include <vxr/strokes/smart/VXRStrokeBundle.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

template <class Visit> void forEachPiece(const VXRStrokeBundle& bundle, Visit visit)
{
    for (const auto* pieces : { &bundle.heads, &bundle.bodies, &bundle.tails })
        for (const VXRStrokeBundle::Piece& piece : *pieces)
            for (const VXRStrokeBundle::Part& part : piece.parts)
                visit(piece, part.path->bounds());
}

} // namespace

float VXRStrokeBundle::halfHeight() const
{
    float most = 0;
    forEachPiece(*this, [&](const Piece&, const Rect& bounds) {
        most = std::max({ most, std::fabs(bounds.minY()), std::fabs(bounds.maxY()) });
    });
    return most;
}

float VXRStrokeBundle::overhang() const
{
    float most = 0;
    forEachPiece(*this, [&](const Piece& piece, const Rect& bounds) {
        most = std::max({ most, -bounds.minX(), bounds.maxX() - piece.length });
    });
    return most;
}

} // namespace vxr
