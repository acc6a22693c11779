#include <vxr/host/archiving/VXAXMLArchiver.h>

#include <vxr/platform/base/Exceptions.h>

#include <fmt/format.h>
#include <libxml/tree.h>

namespace vxr {
namespace {

const VXAXMLClass& classOf(const Object& object)
{
    if (const VXAXMLClass* record = VXAXMLClassOfObject(object))
        return *record;
    throw GenericException(
        fmt::format("Cannot archive {}: its class is not registered", object.description()));
}

std::string elementNameOf(const Object& object, const VXAXMLClass& record)
{
    std::string name(vxaxmlNameForClass(record));
    if (name.empty())
        throw GenericException(
            fmt::format("Cannot archive {}: {} has no element name", object.description(), record.name));
    return name;
}

struct EntryWriter {
    VXAXMLNode* entry;
    const VXAXMLNamespace& ns;
    VXAXMLArchiver& archiver;

    void type(const char* word) const { vxaxmlSetNSStringNsProp(entry, ns, "type", word); }
    void operator()(bool value) const
    {
        type("boolean");
        vxaxmlSetBoolNsProp(entry, ns, "value", value);
    }
    void operator()(double value) const
    {
        type("number");
        vxaxmlSetDoubleNsProp(entry, ns, "value", value);
    }
    void operator()(const std::string& value) const
    {
        type("string");
        vxaxmlSetNSStringNsProp(entry, ns, "value", value);
    }
    void operator()(const std::shared_ptr<Object>& value) const
    {
        type("object");
        if (value)
            archiver.encodeObjectAsChildOf(*value, entry);
    }
};

} // namespace

std::shared_ptr<Object> VXAXMLArchiver::metadataForKey(std::string_view key) const
{
    const auto found = mMetadata.find(key);
    return found == mMetadata.end() ? nullptr : found->second;
}

std::string_view VXAXMLArchiver::idOfObject(const Object& object) const
{
    const auto found = mIds.find(&object);
    return found == mIds.end() ? std::string_view() : found->second;
}

VXAXMLNode* VXAXMLArchiver::encodeObjectOfClassAsChildOfWithNameXmlNamespace(const VXAXMLClass& record,
    const Object& object, VXAXMLNode* parent, const char* name, const VXAXMLNamespace& ns)
{
    VXAXMLNode* const child = vxaxmlCreateChild(parent, ns, name);
    if (!child)
        throw std::bad_alloc();
    try {
        record.encodeWithXMLArchiverNodeVersion(object, *this, child, mVersion);
        if (const std::string_view id = mIds.empty() ? std::string_view() : idOfObject(object); !id.empty())
            vxaxmlSetNSStringNsProp(child, VXANamespace, VXAVXIdAttribute, id);
        if (mElementHandler)
            mElementHandler(object, child);
        if (const auto* kept = mKeptParts ? mKeptParts->partsOf(object) : nullptr)
            kept->appendTo(child);
    } catch (...) {
        xmlUnlinkNode(child);
        xmlFreeNode(child);
        throw;
    }
    return child;
}

/// None for an object that is not shared.
VXAXMLNode* VXAXMLArchiver::encodeReference(
    const Object& object, VXAXMLNode* parent, const char* name, const VXAXMLNamespace& ns) const
{
    const auto shared = mShared.find(&object);
    if (shared == mShared.end())
        return nullptr;
    VXAXMLNode* const child = vxaxmlCreateChild(parent, ns, name);
    vxaxmlSetNSStringNsProp(child, VelloraNamespace, VXASharedObjectAttribute, shared->second);
    return child;
}

VXAXMLNode* VXAXMLArchiver::encodeObjectAsChildOfWithNameXmlNamespace(
    const Object& object, VXAXMLNode* parent, const char* name, const VXAXMLNamespace& ns)
{
    VXAXMLNode* const reference = encodeReference(object, parent, name, ns);
    return reference
        ? reference
        : encodeObjectOfClassAsChildOfWithNameXmlNamespace(classOf(object), object, parent, name, ns);
}

VXAXMLNode* VXAXMLArchiver::encodeObjectAndClassAsChildOfWithNameXmlNamespace(
    const Object& object, VXAXMLNode* parent, const char* name, const VXAXMLNamespace& ns)
{
    if (VXAXMLNode* const reference = encodeReference(object, parent, name, ns))
        return reference;
    const VXAXMLClass& record = classOf(object);
    VXAXMLNode* const child
        = encodeObjectOfClassAsChildOfWithNameXmlNamespace(record, object, parent, name, ns);
    std::string own;
    if (vxaxmlGetNSStringNsProp(child, VXANamespace, VXAVXClassAttribute, own))
        return child;
    try {
        vxaxmlSetNSStringNsProp(child, VXANamespace, VXAVXClassAttribute, elementNameOf(object, record));
    } catch (...) {
        xmlUnlinkNode(child);
        xmlFreeNode(child);
        throw;
    }
    return child;
}

VXAXMLNode* VXAXMLArchiver::encodeObjectAsChildOf(const Object& object, VXAXMLNode* parent)
{
    const VXAXMLClass& record = classOf(object);
    return encodeObjectOfClassAsChildOfWithNameXmlNamespace(
        record, object, parent, elementNameOf(object, record).c_str(), VelloraNamespace);
}

void vxaxmlEncodeStringKeyDictionary(const VXAStringKeyDictionary& dictionary, VXAXMLNode* parent,
    const VXAXMLNamespace& ns, VXAXMLArchiver& archiver)
{
    for (const auto& [key, value] : dictionary) {
        VXAXMLNode* const entry = vxaxmlCreateChild(parent, ns, "entry");
        vxaxmlSetNSStringNsProp(entry, ns, "key", key);
        std::visit(EntryWriter { entry, ns, archiver }, value);
    }
}

} // namespace vxr
