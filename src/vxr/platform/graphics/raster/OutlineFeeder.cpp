#include <vxr/platform/graphics/raster/OutlineFeeder.h>

#include <vxr/platform/graphics/path/PointMagnitude.h>
#include <vxr/platform/graphics/raster/FarOutline.h>

#include <array>
#include <cmath>

namespace vxr {

namespace {

/// Whether coordinates of this magnitude lie in the near range of device space. Not for NaN.
bool isNear(double magnitude, const DeviceMatrix& m)
{
    return (std::abs(m.xx) + std::abs(m.xy)) * magnitude + std::abs(m.x0) < nearRange
        && (std::abs(m.yx) + std::abs(m.yy)) * magnitude + std::abs(m.y0) < nearRange;
}

/// The next whole number, halves upwards, of a value within 2^29. Without a call of `floor`: a conversion
/// cuts off what follows the point of positive numbers.
inline std::int32_t nearest(double v)
{
    constexpr std::int64_t bias = 1 << 30;
    return static_cast<std::int32_t>(static_cast<std::int64_t>(v + (bias + 0.5)) - bias);
}

inline std::int32_t fixedOf(double v) { return nearest(v * subpixels); }
FixedPoint fixedPointOf(Vec2 p) { return { fixedOf(p.x), fixedOf(p.y) }; }

} // namespace

inline FixedPoint OutlineFeeder::fixed(Vec2 p) const { return fixedPointOf(mMatrix.map(p)); }

void OutlineFeeder::addArea(const Path& path)
{
    if (isNear(largestMagnitude(path.points()), mMatrix))
        return addNear(path);
    FarOutline::cutArea(path, mMatrix,
        { [this](Vec2 from, Vec2 to) { addLine(fixedPointOf(from), fixedPointOf(to)); },
            [this](const Cubic& c) {
                addCurve(fixedPointOf(c.start), fixedPointOf(c.control1), fixedPointOf(c.control2),
                    fixedPointOf(c.end));
            } });
}

// A close goes on from the sub-path's start, where the next element begins without a move.
void OutlineFeeder::addNear(const Path& path)
{
    const Point* p = path.points().data();
    FixedPoint start, pen;
    for (const PathElementKind kind : path.kinds()) {
        switch (kind) {
        case PathElementKind::MoveTo:
            addLine(pen, start);
            start = pen = fixed(*p++);
            break;
        case PathElementKind::LineTo: {
            const FixedPoint to = fixed(*p++);
            addLine(pen, to);
            pen = to;
            break;
        }
        case PathElementKind::CurveTo: {
            const FixedPoint to = fixed(p[2]);
            addCurve(pen, fixed(p[0]), fixed(p[1]), to);
            pen = to;
            p += 3;
            break;
        }
        case PathElementKind::Close:
            addLine(pen, start);
            pen = start;
            break;
        }
    }
    addLine(pen, start);
}

void OutlineFeeder::addContour(std::span<const Vec2> vertices)
{
    double most = 0;
    for (const Vec2& v : vertices)
        most = std::max({ most, std::abs(v.x), std::abs(v.y) });
    if (vertices.empty() || !(most < 1e300))
        return;
    if (!isNear(most, mMatrix))
        return FarOutline::cutContour(vertices, mMatrix,
            { [this](Vec2 from, Vec2 to) { addLine(fixedPointOf(from), fixedPointOf(to)); }, {} });
    FixedPoint pen = fixed(vertices.back());
    for (const Vec2& v : vertices) {
        const FixedPoint to = fixed(v);
        addLine(pen, to);
        pen = to;
    }
}

void OutlineFeeder::addRect(const Rect& r)
{
    const std::array<Point, 4> corners { r.origin, Point { r.maxX(), r.minY() }, Point { r.maxX(), r.maxY() },
        Point { r.minX(), r.maxY() } };
    if (!isNear(largestMagnitude(corners), mMatrix)) {
        Path path;
        path.appendRect(r);
        return addArea(path);
    }
    FixedPoint pen = fixed(corners.back());
    for (const Point corner : corners) {
        const FixedPoint to = fixed(corner);
        addLine(pen, to);
        pen = to;
    }
}

// In equal steps of the parameter the error of the chords is at most 3/4 of the second difference over the
// square of their number. Vertices between the ends are moved outwards by a twelfth of the second derivative
// over that square, which gives the polygon the area of the curve.
void OutlineFeeder::addCurve(FixedPoint p0, FixedPoint p1, FixedPoint p2, FixedPoint p3)
{
    const auto [lowY, highY] = std::minmax({ p0.y, p1.y, p2.y, p3.y });
    const IntRect& visible = mRaster.visible();
    if (highY <= visible.y0 * subpixels || lowY >= visible.y1 * subpixels)
        return;
    const auto [lowX, highX] = std::minmax({ p0.x, p1.x, p2.x, p3.x });
    if (highX <= visible.x0 * subpixels || lowX >= visible.x1 * subpixels)
        return addLine(p0, p3);

    constexpr double mostSteps = 1 << 14;
    const double x1 = double(p1.x) - p0.x, x2 = double(p2.x) - p0.x, x3 = double(p3.x) - p0.x;
    const double y1 = double(p1.y) - p0.y, y2 = double(p2.y) - p0.y, y3 = double(p3.y) - p0.y;
    const double firstX = x2 - 2 * x1, firstY = y2 - 2 * y1;
    const double secondX = x1 - 2 * x2 + x3, secondY = y1 - 2 * y2 + y3;
    const double bend = std::max(firstX * firstX + firstY * firstY, secondX * secondX + secondY * secondY);
    const double wanted = std::ceil(std::sqrt(0.75 / (mTolerance * subpixels) * std::sqrt(bend)));
    const int steps = static_cast<int>(std::clamp(wanted, 1.0, mostSteps));
    FixedPoint pen = p0;
    if (steps > 1) {
        const double cubicX = x3 + 3 * (x1 - x2), cubicY = y3 + 3 * (y1 - y2);
        const double h = 1.0 / steps, outwards = h * h / 2;
        for (int i = 1; i < steps; ++i) {
            const double t = i * h;
            const double x = ((cubicX * t + 3 * firstX) * t + 3 * x1) * t - outwards * (firstX + cubicX * t);
            const double y = ((cubicY * t + 3 * firstY) * t + 3 * y1) * t - outwards * (firstY + cubicY * t);
            const FixedPoint to { p0.x + nearest(x), p0.y + nearest(y) };
            addLine(pen, to);
            pen = to;
        }
    }
    addLine(pen, p3);
}

std::optional<FixedBox> uprightBox(const Rect& r, const DeviceMatrix& m)
{
    const double most = std::max({ std::abs(double(r.minX())), std::abs(double(r.minY())),
        std::abs(double(r.maxX())), std::abs(double(r.maxY())) });
    if (!m.isUpright() || !isNear(most, m))
        return std::nullopt;
    const FixedPoint a = fixedPointOf(m.map(r.origin));
    const FixedPoint b = fixedPointOf(m.map(Point { r.maxX(), r.maxY() }));
    return FixedBox { { std::min(a.x, b.x), std::min(a.y, b.y) },
        { std::max(a.x, b.x), std::max(a.y, b.y) } };
}

std::optional<FixedBox> uprightBox(const Path& path, const DeviceMatrix& m)
{
    using enum PathElementKind;
    const auto kinds = path.kinds();
    const auto points = path.points();
    const bool closes = kinds.size() > 4 && kinds.back() == Close;
    const std::size_t lines = kinds.size() - closes;
    if (!m.isUpright() || (lines != 4 && lines != 5) || points.size() != lines || kinds[0] != MoveTo)
        return std::nullopt;
    for (std::size_t i = 1; i < lines; ++i)
        if (kinds[i] != LineTo)
            return std::nullopt;
    if (lines == 5 && points[4] != points[0])
        return std::nullopt;
    const Point& a = points[0];
    const Point& c = points[2];
    const bool turnsRight = points[1] == Point { c.x, a.y } && points[3] == Point { a.x, c.y };
    const bool turnsLeft = points[1] == Point { a.x, c.y } && points[3] == Point { c.x, a.y };
    if (!turnsRight && !turnsLeft)
        return std::nullopt;
    const double most = largestMagnitude(points);
    if (!isNear(most, m))
        return std::nullopt;
    const FixedPoint from = fixedPointOf(m.map(a)), to = fixedPointOf(m.map(c));
    return FixedBox { { std::min(from.x, to.x), std::min(from.y, to.y) },
        { std::max(from.x, to.x), std::max(from.y, to.y) } };
}

} // namespace vxr
