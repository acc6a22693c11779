#pragma once

#include <vxr/platform/base/Export.h>

namespace vxr {

class VXRRenderable;

/// Somebody who keeps to a renderable's outline: told when it has moved or changed, and when it goes.
class VXR_EXPORT VXRRenderableFollower {
public:
    virtual void followedRenderableDidChange(VXRRenderable&) = 0;
    virtual void followedRenderableWillGo(VXRRenderable&) = 0; ///< the pointer is not valid any more after

protected:
    ~VXRRenderableFollower() = default;
};

} // namespace vxr
