#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <memory>
#include <optional>

namespace vxr {

class VXRCanvasRole;

/// What a painter (fill or stroke) may ask of the shape it paints.
class VXR_EXPORT VXRPaintedShape {
public:
    virtual VXRCanvasRole* canvas() const = 0; ///< none while the shape is on no canvas
    virtual std::shared_ptr<Path> path() const = 0; ///< the shape's own outline in its local frame, or none
    /// The outline in canvas coordinates: a copy that the painter may change. Never none.
    virtual std::shared_ptr<Path> transformedPath() const = 0;
    virtual AffineTransform transform() const = 0; ///< local frame to canvas
    virtual Size naturalSize() const = 0; ///< of the local frame
    virtual Point center() const = 0; ///< canvas coordinates
    virtual float angle() const = 0; ///< the shape's own rotation in radians
    virtual Rect alignmentBounds() const = 0; ///< canvas coordinates, stroke included
    virtual bool wantsInteriorStroke() const = 0;
    virtual void clip() const = 0; ///< intersects the current context's clip with the outline
    /// Used by gradients in place of `transform` by shapes that offer one.
    virtual std::optional<AffineTransform> gradientTransform() const { return std::nullopt; }
    /// Used by image fills in place of `transform` by shapes that offer one.
    virtual std::optional<AffineTransform> imageFillTransform() const { return std::nullopt; }
    /// Whether it is turned by whole quarter turns, where it knows.
    virtual std::optional<bool> axisAlignment() const { return std::nullopt; }

protected:
    ~VXRPaintedShape() = default;
};

} // namespace vxr
