#pragma once

#include <vxr/geometry/VXRPolygon.h>

#include <memory>
#include <span>
#include <vector>

namespace vxr {

/// The rectangles that text may occupy when it flows around or inside a shape. Coordinates are those of
/// the text container, y downwards: a line's bottom is y + height.
///
/// The type selects the clip of the line with the shape: 0 takes the shape away from it, any other value
/// intersects the two. The free pieces are the gaps between what the clip leaves, so type 0 gives the
/// pieces inside the shape, other types those around it.
class VXR_EXPORT VXRTextWrap {
public:
    /// The free pieces of `line` from left to right. No path is an empty one.
    ///
    /// The last path is retained with its polygon, told by identity: a path changed in place
    /// after it was passed keeps its old polygon until another one has been passed.
    static std::vector<Rect> wrappedSubrectsForRectPathType(
        const Rect& line, const std::shared_ptr<const Path>& path, int type);

    /// The same with a cache of its own. `skipHint` is how far to move down when no piece is free, at
    /// least 1: from the line's bottom to the first free area below it, or to where the shape ends.
    static std::vector<Rect> wrappedSubrectsForRectPathTypeSkipHint(
        const Rect& line, const std::shared_ptr<const Path>& path, int type, int& skipHint);

    /// The first y from the span's own downwards at which a rectangle of the span's size meets nothing
    /// of the path but slivers less than 1 high. Beyond the container's bottom when there is none. Stops at
    /// a y that is too large for single precision to take a step from.
    static float unobstructedSpanForPathStartingSpanContainerBounds(
        const Path& path, const Rect& span, const Rect& container);
};

/// The pieces of `line` between the horizontal spans of the contours of `polygon`: the whole line when
/// there is no contour. Pieces between two spans may have no width.
VXR_EXPORT std::vector<Rect> wrappedSubrectsFromPolygon(const gpc_polygon* polygon, const Rect& line);

/// Unites horizontally overlapping neighbours of a list sorted by x; rectangles of no width after the
/// first are left out. Touching rectangles stay apart.
VXR_EXPORT std::vector<Rect> mergeRects(std::span<const Rect> sorted);

/// -1, 0 or 1 as the x of `a` is smaller than, equal to or larger than that of `b`.
VXR_EXPORT int compareRects(const Rect& a, const Rect& b);

/// Whether the x ranges overlap; touching does not, nor does a width of 0 or less.
VXR_EXPORT bool VXROverlapsRectHorizontally(const Rect& a, const Rect& b);

} // namespace vxr
