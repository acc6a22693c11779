#pragma once

#include <vxr/platform/graphics/Image.h>

#include <cairo.h>

namespace vxr {

inline constexpr int mostImageThinning = 4; ///< for either side

/// The image as cairo takes it, over the image's own pixels: premultiplied ARGB32, or RGB24 when opaque. Kept
/// with the image; the surface keeps the pixels alive. Never written to. Null when memory is short.
cairo_surface_t* cairoSurface(const Image&);

/// The same with pixels left out: every 2^x-th kept along a row and every 2^y-th row, those in the middle.
/// For smooth images drawn smaller: what is read then lies together. Each is kept.
cairo_surface_t* thinnedCairoSurface(const Image&, int x, int y);

} // namespace vxr
