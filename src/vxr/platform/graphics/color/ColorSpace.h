#pragma once

#include <vxr/platform/base/Object.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vxr {

/// Number of components, alpha not counted, is 1, 3 and 4.
enum class ColorModel : std::uint8_t { Gray, RGB, CMYK };

/// A colour space that images and colours are given in. Immutable; compared by identity or by content.
///
/// The device spaces are uncalibrated: grey and RGB are taken as the output's own values, CMYK is
/// converted by r = (1 - c)(1 - k). Generic spaces are described by a profile: grey and RGB by built-in
/// ones with the sRGB curve, CMYK by the system's default profile when there is one and by the device
/// conversion when there is not.
class VXR_EXPORT ColorSpace final : public Object {
public:
    static std::shared_ptr<const ColorSpace> deviceGray();
    static std::shared_ptr<const ColorSpace> deviceRGB();
    static std::shared_ptr<const ColorSpace> deviceCMYK();
    /// The platform's default profile for a model. A new object on each call, see
    /// `VXRGenericRGBColorSpace` for the shared ones.
    static std::shared_ptr<const ColorSpace> createWithDefaultProfile(ColorModel model);
    /// Where the default CMYK profile was found; empty when the system has none.
    static std::string defaultCMYKProfilePath();
    /// From the bytes of an ICC profile, which are copied. None when lcms2 refuses them or their model
    /// does not have `components` components.
    static std::shared_ptr<const ColorSpace> createWithICCProfile(
        std::span<const std::byte> profile, int components);

    ~ColorSpace() override;

    ColorModel model() const;
    int componentCount() const; ///< alpha not counted
    bool isDevice() const;
    std::span<const std::byte> profileData() const; ///< empty for device spaces
    /// Whether grey or RGB values are the output's own values, so that nothing needs converting.
    bool convertsToOutputUnchanged() const;

    /// Components in [0, 1] to sRGB in [0, 1], not clamped further than the space does.
    std::array<float, 3> toSRGB(const float* components) const;

    /// Converts `count` pixels of `componentCount()` bytes each to 8-bit r, g, b triplets. Spaces of equal
    /// profiles share their transforms.
    void convertToSRGB8(const std::uint8_t* source, std::uint8_t* rgb, std::size_t count) const;

    /// Same profile bytes, or the same device space.
    bool isEqual(const Object& other) const override;

    struct Impl;
    explicit ColorSpace(std::unique_ptr<Impl>); ///< for the factories

private:
    std::unique_ptr<Impl> mImpl;
};

/// A platform colour: components in a colour space, then alpha. A value.
struct ColorValue {
    std::shared_ptr<const ColorSpace> space; ///< none means device grey
    std::array<float, 5> components {}; ///< the space's components, then alpha right behind them

    VXR_EXPORT static ColorValue gray(float white, float alpha = 1);
    VXR_EXPORT static ColorValue rgb(float red, float green, float blue, float alpha = 1); ///< device RGB
    VXR_EXPORT float alpha() const;
    /// Red, green, blue and alpha as the output takes them, each within [0, 1].
    VXR_EXPORT std::array<float, 4> toRGBA() const;
};

} // namespace vxr
