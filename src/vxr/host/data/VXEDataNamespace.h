#pragma once

#include <vxr/platform/base/Object.h>

#include <set>

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

/// The save names of a document's data objects.
class VXR_EXPORT VXEDataNamespace {
public:
    /// The base itself, or with a number in front of its extension: "photo-1.jpg".
    VXEUniqueID generateUniqueIDFromBase(const std::string& base);

private:
    std::set<std::string> mUsed;
};

} // namespace vxr
