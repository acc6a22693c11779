#pragma once

#include <vxr/fills/VXRShadingRep.h>

#include <cstddef>
#include <list>
#include <unordered_map>
#include <vector>

namespace vxr {

/// The ramps used last, at most 64, the most recent first. Finished ramps that no longer are among them wait
/// behind, within a limit of bytes, so that a page with many gradients builds none of them twice.
class VXR_EXPORT VXRShadingRepCache final : public Object {
public:
    static constexpr std::size_t capacity = 64;

    VXRShadingRepCache();
    ~VXRShadingRepCache() override;

    static VXRShadingRepCache& instance(); ///< the one of the process

    /// The ramp between colours equal to these, which becomes the most recent. None when there is none.
    std::shared_ptr<VXRShadingRep> shadingWithStartEnd(const Color& start, const Color& end);
    /// Puts a ramp in front. In a full cache the one that was not used for longest goes, to the finished
    /// ones.
    void addShadingRep(std::shared_ptr<VXRShadingRep> rep);

    /// Takes a ramp between equal colours from the finished ones. None when it is not there.
    std::shared_ptr<VXRShadingRep> takeFinished(const Color& start, const Color& end);
    /// What finished ramps may hold together; those that went first are freed. 0 keeps none.
    void setFinishedByteLimit(std::size_t bytes);
    std::size_t finishedBytes() const { return mFinished.size() * VXRShadingRep::bytes; }

private:
    struct Entry {
        std::size_t hash; ///< of the colours
        std::shared_ptr<VXRShadingRep> rep;
    };
    using Finished = std::list<Entry>; ///< the one that went last in front

    void keepFinished(std::shared_ptr<VXRShadingRep> rep);
    void dropFinishedBeyondLimit();

    std::vector<std::shared_ptr<VXRShadingRep>> _cachedShadings;
    Finished mFinished;
    std::unordered_multimap<std::size_t, Finished::iterator> mFinishedByColors;
    std::size_t mFinishedByteLimit = std::size_t { 288 } << 20; ///< a little more than 1,000 ramps
};

} // namespace vxr
