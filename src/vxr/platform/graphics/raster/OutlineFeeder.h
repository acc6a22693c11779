#pragma once

#include <vxr/platform/graphics/path/ContourSink.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/graphics/raster/DeviceMatrix.h>
#include <vxr/platform/graphics/raster/ShapeRaster.h>

#include <optional>
#include <span>

namespace vxr {

/// Maps outlines to device space and feeds them to a raster as edges. Curves become lines in equal steps of
/// their parameter. Points are put on the raster's grid first and curves drawn from there, so that an outline
/// moved by whole pixels gives the same edges.
///
/// What lies beyond the range of fixed coordinates is cut off exactly, in quadruple precision, along lines
/// that no bitmap reaches.
class OutlineFeeder final : public ContourSink {
public:
    OutlineFeeder(const DeviceMatrix& toDevice, double tolerance, ShapeRaster& raster)
        : mMatrix(toDevice)
        , mTolerance(tolerance)
        , mRaster(raster)
    {
    }

    void addArea(const Path&); ///< open sub-paths are closed
    void addContour(std::span<const Vec2> vertices) override;
    void addRect(const Rect&);

private:
    void addNear(const Path&);
    void addLine(FixedPoint from, FixedPoint to) { mRaster.add({ from, to }); }
    void addCurve(FixedPoint from, FixedPoint control1, FixedPoint control2, FixedPoint to);
    FixedPoint fixed(Vec2 p) const;

    const DeviceMatrix& mMatrix;
    double mTolerance;
    ShapeRaster& mRaster;
};

/// The rectangle as a box of device space; none when it is turned, or too far away for fixed coordinates.
std::optional<FixedBox> uprightBox(const Rect&, const DeviceMatrix&);
/// The same for a path of one sub-path that is nothing but a rectangle.
std::optional<FixedBox> uprightBox(const Path&, const DeviceMatrix&);

} // namespace vxr
