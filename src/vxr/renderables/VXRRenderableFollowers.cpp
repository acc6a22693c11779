#include <vxr/protocols/VXRRenderableFollower.h>
#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>
#include <deque>

// Those who keep to a renderable's outline.

namespace vxr {

namespace {

/// Changed renderables whose followers are still to be told. One after the other instead of one within the
/// other: a chain of ten thousand connected lines must not need as many stack frames.
struct ChangeQueue {
    std::deque<VXRRenderable*> changed;
    VXRRenderable* current = nullptr; ///< whose followers are being told, while it lives
    bool telling = false;
    unsigned round = 0;
};

ChangeQueue& queue()
{
    static ChangeQueue one;
    return one;
}

} // namespace

unsigned VXRRenderable::followRound() { return queue().round; }

void VXRRenderable::addFollower(VXRRenderableFollower& follower)
{
    if (!mFollowers)
        mFollowers = std::make_unique<std::vector<VXRRenderableFollower*>>();
    if (std::find(mFollowers->begin(), mFollowers->end(), &follower) == mFollowers->end())
        mFollowers->push_back(&follower);
}

void VXRRenderable::removeFollower(VXRRenderableFollower& follower)
{
    if (mFollowers)
        std::erase(*mFollowers, &follower);
}

void VXRRenderable::dismissFollowers()
{
    if (!mFollowers)
        return;
    std::erase(queue().changed, this);
    if (queue().current == this)
        queue().current = nullptr;
    const auto followers = std::move(mFollowers);
    for (VXRRenderableFollower* follower : *followers)
        follower->followedRenderableWillGo(*this);
}

void VXRRenderable::outlineDidChange()
{
    if (!mFollowers || mFollowers->empty())
        return;
    ChangeQueue& pending = queue();
    if (std::find(pending.changed.begin(), pending.changed.end(), this) == pending.changed.end())
        pending.changed.push_back(this);
    if (pending.telling)
        return;
    // Also when a follower throws.
    const struct Round {
        ChangeQueue& queue;
        explicit Round(ChangeQueue& q)
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
        // Followers may leave while they are told, and the renderable may go.
        const auto followers = *pending.current->mFollowers;
        for (VXRRenderableFollower* follower : followers) {
            if (!pending.current)
                break;
            const auto& present = *pending.current->mFollowers;
            if (std::find(present.begin(), present.end(), follower) != present.end())
                follower->followedRenderableDidChange(*pending.current);
        }
        pending.current = nullptr;
    }
}

} // namespace vxr
