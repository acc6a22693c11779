#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <memory>
#include <utility>

namespace vxr {

class Path;

/// Decoration at an end of an open path. A value: its outline in coordinates of its own with the tip
/// towards +y, the point of it that is put on the line's end, and whether it is filled or stroked.
///
/// The built-in ones are drawn in a box of 6 by 6. Their end points decide how far each overlaps the line
/// or extends past it; they are not the geometric centres.
class VXR_EXPORT VXRLineEnd : public Object {
public:
    static std::shared_ptr<VXRLineEnd> simpleArrow();
    static std::shared_ptr<VXRLineEnd> openArrow();
    static std::shared_ptr<VXRLineEnd> filledArrow(); ///< notched
    static std::shared_ptr<VXRLineEnd> filledDiamond();
    static std::shared_ptr<VXRLineEnd> filledCircle();
    static std::shared_ptr<VXRLineEnd> filledSquare();

    template <class Class = VXRLineEnd>
    static std::shared_ptr<Class> lineEndWithPathEndPointIsFilled(
        std::shared_ptr<Path> path, Point endPoint, bool isFilled)
    {
        return std::make_shared<Class>(std::move(path), endPoint, isFilled);
    }

    VXRLineEnd(); ///< an empty path, stroked
    VXRLineEnd(std::shared_ptr<Path> path, Point endPoint, bool isFilled);
    ~VXRLineEnd() override;

    const std::shared_ptr<Path>& path() const { return mPath; }
    void setPath(std::shared_ptr<Path>);
    Point endPoint() const { return mEndPoint; }
    void setEndPoint(Point point) { mEndPoint = point; }
    bool isFilled() const { return mIsFilled; }
    void setIsFilled(bool filled) { mIsFilled = filled; }

    /// Exactly the same class, paths equal within 0.01, the rest equal.
    bool isEqual(const Object& other) const override;
    std::shared_ptr<VXRLineEnd> copyWithZone() const; ///< shares the path

protected:
    virtual std::shared_ptr<VXRLineEnd> makeOfSameClass() const; ///< with any values

private:
    std::shared_ptr<Path> mPath;
    Point mEndPoint;
    bool mIsFilled = false;
};

} // namespace vxr
