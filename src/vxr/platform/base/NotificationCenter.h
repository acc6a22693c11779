#pragma once

#include <vxr/platform/base/Export.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vxr {

/// What happened, and to whom.
struct Notification {
    std::string_view name;
    void* object = nullptr; ///< whoever posts it
};

/// Passes notifications to whoever asked for them, at once and in the order of asking.
class VXR_EXPORT NotificationCenter {
public:
    using Handler = std::function<void(const Notification&)>;

    static NotificationCenter& defaultCenter();

    /// `observer` only names who asks. No `object` means any poster.
    void addObserver(const void* observer, std::string_view name, const void* object, Handler);
    /// Takes back what the observer asked for; no name means every name, no object every object.
    void removeObserver(const void* observer, std::string_view name = {}, const void* object = nullptr);
    /// Handlers may add and remove observers; one removed meanwhile is not called.
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
