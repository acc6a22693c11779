#pragma once

#include <algorithm>
#include <cmath>

namespace vxr {

/// A box of device space, whose y runs down.
struct DeviceBox {
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    bool isEmpty() const { return !(x0 < x1 && y0 < y1); }
    friend bool operator==(const DeviceBox&, const DeviceBox&) = default;
    double width() const { return x1 - x0; }
    double height() const { return y1 - y0; }

    DeviceBox grown(double by) const { return { x0 - by, y0 - by, x1 + by, y1 + by }; }
    DeviceBox moved(double dx, double dy) const { return { x0 + dx, y0 + dy, x1 + dx, y1 + dy }; }
    DeviceBox roundedOut() const { return { std::floor(x0), std::floor(y0), std::ceil(x1), std::ceil(y1) }; }
    void include(double x, double y)
    {
        x0 = std::min(x0, x);
        y0 = std::min(y0, y);
        x1 = std::max(x1, x);
        y1 = std::max(y1, y);
    }
};

inline DeviceBox intersection(const DeviceBox& a, const DeviceBox& b)
{
    const DeviceBox common { std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1),
        std::min(a.y1, b.y1) };
    return common.isEmpty() ? DeviceBox {} : common;
}

inline DeviceBox united(const DeviceBox& a, const DeviceBox& b)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() ? b : a;
    return { std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1) };
}

/// Nothing seen yet: `include` makes a box of it.
inline DeviceBox inverseBox()
{
    const double inf = HUGE_VAL;
    return { inf, inf, -inf, -inf };
}

} // namespace vxr
