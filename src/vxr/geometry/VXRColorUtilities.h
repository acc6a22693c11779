#pragma once

#include <vxr/platform/graphics/color/ColorSpace.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace vxr {

class Color;

// The shared profile-based colour spaces, or the device spaces of the same model while the substitution
// switch is on.
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRGenericGrayColorSpace();
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRGenericRGBColorSpace();
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRGenericCMYKColorSpace();

/// Sets the switch for the whole process and returns what it was; who changes it for a while puts that
/// back afterwards.
VXR_EXPORT bool VXRSubstituteDeviceForGeneric(bool on);

/// What the choice of a colour space needs to know of a bitmap image representation.
struct VXRImageRep {
    int samplesPerPixel = 0; ///< alpha included
    bool hasAlpha = false;
    std::shared_ptr<const std::vector<std::byte>> colorSyncProfileData; ///< an ICC profile, or none
};

/// From the embedded profile, else by the number of components. None for a profile that does not fit and
/// for a number that no generic space has.
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRColorSpaceForRep(const VXRImageRep& rep);

/// Ends a data provider's hold on profile bytes: `info` is a heap-allocated shared pointer to them.
VXR_EXPORT void CustomCGColorSpaceReleaseData(void* info, const void* data, std::size_t size);

/// Device CMYK stays what it is; everything else becomes generic RGB, opaque black where it can't.
VXR_EXPORT ColorValue VXRCGColorWithNSColor(const Color& color);

/// Makes `color` the fill and stroke colour of the current drawing port.
VXR_EXPORT void VXRSetColor(const Color& color);

} // namespace vxr
