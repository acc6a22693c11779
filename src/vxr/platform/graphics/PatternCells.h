#pragma once

#include <vxr/platform/graphics/Pattern.h>

namespace vxr {

/// A pattern's step as a length; the side of the cell if the step is impossible.
double usablePatternStep(float step, float cellSide);

/// Draws one cell, offset from the origin by `offset`. Edges where cells touch are not antialiased: each
/// cell covers pixels of its own, so no seams show.
void drawPatternCell(Context&, const Pattern&, Point offset);

/// Draws one period, scaled, with its lower left corner at the origin of a context's default space.
void drawPatternPeriod(Context&, const Pattern&, float xScale, float yScale);

} // namespace vxr
