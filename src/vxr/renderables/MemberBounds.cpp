#include <vxr/renderables/MemberBounds.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>
#include <limits>

namespace vxr {

MemberBounds::Box MemberBounds::Box::nothing()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    return { infinity, infinity, -infinity, -infinity };
}

MemberBounds::Box MemberBounds::Box::of(const Rect& r) { return { r.minX(), r.minY(), r.maxX(), r.maxY() }; }

MemberBounds::Box MemberBounds::Box::united(const Box& other) const
{
    return { std::min(minX, other.minX), std::min(minY, other.minY), std::max(maxX, other.maxX),
        std::max(maxY, other.maxY) };
}

Rect MemberBounds::Box::rect() const { return { minX, minY, maxX - minX, maxY - minY }; }

void MemberBounds::mayChange(std::size_t place)
{
    if (place >= mIsStale.size() || mIsStale[place])
        return;
    mIsStale[place] = true;
    mStale.push_back(place);
}

void MemberBounds::unite(std::size_t node)
{
    const Node &first = mNodes[2 * node], &second = mNodes[2 * node + 1];
    mNodes[node] = { first.geometric.united(second.geometric), first.erasable.united(second.erasable) };
}

void MemberBounds::build(const Members& members)
{
    mLeaves = members.size();
    mNodes.assign(2 * mLeaves, {});
    mIsStale.assign(mLeaves, false);
    mStale.clear();
    mAlwaysAsked.clear();
    for (std::size_t i = 0; i < mLeaves; ++i) {
        const VXRRenderable& member = *members[i];
        mNodes[mLeaves + i] = { Box::of(member.geometricBounds()), Box::of(member.erasableBounds()) };
        if (!member.tellsOfChangedBounds())
            mAlwaysAsked.push_back(i);
    }
    for (std::size_t node = mLeaves; node-- > 1;)
        unite(node);
}

void MemberBounds::ask(const Members& members, std::size_t place)
{
    std::size_t node = mLeaves + place;
    mNodes[node] = { Box::of(members[place]->geometricBounds()), Box::of(members[place]->erasableBounds()) };
    while (node > 1)
        unite(node /= 2);
}

void MemberBounds::update(const Members& members, const VXRCanvasRole& canvas)
{
    const auto transform = canvas.additionalShadowTransform();
    const bool hasOtherShadows = transform != mShadowTransform || mShadowChanges != VXRShadow::changeCount();
    mShadowTransform = transform;
    mShadowChanges = VXRShadow::changeCount();
    if (mNodes.empty() || hasOtherShadows)
        return build(members);
    for (const std::size_t place : mAlwaysAsked)
        ask(members, place);
    for (const std::size_t place : mStale) {
        ask(members, place);
        mIsStale[place] = false;
    }
    mStale.clear();
}

Rect MemberBounds::geometric(const Members& members, const VXRCanvasRole& canvas)
{
    if (members.empty())
        return {};
    update(members, canvas);
    return mNodes[1].geometric.rect();
}

Rect MemberBounds::erasable(const Members& members, const VXRCanvasRole& canvas)
{
    if (members.empty())
        return {};
    update(members, canvas);
    return mNodes[1].erasable.rect();
}

} // namespace vxr
