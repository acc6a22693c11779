#pragma once

#include <vxr/platform/base/Export.h>

#include <string>
#include <vector>

namespace vxr {

/// Encapsulated PostScript. It is never drawn as such, but converted to PDF when it is imported.
struct VXR_EXPORT EPSImageRep {
    static std::vector<std::string> imageUnfilteredFileTypes(); ///< as the function of this name, EPS alone
};

} // namespace vxr
