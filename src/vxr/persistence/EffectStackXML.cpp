#include <vxr/filters/VXREffectStack.h>
#include <vxr/filters/VXRFilterRegistry.h>
#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/persistence/Base64.h>
#include <vxr/persistence/ElementNames.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/platform/base/Exceptions.h>

#include <cmath>
#include <limits>

namespace vxr {
namespace {

constexpr const char* thisFile = "EffectStackXML.cpp";

/// Stands for a filter that this process doesn't have: keeps its values and changes no pixel.
class AbsentFilter final : public VXRFilter {
public:
    using VXRFilter::VXRFilter;

    std::vector<FilterOperation> operations() const override { return {}; }
    std::shared_ptr<VXRFilter> copyWithZone() const override { return std::make_shared<AbsentFilter>(*this); }
};

// Filters.

/// The values by key; the whole filter, too, where its class can write itself to a sequential coder.
void encodeFilter(const VXRFilter& filter, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    vxaxmlSetNSStringNsProp(node, VelloraNamespace, "name", filter.vxrNameFromFilter());
    VXAStringKeyDictionary values;
    for (const VXRFilterKey& key : filter.keys())
        values[key.name] = double(filter.valueForKey(key.name));
    VXAXMLNode* const properties = vxaxmlCreateChild(node, VelloraNamespace, kElementName_FilterProperties);
    vxaxmlEncodeStringKeyDictionary(values, properties, VelloraNamespace, archiver);
    if (!VXAClassCodingForType(typeid(filter)))
        return;
    VXACoder coder;
    coder.encodeObject(&filter);
    VXAXMLNode* const data = vxaxmlCreateChild(node, VelloraNamespace, kElementName_FilterData);
    setWord(data, "data", base64FromBytes(coder.data()).c_str());
}

std::shared_ptr<VXRFilter> filterFromData(const VXAXMLNode* node)
{
    const VXAXMLNode* const child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, kElementName_FilterData);
    std::string text;
    if (!child || !vxaxmlGetNSStringNsProp(child, VelloraNamespace, "data", text))
        return nullptr;
    try {
        const std::vector<std::byte> bytes = bytesFromBase64(text);
        return std::dynamic_pointer_cast<VXRFilter>(VXADecoder(bytes).decodeObject());
    } catch (const InvalidArgumentException&) {
        return nullptr;
    }
}

std::shared_ptr<VXRFilter> absentFilter(const std::string& name, const VXAStringKeyDictionary& values)
{
    constexpr float most = std::numeric_limits<float>::max();
    std::vector<VXRFilterKey> keys;
    for (const auto& [key, value] : values) {
        if (const auto* number = std::get_if<double>(&value); number && std::abs(*number) <= double(most))
            keys.push_back({ key, static_cast<float>(*number), -most, most });
    }
    return std::make_shared<AbsentFilter>(name, std::move(keys));
}

void setValues(VXRFilter& filter, const VXAStringKeyDictionary& values, const PropertyReader& properties)
{
    for (const VXRFilterKey& key : filter.keys()) {
        const auto found = values.find(key.name);
        const double* const number = found == values.end() ? nullptr : std::get_if<double>(&found->second);
        if (number && std::isfinite(static_cast<float>(*number)))
            filter.setValueForKey(static_cast<float>(*number), key.name);
        else
            properties.cannotGet(key.name.c_str());
    }
}

std::shared_ptr<VXRFilter> newFilter(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "a filter", node };
    std::string name;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, "name", name)) {
        properties.cannotGet("name");
        return nullptr;
    }
    const VXAStringKeyDictionary values = vxaxmlDecodeStringKeyDictionary(
        vxaxmlFirstChildNsNamed(node, VelloraNamespace, kElementName_FilterProperties), unarchiver);
    if (auto filter = filterFromData(node))
        return filter;
    auto filter = VXRFilterRegistry::createFilter(name);
    if (!filter) {
        warn(thisFile,
            fmt::format("WARNING, initializing a filter from {}, there is no filter '{}'; it is kept without "
                        "effect.",
                fmt::ptr(node), name));
        return absentFilter(name, values);
    }
    setValues(*filter, values, properties);
    return filter;
}

// Stacks.

void encodeStack(const VXREffectStack& stack, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    for (std::size_t i = 1; i < stack.layerCount(); ++i) {
        VXAXMLNode* const child = archiver.encodeObjectOfClassAsChildOfWithNameXmlNamespace(
            VXRXMLClass<VXRFilter>(), *stack.filterAtIndex(i), node, kElementName_CIFilter, VelloraNamespace);
        vxaxmlSetBoolNsPropDefault(
            child, VelloraNamespace, kAttributeName_Enabled, stack.isEnabledAtIndex(i), true);
    }
}

std::shared_ptr<VXREffectStack> newStack(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto stack = std::make_shared<VXREffectStack>();
    for (VXAXMLNode* child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, kElementName_CIFilter); child;
         child = vxaxmlNextSiblingNsNamed(child, VelloraNamespace, kElementName_CIFilter)) {
        const bool isEnabled = vxaxmlBoolNsPropDefault(child, VelloraNamespace, kAttributeName_Enabled, true);
        auto filter = VXRObjectFromNode<VXRFilter>(unarchiver, child);
        if (!filter)
            continue;
        stack->appendFilter(std::move(filter));
        stack->setEnabledAtIndex(isEnabled, stack->layerCount() - 1);
    }
    return stack;
}

} // namespace

/// Of every class of filters: they are told apart by their names.
template <> const VXAXMLClass& VXRXMLClass<VXRFilter>()
{
    return recordOf<VXRFilter, encodeFilter, newFilter>("CIFilter");
}

template <> const VXAXMLClass& VXRXMLClass<VXREffectStack>()
{
    return recordOf<VXREffectStack, encodeStack, newStack>("VXREffectStack");
}

} // namespace vxr
