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
    VXAXMLUnarchiver(const VXAXMLUnarchiver&) = delete;
    VXAXMLUnarchiver& operator=(const VXAXMLUnarchiver&) = delete;

    std::uint32_t version() const { return mVersion; } ///< goes unchanged to every reader

    /// None for a null node, a class that can't read itself, or where its reader makes no object. Objects
    /// within objects are read 100 deep at most. An element that refers to a shared object gives that one,
    /// whatever its class.
    std::shared_ptr<Object> createObjectOfClassFromNode(const VXAXMLClass&, VXAXMLNode*);
    /// Of the class that the class attribute names, else of the class of the element's own name; none when
    /// neither is known.
    std::shared_ptr<Object> createObjectFromNode(VXAXMLNode*);

    /// Data of the host that readers may ask for; none when there is none of that name.
    std::shared_ptr<Object> metadataForKey(std::string_view key) const;
    void setMetadataForKey(std::shared_ptr<Object>, std::string key);

    /// Objects of the host's that elements may refer to (see `VXAXMLArchiver::setNameOfSharedObject`).
    void setSharedObjects(std::map<std::string, std::shared_ptr<Object>> objects)
    {
        mShared = std::move(objects);
    }
    /// What reads the elements of unknown classes in lists of renderables; none at first.
    const VXAXMLClass* classOfUnknownElements() const { return mClassOfUnknown; }
    void setClassOfUnknownElements(const VXAXMLClass* record) { mClassOfUnknown = record; }
    /// Where what no reader asks for is kept. The store outlives the unarchiver.
    void setKeptParts(VXAXMLKeptPartsOfObjects* parts) { mKeptParts = parts; }
    /// Called with each object that was read and its element.
    void setElementHandler(std::function<void(const std::shared_ptr<Object>&, VXAXMLNode*)> handler)
    {
        mElementHandler = std::move(handler);
    }

    /// Has `use` called with the object of that id, wherever it stands, once the host has read everything;
    /// with none where there is no such object.
    void whenReadObjectWithId(std::string id, std::function<void(const std::shared_ptr<Object>&)> use);
    void finishReading(); ///< for the host, when everything has been read

    /// The element of the object that is being read, for messages; null outside of objects.
    const VXAXMLNode* currentNode() const { return mCurrent; }
    /// Counts what readers make that the text doesn't hold, such as the points of a star. False once it is
    /// too much for a document of whatever size.
    bool mayMake(std::size_t count);

private:
    struct Read {
        std::weak_ptr<Object> object;
        const VXAXMLNode* node;
        VXAXMLKeptParts parts;
    };

    void keepParts(const std::shared_ptr<Object>&, VXAXMLNode*, std::size_t firstChild);

    std::uint32_t mVersion;
    int mDepth = 0;
    std::size_t mMade = 0;
    const VXAXMLNode* mCurrent = nullptr;
    const VXAXMLClass* mClassOfUnknown = nullptr;
    std::map<std::string, std::shared_ptr<Object>, std::less<>> mMetadata;
    std::map<std::string, std::shared_ptr<Object>> mShared;
    VXAXMLKeptPartsOfObjects* mKeptParts = nullptr;
    std::vector<Read> mWithParts; ///< objects whose parts wait for the object around them
    std::function<void(const std::shared_ptr<Object>&, VXAXMLNode*)> mElementHandler;
    std::unordered_map<std::string, std::shared_ptr<Object>> mObjectsById;
    std::vector<std::pair<std::string, std::function<void(const std::shared_ptr<Object>&)>>> mReferences;
};

/// The values that `vxaxmlEncodeStringKeyDictionary` wrote as children of the node. An entry without a key
/// or with a value that can't be read is logged and left out.
VXR_EXPORT VXAStringKeyDictionary vxaxmlDecodeStringKeyDictionary(const VXAXMLNode*, VXAXMLUnarchiver&);

} // namespace vxr
