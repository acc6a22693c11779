// The part of the builder that handles single shapes: outlines, paints, markers and clips.

#include "Builder.h"

#include <fmt/format.h>

#include <numbers>

namespace app::svg {

namespace {
constexpr double invisiblePart = 1e-3; ///< of a line's width
} // namespace

double Builder::length(
    const XmlElement& element, const char* name, double whole, const Style& style, double fallback)
{
    const std::string* text = element.attribute(name);
    if (!text || trimmed(*text) == "auto")
        return fallback;
    const std::optional<Length> value = parseLength(*text);
    if (!value) {
        mDocument.warnOnce(
            "length", element.line, fmt::format("'{}' is no length for {}", text->substr(0, 60), name));
        return fallback;
    }
    return value->resolved(whole, style.fontSize);
}

Outline Builder::pathOutline(const XmlElement& element)
{
    const std::string* data = element.attribute("d");
    if (!data)
        return {};
    PathData path = parsePathData(*data);
    if (!path.isComplete && trimmed(*data) != "none")
        mDocument.warn(element.line,
            fmt::format("the path is drawn up to the error at '{}'", data->substr(path.errorOffset, 20)));
    return std::move(path.outline);
}

Outline Builder::pointsOutline(const XmlElement& element, bool closed)
{
    const std::string* points = element.attribute("points");
    if (!points)
        return {};
    PathData path = parsePoints(*points, closed);
    if (!path.isComplete)
        mDocument.warn(element.line,
            fmt::format("the points are used up to the error at '{}'", points->substr(path.errorOffset, 20)));
    return std::move(path.outline);
}

std::optional<Outline> Builder::outlineOf(const XmlElement& element, const Scope& scope)
{
    const double w = scope.viewport.width;
    const double h = scope.viewport.height;
    const auto at = [&](const char* name, double whole, double fallback = 0) {
        return length(element, name, whole, scope.style, fallback);
    };
    Outline outline;
    if (element.name == "path") {
        outline = pathOutline(element);
    } else if (element.name == "polyline" || element.name == "polygon") {
        outline = pointsOutline(element, element.name == "polygon");
    } else if (element.name == "line") {
        outline.moveTo({ at("x1", w), at("y1", h) });
        outline.lineTo({ at("x2", w), at("y2", h) });
    } else if (element.name == "rect") {
        // A missing radius equals the other one.
        const double rx = at("rx", w, -1);
        const double ry = at("ry", h, -1);
        const double width = at("width", w);
        const double height = at("height", h);
        if (width > 0 && height > 0)
            outline = Outline::rectangle(
                at("x", w), at("y", h), width, height, rx < 0 ? ry : rx, ry < 0 ? rx : ry);
    } else {
        const bool isCircle = element.name == "circle";
        double rx = isCircle ? at("r", scope.viewport.diagonal()) : at("rx", w, -1);
        double ry = isCircle ? rx : at("ry", h, -1);
        rx = rx < 0 && !isCircle ? ry : rx;
        ry = ry < 0 && !isCircle ? rx : ry;
        if (rx > 0 && ry > 0)
            outline = Outline::ellipse({ at("cx", w), at("cy", h) }, rx, ry);
    }
    if (outline.isEmpty())
        return std::nullopt;
    return outline;
}

void Builder::addShape(const XmlElement& element, const Scope& scope, Nodes& out)
{
    std::optional<Outline> outline = outlineOf(element, scope);
    if (!outline || !scope.style.isVisible)
        return;
    const Style& style = scope.style;
    Shape shape;
    shape.element = element.name;
    if (const std::string* id = element.attribute("id"))
        shape.id = *id;
    shape.line = element.line;
    shape.toCanvas = scope.toCanvas;
    shape.fillRule = style.fillRule;
    const Box bounds = outline->bounds();
    if (element.name != "line")
        shape.fill = paint(style.fill, style.fillOpacity, scope, bounds, element.line);
    shape.stroke = { {}, style.strokeWidth, style.cap, style.join, style.miterLimit, style.dash,
        style.dashOffset, style.scalesStroke };
    shape.stroke.paint = paint(style.stroke, style.strokeOpacity, scope, bounds, element.line);
    shape.outline = std::move(*outline);

    Nodes markers;
    const bool mayHaveMarkers = element.name == "path" || element.name == "line" || element.name == "polyline"
        || element.name == "polygon";
    if (mayHaveMarkers && !(style.markerStart.empty() && style.markerMid.empty() && style.markerEnd.empty()))
        addMarkers(shape, scope, markers);
    if (shape.stroke.paints() && shape.stroke.cap != Cap::Butt)
        shape.outline = shape.outline.withDotsOfLength(shape.stroke.width * invisiblePart);
    if (shape.fill.kind != Paint::Kind::None || shape.stroke.paints()) {
        countShape(element);
        out.push_back({ std::move(shape) });
    }
    std::move(markers.begin(), markers.end(), std::back_inserter(out));
}

void Builder::countShape(const XmlElement& element)
{
    if (++mShapes > mDocument.limits().shapes)
        throw DocumentError(
            element.line, fmt::format("the drawing has more than {} shapes", mDocument.limits().shapes));
}

void Builder::addMarkers(Shape& shape, const Scope& scope, Nodes& after)
{
    const std::vector<MarkerVertex> vertices = markerVertices(shape.outline);
    const auto markerFor = [&](const std::string& id) -> const XmlElement* {
        if (id.empty())
            return nullptr;
        const XmlElement* marker = mDocument.elementWithId(id);
        if (marker && marker->name == "marker")
            return marker;
        mDocument.warnOnce("marker", shape.line, fmt::format("there is no marker '{}'", id));
        return nullptr;
    };
    const XmlElement* start = markerFor(scope.style.markerStart);
    const XmlElement* middle = markerFor(scope.style.markerMid);
    const XmlElement* end = markerFor(scope.style.markerEnd);
    const auto add = [&](const XmlElement* marker, const MarkerVertex& vertex, bool isStart, bool isEnd) {
        if (!marker)
            return;
        Nodes nodes = markerNodes(*marker, shape, scope, vertex, isStart);
        const std::string* orient = marker->attribute("orient");
        const bool follows = orient && trimmed(*orient).starts_with("auto");
        std::optional<LineEnd> lineEnd;
        if (follows && (isStart || isEnd))
            lineEnd = lineEndFrom(nodes, shape, vertex, isStart);
        if (lineEnd)
            (isStart ? shape.startEnd : shape.finalEnd) = std::move(lineEnd);
        else
            std::move(nodes.begin(), nodes.end(), std::back_inserter(after));
    };
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (i == 0)
            add(start, vertices[i], true, false);
        if (i > 0 && i + 1 < vertices.size())
            add(middle, vertices[i], false, false);
        if (i + 1 == vertices.size())
            add(end, vertices[i], false, true);
    }
}

