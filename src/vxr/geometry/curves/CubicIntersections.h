#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <vector>

// Where segments meet.

namespace vxr {

/// Parameters on the two operands.
struct CurveCrossing {
    double first = 0;
    double second = 0;
};

/// Where a curve meets the line from `start` to `end`, whose parameter is the second; ascending on the curve,
/// at most three. A curve that lies along the line meets it nowhere.
VXR_EXPORT std::vector<CurveCrossing> crossingsWithLine(const Cubic& curve, Vec2 start, Vec2 end);

struct CurveCrossings {
    std::vector<CurveCrossing> crossings; ///< ascending on the first curve
    /// The curves run along each other, or meet more often than the search goes: there are crossings beyond
    /// those listed.
    bool overlap = false;
};

/// Where two curves meet, ends included: nine times at most unless they overlap. Crossings of the curves are
/// found to about 1e-9 of their size; touching without crossing to the square root of that.
VXR_EXPORT CurveCrossings crossingsOf(const Cubic& first, const Cubic& second);

} // namespace vxr
