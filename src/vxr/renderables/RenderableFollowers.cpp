#include <vxr/renderables/RenderableFollowers.h>

#include <vxr/protocols/VXRRenderableFollower.h>
#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>
#include <deque>
#include <utility>

namespace vxr {

/// Changed renderables whose followers are still to be told. One after the other instead of one within the
/// other: a chain of ten thousand connected lines must not need as many stack frames.
struct RenderableFollowers::Queue {
    std::deque<RenderableFollowers*> changed;
    RenderableFollowers* current = nullptr; ///< who are being told, while their renderable lives
    bool telling = false;
    unsigned round = 0;
};

RenderableFollowers::Queue& RenderableFollowers::queue()
{
    static Queue one;
    return one;
}

unsigned RenderableFollowers::round() { return queue().round; }

RenderableFollowers::~RenderableFollowers()
{
    std::erase(queue().changed, this);
    if (queue().current == this)
        queue().current = nullptr;
    const auto followers = std::move(mFollowers);
    for (VXRRenderableFollower* follower : followers)
        follower->followedRenderableWillGo(mFollowed);
}

bool RenderableFollowers::contains(const VXRRenderableFollower& follower) const
{
    return std::find(mFollowers.begin(), mFollowers.end(), &follower) != mFollowers.end();
}

void RenderableFollowers::add(VXRRenderableFollower& follower)
{
    if (!contains(follower))
        mFollowers.push_back(&follower);
}

void RenderableFollowers::remove(VXRRenderableFollower& follower) { std::erase(mFollowers, &follower); }

void RenderableFollowers::tellOfChange()
{
    if (mFollowers.empty())
        return;
    Queue& pending = queue();
    if (std::find(pending.changed.begin(), pending.changed.end(), this) == pending.changed.end())
        pending.changed.push_back(this);
    if (pending.telling)
        return;
    // Also when a follower throws.
    const struct Round {
        Queue& queue;
        explicit Round(Queue& q)
            : queue(q)
        {
            queue.telling = true;
            ++queue.round;
        }
        ~Round()
        {
            queue.telling = false;
            queue.changed.clear();
        }
    } round(pending);
    while (!pending.changed.empty()) {
        pending.current = pending.changed.front();
        pending.changed.pop_front();
        pending.current->tellEach();
        pending.current = nullptr;
    }
}

/// Followers may leave while they are told, and the renderable may go.
void RenderableFollowers::tellEach()
{
    const auto followers = mFollowers;
    VXRRenderable& followed = mFollowed;
    for (VXRRenderableFollower* follower : followers) {
        if (queue().current != this)
            return;
        if (contains(*follower))
            follower->followedRenderableDidChange(followed);
    }
}

} // namespace vxr
