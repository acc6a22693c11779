#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace vxr {

/// Set of objects by identity, in insertion order. Does not own its members: remove a member before it is
/// destroyed. Insertion, removal and lookup take constant time.
template <class T> class VXUMutablePointerSet {
public:
    /// False if `object` is already in the set; its position does not change.
    bool addObject(T& object)
    {
        if (!mPlaces.emplace(&object, mMembers.size()).second)
            return false;
        mMembers.push_back(&object);
        return true;
    }

    /// False if `object` is not in the set.
    bool removeObject(const T& object)
    {
        const auto found = mPlaces.find(&object);
        if (found == mPlaces.end())
            return false;
        mMembers[found->second] = nullptr;
        mPlaces.erase(found);
        if (mMembers.size() > 2 * mPlaces.size() + 16)
            closeGaps();
        return true;
    }

    void removeAllObjects()
    {
        mMembers.clear();
        mPlaces.clear();
    }

    bool containsObject(const T& object) const { return mPlaces.contains(&object); }
    std::size_t count() const { return mPlaces.size(); }

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
    void closeGaps()
    {
        std::erase(mMembers, nullptr);
        for (std::size_t i = 0; i < mMembers.size(); ++i)
            mPlaces[mMembers[i]] = i;
    }

    std::vector<T*> mMembers; ///< removal leaves a gap; gaps are closed once they outnumber members
    std::unordered_map<const T*, std::size_t> mPlaces;
};

} // namespace vxr
