#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>

namespace vxr {

/// Dictionary keyed by object identity. Keys are neither owned nor dereferenced. Remove a key before its
/// object is destroyed.
template <class Key, class Value> class VXUMutableDictionary {
public:
    void setObjectForKey(Value value, const Key& key) { mValues.insert_or_assign(&key, std::move(value)); }
    void removeObjectForKey(const Key& key) { mValues.erase(&key); }
    void removeAllObjects() { mValues.clear(); }

    /// Null for an unknown key. Valid until the entry is removed.
    const Value* objectForKey(const Key& key) const
    {
        const auto found = mValues.find(&key);
        return found == mValues.end() ? nullptr : &found->second;
    }
    std::size_t count() const { return mValues.size(); }

private:
    std::unordered_map<const Key*, Value> mValues;
};

} // namespace vxr
