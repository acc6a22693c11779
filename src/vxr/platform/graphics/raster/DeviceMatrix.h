#pragma once

#include <vxr/platform/graphics/path/PathVector.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <algorithm>
#include <cmath>

namespace vxr {

/// User space to device space, whose y runs down, in double precision: x' = xx x + xy y + x0.
struct DeviceMatrix {
    double xx = 1, xy = 0, x0 = 0;
    double yx = 0, yy = 1, y0 = 0;

    DeviceMatrix() = default;
    DeviceMatrix(const AffineTransform& t, double height)
        : xx(t.m11)
        , xy(t.m21)
        , x0(t.tX)
        , yx(-t.m12)
        , yy(-t.m22)
        , y0(height - t.tY)
    {
    }

    Vec2 map(Vec2 p) const { return { xx * p.x + xy * p.y + x0, yx * p.x + yy * p.y + y0 }; }
    bool isUpright() const { return (xy == 0 && yx == 0) || (xx == 0 && yy == 0); }
    double determinant() const { return xx * yy - xy * yx; }
    /// `first` applied before this one.
    DeviceMatrix after(const DeviceMatrix& first) const
    {
        DeviceMatrix m;
        m.xx = xx * first.xx + xy * first.yx;
        m.xy = xx * first.xy + xy * first.yy;
        m.x0 = xx * first.x0 + xy * first.y0 + x0;
        m.yx = yx * first.xx + yy * first.yx;
        m.yy = yx * first.xy + yy * first.yy;
        m.y0 = yx * first.x0 + yy * first.y0 + y0;
        return m;
    }
    /// Meaningful for a determinant other than 0.
    DeviceMatrix inverted() const
    {
        const double d = determinant();
        DeviceMatrix m;
        m.xx = yy / d;
        m.xy = -xy / d;
        m.yx = -yx / d;
        m.yy = xx / d;
        m.x0 = -(m.xx * x0 + m.xy * y0);
        m.y0 = -(m.yx * x0 + m.yy * y0);
        return m;
    }
};

/// A place on the device as a whole pixel and the rest in 1/256 of one. What is sampled with regard to the
/// pixel looks the same when it is moved by whole pixels, whatever single precision makes of the move.
struct DeviceAnchor {
    int x = 0, y = 0;
    Vec2 rest;

    explicit DeviceAnchor(Vec2 p)
    {
        const auto split = [](double v, int& whole) {
            const double placed = std::floor(v * steps + 0.5) / steps;
            whole = static_cast<int>(std::clamp(std::floor(placed), -farthest, farthest));
            return placed - whole;
        };
        rest = { split(p.x, x), split(p.y, y) };
    }

private:
    static constexpr double farthest = 1 << 22, steps = 256;
};

} // namespace vxr
