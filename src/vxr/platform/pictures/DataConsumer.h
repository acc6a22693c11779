#pragma once

#include <vxr/platform/base/Object.h>

#include <cstddef>

namespace vxr {

/// Where a platform service puts bytes.
class VXR_EXPORT DataConsumer final : public Object {
public:
    struct Callbacks {
        std::size_t (*putBytes)(void* info, const void* bytes, std::size_t count) = nullptr;
        void (*releaseConsumer)(void* info) = nullptr;
    };

    DataConsumer(void* info, Callbacks callbacks);
    ~DataConsumer() override;

    /// Whether all bytes were taken.
    bool put(const void* bytes, std::size_t count);

private:
    void* mInfo;
    Callbacks mCallbacks;
};

} // namespace vxr
