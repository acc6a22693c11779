#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <span>

namespace vxr {

/// Receives the contours of an outline one at a time.
class ContourSink {
public:
    /// A closed polygon: the last vertex is joined to the first; vertices may repeat. The span is valid only
    /// during the call.
    virtual void addContour(std::span<const Vec2> vertices) = 0;

protected:
    ~ContourSink() = default;
};

} // namespace vxr
