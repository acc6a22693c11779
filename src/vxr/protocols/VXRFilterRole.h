#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <memory>
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

/// An effect stack as an adaptor sees it. Layer 0 is the image itself; filters are the layers from 1 on.
class VXR_EXPORT VXREffectStackRole {
public:
    virtual std::size_t layerCount() const = 0;
    /// Null if the layer is not a filter.
    virtual VXRFilterRole* filterAtIndex(std::size_t index) const = 0;
    /// Inserts a filter at an index from 1 to `layerCount`.
    virtual void insertFilterLayerAtIndex(std::shared_ptr<VXRFilterRole> filter, std::size_t index) = 0;
    virtual void removeLayerAtIndex(std::size_t index) = 0;

protected:
    ~VXREffectStackRole() = default;
};

} // namespace vxr
