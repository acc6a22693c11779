#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace vxr {

/// What engines cache for an image, a shading or a pattern. Each engine uses its own types, so engines cannot
/// confuse each other's data; an object drawn by two engines holds both. Freed with the object.
class EngineCaches {
public:
    /// The cache of type `T`. Empty until it has been filled.
    template <class T> std::shared_ptr<T> find() const
    {
        const auto found = std::find_if(mEntries.begin(), mEntries.end(), isFor<T>);
        return found == mEntries.end() ? nullptr : std::static_pointer_cast<T>(found->second);
    }
    template <class T> void store(std::shared_ptr<T> cache)
    {
        const auto found = std::find_if(mEntries.begin(), mEntries.end(), isFor<T>);
        if (found == mEntries.end())
            mEntries.emplace_back(&key<T>, std::move(cache));
        else
            found->second = std::move(cache);
    }
    /// The cache of type `T`, created if there is none.
    template <class T> T& findOrMake()
    {
        auto cache = find<T>();
        if (!cache) {
            cache = std::make_shared<T>();
            store(cache);
        }
        return *cache;
    }
    void clear() { mEntries.clear(); }

private:
    using Entry = std::pair<const char*, std::shared_ptr<void>>;

    template <class T> static constexpr char key = 0; ///< its address identifies the type
    template <class T> static bool isFor(const Entry& entry) { return entry.first == &key<T>; }

    std::vector<Entry> mEntries;
};

} // namespace vxr
