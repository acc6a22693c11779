#pragma once

#include <vxr/platform/base/Object.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vxr {

/// The number of components is 1, 3 or 4, not counting alpha.
enum class ColorModel : std::uint8_t { Gray, RGB, CMYK };

/// The colour space of an image or a colour. Immutable; compared by identity or by content.
///
/// The device spaces are uncalibrated: grey and RGB are taken as output values, CMYK is converted by
/// r = (1 - c)(1 - k). The generic spaces are defined by profiles: grey and RGB by built-in profiles with
/// the sRGB curve, CMYK by the system's default profile or, if it has none, by the device
/// conversion.
class VXR_EXPORT ColorSpace final : public Object {
public:
    static std::shared_ptr<const ColorSpace> deviceGray();
    static std::shared_ptr<const ColorSpace> deviceRGB();
    static std::shared_ptr<const ColorSpace> deviceCMYK();
    /// The platform's default profile for a model. Creates a new object on each call; see
    /// `VXRGenericRGBColorSpace` for the shared ones.
    static std::shared_ptr<const ColorSpace> createWithDefaultProfile(ColorModel model);
    /// Path of the default CMYK profile; empty if the system has none.
    static std::string defaultCMYKProfilePath();
    /// From the bytes of an ICC profile, which are copied. Null if lcms2 rejects them or the profile does not
    /// have `components` components.
    static std::shared_ptr<const ColorSpace> createWithICCProfile(
        std::span<const std::byte> profile, int components);

    ~ColorSpace() override;

    ColorModel model() const;
    int componentCount() const; ///< not counting alpha
    bool isDevice() const;
    std::span<const std::byte> profileData() const; ///< empty for device spaces
    /// Whether grey or RGB values are output values, so that no conversion is needed.
    bool convertsToOutputUnchanged() const;

    /// Converts components in [0, 1] to sRGB in [0, 1].
    std::array<float, 3> toSRGB(const float* components) const;

    /// Converts `count` pixels of `componentCount()` bytes each to 8-bit r, g, b triplets. Spaces with equal
    /// profiles share their transforms.
    void convertToSRGB8(const std::uint8_t* source, std::uint8_t* rgb, std::size_t count) const;

    /// Whether the profile bytes are the same, or both are the same device space.
    bool isEqual(const Object& other) const override;

    struct Impl;
    explicit ColorSpace(std::unique_ptr<Impl>); ///< for the factories

private:
    std::unique_ptr<Impl> mImpl;
};

/// A platform colour: components in a colour space, then alpha. A value.
struct ColorValue {
    std::shared_ptr<const ColorSpace> space; ///< null means device grey
    std::array<float, 5> components {}; ///< the space's components, followed by alpha

    VXR_EXPORT static ColorValue gray(float white, float alpha = 1);
    VXR_EXPORT static ColorValue rgb(float red, float green, float blue, float alpha = 1); ///< device RGB
    VXR_EXPORT float alpha() const;
    /// Red, green, blue and alpha in output values, each in [0, 1].
    VXR_EXPORT std::array<float, 4> toRGBA() const;
};

} // namespace vxr
