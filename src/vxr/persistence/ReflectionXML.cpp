#include <vxr/fills/VXRReflection.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>

namespace vxr {
namespace {

void encode(const VXRReflection& reflection, VXAXMLArchiver&, VXAXMLNode* node, std::uint32_t)
{
    setNumber(node, "opacity", reflection.opacity());
}

std::shared_ptr<VXRReflection> read(VXAXMLUnarchiver&, VXAXMLNode* node, std::uint32_t)
{
    return std::make_shared<VXRReflection>(floatAttribute(node, "opacity", 0, "ReflectionXML.cpp", [&] {
        return fmt::format(
            "WARNING, initializing a reflection prop from {}, cannot get opacity.", fmt::ptr(node));
    }));
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRReflection>()
{
    return recordOf<VXRReflection, encode, read>("VXRReflection");
}

} // namespace vxr
