#include <vxr/platform/graphics/values/AffineTransform.h>

#include <cmath>
#include <ostream>

namespace vxr {

AffineTransform AffineTransform::makeTranslation(float dx, float dy) { return { 1, 0, 0, 1, dx, dy }; }

AffineTransform AffineTransform::makeScale(float sx, float sy) { return { sx, 0, 0, sy, 0, 0 }; }

AffineTransform AffineTransform::makeRotation(float radians)
{
    const float c = static_cast<float>(std::cos(static_cast<double>(radians)));
    const float s = static_cast<float>(std::sin(static_cast<double>(radians)));
    return { c, s, -s, c, 0, 0 };
}

AffineTransform concat(const AffineTransform& first, const AffineTransform& then)
{
    return { then.m11 * first.m11 + then.m21 * first.m12, then.m12 * first.m11 + then.m22 * first.m12,
        then.m11 * first.m21 + then.m21 * first.m22, then.m12 * first.m21 + then.m22 * first.m22,
        then.m11 * first.tX + then.m21 * first.tY + then.tX,
        then.m12 * first.tX + then.m22 * first.tY + then.tY };
}

AffineTransform& AffineTransform::prepend(const AffineTransform& first)
{
    return *this = concat(first, *this);
}

AffineTransform& AffineTransform::append(const AffineTransform& then) { return *this = concat(*this, then); }

AffineTransform& AffineTransform::translate(float dx, float dy) { return prepend(makeTranslation(dx, dy)); }

AffineTransform& AffineTransform::rotate(float radians) { return prepend(makeRotation(radians)); }

AffineTransform& AffineTransform::scale(float sx, float sy) { return prepend(makeScale(sx, sy)); }

double AffineTransform::determinant() const
{
    return static_cast<double>(m11) * m22 - static_cast<double>(m12) * m21;
}

std::optional<AffineTransform> AffineTransform::inverted() const
{
    const double d = determinant();
    if (!std::isfinite(d) || d == 0 || !std::isfinite(tX) || !std::isfinite(tY))
        return std::nullopt;
    const double x = tX, y = tY;
    return AffineTransform { static_cast<float>(m22 / d), static_cast<float>(-m12 / d),
        static_cast<float>(-m21 / d), static_cast<float>(m11 / d),
        static_cast<float>((m21 * y - m22 * x) / d), static_cast<float>((m12 * x - m11 * y) / d) };
}

std::ostream& operator<<(std::ostream& out, const AffineTransform& t)
{
    return out << '{' << t.m11 << ", " << t.m12 << ", " << t.m21 << ", " << t.m22 << ", " << t.tX << ", "
               << t.tY << '}';
}

} // namespace vxr
