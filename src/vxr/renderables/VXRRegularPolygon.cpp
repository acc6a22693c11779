#include <vxr/renderables/VXRRegularPolygon.h>

#include <vxr/geometry/VXRGeometry.h>

#include <algorithm>

namespace vxr {

std::shared_ptr<VXRRegularPolygon> VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(
    float radius, int numberOfSides)
{
    return std::make_shared<VXRRegularPolygon>(radius, numberOfSides);
}

VXRRegularPolygon::VXRRegularPolygon(float radius, int numberOfSides)
    : mNumSides(numberOfSides)
    , mRadius(radius)
{
    _rebuildPath();
}

void VXRRegularPolygon::setNumberOfSides(int number)
{
    mNumSides = std::max(number, 3);
    _rebuildPath();
}

void VXRRegularPolygon::setRadius(float radius)
{
    mRadius = radius;
    _rebuildPath();
}

void VXRRegularPolygon::_rebuildPath()
{
    const auto outline = path() ? path() : Path::path();
    const auto step = static_cast<float>(VXR_2PI / mNumSides);
    outline->removeAllPoints();
    for (int i = 0; i < mNumSides; ++i) {
        Point v;
        VXROriginRotate(mRadius, static_cast<float>(i) * step, &v);
        i == 0 ? outline->moveTo(v) : outline->lineTo(v);
    }
    outline->close();
    setPathPreserveOffset(outline, false);
}

} // namespace vxr
