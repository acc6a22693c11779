#include <vxr/platform/base/NotificationCenter.h>

#include <algorithm>

namespace vxr {

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(
    const void* observer, std::string_view name, const void* object, Handler handler)
{
    mEntries.push_back({ observer, std::string(name), object, std::move(handler), mNextSerial++ });
}

void NotificationCenter::removeObserver(const void* observer, std::string_view name, const void* object)
{
    std::erase_if(mEntries, [&](const Entry& entry) {
        return entry.observer == observer && (name.empty() || entry.name == name)
            && (!object || entry.object == object);
    });
}

void NotificationCenter::post(std::string_view name, void* object)
{
    std::vector<std::uint64_t> due;
    for (const Entry& entry : mEntries)
        if (entry.name == name && (!entry.object || entry.object == object))
            due.push_back(entry.serial);

    for (const std::uint64_t serial : due) {
        const auto entry = std::find_if(
            mEntries.begin(), mEntries.end(), [&](const Entry& e) { return e.serial == serial; });
        if (entry == mEntries.end())
            continue;
        const Handler handler = entry->handler; // the entry may be removed while it runs
        handler({ name, object });
    }
}

} // namespace vxr
