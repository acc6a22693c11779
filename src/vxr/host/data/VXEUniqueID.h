#pragma once

#include <vxr/platform/base/Export.h>

#include <string>
#include <utility>

namespace vxr {

/// A name that no other data object of the document has.
class VXR_EXPORT VXEUniqueID {
public:
    explicit VXEUniqueID(std::string string)
        : mString(std::move(string))
    {
    }

    const std::string& string() const { return mString; }

private:
    std::string mString;
};

} // namespace vxr
