#pragma once

namespace vxr {

class VXRPaintedShape;

/// Fills the shape white if its canvas renders in black and white. Returns whether it did.
bool paintedBlackAndWhite(VXRPaintedShape& shape);

} // namespace vxr
