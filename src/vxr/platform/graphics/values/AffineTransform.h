#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <optional>

namespace vxr {

/// Affine map x' = m11 x + m21 y + tX, y' = m12 x + m22 y + tY, in single precision. A value.
///
/// `prepend` adds a map that applies before this one, `append` one that applies after it. `translate`,
/// `rotate` and `scale` prepend, so a chain reads like the same calls on a drawing context.
struct VXR_EXPORT AffineTransform {
    float m11 = 1, m12 = 0, m21 = 0, m22 = 1, tX = 0, tY = 0;

    static AffineTransform makeTranslation(float dx, float dy);
    static AffineTransform makeScale(float sx, float sy);
    static AffineTransform makeRotation(float radians);

    AffineTransform& prepend(const AffineTransform& first);
    AffineTransform& append(const AffineTransform& then);
    AffineTransform& translate(float dx, float dy);
    AffineTransform& rotate(float radians); ///< counter-clockwise where y points up
    AffineTransform& scale(float sx, float sy);
    AffineTransform& scale(float s) { return scale(s, s); }

    /// m11 m22 - m12 m21, in double.
    double determinant() const;
    /// Empty if a component is not finite or the determinant is zero.
    std::optional<AffineTransform> inverted() const;

    constexpr Point map(Point p) const { return { m11 * p.x + m21 * p.y + tX, m12 * p.x + m22 * p.y + tY }; }
    /// The linear part only.
    constexpr Size map(Size s) const
    {
        return { m11 * s.width + m21 * s.height, m12 * s.width + m22 * s.height };
    }

    constexpr bool isIdentity() const { return *this == AffineTransform {}; }

    friend constexpr bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

/// `first` applied before `then`.
VXR_EXPORT AffineTransform concat(const AffineTransform& first, const AffineTransform& then);

VXR_EXPORT std::ostream& operator<<(std::ostream&, const AffineTransform&);

} // namespace vxr
