#pragma once

#include <vxr/platform/base/Object.h>

#include <cstddef>

namespace vxr {

/// Where a platform service reads bytes. `release` is told when they are no longer needed.
class VXR_EXPORT DataProvider final : public Object {
public:
    using Release = void (*)(void* info, const void* bytes, std::size_t size);

    DataProvider(void* info, const void* bytes, std::size_t size, Release release);
    ~DataProvider() override;

    const void* bytes() const { return mBytes; }
    std::size_t size() const { return mSize; }

private:
    void* mInfo;
    const void* mBytes;
    std::size_t mSize;
    Release mRelease;
};

} // namespace vxr
