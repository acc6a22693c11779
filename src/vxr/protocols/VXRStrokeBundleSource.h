#pragma once

#include <vxr/platform/base/Export.h>

#include <memory>
#include <string>

namespace vxr {

class VXRStrokeBundle;

/// Supplies the drawings of smart strokes: a document's data manager, or a folder of bundles.
class VXR_EXPORT VXRStrokeBundleSource {
public:
    /// Null if there is no bundle with this name.
    virtual std::shared_ptr<const VXRStrokeBundle> strokeBundleForName(const std::string& name) = 0;

protected:
    ~VXRStrokeBundleSource() = default;
};

} // namespace vxr
