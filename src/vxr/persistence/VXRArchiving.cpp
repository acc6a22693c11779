#include <vxr/persistence/VXRArchiving.h>

#include <vxr/persistence/ElementNames.h>

namespace vxr {
namespace {

template <class Class> void pair(const char* elementName)
{
    vxaxmlRegisterClassNamePair(VXRXMLClass<Class>(), elementName);
}

} // namespace

void VXRInitArchivingClassToElementNameMappings(bool withStrokeManipulations)
{
    // Parts of other objects: their readers know them, so that they need no element names.
    VXAXMLRegisterClass(VXRXMLClass<Color>());
    VXAXMLRegisterClass(VXRXMLClass<Path>());
    VXAXMLRegisterClass(VXRXMLClass<VXRReflection>());
    VXAXMLRegisterClass(VXRXMLClass<VXRSmartStroke>());
    VXAXMLRegisterClass(VXRXMLClass<VXRImageBinary>());

    pair<VXRLineEnd>(kElementName_LineEnd);
    pair<VXRGradientStop>(kElementName_GradientStop);
    pair<VXRGradient>(kElementName_Gradient);
    pair<VXRAngleGradient>(kElementName_AngleGradient);
    pair<VXRTransformGradient>(kElementName_TransformGradient);
    pair<VXRStrokePattern>(kElementName_StrokePattern);
    pair<VXRStroke>(kElementName_Stroke);
    pair<VXRShadow>(kElementName_Shadow);
    pair<VXRFilteredImage>(kElementName_FilteredImage);
    pair<VXREffectStack>(kElementName_Effects);
    pair<VXRFilter>(kElementName_CIFilter);
    if (!withStrokeManipulations)
        return;
    pair<VXRManipulatedStroke>(kElementName_ManipulatedStroke);
    pair<VXROffsetOddWidthPathManipulation>(kElementName_OffsetOddWidth);
    pair<VXROutsetPathManipulation>(kElementName_OutsetPath);
    pair<VXROverstrokePathManipulation>(kElementName_OvershootJoins);
    pair<VXRRoundedPathManipulation>(kElementName_RoundedPath);
    pair<VXRVaryWidthPathManipulation>(kElementName_VaryWidth);
    pair<VXRWobblyPathManipulation>(kElementName_WobblyPath);
    pair<VXROutsetPathStroker>(kElementName_OutsetStroker);
    pair<VXRPatternedPathStroker>(kElementName_PatternedStroker);
}

void VXRInitArchivingRenderables()
{
    pair<Color>(kElementName_Color);
    pair<Path>(kElementName_Path);
    pair<VXRReflection>(kElementName_Reflection);
    pair<VXRImageBinary>(kElementName_ImageBinary);
    pair<VXRImageFill>(kElementName_ImageFill);
    pair<VXRShape>(kElementName_Shape);
    pair<VXRStar>(kElementName_Star);
    pair<VXRRegularPolygon>(kElementName_RegularPolygon);
    pair<VXRLine>(kElementName_Line);
    pair<VXRImageRenderable>(kElementName_Image);
    pair<VXRGroup>(kElementName_Group);
    pair<VXRReflectionRenderable>(kElementName_ReflectionRenderable);
}

} // namespace vxr
