#pragma once

#include <vxr/geometry/curves/CubicSegment.h>

namespace vxr {

/// A sub-path of segments that have a direction.
struct CorneredSubPath {
    std::vector<Cubic> segments;
    bool closed = false;

    /// Whether the outline turns by more than a tenth of a radian where segment `i` ends.
    bool turnsAfter(std::size_t i) const;
};

/// Those of a path, closing lines included; what has no length is left out.
std::vector<CorneredSubPath> corneredSubPaths(const Path& path);

} // namespace vxr
