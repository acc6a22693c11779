#pragma once

#include <vxr/host/utility/VXUFlushable.h>

#include <list>
#include <unordered_map>

namespace vxr {

/// Keeps the memory of flushable objects within a budget: while it is exceeded, the least recently touched
/// object releases one level at a time. The most recently touched object is spared.
class VXR_EXPORT VXUObjectFlusher {
public:
    static constexpr std::size_t defaultBudget = std::size_t { 256 } << 20;
    static constexpr int highestRank = 1;

    static VXUObjectFlusher& instance();

    /// The object has grown. Registers it on the first call; counts as a touch.
    void objectAddedData(VXUFlushable&);
    void objectTouched(VXUFlushable&); ///< the object is in use; ignored if it never added data
    void removeObject(const VXUFlushable&);

    std::size_t budget() const { return mBudget; }
    void setBudget(std::size_t bytes); ///< takes effect at once
    std::size_t bytesUsed() const { return mBytes; } ///< as of each object's last touch

private:
    struct Entry {
        VXUFlushable* object;
        std::size_t bytes;
    };
    using Entries = std::list<Entry>; ///< most recently touched at the end

    void recount(Entry&);
    void flushToBudget();
    void flushToBudgetWithinRank(int rank);

    Entries mEntries;
    std::unordered_map<const VXUFlushable*, Entries::iterator> mPlaces;
    std::size_t mBudget = defaultBudget;
    std::size_t mBytes = 0;
    bool mIsFlushing = false;
};

} // namespace vxr
