#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {

/// Set of objects by identity, in insertion order. Does not own its members: remove a member before it is
/// destroyed. Insertion, removal and lookup take constant time. A member takes about 20 bytes.
template <class T> class VXUMutablePointerSet {
public:
    /// False if `object` is already in the set; its position does not change.
    bool addObject(T& object)
    {
        // Between a third and two thirds of the slots are taken.
        if (3 * (mCount + 1) > 2 * mSlots.size())
            rebuild();
        const std::size_t slot = slotOf(object);
        if (mSlots[slot])
            return false;
        mMembers.push_back(&object);
        mSlots[slot] = static_cast<std::uint32_t>(mMembers.size());
        ++mCount;
        return true;
    }

    /// False if `object` is not in the set.
    bool removeObject(const T& object)
    {
        if (!mCount)
            return false;
        std::size_t slot = slotOf(object);
        if (!mSlots[slot])
            return false;
        mMembers[mSlots[slot] - 1] = nullptr;
        --mCount;
        // What stands behind it in a row of taken slots moves up, unless its own slot lies in between.
        const std::size_t mask = mSlots.size() - 1;
        for (std::size_t next = (slot + 1) & mask; mSlots[next]; next = (next + 1) & mask) {
            const std::size_t home = homeOf(*mMembers[mSlots[next] - 1]);
            if (((next - home) & mask) < ((next - slot) & mask))
                continue;
            mSlots[slot] = mSlots[next];
            slot = next;
        }
        mSlots[slot] = 0;
        if (mMembers.size() > 2 * mCount + 16)
            rebuild();
        return true;
    }

    void removeAllObjects() { *this = {}; }

    bool containsObject(const T& object) const { return mCount && mSlots[slotOf(object)]; }
    std::size_t count() const { return mCount; }

    /// A copy of the members, so that iteration survives changes to the set.
    std::vector<T*> allObjects() const
    {
        std::vector<T*> members;
        members.reserve(count());
        for (T* member : mMembers) {
            if (member)
                members.push_back(member);
        }
        return members;
    }

private:
    std::size_t homeOf(const T& object) const
    {
        // Objects lie at multiples of 16: the product's upper bits spread them.
        const std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(&object) * 0x9e3779b97f4a7c15u;
        return static_cast<std::size_t>(mixed >> 32) & (mSlots.size() - 1);
    }
    /// Where the object stands, or the free slot where it would.
    std::size_t slotOf(const T& object) const
    {
        std::size_t slot = homeOf(object);
        while (mSlots[slot] && mMembers[mSlots[slot] - 1] != &object)
            slot = (slot + 1) & (mSlots.size() - 1);
        return slot;
    }
    /// Closes the gaps, with room for half as many members again.
    void rebuild()
    {
        std::erase(mMembers, nullptr);
        std::size_t size = 16;
        while (2 * size < 3 * (mCount + 1 + mCount / 2))
            size *= 2;
        mSlots.assign(size, 0);
        for (std::size_t i = 0; i < mMembers.size(); ++i)
            mSlots[slotOf(*mMembers[i])] = static_cast<std::uint32_t>(i + 1);
    }

    std::vector<T*> mMembers; ///< removal leaves a gap; gaps are closed once they outnumber members
    std::vector<std::uint32_t> mSlots; ///< open addressing: 1 + index in `mMembers`, 0 if free
    std::size_t mCount = 0;
};

} // namespace vxr
