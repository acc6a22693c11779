#pragma once

#include <vxr/geometry/VXRPolygon.h>

#include <memory>
#include <span>
#include <vector>

namespace vxr {

/// The rectangles that text may occupy when it flows around or inside a shape. Coordinates are those of
/// the text container, y downwards: a line's bottom is y + height.
///
/// The type selects how the line is clipped: 0 subtracts the shape, any other value intersects with it.
/// The free pieces are the gaps in the result, so type 0 gives the pieces inside the shape and other types
/// those around it.
class VXR_EXPORT VXRTextWrap {
public:
    /// The free pieces of `line` from left to right. A null path counts as empty.
    ///
    /// The most recent path is retained with its polygon and recognised by identity: if it is changed in
    /// place, the old polygon is used until a different path has been passed.
    static std::vector<Rect> wrappedSubrectsForRectPathType(
        const Rect& line, const std::shared_ptr<const Path>& path, int type);

    /// The same with a separate cache. `skipHint` is how far to move down if no piece is free, at least 1:
    /// from the line's bottom to the first free area below it, or to the end of the shape.
    static std::vector<Rect> wrappedSubrectsForRectPathTypeSkipHint(
        const Rect& line, const std::shared_ptr<const Path>& path, int type, int& skipHint);

    /// The first y, from the span's own downwards, at which a rectangle of the span's size meets the path in
    /// slivers less than 1 high at most. Beyond the container's bottom if there is none. Stops at a y so
    /// large that single precision cannot represent the next step.
    static float unobstructedSpanForPathStartingSpanContainerBounds(
        const Path& path, const Rect& span, const Rect& container);
};

/// The pieces of `line` between the horizontal spans of the contours of `polygon`: the whole line if there
/// is no contour. Pieces between two spans may have zero width.
VXR_EXPORT std::vector<Rect> wrappedSubrectsFromPolygon(const gpc_polygon* polygon, const Rect& line);

/// Merges horizontally overlapping neighbours in a list sorted by x. Drops zero-width rectangles after the
/// first. Touching rectangles stay separate.
VXR_EXPORT std::vector<Rect> mergeRects(std::span<const Rect> sorted);

/// -1, 0 or 1 if the x of `a` is less than, equal to or greater than that of `b`.
VXR_EXPORT int compareRects(const Rect& a, const Rect& b);

/// Whether the x ranges overlap. Touching ranges and widths of 0 or less do not.
VXR_EXPORT bool VXROverlapsRectHorizontally(const Rect& a, const Rect& b);

} // namespace vxr
