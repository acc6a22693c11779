#pragma once

#include <vxr/geometry/Color.h>

#include <cstdint>

namespace vxr {

/// A colour of four 16-bit channels, used to build ramps.
class VXR_EXPORT VXRColorRGB64 final : public Object {
public:
    /// Calibrated RGB components times 65535, truncated. Components are clamped to [0, 1].
    explicit VXRColorRGB64(Color& color);
    VXRColorRGB64(std::uint16_t red, std::uint16_t green, std::uint16_t blue, std::uint16_t alpha);
    ~VXRColorRGB64() override;

    static std::shared_ptr<VXRColorRGB64> colorWithNSColor(Color& color);

    void getRedGreenBlueAlpha(
        std::uint16_t* red, std::uint16_t* green, std::uint16_t* blue, std::uint16_t* alpha) const;
    /// Interpolates from this colour (0) to `other` (1); channels are mixed in single precision and
    /// truncated.
    std::shared_ptr<VXRColorRGB64> blendedColorWithFractionOfColor(
        float fraction, const VXRColorRGB64& other) const;
    VXRColorRGB64 blended(
        float fraction, const VXRColorRGB64& other) const; ///< the same, returned as a value

private:
    std::uint16_t _red = 0, _green = 0, _blue = 0, _alpha = 0;
};

} // namespace vxr
