#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Rounds the outline's corners. The rounding begins no further from a corner than the middle of the segments
/// that meet there, and then has a smaller radius.
class VXR_EXPORT VXRRoundedPathManipulation final : public VXRPathManipulation {
public:
    explicit VXRRoundedPathManipulation(float radius = 4)
        : mRadius(radius)
    {
    }

    float radius() const { return mRadius; } ///< in line widths
    void setRadius(float radius) { mRadius = radius; }

    VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathManipulation> copyWithZone() const override;
    bool isEqual(const Object&) const override;

private:
    float mRadius;
};

} // namespace vxr
