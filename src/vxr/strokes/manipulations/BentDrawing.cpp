#include <vxr/strokes/manipulations/BentDrawing.h>

#include <vxr/geometry/curves/CubicSegment.h>

namespace vxr {

namespace {

/// Maps a drawing's outline edge by edge.
struct Bender {
    Path& target;
    const MeasuredRun& run;
    double start, scaleX, scaleY;

    Vec2 map(Vec2 p) const
    {
        const MeasuredRun::Place place = run.at(start + p.x * scaleX);
        return place.p + leftNormal(place.direction) * (p.y * scaleY);
    }

    void move(Vec2 p) { target.moveTo(map(p).point()); }
    void line(Vec2 from, Vec2 to) { bend(cubicFromLine(from, to)); }
    void curve(const Cubic& c) { bend(c); }
    void close(Vec2 from, Vec2 to)
    {
        if (!(from == to))
            line(from, to);
        target.close();
    }

    void bend(const Cubic& c) const
    {
        constexpr double mostPieces = 1024, mostPiecesOfRun = 4096;
        const double longest = std::max(0.5 * std::abs(scaleY), run.length() / mostPiecesOfRun);
        const double along = std::max({ std::abs(c.end.x - c.start.x), std::abs(c.control1.x - c.start.x),
                                 std::abs(c.control2.x - c.start.x) })
            * std::abs(scaleX);
        const auto pieces = static_cast<int>(std::clamp(std::ceil(along / longest), 1.0, mostPieces));
        for (int i = 0; i < pieces; ++i) {
            const Cubic part
                = partBetween(c, double(i) / pieces, i + 1 == pieces ? 1 : double(i + 1) / pieces);
            // Through the mapped places at thirds: what the mapping makes of the controls would miss them.
            const Vec2 a = map(part.start), b = map(pointAt(part, 1.0 / 3)), d = map(pointAt(part, 2.0 / 3)),
                       e = map(part.end);
            target.curveTo((a * (-5.0 / 6) + b * 3 - d * 1.5 + e * (1.0 / 3)).point(),
                (a * (1.0 / 3) - b * 1.5 + d * 3 - e * (5.0 / 6)).point(), e.point());
        }
    }
};

} // namespace

void appendBentDrawing(
    Path& target, const Path& drawing, const MeasuredRun& run, double start, double scaleX, double scaleY)
{
    Bender bender { target, run, start, scaleX, scaleY };
    walkFinite(drawing, bender);
}

void appendStiffDrawing(Path& target, const Path& drawing, const MeasuredRun& run, double distance, double x,
    double scaleX, double scaleY)
{
    const MeasuredRun::Place place = run.at(distance);
    const Vec2 along = place.direction * scaleX, across = leftNormal(place.direction) * scaleY;
    const Vec2 origin = place.p - along * x;
    const auto narrow = [](double v) { return static_cast<float>(v); };
    target.appendPath(*drawing.transformedBy({ narrow(along.x), narrow(along.y), narrow(across.x),
        narrow(across.y), narrow(origin.x), narrow(origin.y) }));
}

} // namespace vxr
