#include "Scene.h"

#include <vxr/geometry/Color.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRColorUtilities.h>

namespace vxr::demo {

namespace {

std::shared_ptr<Path> zigzag()
{
    auto path = Path::path();
    path->moveTo({ 25, 150 });
    path->lineTo({ 55, 40 });
    path->lineTo({ 85, 150 });
    path->curveTo({ 100, 60 }, { 150, 20 }, { 165, 110 });
    path->lineTo({ 115, 125 });
    path->setLineWidth(18);
    return path;
}

void strokeThin(const Path& path, const Color& color, float width = 1)
{
    VXRSetColor(color);
    auto line = path.copy();
    line->setLineWidth(width);
    line->stroke();
}

/// The stroke's area, its edge, and the path in the middle of it.
void drawOutline(const Path& path)
{
    if (const auto outline = outlineStroke(path)) {
        VXRSetColor(*Color::colorWithCalibratedRGB(0.99f, 0.85f, 0.55f));
        outline->fill();
        strokeThin(*outline, *Color::colorWithCalibratedRGB(0.75f, 0.35f, 0.10f));
    }
    strokeThin(path, *Color::blackColor(), 0.5f);
}

void drawOutlinedStrokes(Context& context)
{
    for (const LineJoin join : { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel }) {
        const auto path = zigzag();
        path->setLineJoin(join);
        drawOutline(*path);
        context.translate(185, 0);
    }
}

void drawWobbling(Context& context)
{
    auto shape = Path::pathWithRect({ 20, 20, 90, 70 });
    shape->appendOvalInRect({ 45, 35, 40, 40 });
    shape->setWindingRule(WindingRule::EvenOdd);
    for (const float distance : { 0.0f, 1.5f, 4.0f }) {
        const auto copy = pathByWobblingByUpToSubdivisions(*shape, distance, 6, 11);
        VXRSetColor(*Color::colorWithCalibratedRGB(0.65f, 0.80f, 0.95f));
        copy->fill();
        strokeThin(*copy, *Color::colorWithCalibratedRGB(0.10f, 0.25f, 0.50f), 2);
        context.translate(130, 0);
    }
}

/// Cuts the second half of a ring away along its middle line and lays beads along what is left.
void drawBeads(Context&)
{
    const auto ring = excludeBezierPath(
        *Path::pathWithOvalInRect({ 20, 20, 160, 120 }), *Path::pathWithOvalInRect({ 55, 50, 90, 60 }));
    const auto half = intersectBezierPath(*ring, *Path::pathWithRect({ 0, 0, 200, 80 }));
    VXRSetColor(*Color::colorWithCalibratedRGB(0.80f, 0.90f, 0.78f));
    ring->fill();
    VXRSetColor(*Color::colorWithCalibratedRGB(0.45f, 0.68f, 0.42f));
    half->fill();
    VXRSetColor(*Color::whiteColor());
    constexpr int beads = 40;
    for (int i = 0; i < beads; ++i) {
        const Point p = pointAlongPathAtPercentage(*half, static_cast<float>(i) / beads);
        Path::pathWithOvalInRect({ p.x - 3, p.y - 3, 6, 6 })->fill();
    }
}

} // namespace

std::vector<Scene> outlineScenes()
{
    return {
        { "outlined-strokes", "A stroke as an area, with mitred, round and bevelled joins.", { 560, 200 },
            drawOutlinedStrokes, {} },
        { "wobbling", "A shape and two copies that look drawn by hand.", { 400, 110 }, drawWobbling, {} },
        { "ring-and-beads", "A ring, its upper half, and beads at even distances along that half's outline.",
            { 200, 160 }, drawBeads, {} },
    };
}

} // namespace vxr::demo
