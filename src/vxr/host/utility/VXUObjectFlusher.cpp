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

// Whoever is told of a flush may touch, add and remove objects, so every round looks anew. An object that
// gives nothing back is passed over.
void VXUObjectFlusher::flushToBudget()
{
    if (mIsFlushing)
        return;
    mIsFlushing = true;
    std::size_t passedOver = 0;
    while (mBytes > mBudget && passedOver + 1 < mEntries.size()) {
        auto candidate = mEntries.begin();
        std::advance(candidate, passedOver);
        const VXUFlushable* object = candidate->object;
        const std::size_t before = candidate->bytes;
        if (candidate->bytes > 0 && candidate->object->isFlushable())
            candidate->object->flushLocalData();
        const auto place = mPlaces.find(object);
        if (place == mPlaces.end())
            continue;
        recount(*place->second);
        if (place->second->bytes >= before)
            ++passedOver;
    }
    mIsFlushing = false;
}

} // namespace vxr
