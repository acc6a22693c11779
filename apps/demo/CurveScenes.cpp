#include "Scene.h"

#include <vxr/geometry/Color.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/curves/CubicIntersections.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/geometry/curves/PathOutset.h>
#include <vxr/geometry/curves/PathSimplification.h>
#include <vxr/geometry/tracing/VXRImageTracer.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/textwrap/VXRTextWrap.h>

#include <cmath>
#include <random>

namespace vxr::demo {

namespace {

void stroke(Context& context, const Path& path, const ColorValue& color, float width)
{
    context.setStrokeColor(color);
    LineStyle style;
    style.width = width;
    style.join = LineJoin::Round;
    context.strokePath(path, style);
}

void dot(Context& context, Vec2 p, float radius, const ColorValue& color)
{
    context.setFillColor(color);
    const Point at = p.point();
    context.fillPath(*Path::pathWithOvalInRect({ at.x - radius, at.y - radius, 2 * radius, 2 * radius }),
        WindingRule::NonZero);
}

std::shared_ptr<Path> pathOfCurves(const std::vector<Cubic>& curves)
{
    auto path = Path::path();
    appendCurves(*path, curves, false);
    return path;
}

/// Two curves with their meetings, places at even lengths, and the way from a point to the nearest place.
void drawCurveTools(Context& context)
{
    const Cubic a { { 20, 140 }, { 90, -60 }, { 120, 250 }, { 240, 30 } },
        b { { 20, 40 }, { 230, 190 }, { 60, -60 }, { 240, 140 } };
    for (const Cubic& c : { a, b }) {
        stroke(context, *pathOfCurves({ c }), ColorValue::gray(0.35f), 2);
        const double length = lengthOf(c);
        for (int i = 0; i <= 12; ++i)
            dot(context, pointAt(c, parameterAtLength(c, length * i / 12)), 2.5f,
                ColorValue::rgb(0.2f, 0.45f, 0.8f));
    }
    for (const CurveCrossing& crossing : crossingsOf(a, b).crossings)
        dot(context, pointAt(a, crossing.first), 4.5f, ColorValue::rgb(0.85f, 0.2f, 0.15f));
    for (const Vec2& p : { Vec2(60, 120), Vec2(190, 110), Vec2(225, 80) }) {
        const Vec2 nearest = pointAt(a, nearestPoint(a, p).t);
        stroke(context, *pathOfCurves({ cubicFromLine(p, nearest) }), ColorValue::rgb(0.15f, 0.6f, 0.3f), 1);
        dot(context, p, 2.5f, ColorValue::rgb(0.15f, 0.6f, 0.3f));
    }
}

/// A trembling pen line and what is left of it at two tolerances.
void drawFitting(Context& context)
{
    std::mt19937 engine(4);
    const auto noise = [&] { return static_cast<float>(engine() >> 8) * 0x1p-24f - 0.5f; };
    auto drawn = Path::path();
    for (int i = 0; i <= 180; ++i) {
        const float t = static_cast<float>(i) / 180, y = 55 + 35 * std::sin(t * 9) * (1 - 0.5f * t);
        const Point p { 20 + 210 * t + 1.5f * noise(),
            (t > 0.55f && t < 0.6f ? y - 30 : y) + 1.5f * noise() };
        i == 0 ? drawn->moveTo(p) : drawn->lineTo(p);
    }
    float y = 0;
    for (const double tolerance : { 0.0, 1.2, 6.0 }) {
        const auto simple = simplifiedPath(*drawn, tolerance);
        const auto moved = simple->transformedBy(AffineTransform::makeTranslation(0, y));
        stroke(context, *moved, ColorValue::rgb(0.15f, 0.3f, 0.6f), 1.5f);
        const Point* p = moved->points().data();
        if (tolerance > 0)
            for (const PathElementKind kind : moved->kinds()) {
                p += pathPointCount(kind);
                dot(context, p[-1], 2.5f, ColorValue::rgb(0.85f, 0.35f, 0.1f));
            }
        y += 95;
    }
}

void drawOffsets(Context& context)
{
    auto path = Path::path();
    path->moveTo({ 70, 60 });
    path->curveTo({ 110, 20 }, { 160, 100 }, { 200, 60 });
    path->lineTo({ 200, 150 });
    path->curveTo({ 160, 120 }, { 110, 120 }, { 70, 150 });
    path->close();
    for (int i = -3; i <= 4; ++i)
        stroke(context, *outsetPath(*path, i * 9, 0.05),
            i == 0 ? ColorValue::gray(0)
                   : ColorValue::rgb(0.25f + 0.08f * float(i), 0.5f, 0.75f - 0.08f * float(i)),
            i == 0 ? 2.5f : 1);
}

/// A picture of a pear with a leaf, made of pixels.
std::shared_ptr<const Image> pear()
{
    constexpr int width = 90, height = 120;
    std::vector<std::uint32_t> pixels(std::size_t(width) * height);
    for (int row = 0; row < height; ++row)
        for (int x = 0; x < width; ++x) {
            const double u = (x - 42.0) / 38, v = (row - 78.0) / 38, w = (row - 45.0) / 26;
            const bool body = u * u + v * v < 1 || (u * u * 3.2 + w * w < 1 && row < 80);
            const double lx = x - 58.0, ly = row - 14.0;
            const bool leaf = std::hypot(lx + ly, (ly - lx) * 2.6) < 24;
            const bool stem = std::abs(x - 42 - (20 - row) * 0.15) < 2.5 && row > 4 && row < 26;
            const auto light = static_cast<std::uint32_t>(150 + 90 * std::max(0.0, -u - v) / 2);
            if (leaf)
                pixels[std::size_t(row) * width + std::size_t(x)] = 0xff3f8f3f;
            else if (stem)
                pixels[std::size_t(row) * width + std::size_t(x)] = 0xff5a3c1e;
            else if (body)
                pixels[std::size_t(row) * width + std::size_t(x)]
                    = 0xff000000 | light << 16 | (light - 10) << 8 | 0x40;
        }
    return Image::createWithCopy(
        ImageLayout::nativeARGB(width, height, width * 4), pixels.data(), pixels.size() * 4);
}

/// Words as bars around the outline that is traced from the picture.
void drawTracedPicture(Context& context)
{
    const auto image = pear();
    const Rect frame(110, 30, 135, 180);
    {
        const StateSaver saved(context);
        context.translate(0, frame.minY() + frame.maxY());
        context.scale(1, -1);
        context.drawImage(frame, *image);
    }
    const VXRTrace trace = VXRImageTracer::traceImageInRect(*image, frame);
    auto wide = trace.path->copy();
    wide->setLineWidth(16);
    wide->setLineJoin(LineJoin::Round);
    const auto margin = uniteWithBezierPath(*trace.path, *outlineStroke(*wide));
    stroke(context, *trace.path, ColorValue::rgb(0.85f, 0.2f, 0.15f), 1.5f);
    stroke(context, *margin, ColorValue::rgb(0.6f, 0.6f, 0.65f), 0.7f);
    context.setFillColor(ColorValue::gray(0.3f));
    unsigned word = 1;
    constexpr float lineHeight = 9;
    for (float y = 10; y + lineHeight <= 235; y += lineHeight)
        for (const Rect& piece :
            VXRTextWrap::wrappedSubrectsForRectPathType({ 15, y, 330, lineHeight }, margin, 1)) {
            float x = piece.minX() + 1;
            for (;;) {
                word = word * 1103515245u + 12345u;
                const float width = 5 + static_cast<float>((word >> 16) % 17);
                if (x + width > piece.maxX() - 1)
                    break;
                context.fillRect({ x, piece.minY() + 2, width, piece.size.height - 4 });
                x += width + 3;
            }
        }
}

} // namespace

std::vector<Scene> curveScenes()
{
    return {
        { "curve-tools",
            "Two curves marked at even lengths and where they meet, and points with the places nearest to "
            "them.",
            { 260, 180 }, drawCurveTools, {} },
        { "curve-fitting",
            "A pen's line of 180 points, and the curves that are left of it at two tolerances.", { 250, 300 },
            drawFitting, {} },
        { "parallel-outlines", "An outline and its parallels.", { 270, 210 }, drawOffsets, {} },
        { "traced-picture", "A picture, the outline traced from its pixels, and text around it.",
            { 360, 245 }, drawTracedPicture, {} },
    };
}

} // namespace vxr::demo
