#pragma once

#include "PixelBounds.h"

#include <vxr/renderables/VXRShape.h>

namespace app {

/// A shape of a drawing. Nobody aligns anything to it, so its alignment bounds may serve the compositor.
class DrawnShape final : public vxr::VXRShape {
public:
    vxr::Rect computeAlignmentBounds() const override
    {
        return boundsOnPixels(VXRShape::computeAlignmentBounds(), canvas());
    }
};

} // namespace app