double Builder::markerAngle(const XmlElement& marker, const MarkerVertex& vertex, bool isStart)
{
    const std::string* orient = marker.attribute("orient");
    if (!orient)
        return 0;
    const std::string_view text = trimmed(*orient);
    if (text == "auto")
        return vertex.angle;
    if (text == "auto-start-reverse")
        return vertex.angle + (isStart ? std::numbers::pi : 0);
    const std::optional<double> degrees = parseAngle(text);
    if (!degrees)
        mDocument.warnOnce("orient", marker.line, fmt::format("'{}' is no angle for orient", *orient));
    return degrees.value_or(0) * std::numbers::pi / 180;
}

double Builder::markerScale(const XmlElement& marker, const Shape& shape)
{
    const std::string* units = marker.attribute("markerUnits");
    if (units && *units == "userSpaceOnUse")
        return 1;
    if (units && *units != "strokeWidth")
        mDocument.warnOnce(
            "markerUnits", marker.line, fmt::format("'{}' is no value for markerUnits", *units));
    if (!shape.stroke.scales)
        mDocument.warnOnce(
            "marker scale", marker.line, "markers of a stroke that doesn't scale are scaled all the same");
    return shape.stroke.width;
}

Builder::Nodes Builder::markerNodes(const XmlElement& marker, const Shape& shape, const Scope& scope,
    const MarkerVertex& vertex, bool isStart)
{
    mDocument.visit(marker);
    if (!enter(marker))
        return {};
    Scope inner;
    inner.depth = scope.depth + 1;
    inner.contextFill = &shape.fill;
    inner.contextStroke = &shape.stroke.paint;
    inner.style = mDocument.styleInPlace(marker, scope.viewport);

    const double width = length(marker, "markerWidth", scope.viewport.width, inner.style, 3);
    const double height = length(marker, "markerHeight", scope.viewport.height, inner.style, 3);
    inner.viewport = { width, height };
    Matrix content;
    const std::string* text = marker.attribute("viewBox");
    const std::optional<Box> box = text ? parseViewBox(*text) : std::nullopt;
    if (box && box->width() > 0 && box->height() > 0) {
        const std::string* aspect = marker.attribute("preserveAspectRatio");
        content = viewBoxTransform(*box, width, height,
            aspect ? parseAspectRatio(*aspect).value_or(AspectRatio {}) : AspectRatio {});
        inner.viewport = { box->width(), box->height() };
    }
    const double scale = markerScale(marker, shape);
    const Vec reference = content.map({ length(marker, "refX", inner.viewport.width, inner.style),
        length(marker, "refY", inner.viewport.height, inner.style) });
    const Matrix place = scope.toCanvas * Matrix::translation(vertex.point.x, vertex.point.y)
        * Matrix::rotation(markerAngle(marker, vertex, isStart)) * Matrix::scaling(scale, scale)
        * Matrix::translation(-reference.x, -reference.y);
    inner.toCanvas = place * content;
    Nodes nodes;
    if (width > 0 && height > 0 && inner.toCanvas.isInvertible())
        addChildren(marker, inner, nodes);
    leave();
    if (!inner.style.overflowVisible)
        clipToBox(marker, { 0, 0, width, height }, place, nodes);
    return nodes;
}

