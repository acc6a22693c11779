#pragma once

#include <vxr/platform/graphics/values/AffineTransform.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vxr {

class VXRCanvasRole;
class VXRRenderable;

/// What the members of a group cover together. A member that tells of a change costs as many steps as there
/// are doublings to the number of members; those of classes that don't tell (see
/// `VXRRenderable::tellsOfChangedBounds`) are asked each time.
class MemberBounds {
public:
    using Members = std::vector<std::shared_ptr<VXRRenderable>>;

    /// Starts anew. Places are those in the list that `geometric` and `erasable` are given.
    void forget() { mNodes.clear(); }
    void mayChange(std::size_t place);

    /// Unions of the members' own bounds; lines without width or height count. The zero rectangle without
    /// members.
    Rect geometric(const Members&, const VXRCanvasRole& canvas);
    Rect erasable(const Members&, const VXRCanvasRole& canvas);

private:
    struct Box {
        float minX, minY, maxX, maxY;

        static Box nothing();
        static Box of(const Rect&);
        Box united(const Box&) const;
        Rect rect() const;
    };
    struct Node {
        Box geometric = Box::nothing(), erasable = Box::nothing();
    };

    void update(const Members&, const VXRCanvasRole&);
    void build(const Members&);
    void ask(const Members&, std::size_t place);
    void unite(std::size_t node);

    // The leaves are the last `mLeaves` nodes, in the members' order; node n stands over 2n and 2n + 1.
    std::vector<Node> mNodes;
    std::size_t mLeaves = 0;
    std::vector<std::size_t> mStale, mAlwaysAsked;
    std::vector<bool> mIsStale;
    // What members' shadows depend on.
    std::optional<AffineTransform> mShadowTransform;
    std::uint32_t mShadowChanges = 0;
};

} // namespace vxr
