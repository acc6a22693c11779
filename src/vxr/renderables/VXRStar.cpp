#include <vxr/renderables/VXRStar.h>

#include <vxr/geometry/VXRGeometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vxr {

std::shared_ptr<VXRStar> VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(
    float innerRadius, float outerRadius, int numberOfPoints)
{
    return std::make_shared<VXRStar>(innerRadius, outerRadius, numberOfPoints);
}

VXRStar::VXRStar(float innerRadius, float outerRadius, int numberOfPoints)
    : mNumPoints(numberOfPoints)
    , mInnerRadius(innerRadius)
    , mOuterRadius(outerRadius)
{
    _rebuildPath();
}

void VXRStar::setNumberOfPoints(int number)
{
    mNumPoints = std::max(number, 3);
    _rebuildPath();
}

void VXRStar::setInnerRadius(float radius)
{
    mInnerRadius = radius;
    _rebuildPath();
}

void VXRStar::setOuterRadius(float radius)
{
    mOuterRadius = radius;
    _rebuildPath();
}

void VXRStar::optimize()
{
    if (mNumPoints == 3) {
        setInnerRadius(0.125f * mOuterRadius);
    } else if (mNumPoints == 4) {
        setInnerRadius(static_cast<float>(mOuterRadius * 0.2));
    } else {
        const double x = VXR_2PI / mNumPoints;
        setInnerRadius(static_cast<float>(mOuterRadius * std::cos(x) / std::cos(x / 2)));
    }
}

Point VXRStar::localCenter() const
{
    const float radius = std::max(mOuterRadius, mInnerRadius);
    return { radius, radius };
}

Point VXRStar::center() const { return transform().map(localCenter()); }

void VXRStar::_rebuildPath()
{
    const auto outline = path() ? path() : Path::path();
    const std::int64_t vertices = 2 * std::int64_t { mNumPoints };
    const auto step = static_cast<float>(VXR_2PI / static_cast<double>(vertices));
    // Taken away again when the path is moved to its frame's origin.
    const Point middle = center();
    outline->removeAllPoints();
    for (std::int64_t i = 0; i < vertices; ++i) {
        Point v;
        VXROriginRotate(i % 2 == 0 ? mOuterRadius : mInnerRadius, static_cast<float>(i) * step, &v);
        v = VXRAddPoints(v, middle);
        i == 0 ? outline->moveTo(v) : outline->lineTo(v);
    }
    outline->close();
    setPathPreserveOffset(outline, false);
}

} // namespace vxr