std::optional<LineEnd> Builder::lineEndFrom(
    const Nodes& nodes, const Shape& shape, const MarkerVertex& vertex, bool isStart)
{
    // The model has line ends on open paths of one piece, filled with the colour of the stroke, and turned
    // along the last segment's own tangent.
    const std::vector<Verb>& verbs = shape.outline.verbs();
    const bool isOpenRun = verbs.size() > 1 && std::count(verbs.begin(), verbs.end(), Verb::Move) == 1
        && std::count(verbs.begin(), verbs.end(), Verb::Close) == 0;
    const std::vector<Vec>& points = shape.outline.points();
    const std::size_t last = points.size() - 1;
    const bool hasTangent
        = isOpenRun && (isStart ? points[0] != points[1] : points[last] != points[last - 1]);
    const Stroke& stroke = shape.stroke;
    if (!hasTangent || nodes.size() != 1 || !stroke.paints() || stroke.paint.kind != Paint::Kind::Color
        || !stroke.scales || !shape.toCanvas.isSimilarity() || shape.toCanvas.determinant() < 0)
        return std::nullopt;
    const Shape* figure = std::get_if<Shape>(&nodes.front().content);
    if (!figure || figure->fill.kind != Paint::Kind::Color || figure->fill.color != stroke.paint.color
        || figure->stroke.paints() || figure->opacity != 1 || figure->fillRule != FillRule::NonZero)
        return std::nullopt;
    const double outwards = vertex.angle + (isStart ? std::numbers::pi : 0);
    const Matrix toEnd = Matrix::rotation(-outwards) * Matrix::translation(-vertex.point.x, -vertex.point.y)
        * shape.toCanvas.inverse() * figure->toCanvas;
    return LineEnd { figure->outline.transformed(toEnd) };
}

