#pragma once

#include "Convert.h"

#include <vxr/protocols/VXRShapePainter.h>

namespace app {

/// The painter for a shape's fill or stroke: a colour, or a gradient for a shape whose local frame has its
/// origin at `origin` of the user space. `covered` is what will be painted, in user space: a repeating
/// gradient gets as many repetitions as cover it. None for no paint.
std::shared_ptr<vxr::VXRShapePainter> painterFrom(
    const svg::Paint&, const svg::Outline& covered, double margin, svg::Vec origin);

/// Stops along an axis that runs from `first` to `last` times the gradient's own length, repeated or
/// reflected in each whole step; fractions of the whole axis.
std::vector<svg::GradientStop> repeatedStops(const svg::Gradient&, int first, int last);

} // namespace app
