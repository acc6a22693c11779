#pragma once

#include <vxr/platform/graphics/path/Path.h>

namespace vxr {

class Image;

/// The outline, along pixels' edges, of what is at least half opaque: closed contours to be filled even-odd,
/// in pixels, y down from the upper left corner. Empty when all is transparent; the bounds of an opaque
/// image.
std::shared_ptr<Path> outlineOfAlpha(const Image&);

} // namespace vxr
