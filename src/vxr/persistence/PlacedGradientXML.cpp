#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/persistence/GradientXML.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/TransformXML.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "PlacedGradientXML.cpp";

void encodeAngle(
    const VXRAngleGradient& gradient, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    encodeGradient(gradient, archiver, node, version);
    setNumber(node, "angle", gradient.gradientAngle());
}

std::shared_ptr<VXRAngleGradient> newAngle(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto gradient = std::make_shared<VXRAngleGradient>();
    readGradient(*gradient, unarchiver, node);
    gradient->setGradientAngle(floatAttribute(node, "angle", 0, thisFile, [] {
        return "WARNING, -[VXRAngleGradient initWithXMLUnarchiver:node:version:] couldn't get angle; using "
               "0.0 as default.";
    }));
    return gradient;
}

void encodeTransform(
    const VXRTransformGradient& gradient, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    encodeGradient(gradient, archiver, node, version);
    vxaxmlCreatePointChild(node, VelloraNamespace, "start", gradient.startPoint());
    vxaxmlCreatePointChild(node, VelloraNamespace, "end", gradient.endPoint());
    encodeTransformChild(gradient.transform(), node, "transform");
}

std::shared_ptr<VXRTransformGradient> newTransform(
    VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto gradient = std::make_shared<VXRTransformGradient>();
    readGradient(*gradient, unarchiver, node);
    const auto point = [&](const char* name) {
        Point value {};
        if (!vxaxmlPopulatePointFromChild(node, VelloraNamespace, name, value))
            warn(thisFile,
                fmt::format("WARNING, initializing a transform gradient from {}, cannot get {}.",
                    fmt::ptr(node), name));
        return value;
    };
    gradient->setStartPoint(point("start"));
    gradient->setEndPoint(point("end"));
    gradient->setTransform(transformFromChild(node, "transform", "transform gradient"));
    return gradient;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRAngleGradient>()
{
    return recordOf<VXRAngleGradient, encodeAngle, newAngle>("VXRAngleGradient");
}

template <> const VXAXMLClass& VXRXMLClass<VXRTransformGradient>()
{
    return recordOf<VXRTransformGradient, encodeTransform, newTransform>("VXRTransformGradient");
}

} // namespace vxr
