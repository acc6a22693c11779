#pragma once

#include <vxr/host/data/VXEUniqueID.h>

#include <set>

namespace vxr {

/// The save names of a document's data objects.
class VXR_EXPORT VXEDataNamespace {
public:
    /// The base itself, or with a number in front of its extension: "photo-1.jpg".
    VXEUniqueID generateUniqueIDFromBase(const std::string& base);

private:
    std::set<std::string> mUsed;
};

} // namespace vxr
