#pragma once

#include <vxr/host/archiving/VXAXMLClass.h>
#include <vxr/host/archiving/VXAXMLKeptParts.h>

#include <functional>
#include <map>
#include <unordered_map>
#include <variant>

namespace vxr {

/// Values by name, as archives hold them: "nothing" is not a value.
using VXAPropertyValue = std::variant<bool, double, std::string, std::shared_ptr<Object>>;
using VXAStringKeyDictionary = std::map<std::string, VXAPropertyValue, std::less<>>;

/// The attribute of `VXANamespace` by which elements refer to an object's element, and that of
/// `VelloraNamespace` that stands for an object of the host's.
inline constexpr const char* VXAVXIdAttribute = "id";
inline constexpr const char* VXASharedObjectAttribute = "style";

/// Writes objects as elements of a document. The version goes unchanged to every class that writes itself.
class VXR_EXPORT VXAXMLArchiver {
public:
    explicit VXAXMLArchiver(std::uint32_t version = 1)
        : mVersion(version)
    {
    }

    std::uint32_t version() const { return mVersion; }

    /// A child element of that name into which the object writes itself. The reader knows the object's class.
    /// Throws `GenericException` for an object whose class isn't registered; the parent is then unchanged.
    VXAXMLNode* encodeObjectAsChildOfWithNameXmlNamespace(
        const Object&, VXAXMLNode* parent, const char* name, const VXAXMLNamespace&);
    /// The same for a reader that doesn't know the class: unless the object writes a class attribute of its
    /// own, its class's element name stands there. Throws also for a class without an element name.
    VXAXMLNode* encodeObjectAndClassAsChildOfWithNameXmlNamespace(
        const Object&, VXAXMLNode* parent, const char* name, const VXAXMLNamespace&);
    /// A child element named after the object's class.
    VXAXMLNode* encodeObjectAsChildOf(const Object&, VXAXMLNode* parent);

    /// For objects that one record writes whatever their class.
    VXAXMLNode* encodeObjectOfClassAsChildOfWithNameXmlNamespace(
        const VXAXMLClass&, const Object&, VXAXMLNode* parent, const char* name, const VXAXMLNamespace&);

    /// Data of the host that writers may ask for; none when there is none of that name.
    std::shared_ptr<Object> metadataForKey(std::string_view key) const;
    void setMetadataForKey(std::shared_ptr<Object> data, std::string key)
    {
        mMetadata[std::move(key)] = std::move(data);
    }

    /// Objects of the host's that are kept elsewhere by name: in place of one, an element refers to it.
    void setNameOfSharedObject(const Object& object, std::string name) { mShared[&object] = std::move(name); }
    /// Objects that others refer to: the id stands on the object's element. Empty for none.
    void setIdOfObject(const Object& object, std::string id) { mIds[&object] = std::move(id); }
    std::string_view idOfObject(const Object&) const;
    /// What was kept when objects were read is written with them. The store outlives the archiver.
    void setKeptParts(const VXAXMLKeptPartsOfObjects* parts) { mKeptParts = parts; }
    /// Called with each object and its element, once that is complete.
    void setElementHandler(std::function<void(const Object&, VXAXMLNode*)> handler)
    {
        mElementHandler = std::move(handler);
    }

private:
    VXAXMLNode* encodeReference(
        const Object&, VXAXMLNode* parent, const char* name, const VXAXMLNamespace&) const;

    std::uint32_t mVersion;
    std::map<std::string, std::shared_ptr<Object>, std::less<>> mMetadata;
    std::unordered_map<const Object*, std::string> mShared, mIds;
    const VXAXMLKeptPartsOfObjects* mKeptParts = nullptr;
    std::function<void(const Object&, VXAXMLNode*)> mElementHandler;
};

/// An "entry" child for each value, with its "key", its "type" (one of "boolean", "number", "string",
/// "object") and its "value"; an object is a child element of the entry.
VXR_EXPORT void vxaxmlEncodeStringKeyDictionary(
    const VXAStringKeyDictionary&, VXAXMLNode* parent, const VXAXMLNamespace&, VXAXMLArchiver&);

} // namespace vxr
