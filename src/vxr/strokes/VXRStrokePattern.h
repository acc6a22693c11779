#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/path/Path.h>

#include <cstdint>
#include <memory>

namespace vxr {

/// The numbers are part of the contract.
enum VXRStrokePatternType : int {
    VXRStrokePatternDashed = 0, ///< the entries apply
    VXRStrokePatternSolid = 1,
    VXRStrokePatternEmpty = 2, ///< nothing is drawn
};

/// Dash description of at most six lengths, on and off in turn. Lengths and phase are in units of the line
/// width, so that one pattern fits every width. A value; every built-in pattern is a new object.
class VXR_EXPORT VXRStrokePattern : public Object {
public:
    static constexpr int capacity = 6;

    static std::shared_ptr<VXRStrokePattern> strokePatternWithPatternCountPhase(
        const float* pattern, int count, float phase);
    static std::shared_ptr<VXRStrokePattern> solidPattern();
    static std::shared_ptr<VXRStrokePattern> emptyPattern();
    static std::shared_ptr<VXRStrokePattern> shortDashPattern(); ///< 1 on, 1 off
    static std::shared_ptr<VXRStrokePattern> mediumDashPattern(); ///< 3 on, 3 off
    static std::shared_ptr<VXRStrokePattern> longDashPattern(); ///< 6 on, 6 off

    /// A dashed pattern. Entries beyond the capacity are dropped; `pattern` may be null for a count of 0.
    VXRStrokePattern(const float* pattern, int count, float phase);

    const float* pattern() const { return mPattern; } ///< six entries, zero from `count()` on; not a copy
    int count() const { return mCount; }
    float phase() const { return mPhase; }
    int patternType() const { return mType; } ///< a `VXRStrokePatternType`

    /// Sets the path's dash to this pattern at `lineWidth`; without entries the path becomes solid.
    void applyToBezierPathLineWidth(Path& path, float lineWidth) const;

    /// The type counts only where the receiver is not dashed: a dashed pattern without entries equals a
    /// solid one of the same phase, but not the other way round.
    bool isEqual(const Object& other) const override;
    std::shared_ptr<VXRStrokePattern> copyWithZone() const;

    // For whoever makes patterns.
    void _setPatternCount(const float* pattern, int count);
    void _setPatternType(int type); ///< codes beyond a byte are clamped

protected:
    // A subclass answers for its own class in both, so that copies and equality keep to it.
    virtual std::shared_ptr<VXRStrokePattern> makeOfSameClass(
        const float* pattern, int count, float phase) const;
    virtual bool isOfReceiversClass(const Object& other) const;

private:
    // Every stroke has one: as small as can be.
    float mPattern[capacity] = {};
    float mPhase = 0;
    std::int8_t mCount = 0;
    std::int8_t mType = VXRStrokePatternDashed; ///< unknown codes are kept
};

} // namespace vxr
