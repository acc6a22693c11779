#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

namespace vxr {

class VXRBitmapRenderingQualityInfo;
class VXRPaintedShape;

/// A fill: paints the inside of a shape. Colours, gradients and image fills are painters.
class VXR_EXPORT VXRShapePainter {
public:
    /// Paints the inside of `shape` into the current context.
    virtual void paintShape(VXRPaintedShape& shape) = 0;
    /// Paints a rectangle in the current context, whose transform is already set.
    virtual void paintRect(const Rect& rect) = 0;

    /// Called with the owning shape when attached, and with null when detached. The default ignores it.
    virtual void setOwner(VXRPaintedShape*) { }
    /// Called when an interactive transform of the owner begins and ends.
    virtual void setDynamicallyTransforming(bool) { }
    /// Appends the bitmaps that painting `shape` would draw.
    virtual void addBitmapsToRenderingQualityInfoShape(VXRBitmapRenderingQualityInfo&, VXRPaintedShape&) { }

protected:
    ~VXRShapePainter() = default;
};

} // namespace vxr
