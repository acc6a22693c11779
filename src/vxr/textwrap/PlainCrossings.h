#pragma once

#include <vxr/platform/graphics/values/Geometry.h>
#include <vxr/platform/polygons/gpc.h>

#include <vector>

namespace vxr {

/// Finds the spans of a line inside or outside a polygon without clipping, in the simple case that covers
/// most lines beside a shape: every piece of outline at the line's height runs up or down through it, clear
/// of the other pieces and of the line's ends. The result then equals that of the clip.
class PlainCrossings {
public:
    /// Finds the crossings of `polygon` with the band of the line. False if the case is not simple.
    /// `clearance` is the distance below which edges might touch on the clipper's grid.
    bool find(const gpc_polygon& polygon, const Rect& line, double clearance);

    /// After a successful `find`: the boxes of the parts of the line inside or outside the polygon, from left
    /// to right, at the height of the line.
    void appendBoxes(bool inside, std::vector<Rect>& boxes) const;

private:
    struct Crossing {
        double from, to; ///< the x range of one piece of outline within the band
    };

    bool addContour(const gpc_vertex_list& contour);
    bool areApart(double clearance);

    Rect mLine;
    double mLow = 0, mHigh = 0, mLeft = 0, mRight = 0;
    std::vector<Crossing> mCrossings;
};

} // namespace vxr
