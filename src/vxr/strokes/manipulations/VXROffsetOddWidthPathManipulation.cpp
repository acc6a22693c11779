#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>

#include <cmath>

namespace vxr {

VXRPaintedPath VXROffsetOddWidthPathManipulation::manipulatedPath(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const float scale = setting.scale > 1 && std::isfinite(setting.scale) ? setting.scale : 1;
    const float width = std::round(setting.lineWidth * scale);
    if (painted.isArea || !(std::fmod(width, 2.0f) == 1))
        return painted;
    const float half = 0.5f / scale;
    return { painted.path->transformedBy(AffineTransform::makeTranslation(half, half)), false,
        painted.widthFactor };
}

std::shared_ptr<VXRPathManipulation> VXROffsetOddWidthPathManipulation::copyWithZone() const
{
    return std::make_shared<VXROffsetOddWidthPathManipulation>(*this);
}

bool VXROffsetOddWidthPathManipulation::isEqual(const Object& other) const
{
    return dynamic_cast<const VXROffsetOddWidthPathManipulation*>(&other) != nullptr;
}

} // namespace vxr
