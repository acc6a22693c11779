#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace vxr {

/// What engines keep for an image, a shading or a pattern. Each engine names a type of its own, so that none
/// meets another's; an object drawn by two engines has both forms. Dropped with the object.
class EngineCaches {
public:
    /// The cache of type `T`. Empty until somebody fills it.
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
    /// The cache of type `T`, made when there is none.
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

    template <class T> static constexpr char key = 0; ///< its address stands for the type
    template <class T> static bool isFor(const Entry& entry) { return entry.first == &key<T>; }

    std::vector<Entry> mEntries;
};

} // namespace vxr
