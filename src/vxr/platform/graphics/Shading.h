#pragma once

#include <vxr/platform/graphics/EngineCaches.h>
#include <vxr/platform/graphics/color/ColorSpace.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <functional>
#include <span>
#include <vector>

namespace vxr {

/// A function of one input in [0, 1] and four outputs (red, green, blue, alpha, not premultiplied), each
/// clamped to [0, 1] (NaN gives 0).
class VXR_EXPORT ShadingFunction final : public Object {
public:
    using Evaluate = void (*)(void* info, const float* input, float* output);
    using Release = void (*)(void* info);

    /// `release` is called when the function is destroyed; it may be null.
    ShadingFunction(void* info, Evaluate evaluate, Release release);
    ~ShadingFunction() override;
    ShadingFunction(const ShadingFunction&) = delete;
    ShadingFunction& operator=(const ShadingFunction&) = delete;

    std::array<float, 4> operator()(float input) const;

private:
    void* mInfo;
    Evaluate mEvaluate;
    Release mRelease;
};

/// A colour at a position along a shading, in the form that back ends use.
struct ShadingStop {
    float position;
    std::array<float, 4> rgba;
};

/// An axial or radial blend of colours, placed by the context's transform. Immutable except for `resample`.
class VXR_EXPORT Shading final : public Object {
public:
    enum class Kind { Axial, Radial };

    /// `hints` are inputs where the function may jump (ascending, in [0, 1]); the values on both sides of a
    /// jump are kept. Without hints jumps are found by bisection.
    static std::shared_ptr<Shading> createAxial(std::shared_ptr<const ColorSpace>, Point start, Point end,
        std::shared_ptr<const ShadingFunction>, bool extendStart, bool extendEnd,
        std::span<const float> hints = {});
    static std::shared_ptr<Shading> createRadial(std::shared_ptr<const ColorSpace>, Point start,
        float startRadius, Point end, float endRadius, std::shared_ptr<const ShadingFunction>,
        bool extendStart, bool extendEnd, std::span<const float> hints = {});

    ~Shading() override;

    Kind kind() const { return mKind; }
    Point start() const { return mStart; }
    Point end() const { return mEnd; }
    float startRadius() const { return mStartRadius; }
    float endRadius() const { return mEndRadius; }
    bool extendsStart() const { return mExtendStart; }
    bool extendsEnd() const { return mExtendEnd; }

    /// The function as linear pieces, sampled once: ascending stops, the first at 0 and the last at 1, two at
    /// the same position where it jumps. Within half an 8-bit level of the function.
    const std::vector<ShadingStop>& stops() const { return mStops; }

    /// The shading as it is now, unaffected by later sampling.
    std::shared_ptr<const Shading> copy() const;
    /// Samples the function again after its results have changed. Engines rebuild their own forms.
    void resample(std::span<const float> hints);

    struct Geometry; ///< for the factories
    Shading(const Geometry&, std::shared_ptr<const ColorSpace>, std::shared_ptr<const ShadingFunction>,
        std::span<const float> hints);

    EngineCaches& engineCaches() const { return mEngineCaches; } ///< the engines' own forms of the shading

private:
    Kind mKind;
    Point mStart, mEnd;
    float mStartRadius, mEndRadius;
    bool mExtendStart, mExtendEnd;
    std::shared_ptr<const ColorSpace> mSpace;
    std::shared_ptr<const ShadingFunction> mFunction;
    std::vector<ShadingStop> mStops;
    mutable EngineCaches mEngineCaches;
};

} // namespace vxr
