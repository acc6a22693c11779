#pragma once

#include <vxr/platform/graphics/Pattern.h>

namespace vxr {

/// A pattern's step as a length; that of the cell's side in place of an impossible one.
double usablePatternStep(float step, float cellSide);

/// Draws one cell, `offset` away from the one at the origin. Where cells touch, their edges are not smoothed:
/// each has pixels of its own, and no seam shows.
void drawPatternCell(Context&, const Pattern&, Point offset);

/// Draws one period, scaled, its lower left corner at the origin of a context's default space.
void drawPatternPeriod(Context&, const Pattern&, float xScale, float yScale);

} // namespace vxr
