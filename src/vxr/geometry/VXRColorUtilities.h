#pragma once

#include <vxr/platform/graphics/color/ColorSpace.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace vxr {

class Color;

// The shared profile-based colour spaces, or the device spaces of the same models while the substitution
// switch is on.
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRGenericGrayColorSpace();
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRGenericRGBColorSpace();
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRGenericCMYKColorSpace();

/// Sets the process-wide switch and returns its former value. Restore that value after a temporary
/// change.
VXR_EXPORT bool VXRSubstituteDeviceForGeneric(bool on);

/// The properties of a bitmap image representation that determine its colour space.
struct VXRImageRep {
    int samplesPerPixel = 0; ///< including alpha
    bool hasAlpha = false;
    std::shared_ptr<const std::vector<std::byte>> colorSyncProfileData; ///< an ICC profile, or null
};

/// From the embedded profile, otherwise by the number of components. Null if the profile does not fit or no
/// generic space has that number of components.
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRColorSpaceForRep(const VXRImageRep& rep);

/// Releases a data provider's profile bytes: `info` is a heap-allocated shared pointer to them.
VXR_EXPORT void CustomCGColorSpaceReleaseData(void* info, const void* data, std::size_t size);

/// Device CMYK stays as it is; everything else becomes generic RGB, or opaque black if it has no RGB form.
VXR_EXPORT ColorValue VXRCGColorWithNSColor(const Color& color);

/// Sets `color` as the fill and stroke colour of the current drawing port.
VXR_EXPORT void VXRSetColor(const Color& color);

} // namespace vxr
