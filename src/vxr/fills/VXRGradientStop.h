#pragma once

#include <vxr/geometry/Color.h>

#include <cstdint>

namespace vxr {

/// A colour at a position along a gradient. Copies of a gradient share their stops.
class VXR_EXPORT VXRGradientStop : public Object {
public:
    VXRGradientStop(std::shared_ptr<Color> color, float fraction);
    ~VXRGradientStop() override;

    static std::shared_ptr<VXRGradientStop> gradientStopWithColorFraction(
        std::shared_ptr<Color> color, float fraction);

    const std::shared_ptr<Color>& color() const { return mColor; }
    float fraction() const { return mFraction; } ///< in [0, 1]

    std::shared_ptr<VXRGradientStop> cloneWithFraction(float fraction) const;
    std::shared_ptr<VXRGradientStop> cloneWithColor(std::shared_ptr<Color> color) const;
    std::shared_ptr<VXRGradientStop> copyWithZone() const; ///< with the same colour object

    /// For readers that repair damaged gradients: moves the stop regardless of its neighbours. Clamped to
    /// [0, 1] like every fraction.
    void p_setFractionForUnarchivingFixup(float fraction) { _setFraction(fraction); }

    bool isEqual(const Object& other) const override; ///< equal fractions and colours

private:
    friend class VXRGradient;

    void _setColor(std::shared_ptr<Color> color);
    void _setFraction(float fraction); ///< clamped to [0, 1]

    /// Counts the moves of all stops in the process: gradients that share a stop do not know each other.
    static std::uint64_t moves() { return sMoves; }
    static std::uint64_t sMoves;

    std::shared_ptr<Color> mColor;
    float mFraction = 0;
};

} // namespace vxr
