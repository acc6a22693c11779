#pragma once

#include <vxr/fills/VXRGradient.h>

namespace vxr {

/// A gradient across a shape or rectangle at an angle.
///
/// Draws the ramp from its first to its last colour, stretched over the area; the stops between them, the
/// type and the opacity are ignored. A subclass that returns true from `usesQuartzShadings` draws the shading
/// of all stops instead, with its opacity.
class VXR_EXPORT VXRAngleGradient : public VXRGradient {
public:
    VXRAngleGradient(); ///< no stops: for copying and reading
    VXRAngleGradient(std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type);
    ~VXRAngleGradient() override;

    static std::shared_ptr<VXRAngleGradient> linearGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);
    static std::shared_ptr<VXRAngleGradient> radialGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);

    float gradientAngle() const { return _angle; } ///< radians
    void setGradientAngle(float radians) { _angle = radians; }
    float gradientAngleInDegrees() const;
    void setGradientAngleInDegrees(float degrees);

    void paintShape(VXRPaintedShape& shape) override;
    void paintRect(const Rect& rect) override;

    /// Half the extent of a rectangle of this size along the direction `angle`.
    float _bestGradientLengthForRectAtAngle(const Rect& rect, float angle) const;
    /// The same for the shape's outline, with the shape's own rotation removed.
    float _bestGradientLengthForShapeAtAngle(const VXRPaintedShape& shape, float angle) const;

    bool isEqual(const Object& other) const override; ///< equal gradients at equal angles
    std::shared_ptr<VXRGradient> copyWithZone() const override;

private:
    /// The shading across `length` on both sides of `center`, with the gradient's opacity.
    void drawShadingAround(Context& context, Point center, float length) const;
    void drawRamp(Context& context, const Rect& area) const;

    float _angle = 0;
};

} // namespace vxr
