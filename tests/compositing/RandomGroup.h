#pragma once

#include <tests/compositing/PageScene.h>
#include <vxr/renderables/VXRGroup.h>

#include <string>

namespace vxr::test {

/// Shapes and, within `depth` levels, groups of them, under a transform and now and then a clip.
inline std::shared_ptr<VXRGroup> randomGroup(RandomPage& random, int depth)
{
    VXRGroup::Members members;
    for (int i = 2 + random.below(4); i > 0; --i)
        members.push_back(random.shape());
    if (depth > 0)
        members.push_back(randomGroup(random, depth - 1));
    auto group = VXRGroup::groupWithRenderables(std::move(members));
    group->scaleXByYByPivot(random.between(0.3f, 1.4f), random.between(0.3f, 1.4f), group->center());
    if (random.oneIn(2))
        group->rotateByRadiansPivot(random.between(-1, 1), group->center());
    if (random.oneIn(3))
        group->setClipPaths({ Path::pathWithOvalInRect({ 20, 20, random.between(40, 300), 200 }) });
    if (random.oneIn(2))
        group->setOpacity(random.between(0.3f, 1));
    group->setShadow(random.shadow());
    return group;
}

/// One random change of the group or of what is in it.
inline std::string editGroup(VXRGroup& group, RandomPage& random)
{
    const auto& members = group.renderables();
    if (members.empty()) {
        group.insertRenderableAtIndex(random.shape(), 0);
        return "insert into an empty group";
    }
    const auto& member = members[std::size_t(random.below(int(members.size())))];
    auto* inner = dynamic_cast<VXRGroup*>(member.get());
    if (inner && random.oneIn(2))
        return "in a group: " + editGroup(*inner, random);
    switch (random.below(9)) {
    case 0:
        member->offsetBy(float(random.below(41) - 20), float(random.below(41) - 20));
        return "move a member";
    case 1:
        member->rotateByRadiansPivot(random.between(-1, 1), member->center());
        return "rotate a member";
    case 2:
        member->setShadow(random.shadow());
        return "shadow of a member";
    case 3:
        member->setOpacity(random.between(0.1f, 1));
        return "opacity of a member";
    case 4:
        if (auto* shape = dynamic_cast<VXRShape*>(member.get()))
            random.restyle(*shape);
        return "restyle a member";
    case 5:
        group.insertRenderableAtIndex(random.shape(), std::size_t(random.below(9)));
        return "insert";
    case 6:
        group.removeRenderable(*member);
        return "remove";
    case 7:
        group.setClipPaths(random.oneIn(2)
                ? VXRGroup::ClipPaths {}
                : VXRGroup::ClipPaths { Path::pathWithRect({ 10, 10, random.between(50, 300), 150 }) });
        return "clip";
    default:
        group.scaleXByYByPivot(random.between(0.7f, 1.3f), random.between(0.7f, 1.3f), group.center());
        group.offsetBy(random.between(-20, 20), random.between(-20, 20));
        return "place the group";
    }
}

} // namespace vxr::test
