#pragma once

#include <vxr/platform/graphics/raster/SpanPainter.h>

namespace vxr {

class Pattern;

/// The pixels of a pattern in a device space of the given height; `area` is what will be asked for. None when
/// it paints nothing.
std::unique_ptr<SpanSource> makePatternSource(
    const Pattern&, const AffineTransform& base, double deviceHeight, const IntRect& area);

} // namespace vxr
