#include <vxr/fills/VXRShadingRepCache.h>

#include <algorithm>

namespace vxr {

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
    if (_cachedShadings.size() == capacity)
        _cachedShadings.pop_back();
    _cachedShadings.insert(_cachedShadings.begin(), std::move(rep));
}

} // namespace vxr