std::shared_ptr<const Clip> Builder::clip(
    const std::string& id, int line, const Scope& user, const Nodes& nodes)
{
    const XmlElement* element = mDocument.elementWithId(id);
    if (!element || element->name != "clipPath") {
        mDocument.warnOnce("clip-path", line, fmt::format("there is no clip path '{}'", id));
        return nullptr;
    }
    auto result = std::make_shared<Clip>();
    if (!enter(*element))
        return result;
    mDocument.visit(*element);
    Scope scope;
    scope.depth = user.depth + 1;
    scope.viewport = user.viewport;
    scope.style = mDocument.styleInPlace(*element, user.viewport);
    scope.toCanvas = user.toCanvas;
    const std::string* units = element->attribute("clipPathUnits");
    if (units && *units == "objectBoundingBox") {
        const Box box = boundsOf(nodes, user.toCanvas.inverse());
        scope.viewport = { 1, 1 };
        scope.toCanvas = box.isNone()
            ? Matrix { 0, 0, 0, 0, 0, 0 }
            : user.toCanvas * Matrix { box.width(), 0, 0, box.height(), box.minX, box.minY };
    }
    scope.toCanvas = scope.toCanvas * transformOf(*element, scope.style);
    if (scope.toCanvas.isInvertible()) {
        for (const XmlElement& child : element->children)
            addClipAreas(child, scope, *result);
    }
    if (!scope.style.clipPath.empty())
        result->within = clip(scope.style.clipPath, element->line, scope, nodes);
    leave();
    return result;
}

void Builder::addClipAreas(const XmlElement& element, const Scope& scope, Clip& clipTo)
{
    const bool isUse = element.name == "use";
    static constexpr std::string_view shapes[]
        = { "path", "rect", "circle", "ellipse", "line", "polyline", "polygon" };
    if (!isUse && std::find(std::begin(shapes), std::end(shapes), element.name) == std::end(shapes)) {
        if (element.name == "text")
            mDocument.warnOnce("text", element.line, "text is not drawn");
        return;
    }
    mDocument.visit(element);
    if (scope.depth > mDocument.limits().depth)
        throw DocumentError(
            element.line, fmt::format("references are nested more than {} deep", mDocument.limits().depth));
    Scope own = scope;
    ++own.depth;
    own.style = mDocument.styleOf(element, scope.style, scope.viewport);
    own.toCanvas = scope.toCanvas * transformOf(element, own.style);
    if (!own.style.isDisplayed || !own.toCanvas.isInvertible())
        return;
    const std::size_t first = clipTo.areas.size();
    if (isUse) {
        const XmlElement* target = mDocument.referenced(element);
        if (!target || target->name == "use" || !enter(*target))
            return;
        own.toCanvas = own.toCanvas
            * Matrix::translation(length(element, "x", own.viewport.width, own.style),
                length(element, "y", own.viewport.height, own.style));
        addClipAreas(*target, own, clipTo);
        leave();
    } else if (own.style.isVisible) {
        if (std::optional<Outline> outline = outlineOf(element, own))
            clipTo.areas.push_back({ outline->transformed(own.toCanvas), own.style.clipRule, {} });
    }
    if (own.style.clipPath.empty() || clipTo.areas.size() == first)
        return;
    // Only what this element has added is cut.
    Shape stand;
    stand.outline = clipTo.areas[first].outline;
    Nodes content;
    content.push_back({ std::move(stand) });
    const std::shared_ptr<const Clip> within = clip(own.style.clipPath, element.line, own, content);
    for (std::size_t i = first; i < clipTo.areas.size(); ++i)
        clipTo.areas[i].within = within;
}

} // namespace app::svg
