#pragma once

#include <vxr/fills/VXRShadingRep.h>

#include <vector>

namespace vxr {

/// The ramps used last, at most 64, the most recent first.
class VXR_EXPORT VXRShadingRepCache final : public Object {
public:
    static constexpr std::size_t capacity = 64;

    VXRShadingRepCache();
    ~VXRShadingRepCache() override;

    static VXRShadingRepCache& instance(); ///< the one of the process

    /// The ramp between colours equal to these, which becomes the most recent. None when there is none.
    std::shared_ptr<VXRShadingRep> shadingWithStartEnd(const Color& start, const Color& end);
    /// Puts a ramp in front. In a full cache the one that was not used for longest goes.
    void addShadingRep(std::shared_ptr<VXRShadingRep> rep);

private:
    std::vector<std::shared_ptr<VXRShadingRep>> _cachedShadings;
};

} // namespace vxr
