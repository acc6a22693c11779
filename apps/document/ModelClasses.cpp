#include "ModelClasses.h"

#include "UnknownRenderable.h"

#include <apps/vxr/import/DrawnGroup.h>
#include <apps/vxr/import/DrawnShape.h>
#include <apps/vxr/import/FocalGradient.h>
#include <apps/vxr/import/OutlineStroke.h>

#include <vxr/host/utility/VXULog.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/platform/graphics/path/Path.h>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLArchiver;
using vxr::VXAXMLClass;
using vxr::VXAXMLNode;
using vxr::VXAXMLUnarchiver;
using ObjectPointer = std::shared_ptr<vxr::Object>;

VXAXMLNode* childNamed(const VXAXMLNode* node, const char* name)
{
    return vxr::vxaxmlFirstChildNsNamed(node, VelloraNamespace, name);
}

float numberOr(const VXAXMLNode* node, const char* name, float fallback)
{
    double value = fallback;
    vxr::vxaxmlGetDoubleNsProp(node, VelloraNamespace, name, value);
    return static_cast<float>(value);
}

// The program's own strokes and gradients.

void encodeOutlineStroke(const vxr::Object& object, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    const auto& stroke = static_cast<const OutlineStroke&>(object);
    vxr::vxaxmlSetDoubleNsProp(node, VelloraNamespace, "canvas-width", stroke.width());
    vxr::Path pen; // has a place for everything that a pen is
    pen.setLineStyle(stroke.pen());
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(pen, node, "pen", VelloraNamespace);
    if (const auto* painter = dynamic_cast<const vxr::Object*>(stroke.painter().get()))
        archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
            *painter, node, "painter", VelloraNamespace);
}

ObjectPointer readOutlineStroke(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const auto pen = vxr::VXRObjectFromNode<vxr::Path>(unarchiver, childNamed(node, "pen"));
    const auto painter = std::dynamic_pointer_cast<vxr::VXRShapePainter>(
        unarchiver.createObjectFromNode(childNamed(node, "painter")));
    if (!pen || !painter)
        return nullptr;
    return std::make_shared<OutlineStroke>(pen->lineStyle(), numberOr(node, "canvas-width", 1), painter);
}

void encodeFocalGradient(
    const vxr::Object& object, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    const auto& gradient = static_cast<const FocalGradient&>(object);
    const VXAXMLClass& base = vxr::VXRXMLClass<vxr::VXRTransformGradient>();
    base.encodeWithXMLArchiverNodeVersion(gradient, archiver, node, version);
    vxr::vxaxmlCreatePointChild(node, VelloraNamespace, "focus", gradient.focus());
    vxr::vxaxmlSetDoubleNsProp(node, VelloraNamespace, "focus-radius", gradient.focusRadius());
}

ObjectPointer readFocalGradient(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t version)
{
    const VXAXMLClass& record = vxr::VXRXMLClass<vxr::VXRTransformGradient>();
    const auto base = std::dynamic_pointer_cast<vxr::VXRTransformGradient>(
        record.initWithXMLUnarchiverNodeVersion(unarchiver, node, version));
    vxr::Point focus;
    if (!base || base->gradientStops().empty()
        || !vxr::vxaxmlPopulatePointFromChild(node, VelloraNamespace, "focus", focus))
        return base;
    auto gradient = std::make_shared<FocalGradient>(
        base->firstColor(), base->lastColor(), focus, numberOr(node, "focus-radius", 0));
    gradient->setGradientStops(base->gradientStops());
    gradient->setStartPoint(base->startPoint());
    gradient->setEndPoint(base->endPoint());
    gradient->setTransform(base->transform());
    gradient->setOpacity(base->opacity());
    return gradient;
}

// Renderables: shapes and groups of documents lie on whole pixels, as those of drawings do.

void encodeShape(const vxr::Object& object, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    vxr::VXREncodeShape(static_cast<const vxr::VXRShape&>(object), archiver, node);
}

ObjectPointer readShape(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto shape = std::make_shared<DrawnShape>();
    vxr::VXRReadShape(*shape, unarchiver, node);
    return shape;
}

void encodeGroup(const vxr::Object& object, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    vxr::VXREncodeGroup(static_cast<const vxr::VXRGroup&>(object), archiver, node);
}

ObjectPointer readGroup(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto group = std::make_shared<DrawnGroup>();
    vxr::VXRReadGroup(*group, unarchiver, node);
    return group;
}

void encodeUnknown(const vxr::Object& object, VXAXMLArchiver&, VXAXMLNode* node, std::uint32_t)
{
    static_cast<const UnknownRenderable&>(object).element().copyTo(node);
}

ObjectPointer readUnknown(VXAXMLUnarchiver&, VXAXMLNode* node, std::uint32_t)
{
    vxr::VXULog_Fn(vxr::VXULogLevelWarning, "ModelClasses.cpp",
        "'" + std::string(vxr::vxaxmlNodeName(node)) + "' is of no known kind; it is kept but not drawn");
    return std::make_shared<UnknownRenderable>(vxr::VXAXMLKeptElement(node));
}

const VXAXMLClass outlineStroke { "OutlineStroke", typeid(OutlineStroke), encodeOutlineStroke,
    readOutlineStroke };
const VXAXMLClass focalGradient { "FocalGradient", typeid(FocalGradient), encodeFocalGradient,
    readFocalGradient };
const VXAXMLClass drawnShape { "DrawnShape", typeid(DrawnShape), encodeShape, readShape };
const VXAXMLClass drawnGroup { "DrawnGroup", typeid(DrawnGroup), encodeGroup, readGroup };
const VXAXMLClass unknownRenderable { "UnknownRenderable", typeid(UnknownRenderable), encodeUnknown,
    readUnknown };

} // namespace

const VXAXMLClass& unknownRenderableClass() { return unknownRenderable; }

void registerModelClasses()
{
    static const bool registered = [] {
        vxr::VXRInitArchivingClassToElementNameMappings(true);
        vxr::VXRInitArchivingRenderables();
        vxr::vxaxmlRegisterClassNamePair(outlineStroke, "outline-stroke");
        vxr::vxaxmlRegisterClassNamePair(focalGradient, "focal-gradient");
        vxr::vxaxmlRegisterClassNamePair(drawnShape, "shape");
        vxr::vxaxmlRegisterClassNamePair(drawnGroup, "group");
        vxr::vxaxmlRegisterClassNamePair(unknownRenderable, "unknown");
        return true;
    }();
    static_cast<void>(registered);
}

} // namespace app
