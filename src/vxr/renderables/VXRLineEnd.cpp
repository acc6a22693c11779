#include <vxr/renderables/VXRLineEnd.h>

#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/path/Path.h>

#include <initializer_list>
#include <typeinfo>

namespace vxr {

namespace {

std::shared_ptr<Path> polyline(std::initializer_list<Point> points, bool closed)
{
    auto path = Path::path();
    for (const Point p : points)
        path->isEmpty() ? path->moveTo(p) : path->lineTo(p);
    if (closed)
        path->close();
    return path;
}

constexpr Rect box { 0.5f, 0.5f, 5, 5 };

} // namespace

std::shared_ptr<VXRLineEnd> VXRLineEnd::simpleArrow()
{
    return lineEndWithPathEndPointIsFilled(
        polyline({ { 0, 0 }, { 3, 6 }, { 6, 0 } }, true), { 3, 0.1f }, true);
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::openArrow()
{
    return lineEndWithPathEndPointIsFilled(
        polyline({ { 0, 0 }, { 3, 5 }, { 6, 0 } }, false), { 3, 5 }, false);
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::filledArrow()
{
    return lineEndWithPathEndPointIsFilled(
        polyline({ { 0, 0 }, { 3, 6 }, { 6, 0 }, { 3, 1.5f } }, true), { 3, 1.5f }, true);
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::filledDiamond()
{
    return lineEndWithPathEndPointIsFilled(
        polyline({ { 3, 0 }, { 0, 3 }, { 3, 6 }, { 6, 3 } }, true), { 3, 1 }, true);
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::filledCircle()
{
    return lineEndWithPathEndPointIsFilled(Path::pathWithOvalInRect(box), VXRCenterOfRect(box), true);
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::filledSquare()
{
    return lineEndWithPathEndPointIsFilled(
        Path::pathWithRect(box), { VXRCenterOfRect(box).x, box.minY() + 0.1f }, true);
}

VXRLineEnd::VXRLineEnd()
    : VXRLineEnd(Path::path(), { 0, 0 }, false)
{
}

VXRLineEnd::VXRLineEnd(std::shared_ptr<Path> path, Point endPoint, bool isFilled)
    : mPath(std::move(path))
    , mEndPoint(endPoint)
    , mIsFilled(isFilled)
{
}

VXRLineEnd::~VXRLineEnd() = default;

void VXRLineEnd::setPath(std::shared_ptr<Path> path) { mPath = std::move(path); }

bool VXRLineEnd::isEqual(const Object& object) const
{
    if (this == &object)
        return true;
    if (typeid(*this) != typeid(object))
        return false;
    const auto& other = static_cast<const VXRLineEnd&>(object);
    const bool samePath
        = mPath == other.mPath || (mPath && other.mPath && vxr::isEqual(*mPath, *other.mPath));
    return samePath && mEndPoint == other.mEndPoint && mIsFilled == other.mIsFilled;
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::copyWithZone() const
{
    auto copy = makeOfSameClass();
    copy->setPath(mPath);
    copy->setEndPoint(mEndPoint);
    copy->setIsFilled(mIsFilled);
    return copy;
}

std::shared_ptr<VXRLineEnd> VXRLineEnd::makeOfSameClass() const { return std::make_shared<VXRLineEnd>(); }

} // namespace vxr
