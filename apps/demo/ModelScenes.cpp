#include "Scene.h"

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <initializer_list>
#include <utility>

// Scenes of shapes: strokes, line ends, parametric shapes, shadows.

namespace vxr::demo {

namespace {

std::shared_ptr<Color> rgb(float red, float green, float blue, float alpha = 1)
{
    return Color::colorWithCalibratedRGB(red, green, blue, alpha);
}

const auto ink = rgb(0.13f, 0.17f, 0.24f);
const auto blue = rgb(0.18f, 0.42f, 0.70f);
const auto sand = rgb(0.96f, 0.87f, 0.70f);
const auto coral = rgb(0.90f, 0.42f, 0.33f);
const auto leaf = rgb(0.35f, 0.60f, 0.38f);

std::shared_ptr<VXRShape> shapeOf(
    std::shared_ptr<Path> path, std::shared_ptr<Color> fill, std::shared_ptr<VXRStroke> stroke)
{
    auto shape = VXRShape::shapeWithBezierPath(std::move(path));
    shape->setFill(std::move(fill));
    shape->setStroke(std::move(stroke));
    return shape;
}

std::shared_ptr<Path> zigzag(Point at)
{
    auto path = Path::path();
    path->moveTo({ at.x, at.y + 50 });
    for (const Point step : { Point { 30, 0 }, { 50, 50 }, { 80, 10 } })
        path->lineTo({ at.x + step.x, at.y + step.y });
    return path;
}

std::shared_ptr<Path> wave(Point at, float width, float height)
{
    auto path = Path::path();
    path->moveTo(at);
    path->curveTo({ at.x + width * 0.4f, at.y - height }, { at.x + width * 0.6f, at.y + height },
        { at.x + width, at.y });
    return path;
}

/// A row a join, a column a cap; below, the dash patterns with each cap.
Renderables dashesAndJoins()
{
    Renderables all;
    for (int join = 0; join < 3; ++join)
        for (int cap = 0; cap < 3; ++cap) {
            const Point at { 25 + 125 * static_cast<float>(cap), 20 + 75 * static_cast<float>(join) };
            all.push_back(shapeOf(zigzag(at), nullptr,
                VXRStroke::strokeWithColorWidthCapJoinPattern(
                    blue, 12, cap, join, VXRStrokePattern::solidPattern())));
            all.push_back(shapeOf(zigzag(at), nullptr, VXRStroke::strokeWithColorWidth(sand, 1)));
        }
    const float lengths[] = { 4, 1.5f, 0.01f, 1.5f };
    const std::shared_ptr<VXRStrokePattern> patterns[] = { VXRStrokePattern::shortDashPattern(),
        VXRStrokePattern::mediumDashPattern(), VXRStrokePattern::longDashPattern(),
        VXRStrokePattern::strokePatternWithPatternCountPhase(lengths, 4, 0) };
    float y = 265;
    for (const auto& pattern : patterns) {
        for (int cap = 0; cap < 3; ++cap)
            all.push_back(shapeOf(wave({ 20 + 125 * static_cast<float>(cap), y }, 95, 20), nullptr,
                VXRStroke::strokeWithColorWidthCapJoinPattern(ink, 5, cap, 0, pattern)));
        y += 32;
    }
    return all;
}

/// Each pair: the stroke over its path, and inside it. The path itself is drawn thin on top.
Renderables insideStrokes()
{
    Renderables all;
    float y = 30;
    for (const float width : { 4.0f, 10.0f, 18.0f }) {
        for (int column = 0; column < 4; ++column) {
            const Rect rect { 30 + 110 * static_cast<float>(column), y, 80, 70 };
            const auto path
                = [&] { return column < 2 ? Path::pathWithOvalInRect(rect) : Path::pathWithRect(rect); };
            const bool inside = column % 2 == 1;
            const auto pattern
                = width == 10 ? VXRStrokePattern::shortDashPattern() : VXRStrokePattern::solidPattern();
            auto shape = shapeOf(path(), sand,
                VXRStroke::strokeWithColorWidthCapJoinPattern(inside ? coral : blue, width, 0, 0, pattern));
            shape->setWantsInteriorStroke(inside);
            all.push_back(shape);
            all.push_back(shapeOf(path(), nullptr, VXRStroke::strokeWithColorWidth(ink, 0.75f)));
        }
        y += 105;
    }
    return all;
}

/// Every line end at three widths, then on curves.
Renderables lineEnds()
{
    using Make = std::shared_ptr<VXRLineEnd> (*)();
    constexpr Make kinds[] = { VXRLineEnd::simpleArrow, VXRLineEnd::openArrow, VXRLineEnd::filledArrow,
        VXRLineEnd::filledDiamond, VXRLineEnd::filledCircle, VXRLineEnd::filledSquare };
    Renderables all;
    float y = 30;
    for (const Make make : kinds) {
        float x = 30;
        for (const float width : { 1.0f, 3.0f, 6.0f }) {
            auto path = Path::path();
            path->moveTo({ x, y });
            path->lineTo({ x + 90, y });
            auto line = shapeOf(std::move(path), nullptr, VXRStroke::strokeWithColorWidth(blue, width));
            line->setHeadLineEnd(make());
            line->setTailLineEnd(make());
            all.push_back(std::move(line));
            x += 140;
        }
        auto curve = shapeOf(wave({ x, y }, 100, 45), nullptr, VXRStroke::strokeWithColorWidth(ink, 2));
        curve->setHeadLineEnd(make());
        curve->setTailLineEnd(make());
        all.push_back(std::move(curve));
        y += 42;
    }
    return all;
}

Renderables starsAndPolygons()
{
    Renderables all;
    for (int n = 3; n <= 8; ++n) {
        const float x = 20 + 95 * static_cast<float>(n - 3);
        auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(16, 40, n);
        star->setFill(sand);
        star->offsetTo({ x, 20 });
        all.push_back(star);

        auto sharp = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(16, 40, n);
        sharp->optimize();
        sharp->setFill(coral);
        sharp->offsetTo({ x, 120 });
        sharp->rotateByRadiansPivot(-1.5707963f, sharp->center());
        all.push_back(sharp);

        auto polygon = VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(40, n);
        polygon->setFill(leaf);
        polygon->setStroke(VXRStroke::strokeWithColorWidth(ink, 3));
        polygon->offsetTo({ x, 225 });
        all.push_back(polygon);
    }
    return all;
}

/// Rows of growing blur, columns of growing opacity and turning direction, over a band; then faded and
/// overlapping shapes.
Renderables shadows()
{
    Renderables all;
    all.push_back(shapeOf(Path::pathWithRect({ 0, 95, 520, 120 }), rgb(0.80f, 0.87f, 0.93f), nullptr));
    float y = 25;
    for (const int radius : { 0, 4, 12 }) {
        for (int column = 0; column < 5; ++column) {
            const Rect rect { 25 + 98 * static_cast<float>(column), y, 60, 50 };
            auto shape = shapeOf(column % 2 ? Path::pathWithOvalInRect(rect) : Path::pathWithRect(rect),
                column < 3 ? sand : leaf, nullptr);
            const auto step = static_cast<float>(column);
            shape->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
                45 + 60 * step, 10, radius, 0.2f + 0.2f * step, column == 4 ? coral : ink));
            all.push_back(std::move(shape));
        }
        y += 90;
    }
    for (int i = 0; i < 5; ++i) {
        const float x = 40 + 55 * static_cast<float>(i);
        auto shape = shapeOf(Path::pathWithOvalInRect({ x, 305, 100, 100 }), i % 2 ? blue : coral,
            VXRStroke::strokeWithColorWidth(sand, 4));
        shape->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(60, 8, 6, 0.6f, ink));
        shape->setOpacity(1 - 0.18f * static_cast<float>(i));
        all.push_back(std::move(shape));
    }
    auto arrow = shapeOf(wave({ 400, 370 }, 90, 60), nullptr, VXRStroke::strokeWithColorWidth(ink, 5));
    arrow->setHeadLineEnd(VXRLineEnd::simpleArrow());
    arrow->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(90, 12, 3, 0.5f, ink));
    all.push_back(std::move(arrow));
    return all;
}

} // namespace

std::vector<Scene> modelScenes()
{
    return {
        sceneOfRenderables("dashes-and-joins",
            "Mitred, round and bevelled joins with each cap; dashes on a curve.", { 400, 390 },
            dashesAndJoins),
        sceneOfRenderables("inside-strokes",
            "Strokes over the path in blue, inside it in red, 4, 10 and 18 wide.", { 470, 345 },
            insideStrokes),
        sceneOfRenderables(
            "line-ends", "Line ends at strokes of 1, 3 and 6, and along a curve.", { 570, 270 }, lineEnds),
        sceneOfRenderables("stars-and-polygons", "Stars, stars with edges in line, and regular polygons.",
            { 600, 325 }, starsAndPolygons),
        sceneOfRenderables("shadows",
            "Shadows in every direction, by blur and opacity, and under faded shapes.", { 520, 430 },
            shadows),
    };
}

} // namespace vxr::demo
