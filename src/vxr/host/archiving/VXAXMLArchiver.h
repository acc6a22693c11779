#pragma once

#include <vxr/host/archiving/VXAXMLClass.h>

#include <map>
#include <variant>

namespace vxr {

/// Values by name, as archives hold them: "nothing" is not a value.
using VXAPropertyValue = std::variant<bool, double, std::string, std::shared_ptr<Object>>;
using VXAStringKeyDictionary = std::map<std::string, VXAPropertyValue, std::less<>>;

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

private:
    VXAXMLNode* encode(
        const Object&, const VXAXMLClass&, VXAXMLNode* parent, const char* name, const VXAXMLNamespace&);

    std::uint32_t mVersion;
};

/// An "entry" child for each value, with its "key", its "type" (one of "boolean", "number", "string",
/// "object") and its "value"; an object is a child element of the entry.
VXR_EXPORT void vxaxmlEncodeStringKeyDictionary(
    const VXAStringKeyDictionary&, VXAXMLNode* parent, const VXAXMLNamespace&, VXAXMLArchiver&);

} // namespace vxr
