#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>

#include <vxr/geometry/curves/PathOutset.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

namespace vxr {

VXRPaintedPath VXROutsetPathManipulation::manipulatedPath(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double distance = finiteOrZero(mDistance) * finiteOrZero(setting.lineWidth);
    if (distance == 0)
        return painted;
    constexpr double tolerance = 0.05;
    return { outsetPath(*painted.path, distance, tolerance), painted.isArea, painted.widthFactor };
}

float VXROutsetPathManipulation::reachForLineWidth(float lineWidth) const
{
    return static_cast<float>(std::fabs(finiteOrZero(mDistance) * finiteOrZero(lineWidth)) * mostOutsetReach);
}

std::shared_ptr<VXRPathManipulation> VXROutsetPathManipulation::copyWithZone() const
{
    return std::make_shared<VXROutsetPathManipulation>(*this);
}

bool VXROutsetPathManipulation::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXROutsetPathManipulation*>(&other);
    return same && same->mDistance == mDistance;
}

} // namespace vxr
