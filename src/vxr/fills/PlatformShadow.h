#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <memory>

namespace vxr {

class Color;

/// The platform's shadow object: offset in y-up space, blur radius, and a colour whose alpha is the
/// shadow's opacity.
struct NSShadow {
    Size offset;
    float blurRadius = 0;
    std::shared_ptr<Color> color;
};

/// The platform's shadow-style record: a raised object lit from one direction. Angles in degrees.
struct CGShadowStyle {
    int version = 0;
    float elevation = 45;
    float azimuth = 180;
    float ambient = 1; ///< amount of light that reaches the shadow
    float height = 0; ///< height of the object above the ground
    float radius = 0;
    float saturation = 1;

    friend constexpr bool operator==(const CGShadowStyle&, const CGShadowStyle&) = default;
};

} // namespace vxr
