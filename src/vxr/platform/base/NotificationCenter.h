#pragma once

#include <vxr/platform/base/Export.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vxr {

/// What happened, and to which object.
struct Notification {
    std::string_view name;
    void* object = nullptr; ///< the poster
};

/// Delivers notifications to observers, immediately and in the order in which they were added.
class VXR_EXPORT NotificationCenter {
public:
    using Handler = std::function<void(const Notification&)>;

    static NotificationCenter& defaultCenter();

    /// `observer` only identifies the registration. A null `object` means any poster.
    void addObserver(const void* observer, std::string_view name, const void* object, Handler);
    /// Removes the observer's registrations; an empty name means every name, a null object every object.
    void removeObserver(const void* observer, std::string_view name = {}, const void* object = nullptr);
    /// Handlers may add and remove observers. An observer removed during delivery is not called.
    void post(std::string_view name, void* object);

private:
    struct Entry {
        const void* observer;
        std::string name;
        const void* object;
        Handler handler;
        std::uint64_t serial;
    };
    std::vector<Entry> mEntries;
    std::uint64_t mNextSerial = 1;
};

} // namespace vxr
