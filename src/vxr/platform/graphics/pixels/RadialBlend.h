#pragma once

#include <cstdint>

namespace vxr {

/// A blend between two circles of different radius, neither close to touching within the other, in
/// coordinates (u, v) whose origin is where the radius is 0 and whose u runs along the line of the
/// centres. The place in the table of colours is
///
///     origin + slope u + side sqrt(u^2 + v^2)    where one circle lies within the other,
///     origin + slope u +- sqrt(u^2 - v^2)        where they form a cone.
struct RadialBlend {
    double columnU, columnV; ///< change from one column to the next
    float origin, slope;
    float side; ///< 1 or -1; in a cone the sign that u has where there are circles
    float last; ///< the last place in the table
    bool isCone;
    bool extendsStart, extendsEnd;
    const std::uint32_t* colors; ///< as in `GradientTable`
};

} // namespace vxr
