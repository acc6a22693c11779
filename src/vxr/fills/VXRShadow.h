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
/// The all-zero shadow in black or without a colour is a single shared object, the null shadow: no shadow.
class VXR_EXPORT VXRShadow : public Object {
public:
    /// The null shadow itself if every number is exactly zero and `color` is null or the very object that
    /// `Color::blackColor()` returns. Otherwise a new shadow, black if no colour is given.
    static std::shared_ptr<VXRShadow> initWithAngleOffsetRadiusOpacityColor(
        float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color);
    static std::shared_ptr<VXRShadow> shadowWithAngleOffsetRadiusOpacityColor(
        float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color);
    static std::shared_ptr<VXRShadow> nullShadow();
    static std::shared_ptr<VXRShadow> initWithNSShadow(const NSShadow&);
    static std::shared_ptr<VXRShadow> initWithCoder(VXADecoder&);
    ~VXRShadow() override;

    bool isNullShadow() const; ///< equal to the null shadow

    float angle() const { return mAngle; } ///< in [0, 360], or NaN: tiny negative angles round up to 360
    void setAngle(float degrees);
    float offset() const { return mOffset; }
    void setOffset(float offset);
    /// Counts changes that move the bounds of any shadow: renderables that share a shadow cache their bounds.
    static std::uint32_t changeCount() { return sChangeCount; }
    Point displacement() const { return mDisplacement; } ///< the vector given by angle and offset
    int radius() const { return mRadius; }
    void setRadius(int radius);
    float opacity() const { return mOpacity; }
    void setOpacity(float opacity) { mOpacity = opacity; }
    const std::shared_ptr<Color>& color() const { return mColor; } ///< null only in the null shadow
    void setColor(std::shared_ptr<Color>);

    /// The bounds of an object covering `rect` together with its shadow. `angle` is added to the shadow's
    /// own.
    Rect shadowBoundsForRect(const Rect& rect) const { return shadowBoundsForRectAngle(rect, 0); }
    Rect shadowBoundsForRectAngle(const Rect& rect, float angle) const;

    /// Whether rendered shadow pixels become useless when `other` (or null) replaces this shadow. They can be
    /// kept if only the direction or the distance changes: the pixels are moved.
    bool differenceRequiresRebuilding(const VXRShadow* other) const;
    std::shared_ptr<VXRShadow> desaturatedShadow() const;

    std::optional<NSShadow> nsShadow() const; ///< empty for the null shadow
    CGShadowStyle cgShadowStyle() const;

    void encodeWithCoder(VXACoder&) const;

    bool isEqual(const Object& other) const override; ///< by value; no identity shortcut
    std::shared_ptr<VXRShadow> copyWithZone() const; ///< shares the colour; the null shadow returns itself
    std::string description() const override;

protected:
    VXRShadow() = default; ///< all zero, no colour

    /// The designated initialiser for subclasses.
    VXRShadow(float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color);

    // Subclasses override both for their own class, so that copies and equality respect it.
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
    Point mDisplacement; ///< cached: every redraw reads it for every renderable
    std::shared_ptr<Color> mColor;
};

/// Sets the shadow in the current context; `scale` converts canvas units to units of the context's base
/// space. The opacity multiplies the colour's alpha.
VXR_EXPORT void VXRSetupShadow(const VXRShadow& shadow, float scale);

} // namespace vxr
