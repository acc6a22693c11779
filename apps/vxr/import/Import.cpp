#include "Import.h"

#include "Clips.h"
#include "DrawnGroup.h"
#include "DrawnPicture.h"
#include "DrawnShape.h"
#include "Gradients.h"
#include "OutlineStroke.h"
#include "PictureReferences.h"

#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRStrokePattern.h>

namespace app {

namespace {

using Renderables = std::vector<std::shared_ptr<vxr::VXRRenderable>>;

float canvasWidthOf(const svg::Stroke& stroke, const svg::Matrix& toCanvas)
{
    const double scale = !stroke.scales ? 1
        : toCanvas.isSimilarity()       ? std::sqrt(std::fabs(toCanvas.determinant()))
                                        : toCanvas.largestScale();
    return static_cast<float>(stroke.width * scale);
}

/// Whether the library's own stroke, whose pen is round on the canvas and takes one colour and at most six
/// dashes, draws it as it should be.
bool fitsPlainStroke(const svg::Stroke& stroke, const svg::Matrix& toCanvas)
{
    return stroke.paint.kind == svg::Paint::Kind::Color && (!stroke.scales || toCanvas.isSimilarity())
        && stroke.dash.size() <= vxr::VXRStrokePattern::capacity;
}

std::shared_ptr<vxr::VXRStroke> plainStroke(const svg::Stroke& stroke, float width)
{
    std::shared_ptr<vxr::VXRStrokePattern> pattern = vxr::VXRStrokePattern::solidPattern();
    if (!stroke.dash.empty()) {
        std::vector<float> dash;
        for (double length : stroke.dash)
            dash.push_back(static_cast<float>(length / stroke.width));
        pattern = vxr::VXRStrokePattern::strokePatternWithPatternCountPhase(
            dash.data(), static_cast<int>(dash.size()), static_cast<float>(stroke.dashOffset / stroke.width));
    }
    auto result = vxr::VXRStroke::strokeWithColorWidthCapJoinPattern(colorFrom(stroke.paint.color), width,
        static_cast<int>(stroke.cap), static_cast<int>(stroke.join), std::move(pattern));
    result->setMiterLimit(static_cast<float>(stroke.miterLimit));
    return result;
}

std::shared_ptr<vxr::VXRStroke> strokeFrom(const svg::Shape& shape, svg::Vec origin)
{
    const svg::Stroke& stroke = shape.stroke;
    if (!stroke.paints())
        return nullptr;
    const float width = canvasWidthOf(stroke, shape.toCanvas);
    if (fitsPlainStroke(stroke, shape.toCanvas))
        return plainStroke(stroke, width);
    // A pen that doesn't scale is undone in the local frame; exact where the transform keeps circles.
    const double unit = stroke.scales ? 1 : 1 / shape.toCanvas.largestScale();
    vxr::LineStyle pen;
    pen.width = static_cast<float>(stroke.width * unit);
    pen.cap = static_cast<vxr::LineCap>(stroke.cap);
    pen.join = static_cast<vxr::LineJoin>(stroke.join);
    pen.miterLimit = static_cast<float>(stroke.miterLimit);
    for (double length : stroke.dash)
        pen.dash.push_back(static_cast<float>(length * unit));
    pen.dashPhase = static_cast<float>(stroke.dashOffset * unit);
    return std::make_shared<OutlineStroke>(
        std::move(pen), width, painterFrom(stroke.paint, shape.outline, stroke.reach() * unit, origin));
}

/// The library draws a line end scaled by a function of the line's width, its +y axis pointing away from
/// the line.
std::shared_ptr<vxr::VXRLineEnd> lineEndFrom(const svg::LineEnd& end, const svg::Shape& shape)
{
    const double width = canvasWidthOf(shape.stroke, shape.toCanvas);
    const double ownScale = width <= 1 ? width : (width - 1) * 0.6 + 1;
    const double scale = std::sqrt(std::fabs(shape.toCanvas.determinant())) / ownScale;
    const svg::Matrix turn { 0, scale, -scale, 0, 0, 0 };
    return vxr::VXRLineEnd::lineEndWithPathEndPointIsFilled(
        pathFrom(end.outline.transformed(turn)), vxr::Point {}, true);
}

class Importer {
public:
    Importer(ImportedDrawing& result, const std::string& folder)
        : mResult(result)
        , mPictures(folder)
    {
    }

    Renderables import(const std::vector<svg::Node>& nodes)
    {
        Renderables renderables;
        for (const svg::Node& node : nodes) {
            if (const svg::Shape* shape = std::get_if<svg::Shape>(&node.content))
                renderables.push_back(import(*shape));
            else
                renderables.push_back(import(std::get<svg::Group>(node.content)));
        }
        return renderables;
    }

private:
    std::shared_ptr<vxr::VXRRenderable> import(const svg::Shape& shape)
    {
        if (shape.picture)
            return importPlacedPicture(shape);
        const std::shared_ptr<vxr::Path> path = pathFrom(shape.outline, shape.fillRule);
        const vxr::Point origin = path->bounds().origin;
        const svg::Vec offset { origin.x, origin.y };
        auto result = vxr::VXRShape::shapeWithBezierPath<DrawnShape>(path);
        result->setTransform(transformFrom(shape.toCanvas * svg::Matrix::translation(offset.x, offset.y)));
        result->setFill(painterFrom(shape.fill, shape.outline, 0, offset));
        result->setStroke(strokeFrom(shape, offset));
        result->setOpacity(static_cast<float>(shape.opacity));
        if (shape.startEnd)
            result->setTailLineEnd(lineEndFrom(*shape.startEnd, shape));
        if (shape.finalEnd)
            result->setHeadLineEnd(lineEndFrom(*shape.finalEnd, shape));
        ++mResult.shapeCount;
        note(*result, shape.element, shape.id, shape.line);
        return result;
    }

    std::shared_ptr<vxr::VXRRenderable> importPlacedPicture(const svg::Shape& shape)
    {
        std::string reason;
        const auto binary = mPictures.binary(shape.picture->reference, reason);
        if (!reason.empty())
            mResult.warnings.push_back({ shape.line, reason });
        const auto result = drawnPicture(*shape.picture, binary, shape.toCanvas);
        result->setOpacity(static_cast<float>(shape.opacity));
        ++mResult.shapeCount;
        note(*result, shape.element, shape.id, shape.line);
        return result;
    }

    std::shared_ptr<vxr::VXRRenderable> import(const svg::Group& group)
    {
        auto result = std::make_shared<DrawnGroup>();
        result->setRenderables(import(group.children));
        if (group.clip) {
            const ClipPaths clip = clipPathsFrom(*group.clip);
            result->setClipPaths({ clip.begin(), clip.end() });
        }
        result->setOpacity(static_cast<float>(group.opacity));
        note(*result, group.element, group.id, group.line);
        return result;
    }

    void note(
        const vxr::VXRRenderable& renderable, const std::string& element, const std::string& id, int line)
    {
        mResult.sources[&renderable] = { id.empty() ? element : element + "#" + id, line };
    }

    ImportedDrawing& mResult;
    PictureReferences mPictures;
};

} // namespace

ImportedDrawing importDrawing(const svg::Drawing& drawing, const std::string& folder)
{
    ImportedDrawing result;
    result.size = { static_cast<float>(drawing.width), static_cast<float>(drawing.height) };
    result.renderables = Importer(result, folder).import(drawing.nodes);
    return result;
}

} // namespace app
