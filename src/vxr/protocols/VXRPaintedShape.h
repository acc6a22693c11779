#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <memory>
#include <optional>

namespace vxr {

class VXRCanvasRole;

/// What a painter (fill or stroke) may ask of the shape it paints.
class VXR_EXPORT VXRPaintedShape {
public:
    virtual VXRCanvasRole* canvas() const = 0; ///< null while the shape is on no canvas
    virtual std::shared_ptr<Path> path() const = 0; ///< the outline in the shape's local frame, or null
    /// The outline in canvas coordinates: a copy that the painter may change. Never null.
    virtual std::shared_ptr<Path> transformedPath() const = 0;
    virtual AffineTransform transform() const = 0; ///< local frame to canvas
    virtual Size naturalSize() const = 0; ///< size of the local frame
    virtual Point center() const = 0; ///< canvas coordinates
    virtual float angle() const = 0; ///< the shape's own rotation in radians
    virtual Rect alignmentBounds() const = 0; ///< canvas coordinates, stroke included
    virtual bool wantsInteriorStroke() const = 0;
    virtual void clip() const = 0; ///< intersects the current context's clip with the outline
    /// If the shape provides one, gradients use it in place of `transform`.
    virtual std::optional<AffineTransform> gradientTransform() const { return std::nullopt; }
    /// If the shape provides one, image fills use it in place of `transform`.
    virtual std::optional<AffineTransform> imageFillTransform() const { return std::nullopt; }
    /// Whether the rotation is a multiple of a quarter turn; empty if unknown.
    virtual std::optional<bool> axisAlignment() const { return std::nullopt; }

protected:
    ~VXRPaintedShape() = default;
};

} // namespace vxr
