#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <memory>

namespace vxr {

class VXRFilterRole;

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
