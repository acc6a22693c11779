#pragma once

#include <vxr/host/archiving/VXAXMLUnarchiver.h>

namespace vxr {

/// The host calls this once, before it reads or writes a document. Element names of path manipulations and
/// of the strokes and strokers that use them are known only when `withStrokeManipulations` is set.
VXR_EXPORT void VXRInitArchivingClassToElementNameMappings(bool withStrokeManipulations);

/// How objects of a class are written and read. Defined for every class that the documents describe, the
/// value types `Color` and `Path` among them.
template <class Class> const VXAXMLClass& VXRXMLClass();

/// An object of the class from a node; none for a null node or where the reader makes none. Exact only for
/// records that read objects of their own class, as all of this library's do.
template <class Class>
std::shared_ptr<Class> VXRObjectFromNode(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    return std::dynamic_pointer_cast<Class>(
        unarchiver.createObjectOfClassFromNode(VXRXMLClass<Class>(), node));
}

class Color;
class Path;
class VXRAngleGradient;
class VXRGradient;
class VXRGradientStop;
class VXRLineEnd;
class VXRReflection;
class VXRShadow;
class VXRStroke;
class VXRStrokePattern;
class VXRTransformGradient;

template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<Color>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<Path>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRAngleGradient>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRGradient>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRGradientStop>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRLineEnd>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRReflection>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRShadow>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRStroke>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRStrokePattern>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRTransformGradient>();

} // namespace vxr
