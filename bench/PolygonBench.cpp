#include <bench/Compare.h>

#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRPolygon.h>
#include <vxr/platform/graphics/BitmapContext.h>

#include <polyclipping/clipper.hpp>

#include <cmath>
#include <memory>
#include <random>
#include <string>

// Boolean operations on two paths, from paths to a path, beside Clipper alone on the same polygons: already
// in its own whole numbers, and the result left in them.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::Pair;

/// A closed outline of `count` points around `centre`, at distances from 0.6 to 1 of `radius` that
/// change smoothly: `waves` bulges with a little noise.
std::shared_ptr<Path> blob(Point centre, float radius, int count, int waves, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> noise(-0.002, 0.002);
    auto path = Path::path();
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * M_PI * i / count;
        const double r = radius * (0.8 + 0.198 * std::sin(waves * angle) + noise(random));
        const Point p { centre.x + float(r * std::cos(angle)), centre.y + float(r * std::sin(angle)) };
        i == 0 ? path->moveTo(p) : path->lineTo(p);
    }
    path->close();
    return path;
}

ClipperLib::Path toGrid(const Path& path)
{
    ClipperLib::Path polygon;
    for (const Point& p : path.points())
        polygon.emplace_back(std::llround(std::ldexp(p.x, 30)), std::llround(std::ldexp(p.y, 30)));
    return polygon;
}

struct Operation {
    const char* name;
    gpc_op code;
    ClipperLib::ClipType clipType;
};
const Operation operations[] = {
    { "union", GPC_UNION, ClipperLib::ctUnion },
    { "intersection", GPC_INT, ClipperLib::ctIntersection },
    { "difference", GPC_DIFF, ClipperLib::ctDifference },
};

Pair clipBesideClipper(const Operation& operation, int vertices)
{
    // Neighbours lie more than a point apart, so that no vertex is thinned out.
    const float radius = float(vertices) * 0.5f;
    const auto a = blob({ 0, 0 }, radius, vertices, 7, 1);
    const auto b = blob({ radius * 0.5f, radius * 0.3f }, radius, vertices, 5, 2);
    const auto subject = [a, b, operation] {
        const VXRPolygonOwner pa(polygonFromBezier(*a)), pb(polygonFromBezier(*b)), result(emptyPolygon());
        gpc_polygon_clip(operation.code, pa.get(), pb.get(), result.get());
        bezierFromPolygon(result.get());
    };
    const auto baseline = [ga = toGrid(*a), gb = toGrid(*b), operation] {
        ClipperLib::Clipper clipper;
        clipper.PreserveCollinear(true);
        clipper.AddPath(ga, ClipperLib::ptSubject, true);
        clipper.AddPath(gb, ClipperLib::ptClip, true);
        ClipperLib::Paths result;
        clipper.Execute(operation.clipType, result, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd);
    };
    return { subject, baseline };
}

/// Many contours that lie apart, united with one more.
Pair uniteBesideClipper(const std::shared_ptr<Path>& many)
{
    const auto square = Path::pathWithRect({ 5, 5, 10, 10 });
    ClipperLib::Paths contours;
    for (std::size_t i = 0; i < many->points().size(); i += 4) {
        Path contour;
        contour.appendPolygon(many->points().subspan(i, 4));
        contours.push_back(toGrid(contour));
    }
    return { [many, square] { uniteWithBezierPath(*many, *square); },
        [contours, other = toGrid(*square)] {
            ClipperLib::Clipper clipper;
            clipper.PreserveCollinear(true);
            clipper.AddPaths(contours, ClipperLib::ptSubject, true);
            clipper.AddPath(other, ClipperLib::ptClip, true);
            ClipperLib::Paths result;
            clipper.Execute(ClipperLib::ctUnion, result, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd);
        } };
}

std::shared_ptr<Path> squares(int side)
{
    auto path = Path::path();
    for (int i = 0; i < side * side; ++i)
        path->appendRect({ float(i % side * 10), float(i / side * 10), 8, 8 });
    return path;
}

std::shared_ptr<Path> bars(int count)
{
    auto path = Path::path();
    for (int i = 0; i < count; ++i)
        path->appendRect({ 2.0f * float(i), float(i % 9), 1, 1000 });
    return path;
}

/// The outline of a star's stroke as one area, beside filling that stroke's contours.
Pair outlineBesideFill(int segments)
{
    auto star = std::make_shared<Path>();
    for (int i = 0; i < segments; ++i) {
        const double angle = 2 * M_PI * i / segments, radius = i % 2 ? 500 : 1000;
        const Point p { float(1024 + radius * std::cos(angle)), float(1024 + radius * std::sin(angle)) };
        i ? star->lineTo(p) : star->moveTo(p);
    }
    star->close();
    star->setLineWidth(4);
    const auto context = std::shared_ptr<BitmapContext>(BitmapContext::createBitmap(2048, 2048));
    const auto outline = star->strokedOutline(star->lineStyle(), star->flatness());
    return { [star] { outlineStroke(*star); },
        [context, outline] { context->fillPath(*outline, WindingRule::NonZero); } };
}

const int registered = [] {
    bench::compare(
        "POLYGON/unite-90000-squares", atMost(1.3), [] { return uniteBesideClipper(squares(300)); });
    bench::compare("POLYGON/unite-20000-bars", atMost(1.3), [] { return uniteBesideClipper(bars(20000)); });
    bench::compare(
        "POLYGON/outline-20000-segments-to-fill", atMost(10), [] { return outlineBesideFill(20000); });
    for (const int vertices : { 1000, 10000 })
        for (const Operation& operation : operations)
            bench::compare("POLYGON/" + std::string(operation.name) + "-" + std::to_string(vertices),
                atMost(1.3), [=] { return clipBesideClipper(operation, vertices); });
    return 0;
}();

} // namespace
