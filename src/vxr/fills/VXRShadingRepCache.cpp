#include <vxr/fills/VXRShadingRepCache.h>

#include <algorithm>
#include <functional>

namespace vxr {

namespace {

/// Equal colours have equal components.
std::size_t hashOf(const Color& start, const Color& end)
{
    std::size_t hash = 0;
    for (const Color* color : { &start, &end }) {
        for (int i = 0; i < color->componentCount(); ++i)
            hash = hash * 1000003 + std::hash<float> {}(color->component(i));
        hash = hash * 1000003 + std::hash<float> {}(color->alphaComponent());
    }
    return hash;
}

} // namespace

VXRShadingRepCache::VXRShadingRepCache() = default;
VXRShadingRepCache::~VXRShadingRepCache() = default;

VXRShadingRepCache& VXRShadingRepCache::instance()
{
    static VXRShadingRepCache cache;
    return cache;
}

std::shared_ptr<VXRShadingRep> VXRShadingRepCache::shadingWithStartEnd(const Color& start, const Color& end)
{
    const auto found = std::find_if(_cachedShadings.begin(), _cachedShadings.end(),
        [&](const auto& rep) { return rep->startColor()->isEqual(start) && rep->endColor()->isEqual(end); });
    if (found == _cachedShadings.end())
        return nullptr;
    std::rotate(_cachedShadings.begin(), found, found + 1);
    return _cachedShadings.front();
}

void VXRShadingRepCache::addShadingRep(std::shared_ptr<VXRShadingRep> rep)
{
    if (_cachedShadings.size() == capacity) {
        keepFinished(std::move(_cachedShadings.back()));
        _cachedShadings.pop_back();
    }
    _cachedShadings.insert(_cachedShadings.begin(), std::move(rep));
}

void VXRShadingRepCache::keepFinished(std::shared_ptr<VXRShadingRep> rep)
{
    const std::size_t hash = hashOf(*rep->startColor(), *rep->endColor());
    // The ramp's own node, its colours and its image's record count too.
    constexpr std::size_t besides = 512;
    const std::size_t bytes = rep->byteSize() + besides;
    mFinished.push_front({ hash, bytes, std::move(rep) });
    mFinishedBytes += bytes;
    mFinishedByColors.emplace(hash, mFinished.begin());
    dropFinishedBeyondLimit();
}

std::shared_ptr<VXRShadingRep> VXRShadingRepCache::takeFinished(const Color& start, const Color& end)
{
    const auto [first, last] = mFinishedByColors.equal_range(hashOf(start, end));
    const auto found = std::find_if(first, last, [&](const auto& entry) {
        const VXRShadingRep& rep = *entry.second->rep;
        return rep.startColor()->isEqual(start) && rep.endColor()->isEqual(end);
    });
    if (found == last)
        return nullptr;
    auto rep = std::move(found->second->rep);
    mFinishedBytes -= found->second->bytes;
    mFinished.erase(found->second);
    mFinishedByColors.erase(found);
    return rep;
}

void VXRShadingRepCache::setFinishedByteLimit(std::size_t limit)
{
    mFinishedByteLimit = limit;
    dropFinishedBeyondLimit();
}

void VXRShadingRepCache::dropFinishedBeyondLimit()
{
    while (!mFinished.empty() && finishedBytes() > mFinishedByteLimit) {
        const auto oldest = std::prev(mFinished.end());
        const auto [first, last] = mFinishedByColors.equal_range(oldest->hash);
        mFinishedByColors.erase(
            std::find_if(first, last, [&](const auto& entry) { return entry.second == oldest; }));
        mFinishedBytes -= oldest->bytes;
        mFinished.erase(oldest);
    }
}

} // namespace vxr
