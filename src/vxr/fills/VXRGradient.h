#pragma once

#include <vxr/fills/VXRGradientStop.h>

#include <cstdint>
#include <vector>

namespace vxr {

class Context;
class Shading;

/// The numbers are part of the contract.
enum VXRGradientType : std::int32_t { VXRLinearGradient = 0, VXRRadialGradient = 1 };

/// Colours along a unit parameter: an ordered list of stops, a type and an opacity. Fills derive from it
/// and paint; this class keeps the stops in order, answers the colour at any fraction, and builds the
/// shading that they are drawn from.
class VXR_EXPORT VXRGradient : public Object, public VXRShapePainter {
public:
    using Stops = std::vector<std::shared_ptr<VXRGradientStop>>;

    VXRGradient(); ///< without stops, linear, opaque: for copying and reading
    VXRGradient(std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type);
    ~VXRGradient() override;
    VXRGradient(const VXRGradient&) = delete;
    VXRGradient& operator=(const VXRGradient&) = delete;

    static std::shared_ptr<VXRGradient> linearGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);
    static std::shared_ptr<VXRGradient> radialGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);

    // Stops, in ascending order of fraction. None is missing (`InvalidArgumentException`); their colours
    // may be, and then nothing is painted between them.
    const Stops& gradientStops() const { return mStops; }
    /// Keeps a list of its own with the same stop objects. The gradient's own list changes nothing.
    void setGradientStops(const Stops& stops);
    std::shared_ptr<VXRGradientStop> stopAtIndex(std::size_t index) const;
    /// Behind the stops of the same fraction. The cached shading is dropped only when the stop comes
    /// last in a list that has others: who inserts in the middle drops it himself.
    void insertGradientStop(std::shared_ptr<VXRGradientStop> stop);
    void insertStopAtFraction(float fraction); ///< a stop of the colour that is there now
    /// Every stop equal to `stop`. Throws `GenericException` when fewer than three are left.
    void removeStop(const VXRGradientStop& stop);
    /// Throws like `removeStop`. Unlike that, keeps the cached shading.
    std::shared_ptr<VXRGradientStop> removeStopAtIndex(std::size_t index);
    void reverseStopOrder(); ///< changes the stops themselves, those of copies included
    void evenlyDistributeStops(); ///< changes the stops themselves, those of copies included

    // Colours.
    std::shared_ptr<VXRGradientStop> stopBeforeFraction(float fraction) const; ///< at or before it
    std::shared_ptr<VXRGradientStop> stopAfterFraction(float fraction) const; ///< strictly after, or the last
    std::shared_ptr<Color> colorAtFraction(float fraction) const;
    std::shared_ptr<Color> firstColor() const;
    std::shared_ptr<Color> lastColor() const;

    int gradientType() const { return mType; }
    void setGradientType(int type);
    float opacity() const { return mOpacity; }
    void setOpacity(float opacity) { mOpacity = opacity; } ///< applied when drawing

    // Drawing.
    /// From (0, 0) to (100, 0), or the disc of radius 100 around the origin for any type but linear, and
    /// extended beyond both ends. One object until the gradient drops it. Changes that keep it (see the
    /// stops) are taken up by the same object.
    std::shared_ptr<const Shading> shadingRef() const;
    void releaseShadingRef();
    void drawSwatchInRect(const Rect& rect) const; ///< a preview, in the current context

    // As a painter: left to the fills, throws `GenericException`.
    void paintShape(VXRPaintedShape& shape) override;
    void paintRect(const Rect& rect) override;

    /// Whether fills draw from their shading where they could draw from a ramp of two colours: no.
    static bool useQuartzShadings() { return false; }

    bool isEqual(const Object& other) const override; ///< same type, opacity and equal stops
    /// A gradient of the same class with a list of its own that shares this one's stops.
    virtual std::shared_ptr<VXRGradient> copyWithZone() const;

protected:
    /// `useQuartzShadings` as this object sees it.
    virtual bool usesQuartzShadings() const { return useQuartzShadings(); }
    void _setAlpha(Context& context) const; ///< the opacity becomes the context's alpha
    /// What copying takes over: opacity, type and stops.
    void copyGradientTo(VXRGradient& copy) const;
    /// Draws the shading with its 100 units laid along `length` from `start`, turned by `angle`.
    void drawShading(Context& context, Point start, float angle, float length) const;

private:
    /// What the cached shading was sampled from.
    struct SampledStop {
        std::shared_ptr<Color> color;
        float fraction;
        friend bool operator==(const SampledStop&, const SampledStop&) = default;
    };

    std::vector<SampledStop> stopsToSample() const;

    bool stopsAscend() const;
    /// The first stop behind a fraction, which is a number.
    Stops::const_iterator firstBehind(float fraction) const;

    Stops mStops;
    mutable std::uint64_t mOrderKnownAt = UINT64_MAX; ///< moves of stops when the order was looked at
    mutable bool mAscends = false;
    std::int32_t mType = VXRLinearGradient;
    float mOpacity = 1;
    mutable std::shared_ptr<Shading> mShadingRef;
    mutable std::vector<SampledStop> mSampledStops;
};

/// The function behind a gradient's shading: `gradient` is a `const VXRGradient`, the input a fraction,
/// the output red, green, blue and alpha in calibrated RGB, not premultiplied.
VXR_EXPORT void _evaluateGradient(void* gradient, const float* input, float* output);

} // namespace vxr
