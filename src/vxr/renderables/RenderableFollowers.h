#pragma once

#include <vector>

namespace vxr {

class VXRRenderable;
class VXRRenderableFollower;

/// Those who keep to a renderable's outline, none of them owned. A change that a follower makes in turn
/// reaches its own followers once the present ones are told.
class RenderableFollowers {
public:
    explicit RenderableFollowers(VXRRenderable& followed)
        : mFollowed(followed)
    {
    }
    ~RenderableFollowers(); ///< tells all that the renderable goes
    RenderableFollowers(const RenderableFollowers&) = delete;
    RenderableFollowers& operator=(const RenderableFollowers&) = delete;

    void add(VXRRenderableFollower&);
    void remove(VXRRenderableFollower&); ///< does nothing for one that is none
    void tellOfChange();

    /// Tells one round of changes that follow from each other from the next.
    static unsigned round();

private:
    struct Queue;
    static Queue& queue();
    void tellEach();
    bool contains(const VXRRenderableFollower&) const;

    VXRRenderable& mFollowed;
    std::vector<VXRRenderableFollower*> mFollowers;
};

} // namespace vxr
