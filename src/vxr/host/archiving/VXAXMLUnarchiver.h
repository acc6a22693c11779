#pragma once

#include <vxr/host/archiving/VXAXMLArchiver.h>

namespace vxr {

/// Reads objects from the elements of a document. What can't be read is logged by the reader and replaced by
/// a default; nothing here throws for what a document says.
class VXR_EXPORT VXAXMLUnarchiver {
public:
    explicit VXAXMLUnarchiver(std::uint32_t version = 1)
        : mVersion(version)
    {
    }

    std::uint32_t version() const { return mVersion; } ///< goes unchanged to every reader

    /// None for a null node, a class that can't read itself, or where its reader makes no object. Objects
    /// within objects are read 100 deep at most.
    std::shared_ptr<Object> createObjectOfClassFromNode(const VXAXMLClass&, VXAXMLNode*);
    /// Of the class that the class attribute names, else of the class of the element's own name; none when
    /// neither is known.
    std::shared_ptr<Object> createObjectFromNode(VXAXMLNode*);

    /// Data of the host that readers may ask for; none when there is none of that name.
    std::shared_ptr<Object> metadataForKey(std::string_view key) const;
    void setMetadataForKey(std::shared_ptr<Object>, std::string key);

private:
    std::uint32_t mVersion;
    int mDepth = 0;
    std::map<std::string, std::shared_ptr<Object>, std::less<>> mMetadata;
};

/// The values that `vxaxmlEncodeStringKeyDictionary` wrote as children of the node. An entry without a key
/// or with a value that can't be read is logged and left out.
VXR_EXPORT VXAStringKeyDictionary vxaxmlDecodeStringKeyDictionary(const VXAXMLNode*, VXAXMLUnarchiver&);

} // namespace vxr
