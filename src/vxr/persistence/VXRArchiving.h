#pragma once

#include <vxr/host/archiving/VXAXMLUnarchiver.h>

namespace vxr {

/// The host calls this once, before it reads or writes a document. Element names of path manipulations and
/// of the strokes and strokers that use them are known only when `withStrokeManipulations` is set.
VXR_EXPORT void VXRInitArchivingClassToElementNameMappings(bool withStrokeManipulations);

/// The same for what documents place on pages and what styles of pages are made of: renderables, colours,
/// paths, reflections, image binaries and image fills.
VXR_EXPORT void VXRInitArchivingRenderables();

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
class VXREffectStack;
class VXRFilter;
class VXRFilteredImage;
class VXRGradient;
class VXRGradientStop;
class VXRGroup;
class VXRImageBinary;
class VXRImageFill;
class VXRImageRenderable;
class VXRLine;
class VXRLineEnd;
class VXRManipulatedStroke;
class VXROffsetOddWidthPathManipulation;
class VXROutsetPathManipulation;
class VXROutsetPathStroker;
class VXROverstrokePathManipulation;
class VXRPatternedPathStroker;
class VXRReflection;
class VXRReflectionRenderable;
class VXRRegularPolygon;
class VXRRoundedPathManipulation;
class VXRShadow;
class VXRShape;
class VXRSmartStroke;
class VXRStar;
class VXRStroke;
class VXRStrokePattern;
class VXRTransformGradient;
class VXRVaryWidthPathManipulation;
class VXRWobblyPathManipulation;

template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<Color>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<Path>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRAngleGradient>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXREffectStack>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRFilter>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRFilteredImage>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRGradient>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRGradientStop>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRGroup>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRImageBinary>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRImageFill>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRImageRenderable>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRLine>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRLineEnd>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRManipulatedStroke>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXROffsetOddWidthPathManipulation>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXROutsetPathManipulation>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXROutsetPathStroker>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXROverstrokePathManipulation>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRPatternedPathStroker>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRReflection>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRReflectionRenderable>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRRegularPolygon>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRRoundedPathManipulation>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRShadow>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRShape>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRSmartStroke>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRStar>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRStroke>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRStrokePattern>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRTransformGradient>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRVaryWidthPathManipulation>();
template <> VXR_EXPORT const VXAXMLClass& VXRXMLClass<VXRWobblyPathManipulation>();

} // namespace vxr
