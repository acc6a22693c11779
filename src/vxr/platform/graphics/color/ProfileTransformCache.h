#pragma once

#include <vxr/platform/graphics/color/ProfileTransforms.h>

#include <array>
#include <list>
#include <map>
#include <utility>

namespace vxr {

/// Keeps the transforms of the profiles used last, by the MD5 digest of their bytes. Transforms that are
/// dropped live on in the colour spaces that hold them.
class ProfileTransformCache {
public:
    explicit ProfileTransformCache(std::size_t capacity)
        : mCapacity(capacity)
    {
    }

    static ProfileTransformCache& shared(); ///< of the process

    /// None for a profile that can't be used, which is not remembered.
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
    std::list<Entry> mEntries; ///< the one used last in front
    std::map<Key, std::list<Entry>::iterator> mByKey;
};

} // namespace vxr
