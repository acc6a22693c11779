#pragma once

#include <vxr/platform/graphics/path/DashPattern.h>
#include <vxr/platform/graphics/path/StrokeOutliner.h>

namespace vxr {

/// Outlines strokes. Keep one for many strokes: its buffers stay.
class PathStroker {
public:
    /// Hands `sink` the contours that cover the stroke of `path` under the nonzero rule, in the path's own
    /// units and within `tolerance` of it: dashes, caps, joins and the miter limit taken from `style`,
    /// tangents from the curves themselves. A width that is not positive and finite gives none. Contours
    /// overlap, and long ones come in pieces that share an edge, walked in opposite directions between equal
    /// vertices.
    void stroke(const Path& path, const LineStyle& style, double tolerance, ContourSink& sink);

private:
    StrokeOutliner mOutliner;
    DashPattern mPattern;
};

} // namespace vxr
