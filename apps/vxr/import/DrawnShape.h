#pragma once

#include "PixelBounds.h"

#include <vxr/renderables/VXRShape.h>

namespace app {

/// A shape of a drawing. Nothing is aligned to it, so its alignment bounds can be those that suit the
/// compositor.
class DrawnShape final : public vxr::VXRShape {
public:
    bool tellsOfChangedBounds() const override { return !canvas() || !canvas()->usesCompositor(); }
    vxr::Rect computeAlignmentBounds() const override
    {
        return boundsOnPixels(VXRShape::computeAlignmentBounds(), canvas());
    }
};

} // namespace app
