#pragma once

#include <vxr/fills/VXRGradient.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

namespace vxr {

/// A gradient from one point to another, placed by its own transform. Drawn from its shading, so all stops
/// and the type count: a radial gradient has its centre at the start point and its radius reaches to
/// the end point.
class VXR_EXPORT VXRTransformGradient : public VXRGradient {
public:
    VXRTransformGradient(); ///< no stops: for copying and reading
    VXRTransformGradient(std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type);
    ~VXRTransformGradient() override;

    static std::shared_ptr<VXRTransformGradient> linearGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);
    static std::shared_ptr<VXRTransformGradient> radialGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);

    // The axis. For shapes it is given in their local frame and mapped by the transform.
    Point startPoint() const { return _start; }
    void setStartPoint(Point start) { _start = start; }
    Point endPoint() const { return _end; }
    void setEndPoint(Point end) { _end = end; }
    const AffineTransform& transform() const { return _transform; }
    void setTransform(const AffineTransform& transform) { _transform = transform; }

    void paintShape(VXRPaintedShape& shape) override;
    void paintRect(const Rect& rect) override;

    bool isEqual(const Object& other) const override; ///< equal gradients, points and transforms
    std::shared_ptr<VXRGradient> copyWithZone() const override;

private:
    void drawAlongAxis(Context& context) const;

    Point _start;
    Point _end;
    AffineTransform _transform;
};

} // namespace vxr
