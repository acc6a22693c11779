#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

class VXRRenderable;

/// An observer of a renderable's outline: notified when it moves or changes, and before it is destroyed.
class VXR_EXPORT VXRRenderableFollower {
public:
    virtual void followedRenderableDidChange(VXRRenderable&) = 0;
    virtual void followedRenderableWillGo(VXRRenderable&) = 0; ///< the reference is invalid afterwards

protected:
    ~VXRRenderableFollower() = default;
};

} // namespace vxr
