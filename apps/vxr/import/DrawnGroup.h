#pragma once

#include "PixelBounds.h"

#include <vxr/renderables/VXRGroup.h>

namespace app {

/// A group of a drawing, on whole pixels as its shapes are (see `DrawnShape`).
class DrawnGroup final : public vxr::VXRGroup {
public:
    vxr::Rect computeAlignmentBounds() const override
    {
        return boundsOnPixels(VXRGroup::computeAlignmentBounds(), canvas());
    }
};

} // namespace app
