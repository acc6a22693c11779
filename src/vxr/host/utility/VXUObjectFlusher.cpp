#include <vxr/host/utility/VXUObjectFlusher.h>

namespace vxr {

VXUFlushable::~VXUFlushable() { VXUObjectFlusher::instance().removeObject(*this); }

// Never destroyed: objects may outlive everything with a static lifetime.
VXUObjectFlusher& VXUObjectFlusher::instance()
{
    static auto* flusher = new VXUObjectFlusher;
    return *flusher;
}

void VXUObjectFlusher::objectAddedData(VXUFlushable& object)
{
    if (!mPlaces.contains(&object))
        mPlaces.emplace(&object, mEntries.insert(mEntries.end(), { &object, 0 }));
    objectTouched(object);
}

void VXUObjectFlusher::objectTouched(VXUFlushable& object)
{
    const auto found = mPlaces.find(&object);
    if (found == mPlaces.end())
        return;
    mEntries.splice(mEntries.end(), mEntries, found->second);
    recount(*found->second);
    flushToBudget();
}

void VXUObjectFlusher::removeObject(const VXUFlushable& object)
{
    const auto found = mPlaces.find(&object);
    if (found == mPlaces.end())
        return;
    mBytes -= found->second->bytes;
    mEntries.erase(found->second);
    mPlaces.erase(found);
}

void VXUObjectFlusher::setBudget(std::size_t bytes)
{
    mBudget = bytes;
    flushToBudget();
}

void VXUObjectFlusher::recount(Entry& entry)
{
    mBytes -= entry.bytes;
    entry.bytes = entry.object->bytesUsed();
    mBytes += entry.bytes;
}

void VXUObjectFlusher::flushToBudget()
{
    if (mIsFlushing)
        return;
    mIsFlushing = true;
    for (int rank = 0; rank <= highestRank; ++rank)
        flushToBudgetWithinRank(rank);
    mIsFlushing = false;
}

// A flushed object may touch, add and remove objects, so every round searches again. An object that
// releases nothing is skipped.
void VXUObjectFlusher::flushToBudgetWithinRank(int rank)
{
    std::size_t passedOver = 0;
    while (mBytes > mBudget && passedOver + 1 < mEntries.size()) {
        const auto candidate = std::next(mEntries.begin(), static_cast<std::ptrdiff_t>(passedOver));
        const VXUFlushable* object = candidate->object;
        const std::size_t before = candidate->bytes;
        if (before > 0 && object->flushRank() == rank && object->isFlushable())
            candidate->object->flushLocalData();
        const auto place = mPlaces.find(object);
        if (place == mPlaces.end())
            continue;
        recount(*place->second);
        if (place->second->bytes >= before)
            ++passedOver;
    }
}

} // namespace vxr
