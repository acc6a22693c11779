#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "ImageBinaryXML.cpp";

/// The bytes stay with the host's data manager, which knows them by the save name.
void encode(const VXRImageBinary& binary, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    if (const auto& data = binary.data()) {
        const auto host = archiver.metadataForKey(VXEDataHostUnarchiverKey);
        auto* const manager = dynamic_cast<VXEDataManager*>(host.get());
        vxaxmlSetNSStringNsProp(
            node, VelloraNamespace, "data", manager ? manager->saveNameForData(data) : data->saveName());
        vxaxmlSetNSStringNsProp(node, VelloraNamespace, "display-name", data->displayName());
        if (data->hfsType())
            vxaxmlSetUnsignedLongNsProp(node, VelloraNamespace, "hfs-type", data->hfsType());
    }
    // Asking for the size may decode the picture and changes nothing else.
    vxaxmlCreateSizeChild(
        node, VelloraNamespace, "natural-size", const_cast<VXRImageBinary&>(binary).naturalImageSize());
}

/// Data that isn't there leaves a name, so that the reference outlasts reading and writing.
std::shared_ptr<VXEData> dataFor(const std::string& name, VXEDataManager* manager, const VXAXMLNode* node)
{
    std::string displayName = name;
    vxaxmlGetNSStringNsProp(node, VelloraNamespace, "display-name", displayName);
    std::uint32_t type = 0;
    vxaxmlGetUnsignedLongNsProp(node, VelloraNamespace, "hfs-type", type);
    if (auto data = manager ? manager->dataWithSaveNameDisplayNameType(name, displayName, type) : nullptr)
        return data;
    warn(thisFile,
        fmt::format(
            "WARNING, initializing an image binary from {}, there is no data '{}'.", fmt::ptr(node), name));
    return std::make_shared<VXEData>(nullptr, displayName, name, type, manager);
}

/// Pictures of the same data are one binary.
std::shared_ptr<VXRImageBinary> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "an image binary", node };
    const auto host = unarchiver.metadataForKey(VXEDataHostUnarchiverKey);
    auto* const manager = dynamic_cast<VXEDataManager*>(host.get());
    Size size;
    const bool hasSize = vxaxmlPopulateSizeFromChild(node, VelloraNamespace, "natural-size", size)
        && size.width > 0 && size.height > 0 && std::isfinite(size.width) && std::isfinite(size.height);
    if (!hasSize)
        properties.cannotGet("natural-size");
    std::string name;
    std::shared_ptr<VXEData> data;
    if (vxaxmlGetNSStringNsProp(node, VelloraNamespace, "data", name))
        data = dataFor(name, manager, node);
    else
        properties.cannotGet("data");
    const std::string identifier(kVXRImageBinaryDMIdentifier);
    if (data && manager && data->sharable()) {
        if (auto known = std::dynamic_pointer_cast<VXRImageBinary>(
                manager->objectWithIdentifierForData(identifier, *data)))
            return known;
    }
    auto binary = std::make_shared<VXRImageBinary>();
    binary->setData(data);
    if (hasSize)
        binary->setNaturalImageSize(size);
    if (data && manager && data->sharable())
        manager->setObjectWithIdentifierForData(binary, identifier, data);
    return binary;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRImageBinary>()
{
    return recordOf<VXRImageBinary, encode, read>("VXRImageBinary");
}

} // namespace vxr
