#pragma once

#include <vxr/platform/base/Export.h>

#include <string_view>

namespace vxr {

/// An image filter as an adaptor sees it: values by key.
class VXR_EXPORT VXRFilterRole {
public:
    virtual std::string_view vxrNameFromFilter() const = 0; ///< the name it is registered under
    virtual float valueForKey(std::string_view key) const = 0;
    virtual void setValueForKey(float value, std::string_view key) = 0;
    virtual void setDefaults() = 0;

protected:
    ~VXRFilterRole() = default;
};

} // namespace vxr
