#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>

#include <vxr/geometry/curves/PathOutset.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

#include <algorithm>

namespace vxr {

int VXROutsetPathStroker::countThatCounts() const { return std::clamp(mCount, 1, mostLines); }

std::vector<VXRPaintedPath> VXROutsetPathStroker::paintedPaths(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double step = finiteOrZero(mSpacing) * finiteOrZero(setting.lineWidth);
    const float factor = static_cast<float>(std::max(finiteOrZero(mWidthFactor), 0.0)) * painted.widthFactor;
    if (painted.isArea)
        return { painted };
    std::vector<VXRPaintedPath> lines;
    const int count = countThatCounts();
    for (int i = 0; i < count; ++i) {
        constexpr double tolerance = 0.05;
        const double distance = step * (i - (count - 1) * 0.5);
        lines.push_back(
            { distance == 0 ? painted.path : outsetPath(*painted.path, distance, tolerance), false, factor });
    }
    return lines;
}

float VXROutsetPathStroker::reachForLineWidth(float lineWidth) const
{
    const double width = finiteOrZero(lineWidth);
    const double outermost = std::fabs(finiteOrZero(mSpacing) * width) * (countThatCounts() - 1) * 0.5;
    const double wider = std::max(finiteOrZero(mWidthFactor) - 1, 0.0) * width * 0.5;
    return static_cast<float>(outermost * mostOutsetReach + wider);
}

std::shared_ptr<VXRPathStroker> VXROutsetPathStroker::copyWithZone() const
{
    return std::make_shared<VXROutsetPathStroker>(*this);
}

bool VXROutsetPathStroker::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXROutsetPathStroker*>(&other);
    return same && same->mCount == mCount && same->mSpacing == mSpacing && same->mWidthFactor == mWidthFactor;
}

} // namespace vxr
