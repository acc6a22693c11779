#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Moves lines that are an odd number of device pixels wide by half a pixel to the right and up (y up), so
/// that those along pixel edges cover whole pixels. Below scale 1, by half a canvas unit.
class VXR_EXPORT VXROffsetOddWidthPathManipulation final : public VXRPathManipulation {
public:
    VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float) const override { return 0.5f * 1.41421357f; } ///< along the diagonal
    std::shared_ptr<VXRPathManipulation> copyWithZone() const override;
    bool isEqual(const Object&) const override;
};

} // namespace vxr
