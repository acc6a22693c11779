#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

namespace vxr {

class VXRBitmapRenderingQualityInfo;
class VXRPaintedShape;

/// A fill: whatever can paint the inside of a shape. Colours, gradients and image fills are painters.
class VXR_EXPORT VXRShapePainter {
public:
    /// Paints the inside of `shape` into the current context.
    virtual void paintShape(VXRPaintedShape& shape) = 0;
    /// Paints a rectangle of the already transformed current context.
    virtual void paintRect(const Rect& rect) = 0;

    /// Told the owning shape when attached and null when detached. Painters that don't care ignore it.
    virtual void setOwner(VXRPaintedShape*) { }
    /// Told when an interactive transform of the owner begins and ends.
    virtual void setDynamicallyTransforming(bool) { }
    /// Adds the bitmaps that painting `shape` would draw.
    virtual void addBitmapsToRenderingQualityInfoShape(VXRBitmapRenderingQualityInfo&, VXRPaintedShape&) { }

protected:
    ~VXRShapePainter() = default;
};

} // namespace vxr
