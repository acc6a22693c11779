#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// The parallel outline: closed outlines grow by the distance, or shrink by a negative one; open ones move to
/// their left or right. See `outsetPath`.
class VXR_EXPORT VXROutsetPathManipulation final : public VXRPathManipulation {
public:
    explicit VXROutsetPathManipulation(float distance = 1)
        : mDistance(distance)
    {
    }

    float distance() const { return mDistance; } ///< in line widths
    void setDistance(float distance) { mDistance = distance; }

    VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathManipulation> copyWithZone() const override;
    bool isEqual(const Object&) const override;

private:
    float mDistance;
};

} // namespace vxr
