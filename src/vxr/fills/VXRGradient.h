#pragma once

#include <vxr/fills/VXRGradientStop.h>

#include <cstdint>
#include <vector>

namespace vxr {

class Context;
class Shading;

/// The numbers are part of the contract.
enum VXRGradientType : std::int32_t { VXRLinearGradient = 0, VXRRadialGradient = 1 };

/// Colours along a parameter from 0 to 1: an ordered list of stops, a type and an opacity. Fills derive
/// from it and paint. This class keeps the stops in order, computes the colour at any fraction, and builds
/// the shading used for drawing.
class VXR_EXPORT VXRGradient : public Object, public VXRShapePainter {
public:
    using Stops = std::vector<std::shared_ptr<VXRGradientStop>>;

    VXRGradient(); ///< no stops, linear, opaque: for copying and reading
    VXRGradient(std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type);
    ~VXRGradient() override;
    VXRGradient(const VXRGradient&) = delete;
    VXRGradient& operator=(const VXRGradient&) = delete;

    static std::shared_ptr<VXRGradient> linearGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);
    static std::shared_ptr<VXRGradient> radialGradientWithStartColorEndColor(
        std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor);

    // Stops, in ascending order of fraction. A null stop throws `InvalidArgumentException`; a stop may have
    // no colour, and then nothing is painted next to it.
    const Stops& gradientStops() const { return mStops; }
    /// Keeps its own list of the same stop objects: later changes to the caller's list have no effect.
    void setGradientStops(const Stops& stops);
    std::shared_ptr<VXRGradientStop> stopAtIndex(std::size_t index) const;
    /// Inserts after stops of the same fraction. The cached shading is dropped only if the stop is appended
    /// to a list that is not empty; after inserting in the middle, call `releaseShadingRef()`.
    void insertGradientStop(std::shared_ptr<VXRGradientStop> stop);
    void insertStopAtFraction(float fraction); ///< adds a stop with the present colour at that fraction
    /// Removes every stop equal to `stop`. Throws `GenericException` if fewer than three are left.
    void removeStop(const VXRGradientStop& stop);
    /// Throws like `removeStop`, but keeps the cached shading.
    std::shared_ptr<VXRGradientStop> removeStopAtIndex(std::size_t index);
    void reverseStopOrder(); ///< changes the stop objects, which copies share
    void evenlyDistributeStops(); ///< changes the stop objects, which copies share

    // Colours.
    std::shared_ptr<VXRGradientStop> stopBeforeFraction(float fraction) const; ///< at or before it
    std::shared_ptr<VXRGradientStop> stopAfterFraction(
        float fraction) const; ///< strictly after it, or the last stop
    std::shared_ptr<Color> colorAtFraction(float fraction) const;
    std::shared_ptr<Color> firstColor() const;
    std::shared_ptr<Color> lastColor() const;

    int gradientType() const { return mType; }
    void setGradientType(int type);
    float opacity() const { return mOpacity; }
    void setOpacity(float opacity) { mOpacity = opacity; } ///< applied when drawing

    // Drawing.
    /// From (0, 0) to (100, 0) for a linear gradient, the disc of radius 100 around the origin for any other
    /// type; extended at both ends. The same object until the gradient drops it. It picks up changes that do
    /// not drop it (see the stops).
    std::shared_ptr<const Shading> shadingRef() const;
    void releaseShadingRef();
    void drawSwatchInRect(const Rect& rect) const; ///< a preview, in the current context

    // As a painter. Subclasses implement these; here they throw `GenericException`.
    void paintShape(VXRPaintedShape& shape) override;
    void paintRect(const Rect& rect) override;

    /// Whether fills draw the shading even where a ramp of two colours would do. False by default.
    static bool useQuartzShadings() { return false; }

    bool isEqual(const Object& other) const override; ///< same type, opacity and equal stops
    /// A gradient of the same class with its own list of the same stop objects.
    virtual std::shared_ptr<VXRGradient> copyWithZone() const;

protected:
    /// The setting `useQuartzShadings` for this object.
    virtual bool usesQuartzShadings() const { return useQuartzShadings(); }
    void _setAlpha(Context& context) const; ///< sets the context's alpha to the opacity
    /// Copies opacity, type and stops from another gradient.
    void copyGradientTo(VXRGradient& copy) const;
    /// Draws the shading scaled so that its 100 units span `length`, from `start`, turned by `angle`.
    void drawShading(Context& context, Point start, float angle, float length) const;

private:
    /// The values that the cached shading was sampled from.
    struct SampledStop {
        std::shared_ptr<Color> color;
        float fraction;
        friend bool operator==(const SampledStop&, const SampledStop&) = default;
    };

    std::vector<SampledStop> stopsToSample() const;

    bool stopsAscend() const;
    /// The first stop after a fraction, which must be a number.
    Stops::const_iterator firstBehind(float fraction) const;

    Stops mStops;
    mutable std::uint64_t mOrderKnownAt = UINT64_MAX; ///< count of stop moves when the order was last checked
    mutable bool mAscends = false;
    std::int32_t mType = VXRLinearGradient;
    float mOpacity = 1;
    mutable std::shared_ptr<Shading> mShadingRef;
    mutable std::vector<SampledStop> mSampledStops;
};

/// The function of a gradient's shading: `gradient` is a `const VXRGradient`, the input is a fraction, the
/// output is red, green, blue and alpha in calibrated RGB, not premultiplied.
VXR_EXPORT void _evaluateGradient(void* gradient, const float* input, float* output);

} // namespace vxr
