#pragma once

#include <vxr/platform/graphics/color/ProfileTransforms.h>

#include <array>
#include <list>
#include <map>
#include <utility>

namespace vxr {

/// Caches the transforms of the most recently used profiles, keyed by the MD5 digest of their bytes. Colour
/// spaces that hold an evicted transform keep it alive.
class ProfileTransformCache {
public:
    explicit ProfileTransformCache(std::size_t capacity)
        : mCapacity(capacity)
    {
    }

    static ProfileTransformCache& shared(); ///< the shared cache of the process

    /// Null for an unusable profile; such failures are not cached.
    std::shared_ptr<const ProfileTransforms> transformsFor(
        std::span<const std::byte> profile, ColorModel model);

    std::size_t size() const { return mEntries.size(); }

private:
    using Key = std::pair<std::array<unsigned char, 16>, ColorModel>;
    struct Entry {
        Key key;
        std::shared_ptr<const ProfileTransforms> transforms;
    };

    std::size_t mCapacity;
    std::list<Entry> mEntries; ///< most recently used in front
    std::map<Key, std::list<Entry>::iterator> mByKey;
};

} // namespace vxr
