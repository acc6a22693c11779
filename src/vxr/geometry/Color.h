#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/color/ColorSpace.h>
#include <vxr/protocols/VXRShapePainter.h>

#include <array>
#include <string>
#include <string_view>

namespace vxr {

// Names of colour spaces, as stored in colours.
inline constexpr std::string_view NSCalibratedWhiteColorSpace = "NSCalibratedWhiteColorSpace";
inline constexpr std::string_view NSCalibratedRGBColorSpace = "NSCalibratedRGBColorSpace";
inline constexpr std::string_view NSDeviceWhiteColorSpace = "NSDeviceWhiteColorSpace";
inline constexpr std::string_view NSDeviceRGBColorSpace = "NSDeviceRGBColorSpace";
inline constexpr std::string_view NSDeviceCMYKColorSpace = "NSDeviceCMYKColorSpace";
/// Colours that are known to the host by name and have no components of their own.
inline constexpr std::string_view NSNamedColorSpace = "NSNamedColorSpace";

/// An immutable colour with float components in a named colour space; itself a fill. Components are kept
/// as given, without clamping.
class VXR_EXPORT Color final : public Object,
                               public VXRShapePainter,
                               public std::enable_shared_from_this<Color> {
public:
    static std::shared_ptr<Color> colorWithCalibratedWhite(float white, float alpha = 1);
    static std::shared_ptr<Color> colorWithCalibratedRGB(float red, float green, float blue, float alpha = 1);
    static std::shared_ptr<Color> colorWithDeviceWhite(float white, float alpha = 1);
    static std::shared_ptr<Color> colorWithDeviceRGB(float red, float green, float blue, float alpha = 1);
    static std::shared_ptr<Color> colorWithDeviceCMYK(
        float cyan, float magenta, float yellow, float black, float alpha = 1);
    /// A colour that this library cannot convert: it draws black and equals only itself.
    static std::shared_ptr<Color> namedColor(float alpha = 1);
    static std::shared_ptr<Color> blackColor(); ///< a shared object, calibrated white 0
    static std::shared_ptr<Color> whiteColor(); ///< a shared object, calibrated white 1
    static std::shared_ptr<Color> clearColor(); ///< a shared object, calibrated white 0 with alpha 0
    static std::shared_ptr<Color> randomColor(); ///< calibrated RGB in steps of 1/1000 from `random()`

    std::string_view colorSpaceName() const { return mSpaceName; }
    /// This colour in another named space: itself if already in that space, null if it cannot be converted.
    /// Between grey and RGB, calibrated or device, values that need no mixing are copied.
    std::shared_ptr<Color> colorUsingColorSpaceName(std::string_view name) const;

    int componentCount() const; ///< not counting alpha
    float component(int index) const { return mComponents[static_cast<std::size_t>(index)]; }
    // Each is meaningful in colour spaces with that component, and 0 elsewhere.
    float whiteComponent() const;
    float redComponent() const;
    float greenComponent() const;
    float blueComponent() const;
    float cyanComponent() const;
    float magentaComponent() const;
    float yellowComponent() const;
    float blackComponent() const;
    float alphaComponent() const { return mAlpha; }

    std::shared_ptr<Color> colorWithAlphaComponent(float alpha) const;
    /// Mixes each component linearly in calibrated RGB, not premultiplied: this colour at 0, `other` at 1.
    /// The fraction is clamped. Null if either colour has no RGB form.
    std::shared_ptr<Color> blendedColorWithFractionOfColor(float fraction, const Color& other) const;
    /// Calibrated white of 0.3 r + 0.59 g + 0.11 b (in double), with the same alpha. Null without an RGB
    /// form.
    std::shared_ptr<Color> grayscaleColor() const;
    /// 1 minus each component in calibrated RGB, converted back to the colour's own space, with the same
    /// alpha. Null without an RGB form.
    std::shared_ptr<Color> invertedColor() const;

    void set() const; ///< as fill and stroke colour of the current context
    void drawSwatchInRect(const Rect&) const; ///< fills the rectangle in the current context

    // As a painter. `paintShape` fills white on black-and-white canvases, and skips transparent colours if
    // the destination is not a screen; `paintRect` always skips them and does not depend on a
    // canvas.
    void paintShape(VXRPaintedShape&) override;
    void paintRect(const Rect&) override;

    bool isEqual(const Object& other) const override; ///< same space, equal components and alpha
    /// Visual equality: components and alpha equal within 0.001, compared in the common space if both are in
    /// the same one, otherwise in calibrated RGB.
    bool isEquivalent(const Color& other) const;
    std::string description() const override; ///< space name, components, alpha

    struct Key { }; ///< makes the constructor private to the class
    Color(Key, std::string_view spaceName, std::array<float, 4> components, float alpha);

private:
    bool isRGB() const { return componentCount() == 3; }

    std::string_view mSpaceName; ///< one of the constants above
    std::array<float, 4> mComponents;
    float mAlpha;
};

} // namespace vxr
