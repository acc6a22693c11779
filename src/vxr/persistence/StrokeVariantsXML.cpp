#include <vxr/host/data/VXEDataManager.h>
#include <vxr/persistence/ElementNames.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/StrokeXML.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/protocols/VXRStrokeBundleSource.h>
#include <vxr/strokes/VXRManipulatedStroke.h>
#include <vxr/strokes/VXRSmartStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "StrokeVariantsXML.cpp";

// Manipulated strokes.

void encodeManipulated(
    const VXRManipulatedStroke& stroke, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    encodeStroke(stroke, archiver, node, version);
    if (!stroke.manipulations().empty()) {
        VXAXMLNode* const list = vxaxmlCreateChild(node, VelloraNamespace, "manipulations");
        for (const auto& manipulation : stroke.manipulations())
            archiver.encodeObjectAsChildOf(*manipulation, list);
    }
    if (stroke.stroker())
        archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
            *stroke.stroker(), node, "stroker", VelloraNamespace);
}

std::shared_ptr<VXRManipulatedStroke> newManipulated(
    VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto stroke = std::make_shared<VXRManipulatedStroke>(nullptr, 0.0f, 0, 0, nullptr);
    readStroke(*stroke, unarchiver, node);
    const PropertyReader properties { thisFile, "a manipulated stroke", node };
    VXRManipulatedStroke::Manipulations manipulations;
    const VXAXMLNode* const list = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "manipulations");
    for (VXAXMLNode* child = vxaxmlFirstChildElement(list); child; child = vxaxmlNextSiblingElement(child)) {
        auto manipulation
            = std::dynamic_pointer_cast<VXRPathManipulation>(unarchiver.createObjectFromNode(child));
        if (manipulation)
            manipulations.push_back(std::move(manipulation));
        else
            properties.cannotGet(std::string(vxaxmlNodeName(child)).c_str());
    }
    stroke->setManipulations(std::move(manipulations));
    if (VXAXMLNode* const child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "stroker")) {
        stroke->setStroker(std::dynamic_pointer_cast<VXRPathStroker>(unarchiver.createObjectFromNode(child)));
        if (!stroke->stroker())
            properties.cannotGet("stroker");
    }
    return stroke;
}

// Smart strokes.

/// A reader that doesn't know smart strokes takes it for the plain stroke that it is based on.
void encodeSmart(
    const VXRSmartStroke& stroke, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    vxaxmlSetNSStringNsProp(node, VXANamespace, VXAVXClassAttribute, kElementName_Stroke);
    encodeStroke(stroke, archiver, node, version);
    vxaxmlSetNSStringNsProp(node, VelloraNamespace, "name", stroke.name());
    vxaxmlSetUnsignedLongNsProp(node, VelloraNamespace, "random-seed", stroke.randomSeed());
}

std::shared_ptr<VXRSmartStroke> newSmart(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto stroke = std::make_shared<VXRSmartStroke>(nullptr, 0.0f, 0, 0, nullptr);
    const auto host = unarchiver.metadataForKey(VXEDataHostUnarchiverKey);
    std::string name;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, "name", name))
        PropertyReader { thisFile, "a smart stroke", node }.cannotGet("name");
    stroke->setNameFromSource(name, dynamic_cast<VXRStrokeBundleSource*>(host.get()));
    readStroke(*stroke, unarchiver, node);
    std::uint32_t seed = 0;
    if (!vxaxmlGetUnsignedLongNsProp(node, VelloraNamespace, "random-seed", seed))
        seed = VXRSmartStroke::newRandomSeed();
    stroke->setRandomSeed(seed);
    return stroke;
}

} // namespace

std::shared_ptr<Object> VXRStyleFromNode(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    std::string word;
    if (node && vxaxmlGetNSStringNsProp(node, VXANamespace, VXAVXClassAttribute, word)
        && word == kElementName_Stroke && vxaxmlGetNSStringNsProp(node, VelloraNamespace, "name", word))
        return VXRObjectFromNode<VXRSmartStroke>(unarchiver, node);
    return unarchiver.createObjectFromNode(node);
}

template <> const VXAXMLClass& VXRXMLClass<VXRManipulatedStroke>()
{
    return recordOf<VXRManipulatedStroke, encodeManipulated, newManipulated>("VXRManipulatedStroke");
}

template <> const VXAXMLClass& VXRXMLClass<VXRSmartStroke>()
{
    return recordOf<VXRSmartStroke, encodeSmart, newSmart>("VXRSmartStroke");
}

} // namespace vxr
