#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <memory>

namespace vxr {

class BitmapImageRep;
class ColorSpace;
class Data;
class Image;

/// By the embedded profile of the file that was decoded, else by the number of its components.
VXR_EXPORT std::shared_ptr<const ColorSpace> VXRColorSpaceForRep(const BitmapImageRep&);

/// An image over the representation's own samples. Without the profile they are taken as values of the
/// colour space that the representation names. None, and a logged message, when it has no samples.
VXR_EXPORT std::shared_ptr<const Image> VXRImageRefFromBitmapImageRep(
    const BitmapImageRep&, bool useEmbeddedProfile);

/// An image that documents take as the JPEG file itself; `rep` was decoded from it. None for a file that they
/// can't take.
VXR_EXPORT std::shared_ptr<const Image> VXRImageRefFromJPEGData(
    const std::shared_ptr<const Data>& jpeg, const BitmapImageRep& rep);

// The source drawn at the wanted size with the best interpolation. None for a size without an area.
VXR_EXPORT std::shared_ptr<const BitmapImageRep> VXRImageRepFromImageRef(const Image&, Size);
VXR_EXPORT std::shared_ptr<const BitmapImageRep> VXRResampleBitmapImageRep(const BitmapImageRep&, Size);

} // namespace vxr
