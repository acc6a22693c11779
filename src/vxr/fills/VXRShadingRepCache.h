#pragma once

#include <vxr/fills/VXRShadingRep.h>

#include <cstddef>
#include <list>
#include <unordered_map>
#include <vector>

namespace vxr {

/// The 64 most recently used ramps, most recent first. Ramps that drop out move to a second store, limited
/// in bytes, so that a page with many gradients builds none of them twice.
class VXR_EXPORT VXRShadingRepCache final : public Object {
public:
    static constexpr std::size_t capacity = 64;

    VXRShadingRepCache();
    ~VXRShadingRepCache() override;

    static VXRShadingRepCache& instance(); ///< the shared cache of the process

    /// The ramp between equal colours, which becomes the most recent. Null if the cache has none.
    std::shared_ptr<VXRShadingRep> shadingWithStartEnd(const Color& start, const Color& end);
    /// Puts a ramp in front. If the cache is full, the least recently used ramp moves to the store of
    /// finished ramps.
    void addShadingRep(std::shared_ptr<VXRShadingRep> rep);

    /// Takes a ramp between equal colours out of the store of finished ramps. Null if there is none.
    std::shared_ptr<VXRShadingRep> takeFinished(const Color& start, const Color& end);
    /// Limits the size of the finished ramps; the oldest are freed first. 0 keeps none.
    void setFinishedByteLimit(std::size_t bytes);
    std::size_t finishedBytes() const { return mFinishedBytes; }

private:
    struct Entry {
        std::size_t hash; ///< hash of the two colours
        std::size_t bytes;
        std::shared_ptr<VXRShadingRep> rep;
    };
    using Finished = std::list<Entry>; ///< most recently added in front

    void keepFinished(std::shared_ptr<VXRShadingRep> rep);
    void dropFinishedBeyondLimit();

    std::vector<std::shared_ptr<VXRShadingRep>> _cachedShadings;
    Finished mFinished;
    std::unordered_multimap<std::size_t, Finished::iterator> mFinishedByColors;
    std::size_t mFinishedBytes = 0;
    std::size_t mFinishedByteLimit = std::size_t { 288 } << 20; ///< 1,000 ramps with pixels
};

} // namespace vxr
