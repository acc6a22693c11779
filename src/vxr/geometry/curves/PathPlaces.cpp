#include <vxr/geometry/curves/PathPlaces.h>

#include <vxr/geometry/curves/CubicIntersections.h>
#include <vxr/geometry/curves/CubicSegment.h>

namespace vxr {

namespace {

/// Hands every segment of a path to `Visit`, lines as their cubics.
template <class Visit> struct SegmentSink {
    Visit visit;

    void move(Vec2 p) { visit(Cubic { p, p, p, p }); }
    void line(Vec2 from, Vec2 to) { visit(cubicFromLine(from, to)); }
    void curve(const Cubic& c) { visit(c); }
    void close(Vec2 from, Vec2 start) { visit(cubicFromLine(from, start)); }
};

template <class Visit> void forEachSegment(const Path& path, Visit visit)
{
    SegmentSink<Visit> sink { visit };
    walkFinite(path, sink);
}

/// No point of the curve is nearer: the distance from the bounds of the control points.
double leastDistance(const Cubic& c, Vec2 p)
{
    const auto beyond = [](double at, double a, double b, double d, double e) {
        const double least = std::min({ a, b, d, e }), most = std::max({ a, b, d, e });
        return std::max({ least - at, at - most, 0.0 });
    };
    return Vec2(beyond(p.x, c.start.x, c.control1.x, c.control2.x, c.end.x),
        beyond(p.y, c.start.y, c.control1.y, c.control2.y, c.end.y))
        .length();
}

} // namespace

std::optional<Vec2> nearestPointOnPath(const Path& path, Vec2 p)
{
    std::optional<Vec2> nearest;
    double least = INFINITY;
    forEachSegment(path, [&](const Cubic& c) {
        if (!(leastDistance(c, p) < least))
            return;
        const NearestPoint found = nearestPoint(c, p);
        if (found.distance < least) {
            least = found.distance;
            nearest = pointAt(c, found.t);
        }
    });
    return nearest;
}

std::optional<Vec2> firstCrossingOfPath(const Path& path, Vec2 start, Vec2 end)
{
    double first = INFINITY;
    forEachSegment(path, [&](const Cubic& c) {
        for (const CurveCrossing& crossing : crossingsWithLine(c, start, end))
            first = std::min(first, crossing.second);
    });
    return first <= 1 ? std::optional(start + (end - start) * first) : std::nullopt;
}

} // namespace vxr
