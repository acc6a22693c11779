#pragma once

namespace vxr {

class VXRPaintedShape;

/// Fills the shape white when its canvas renders black and white, and says whether it did.
bool paintedBlackAndWhite(VXRPaintedShape& shape);

} // namespace vxr
