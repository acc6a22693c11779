#pragma once

#include <vxr/fills/PlatformShadow.h>
#include <vxr/platform/base/Object.h>

#include <memory>
#include <optional>

namespace vxr {

class VXACoder;
class VXADecoder;

/// Drop shadow of a renderable. A value: direction in degrees, distance and blur radius in canvas units,
/// opacity and colour. 0 degrees points to +x, 90 to +y of the flipped (y-down) view space.
///
/// The all-zero shadow in black or without a colour is one shared object, the null shadow: no shadow.
class VXR_EXPORT VXRShadow : public Object {
public:
    /// The null shadow itself when everything is exactly zero and `color` is none or the very object that
    /// `Color::blackColor()` answers; otherwise a new shadow, black without a colour.
    static std::shared_ptr<VXRShadow> initWithAngleOffsetRadiusOpacityColor(
        float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color);
    static std::shared_ptr<VXRShadow> shadowWithAngleOffsetRadiusOpacityColor(
        float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color);
    static std::shared_ptr<VXRShadow> nullShadow();
    static std::shared_ptr<VXRShadow> initWithNSShadow(const NSShadow&);
    static std::shared_ptr<VXRShadow> initWithCoder(VXADecoder&);
    ~VXRShadow() override;

    bool isNullShadow() const; ///< equal to the null shadow

    float angle() const { return mAngle; } ///< in [0, 360), or NaN; hardly below 0 gives 360
    void setAngle(float degrees);
    float offset() const { return mOffset; }
    void setOffset(float offset);
    /// Counts the changes that move the bounds of any shadow: several objects may share one, and keep bounds.
    static std::uint32_t changeCount() { return sChangeCount; }
    Point displacement() const { return mDisplacement; } ///< what angle and offset come to
    int radius() const { return mRadius; }
    void setRadius(int radius);
    float opacity() const { return mOpacity; }
    void setOpacity(float opacity) { mOpacity = opacity; }
    const std::shared_ptr<Color>& color() const { return mColor; } ///< none in the null shadow alone
    void setColor(std::shared_ptr<Color>);

    /// What an object covering `rect` and its shadow cover together. `angle` is added to the shadow's own.
    Rect shadowBoundsForRect(const Rect& rect) const { return shadowBoundsForRectAngle(rect, 0); }
    Rect shadowBoundsForRectAngle(const Rect& rect, float angle) const;

    /// Whether rendered shadow pixels are of no use once `other` (or none) takes this shadow's place. They
    /// are when only the direction or the distance changes: the pixels are moved.
    bool differenceRequiresRebuilding(const VXRShadow* other) const;
    std::shared_ptr<VXRShadow> desaturatedShadow() const;

    std::optional<NSShadow> nsShadow() const; ///< none for the null shadow
    CGShadowStyle cgShadowStyle() const;

    void encodeWithCoder(VXACoder&) const;

    bool isEqual(const Object& other) const override; ///< by value, without an identity shortcut
    std::shared_ptr<VXRShadow> copyWithZone() const; ///< shares the colour; the null shadow copies to itself
    std::string description() const override;

protected:
    VXRShadow() = default; ///< all zero, without a colour

    /// The designated initialiser for subclasses.
    VXRShadow(float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color);

    // A subclass answers for its own class in both, so that copies and equality keep to it.
    virtual std::shared_ptr<VXRShadow> makeOfSameClass(
        float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color) const;
    virtual bool isOfReceiversClass(const Object& other) const;

private:
    float mAngle = 0;
    float mOffset = 0;
    int mRadius = 0;
    float mOpacity = 0;
    void place(float degrees, float offset);

    static std::uint32_t sChangeCount;
    Point mDisplacement; ///< kept: every redraw asks every renderable for it
    std::shared_ptr<Color> mColor;
};

/// Installs the shadow in the current drawing context; `scale` turns canvas units into those of the
/// context's base space. The opacity multiplies the colour's alpha.
VXR_EXPORT void VXRSetupShadow(const VXRShadow& shadow, float scale);

} // namespace vxr
