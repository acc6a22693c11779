#include "NodeHelpers.h"
#include "RenderableXML.h"

#include <apps/vxr/import/FocalGradient.h>
#include <apps/vxr/import/OutlineStroke.h>

#include <vxr/platform/graphics/path/Path.h>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLArchiver;
using vxr::VXAXMLNode;
using vxr::VXAXMLUnarchiver;

// The program's own strokes and gradients.

void encodeOutlineStroke(const vxr::Object& object, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    const auto& stroke = static_cast<const OutlineStroke&>(object);
    setNumber(node, "canvas-width", stroke.width());
    vxr::Path pen; // has a place for everything that a pen is
    pen.setLineStyle(stroke.pen());
    encodeChild(&pen, "pen", node, archiver);
    encodeAnyChild(dynamic_cast<const vxr::Object*>(stroke.painter().get()), "painter", node, archiver);
}

std::shared_ptr<vxr::Object> readOutlineStroke(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
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
    const vxr::VXAXMLClass& base = vxr::VXRXMLClass<vxr::VXRTransformGradient>();
    base.encodeWithXMLArchiverNodeVersion(gradient, archiver, node, version);
    vxr::vxaxmlCreatePointChild(node, VelloraNamespace, "focus", gradient.focus());
    setNumber(node, "focus-radius", gradient.focusRadius());
}

std::shared_ptr<vxr::Object> readFocalGradient(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const auto base = vxr::VXRObjectFromNode<vxr::VXRTransformGradient>(unarchiver, node);
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

} // namespace

void registerModelClasses()
{
    static const bool registered = [] {
        vxr::VXRInitArchivingClassToElementNameMappings(true);
        vxr::vxaxmlRegisterClassNamePair(vxr::VXRXMLClass<vxr::Color>(), "color");
        static const vxr::VXAXMLClass stroke { "OutlineStroke", typeid(OutlineStroke), encodeOutlineStroke,
            readOutlineStroke };
        static const vxr::VXAXMLClass gradient { "FocalGradient", typeid(FocalGradient), encodeFocalGradient,
            readFocalGradient };
        vxr::vxaxmlRegisterClassNamePair(stroke, "outline-stroke");
        vxr::vxaxmlRegisterClassNamePair(gradient, "focal-gradient");
        return true;
    }();
    static_cast<void>(registered);
}

} // namespace app
