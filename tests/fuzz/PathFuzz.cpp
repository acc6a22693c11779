// Path operations on random elements: nothing crashes or hangs, and what two routes can tell agrees.

#include <tests/fuzz/FuzzInput.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXULog.h>

#include <cmath>

using namespace vxr;
using namespace vxr::testing;

namespace {

/// Area operations cost far more an element than the rest.
constexpr std::size_t mostElementsForAreas = 40;

class Reader : public FuzzInput {
public:
    using FuzzInput::FuzzInput;

    float coordinate(Form form)
    {
        if (form == Form::Lattice)
            return byte();
        if (form == Form::Raw)
            return next<float>();
        const int high = byte();
        return static_cast<float>(high * 256 + byte()) / 300 - 100;
    }

    Point point(Form form)
    {
        const float x = coordinate(form);
        return { x, coordinate(form) };
    }
};

LineStyle readStyle(Reader& reader, Form form)
{
    LineStyle style;
    style.width = reader.coordinate(form) / 8;
    const std::uint8_t kinds = reader.byte();
    style.cap = static_cast<LineCap>(kinds % 3);
    style.join = static_cast<LineJoin>(kinds / 4 % 3);
    style.miterLimit = reader.coordinate(form) / 16;
    for (int left = kinds / 16 % 4; left > 0; --left)
        style.dash.push_back(reader.coordinate(form) / 4);
    style.dashPhase = kinds & 64 ? reader.coordinate(form) : 0;
    return style;
}

Path readPath(Reader& reader, Form form)
{
    Path path;
    path.setLineStyle(readStyle(reader, form));
    path.setWindingRule(static_cast<WindingRule>(reader.byte() % 2));
    while (reader.left()) {
        switch (reader.byte() % 8) {
        case 0:
            path.moveTo(reader.point(form));
            break;
        case 1:
            path.close();
            break;
        case 2:
        case 3: {
            const Point c1 = reader.point(form), c2 = reader.point(form);
            path.curveTo(c1, c2, reader.point(form));
            break;
        }
        case 4: // a sub-path of its own, as hosts build most of them
            path.appendRect({ reader.point(form), { reader.coordinate(form), reader.coordinate(form) } });
            break;
        default:
            path.lineTo(reader.point(form));
        }
    }
    return path;
}

/// Largest magnitude of a coordinate; infinite when one is no number.
float extentOf(const Path& path)
{
    float extent = 0;
    for (const Point p : path.points())
        extent = std::max({ extent, std::isnan(p.x + p.y) ? INFINITY : 0, std::fabs(p.x), std::fabs(p.y) });
    return extent;
}

bool holdsPoint(const Rect& r, Point p, float margin)
{
    return p.x >= r.minX() - margin && p.x <= r.maxX() + margin && p.y >= r.minY() - margin
        && p.y <= r.maxY() + margin;
}

/// `isPlain`: the numbers are small enough for the laws to hold to within rounding.
void askQuestions(const Path& path, bool isPlain)
{
    const Rect bounds = path.bounds();
    const auto flat = path.bezierPathByFlatteningPath();
    isClockwise(*flat);
    expect(!isOpen(path) || !effectivelyClosed(path), "open paths are not closed");
    const float margin = 1e-4f * (extentOf(path) + 1);
    for (float t : { -1.0f, 0.0f, 0.37f, 1.0f }) {
        const Point p = pointAlongPathAtPercentage(path, t);
        path.containsPoint(p);
        const bool found = pointOnPathTolerance(path, p, 1);
        if (!isPlain || pathAsSegments(path).empty())
            continue;
        expect(holdsPoint(bounds, p, margin), "points along a path lie within its bounds");
        expect(found, "points along a path are on it");
    }
    if (!isPlain)
        return;
    expect(isEqual(path, Path(path)), "a path equals its copy");
    for (const Point p : flat->points())
        expect(holdsPoint(bounds, p, margin), "a flat path lies within the path's bounds");
    expect(!isRectangular(path) || effectivelyClosed(path), "rectangles are closed");
}

void measureStroke(const Path& path, bool isPlain)
{
    const Rect strokeBounds = boundsIncludingStroke(path);
    for (const VXRSegmentRun& run : pathAsSegments(path)) {
        expect(!run.segments.empty(), "runs have segments");
        _beziersFromSegmentIntersections(path, run);
    }
    const auto outline = path.strokedOutline(path.lineStyle(), 0.5f);
    outline->bounds();
    if (!isPlain || path.lineWidth() < 0 || path.lineCap() == LineCap::Square)
        return; // a square cap may reach further than half the width
    for (const Point p : outline->points())
        expect(holdsPoint(strokeBounds, p, 0.01f * (extentOf(path) + 1)),
            "what is stroked lies within the stroke's bounds");
}

void combineAreas(const Path& path, const Path& other, bool isPlain)
{
    if (path.elementCount() > mostElementsForAreas || other.elementCount() > mostElementsForAreas)
        return;
    outlineStroke(path);
    const auto both = intersectBezierPath(path, other), either = uniteWithBezierPath(path, other);
    const auto rest = excludeBezierPath(path, other);
    if (!isPlain)
        return;
    const float margin = 1e-4f * (extentOf(path) + extentOf(other) + 1);
    for (const Point p : rest->points())
        expect(holdsPoint(path.bounds(), p, margin), "a difference lies within its first operand");
    for (const Point p : both->points())
        expect(holdsPoint(path.bounds(), p, margin) && holdsPoint(other.bounds(), p, margin),
            "an intersection lies within both operands");
    const Rect around = either->isEmpty() ? Rect {} : either->bounds();
    expect(either->isEmpty() || both->isEmpty() || holdsPoint(around, both->points().front(), margin),
        "a union holds the intersection");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = [] {
        VXUSetLogSink([](int, std::string_view, std::string_view) {});
        return true;
    }();
    (void)quiet;
    Reader reader(data, size);
    const std::uint8_t head = reader.byte();
    const Form form = formOf(head);
    const std::size_t split = size / 2;
    Reader first(data + std::min<std::size_t>(size, 1), split > 1 ? split - 1 : 0);
    Reader second(data + split, size - split);
    const Path path = readPath(first, form), other = readPath(second, form);
    const bool isPlain
        = extentOf(path) <= 1000 && extentOf(other) <= 1000 && std::fabs(path.lineWidth()) <= 1000;

    askQuestions(path, isPlain);
    measureStroke(path, isPlain);
    combineAreas(path, other, isPlain);
    const auto wobbled = pathByWobblingByUpToSubdivisions(path, 3, head / 4 % 8, head);
    if (isPlain && !path.isEmpty())
        for (const Point p : wobbled->points())
            expect(holdsPoint(path.bounds(), p, 3.01f), "wobbling stays within its distance");
    return 0;
}
