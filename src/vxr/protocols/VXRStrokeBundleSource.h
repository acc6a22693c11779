#pragma once

#include <vxr/platform/base/Export.h>

#include <memory>
#include <string>

namespace vxr {

class VXRStrokeBundle;

/// Where smart strokes find their drawings: a document's data manager, or a folder of them.
class VXR_EXPORT VXRStrokeBundleSource {
public:
    /// None when there is no bundle of that name.
    virtual std::shared_ptr<const VXRStrokeBundle> strokeBundleForName(const std::string& name) = 0;

protected:
    ~VXRStrokeBundleSource() = default;
};

} // namespace vxr
