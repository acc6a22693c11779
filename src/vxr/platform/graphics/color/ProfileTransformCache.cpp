#include <vxr/platform/graphics/color/ProfileTransformCache.h>

#include <lcms2_plugin.h>

#include <algorithm>

namespace vxr {

namespace {

std::array<unsigned char, 16> digestOf(std::span<const std::byte> bytes)
{
    const cmsHANDLE digest = cmsMD5alloc(nullptr);
    if (!digest)
        throw std::bad_alloc();
    cmsMD5add(digest, reinterpret_cast<const cmsUInt8Number*>(bytes.data()),
        static_cast<cmsUInt32Number>(bytes.size()));
    cmsProfileID id {};
    cmsMD5finish(&id, digest);
    std::array<unsigned char, 16> result {};
    std::copy_n(id.ID8, result.size(), result.begin());
    return result;
}

} // namespace

ProfileTransformCache& ProfileTransformCache::shared()
{
    constexpr std::size_t capacity = 32; // profiles; a CMYK transform takes about 200 KB
    static auto& cache = *new ProfileTransformCache(capacity);
    return cache;
}

std::shared_ptr<const ProfileTransforms> ProfileTransformCache::transformsFor(
    std::span<const std::byte> profile, ColorModel model)
{
    const Key key { digestOf(profile), model };
    if (const auto found = mByKey.find(key); found != mByKey.end()) {
        mEntries.splice(mEntries.begin(), mEntries, found->second);
        return found->second->transforms;
    }
    auto transforms = ProfileTransforms::make(profile, model);
    if (!transforms)
        return nullptr;
    mEntries.push_front({ key, transforms });
    mByKey.emplace(key, mEntries.begin());
    if (mEntries.size() > mCapacity) {
        mByKey.erase(mEntries.back().key);
        mEntries.pop_back();
    }
    return transforms;
}

} // namespace vxr
