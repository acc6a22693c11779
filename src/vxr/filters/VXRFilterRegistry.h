#pragma once

#include <vxr/filters/VXRFilter.h>

namespace vxr {

/// The filters of the process by name. The library's own (`StandardFilters.h`) are always there.
class VXR_EXPORT VXRFilterRegistry {
public:
    using Factory = std::function<std::shared_ptr<VXRFilter>()>;

    /// Adds a filter of the host's. Throws `InvalidArgumentException` when the name is taken.
    static void registerFilter(const std::string& name, Factory factory);
    /// A new filter with default values; none for an unknown name.
    static std::shared_ptr<VXRFilter> createFilter(std::string_view name);
    static std::vector<std::string> filterNames(); ///< in alphabetical order
};

} // namespace vxr
