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

VXAXMLNode* VXAXMLArchiver::encode(const Object& object, const VXAXMLClass& record, VXAXMLNode* parent,
    const char* name, const VXAXMLNamespace& ns)
{
    VXAXMLNode* const child = vxaxmlCreateChild(parent, ns, name);
    if (!child)
        throw std::bad_alloc();
    try {
        record.encodeWithXMLArchiverNodeVersion(object, *this, child, mVersion);
    } catch (...) {
        xmlUnlinkNode(child);
        xmlFreeNode(child);
        throw;
    }
    return child;
}

VXAXMLNode* VXAXMLArchiver::encodeObjectAsChildOfWithNameXmlNamespace(
    const Object& object, VXAXMLNode* parent, const char* name, const VXAXMLNamespace& ns)
{
    return encode(object, classOf(object), parent, name, ns);
}

VXAXMLNode* VXAXMLArchiver::encodeObjectAndClassAsChildOfWithNameXmlNamespace(
    const Object& object, VXAXMLNode* parent, const char* name, const VXAXMLNamespace& ns)
{
    const VXAXMLClass& record = classOf(object);
    const std::string elementName = elementNameOf(object, record);
    VXAXMLNode* const child = encode(object, record, parent, name, ns);
    std::string own;
    if (!vxaxmlGetNSStringNsProp(child, VXANamespace, VXAVXClassAttribute, own))
        vxaxmlSetNSStringNsProp(child, VXANamespace, VXAVXClassAttribute, elementName);
    return child;
}

VXAXMLNode* VXAXMLArchiver::encodeObjectAsChildOf(const Object& object, VXAXMLNode* parent)
{
    const VXAXMLClass& record = classOf(object);
    return encode(object, record, parent, elementNameOf(object, record).c_str(), VelloraNamespace);
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
