#include <vxr/host/archiving/VXAXMLUnarchiver.h>

#include <vxr/host/utility/VXULog.h>

#include <fmt/format.h>

namespace vxr {
namespace {

constexpr int maximumDepth = 100;
constexpr const char* thisFile = "VXAXMLUnarchiver.cpp";

/// The value of one entry; none when it can't be read.
bool readEntry(VXAXMLNode* entry, VXAXMLUnarchiver& unarchiver, VXAPropertyValue& value)
{
    const VXAXMLNamespace& ns = VelloraNamespace;
    std::string type, text;
    vxaxmlGetNSStringNsProp(entry, ns, "type", type);
    if (type == "number") {
        double number;
        if (!vxaxmlGetDoubleNsProp(entry, ns, "value", number))
            return false;
        value = number;
        return true;
    }
    if (type == "object") {
        value = unarchiver.createObjectFromNode(vxaxmlFirstChildElement(entry));
        return std::get<std::shared_ptr<Object>>(value) || !vxaxmlFirstChildElement(entry);
    }
    if (!vxaxmlGetNSStringNsProp(entry, ns, "value", text))
        return false;
    if (type == "boolean")
        value = vxaxmlBoolNsPropDefault(entry, ns, "value", false);
    else if (type == "string")
        value = text;
    else
        return false;
    return true;
}

} // namespace

std::shared_ptr<Object> VXAXMLUnarchiver::createObjectOfClassFromNode(
    const VXAXMLClass& record, VXAXMLNode* node)
{
    if (!node || !record.initWithXMLUnarchiverNodeVersion)
        return nullptr;
    if (mDepth >= maximumDepth) {
        VXULog_Fn(VXULogLevelWarning, thisFile,
            fmt::format("WARNING, objects nested more than {} deep are left out, line {}.", maximumDepth,
                vxaxmlLine(node)));
        return nullptr;
    }
    struct Depth {
        int& depth;
        explicit Depth(int& counter)
            : depth(counter)
        {
            ++depth;
        }
        ~Depth() { --depth; }
    } const depth(mDepth);
    return record.initWithXMLUnarchiverNodeVersion(*this, node, mVersion);
}

std::shared_ptr<Object> VXAXMLUnarchiver::createObjectFromNode(VXAXMLNode* node)
{
    if (!node)
        return nullptr;
    std::string name;
    const VXAXMLClass* record = nullptr;
    if (vxaxmlGetNSStringNsProp(node, VXANamespace, VXAVXClassAttribute, name))
        record = vxaxmlClassForName(name);
    if (!record)
        record = vxaxmlClassForName(vxaxmlNodeName(node));
    return record ? createObjectOfClassFromNode(*record, node) : nullptr;
}

std::shared_ptr<Object> VXAXMLUnarchiver::metadataForKey(std::string_view key) const
{
    const auto found = mMetadata.find(key);
    return found == mMetadata.end() ? nullptr : found->second;
}

void VXAXMLUnarchiver::setMetadataForKey(std::shared_ptr<Object> data, std::string key)
{
    mMetadata[std::move(key)] = std::move(data);
}

VXAStringKeyDictionary vxaxmlDecodeStringKeyDictionary(const VXAXMLNode* node, VXAXMLUnarchiver& unarchiver)
{
    VXAStringKeyDictionary result;
    for (VXAXMLNode* entry = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "entry"); entry;
         entry = vxaxmlNextSiblingNsNamed(entry, VelloraNamespace, "entry")) {
        std::string key;
        VXAPropertyValue value;
        if (vxaxmlGetNSStringNsProp(entry, VelloraNamespace, "key", key)
            && readEntry(entry, unarchiver, value))
            result[std::move(key)] = std::move(value);
        else
            VXULog_Fn(VXULogLevelWarning, thisFile,
                fmt::format("WARNING, reading a dictionary from {}, an entry has no key or no value.",
                    fmt::ptr(node)));
    }
    return result;
}

} // namespace vxr
