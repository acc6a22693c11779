#include <vxr/persistence/VXRArchiving.h>

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRReflection.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/persistence/ElementNames.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

namespace vxr {
namespace {

/// A class that documents name but that has no reader or writer here.
template <int> const VXAXMLClass& knownByName(const char* name)
{
    static const VXAXMLClass record { name, typeid(void), nullptr, nullptr };
    return record;
}

} // namespace

void VXRInitArchivingClassToElementNameMappings(bool withStrokeManipulations)
{
    // Parts of other objects: their readers know them, so that they need no element names.
    VXAXMLRegisterClass(VXRXMLClass<Color>());
    VXAXMLRegisterClass(VXRXMLClass<Path>());
    VXAXMLRegisterClass(VXRXMLClass<VXRReflection>());

    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRLineEnd>(), kElementName_LineEnd);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRGradientStop>(), kElementName_GradientStop);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRGradient>(), kElementName_Gradient);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRAngleGradient>(), kElementName_AngleGradient);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRTransformGradient>(), kElementName_TransformGradient);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRStrokePattern>(), kElementName_StrokePattern);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRStroke>(), kElementName_Stroke);
    vxaxmlRegisterClassNamePair(VXRXMLClass<VXRShadow>(), kElementName_Shadow);
    vxaxmlRegisterClassNamePair(knownByName<9>("VXRFilteredImage"), kElementName_FilteredImage);
    vxaxmlRegisterClassNamePair(knownByName<10>("VXREffectStack"), kElementName_Effects);
    vxaxmlRegisterClassNamePair(knownByName<11>("CIFilter"), kElementName_CIFilter);
    if (!withStrokeManipulations)
        return;
    vxaxmlRegisterClassNamePair(knownByName<12>("VXRManipulatedStroke"), kElementName_ManipulatedStroke);
    vxaxmlRegisterClassNamePair(
        knownByName<13>("VXROffsetOddWidthPathManipulation"), kElementName_OffsetOddWidth);
    vxaxmlRegisterClassNamePair(knownByName<14>("VXROutsetPathManipulation"), kElementName_OutsetPath);
    vxaxmlRegisterClassNamePair(
        knownByName<15>("VXROverstrokePathManipulation"), kElementName_OvershootJoins);
    vxaxmlRegisterClassNamePair(knownByName<16>("VXRRoundedPathManipulation"), kElementName_RoundedPath);
    vxaxmlRegisterClassNamePair(knownByName<17>("VXRVaryWidthPathManipulation"), kElementName_VaryWidth);
    vxaxmlRegisterClassNamePair(knownByName<18>("VXRWobblyPathManipulation"), kElementName_WobblyPath);
    vxaxmlRegisterClassNamePair(knownByName<19>("VXROutsetPathStroker"), kElementName_OutsetStroker);
    vxaxmlRegisterClassNamePair(knownByName<20>("VXRPatternedPathStroker"), kElementName_PatternedStroker);
}

} // namespace vxr
