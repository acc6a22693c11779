#include <vxr/persistence/TransformXML.h>

#include <vxr/persistence/NodeAccess.h>

namespace vxr {
namespace {

struct Component {
    const char* name;
    float AffineTransform::*value;
};

constexpr Component components[]
    = { { "m11", &AffineTransform::m11 }, { "m12", &AffineTransform::m12 }, { "m21", &AffineTransform::m21 },
          { "m22", &AffineTransform::m22 }, { "tx", &AffineTransform::tX }, { "ty", &AffineTransform::tY } };

} // namespace

void encodeTransformChild(const AffineTransform& transform, VXAXMLNode* parent, const char* name)
{
    VXAXMLNode* const child = vxaxmlCreateChild(parent, VelloraNamespace, name);
    for (const auto& [component, value] : components)
        setNumber(child, component, transform.*value);
}

AffineTransform transformFromChild(const VXAXMLNode* parent, const char* name, const char* kind)
{
    const VXAXMLNode* const child = vxaxmlFirstChildNsNamed(parent, VelloraNamespace, name);
    AffineTransform transform;
    for (const auto& [component, value] : components) {
        double number;
        if (!child || !vxaxmlGetDoubleNsProp(child, VelloraNamespace, component, number)) {
            warn("TransformXML.cpp",
                fmt::format(
                    "WARNING, initializing a {} from {}, cannot get {}.", kind, fmt::ptr(parent), name));
            return {};
        }
        transform.*value = static_cast<float>(number);
    }
    return transform;
}

} // namespace vxr
