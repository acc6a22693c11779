#include <bench/Compare.h>

#include <vxr/textwrap/VXRTextWrap.h>

#include <cmath>
#include <memory>

// A column of 1,000 lines beside one outline of 2,000 vertices.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::Pair;

constexpr int lineCount = 1000;
constexpr float lineHeight = 12;
constexpr int wrapAround = 1;

/// An outline with nine lobes, as tall as the column.
std::shared_ptr<Path> outline()
{
    constexpr int vertices = 2000;
    constexpr float radius = lineCount * lineHeight / 2;
    auto path = Path::path();
    for (int i = 0; i < vertices; ++i) {
        const double angle = 2 * M_PI * i / vertices;
        const double r = radius * (0.8 + 0.19 * std::sin(9 * angle));
        const Point p { radius + float(r * std::cos(angle)), radius + float(r * std::sin(angle)) };
        i == 0 ? path->moveTo(p) : path->lineTo(p);
    }
    path->close();
    return path;
}

Rect line(int index) { return { 0, float(index) * lineHeight, lineCount * lineHeight, lineHeight }; }

/// One line in turn, from the path to the rectangles, nothing remembered: convert, clip, read back.
void wrapAfresh(const Path& path, const Rect& rect)
{
    const VXRPolygonOwner polygon(polygonFromBezier(path)), linePolygon(polygonFromRect(rect)),
        result(emptyPolygon());
    gpc_polygon_clip(GPC_INT, linePolygon.get(), polygon.get(), result.get());
    wrappedSubrectsFromPolygon(result.get(), rect);
}

const int oneLine = bench::compare("TEXTWRAP/line-cached-to-uncached", atMost(0.02), [] {
    const auto path = outline();
    // Eighty lines spread over the column, so that one call is long enough to time.
    constexpr int stride = lineCount / 80;
    const auto cached = [path] {
        for (int i = 0; i < lineCount; i += stride)
            VXRTextWrap::wrappedSubrectsForRectPathType(line(i), path, wrapAround);
    };
    const auto uncached = [path] {
        for (int i = 0; i < lineCount; i += stride)
            wrapAfresh(*path, line(i));
    };
    return Pair { cached, uncached };
});

const int newPath = bench::compare("TEXTWRAP/first-line-of-a-path-to-uncached", atMost(1), [] {
    const auto path = outline(), other = path->copy();
    const auto first = [path, other] {
        VXRTextWrap::wrappedSubrectsForRectPathType(line(lineCount / 2), path, wrapAround);
        VXRTextWrap::wrappedSubrectsForRectPathType(line(lineCount / 2), other, wrapAround);
    };
    const auto uncached = [path] {
        wrapAfresh(*path, line(lineCount / 2));
        wrapAfresh(*path, line(lineCount / 2));
    };
    return Pair { first, uncached };
});

const int columnCached = bench::measure("TEXTWRAP/1000-lines-cached-ns", atMost(20e6), [] {
    const auto path = outline();
    return bench::nanosecondsPerCall([path] {
        for (int i = 0; i < lineCount; ++i)
            VXRTextWrap::wrappedSubrectsForRectPathType(line(i), path, wrapAround);
    });
});

const int columnUncached = bench::measure("TEXTWRAP/1000-lines-uncached-ns", atMost(1e9), [] {
    const auto path = outline();
    return bench::nanosecondsPerCall([path] {
        for (int i = 0; i < lineCount; ++i)
            wrapAfresh(*path, line(i));
    });
});

} // namespace
