#pragma once

#include <vxr/platform/graphics/color/ColorSpace.h>

#include <lcms2.h>

#include <memory>
#include <span>

namespace vxr {

/// Conversion of a profile's colours to sRGB, for bytes and for floats. Immutable.
class ProfileTransforms {
public:
    /// Null if lcms2 cannot use the profile as a source of `model` colours. Takes milliseconds; see
    /// `ProfileTransformCache`.
    static std::shared_ptr<const ProfileTransforms> make(
        std::span<const std::byte> profile, ColorModel model);

    /// Converts `count` pixels of 8-bit components to 8-bit r, g, b.
    void convertBytes(const std::uint8_t* source, std::uint8_t* rgb, std::size_t count) const;
    /// Converts one colour. Inks are in percent, as lcms2 expects.
    void convertFloats(const float* components, float* rgb) const;

private:
    struct Deleter {
        void operator()(void* transform) const { cmsDeleteTransform(transform); }
    };
    using Transform = std::unique_ptr<void, Deleter>;

    ProfileTransforms(Transform bytes, Transform floats, std::size_t components);
    static Transform makeTransform(cmsHPROFILE from, cmsUInt32Number fromFormat, cmsUInt32Number toFormat);

    Transform mBytes, mFloats;
    std::size_t mComponents;
};

} // namespace vxr
