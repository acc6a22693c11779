#include "Builder.h"

#include "Gzip.h"

#include <fmt/format.h>

namespace app::svg {

namespace {

enum class Role { Container, Switch, Use, Viewport, Shape, Image, Silent, Skipped };

Role roleOf(std::string_view name)
{
    static const std::unordered_map<std::string_view, Role> roles { { "g", Role::Container },
        { "a", Role::Container }, { "switch", Role::Switch }, { "use", Role::Use }, { "svg", Role::Viewport },
        { "path", Role::Shape }, { "rect", Role::Shape }, { "circle", Role::Shape },
        { "ellipse", Role::Shape }, { "line", Role::Shape }, { "polyline", Role::Shape },
        { "polygon", Role::Shape }, { "text", Role::Skipped }, { "image", Role::Image },
        { "foreignObject", Role::Skipped }, { "animate", Role::Skipped },
        { "animateTransform", Role::Skipped }, { "animateMotion", Role::Skipped }, { "set", Role::Skipped } };
    const auto found = roles.find(name);
    return found == roles.end() ? Role::Silent : found->second;
}

} // namespace

Builder::Builder(Document& document)
    : mDocument(document)
    , mPaints(document)
{
}

void Builder::build(Drawing& drawing)
{
    const XmlElement& root = mDocument.root();
    const auto read = [&](const char* name) -> std::optional<Length> {
        const std::string* text = root.attribute(name);
        const std::optional<Length> value = text ? parseLength(*text) : std::nullopt;
        if (!value || value->unit == Unit::Percent || !(value->value > 0))
            return std::nullopt;
        return value;
    };
    const std::optional<Length> width = read("width");
    const std::optional<Length> height = read("height");
    const std::string* text = root.attribute("viewBox");
    const std::optional<Box> viewBox = text ? parseViewBox(*text) : std::nullopt;
    const bool hasBox = viewBox && viewBox->width() > 0 && viewBox->height() > 0;

    // A side that isn't given follows the other one in the viewBox's proportions.
    const double fontSize = Style {}.fontSize;
    drawing.width = width ? width->resolved(0, fontSize) : hasBox ? viewBox->width() : 300;
    drawing.height = height ? height->resolved(0, fontSize) : hasBox ? viewBox->height() : 150;
    if (hasBox && width && !height)
        drawing.height = drawing.width * viewBox->height() / viewBox->width();
    if (hasBox && height && !width)
        drawing.width = drawing.height * viewBox->width() / viewBox->height();

    Scope scope;
    scope.viewport = { drawing.width, drawing.height };
    addElement(root, scope, drawing.nodes);
}

void Builder::addElement(const XmlElement& element, const Scope& scope, Nodes& out)
{
    const Role role = roleOf(element.name);
    if (role == Role::Silent)
        return;
    mDocument.visit(element);
    if (scope.depth > mDocument.limits().depth)
        throw DocumentError(
            element.line, fmt::format("references are nested more than {} deep", mDocument.limits().depth));
    if (role == Role::Skipped)
        return warnOfSkipped(element);

    Scope own = scope;
    ++own.depth;
    own.style = mDocument.styleOf(element, scope.style, scope.viewport);
    if (!own.style.isDisplayed)
        return;
    own.toCanvas = scope.toCanvas * transformOf(element, own.style);
    if (!own.toCanvas.isInvertible())
        return;
    Nodes nodes;
    switch (role) {
    case Role::Container:
        addChildren(element, own, nodes);
        break;
    case Role::Switch:
        addSwitch(element, own, nodes);
        break;
    case Role::Use:
        addUse(element, own, nodes);
        break;
    case Role::Viewport:
        addViewport(element, nullptr, own, nodes);
        break;
    case Role::Image:
        addImage(element, own, nodes);
        break;
    default:
        addShape(element, own, nodes);
        break;
    }
    appendWrapped(element, own, std::move(nodes), out);
}

void Builder::addChildren(const XmlElement& element, const Scope& scope, Nodes& out)
{
    for (const XmlElement& child : element.children) {
        if (meetsConditions(child))
            addElement(child, scope, out);
    }
}

void Builder::addSwitch(const XmlElement& element, const Scope& scope, Nodes& out)
{
    for (const XmlElement& child : element.children) {
        if (roleOf(child.name) == Role::Silent || child.name == "foreignObject")
            continue;
        if (meetsConditions(child))
            return addElement(child, scope, out);
    }
}

bool Builder::enter(const XmlElement& element)
{
    if (std::find(mActive.begin(), mActive.end(), &element) != mActive.end()) {
        mDocument.warnOnce("loop", element.line, fmt::format("this '{}' contains itself", element.name));
        return false;
    }
    mActive.push_back(&element);
    return true;
}

void Builder::addUse(const XmlElement& use, const Scope& scope, Nodes& out)
{
    const XmlElement* target = mDocument.referenced(use);
    if (!target) {
        mDocument.warnOnce("use", use.line, "this 'use' refers to nothing in the document");
        return;
    }
    if (!enter(*target))
        return;
    Scope inner = scope;
    inner.toCanvas = scope.toCanvas
        * Matrix::translation(length(use, "x", scope.viewport.width, scope.style),
            length(use, "y", scope.viewport.height, scope.style));
    if (target->name == "symbol" || target->name == "svg") {
        mDocument.visit(*target);
        Scope own = inner;
        ++own.depth;
        own.style = mDocument.styleOf(*target, inner.style, inner.viewport);
        if (own.style.isDisplayed) {
            Nodes nodes;
            addViewport(*target, &use, own, nodes);
            appendWrapped(*target, own, std::move(nodes), out);
        }
    } else {
        addElement(*target, inner, out);
    }
    leave();
}

void Builder::addViewport(const XmlElement& element, const XmlElement* use, Scope scope, Nodes& out)
{
    const bool isRoot = &element == &mDocument.root() && !use;
    const Viewport outer = scope.viewport;
    Viewport inner = outer;
    if (!isRoot) {
        // Attributes of the `use` override those of the element.
        const auto side = [&](const char* name, double whole) {
            const XmlElement& from = use && use->attribute(name) ? *use : element;
            return length(from, name, whole, scope.style, whole);
        };
        inner = { side("width", outer.width), side("height", outer.height) };
        if (!(inner.width > 0 && inner.height > 0))
            return;
        if (!use)
            scope.toCanvas = scope.toCanvas
                * Matrix::translation(length(element, "x", outer.width, scope.style),
                    length(element, "y", outer.height, scope.style));
    }
    const Matrix viewportToCanvas = scope.toCanvas;
    const Viewport size = inner;
    if (const std::string* text = element.attribute("viewBox")) {
        const std::optional<Box> box = parseViewBox(*text);
        if (!box) {
            mDocument.warnOnce("viewBox", element.line, "'" + *text + "' is no viewBox");
        } else if (!(box->width() > 0 && box->height() > 0)) {
            return;
        } else {
            const std::string* aspect = element.attribute("preserveAspectRatio");
            const AspectRatio ratio
                = aspect ? parseAspectRatio(*aspect).value_or(AspectRatio {}) : AspectRatio {};
            scope.toCanvas = scope.toCanvas * viewBoxTransform(*box, inner.width, inner.height, ratio);
            inner = { box->width(), box->height() };
        }
    }
    if (!scope.toCanvas.isInvertible())
        return;
    scope.viewport = inner;
    Nodes nodes;
    addChildren(element, scope, nodes);

    // The picture's edge clips the root.
    if (!isRoot && !scope.style.overflowVisible)
        clipToBox(element, { 0, 0, size.width, size.height }, viewportToCanvas, nodes);
    std::move(nodes.begin(), nodes.end(), std::back_inserter(out));
}

void Builder::clipToBox(const XmlElement& element, const Box& box, const Matrix& toCanvas, Nodes& nodes)
{
    const Box covered = boundsOf(nodes, toCanvas.inverse(), true);
    const double slack = 1e-6 * (box.width() + box.height());
    const bool fits = covered.minX >= box.minX - slack && covered.minY >= box.minY - slack
        && covered.maxX <= box.maxX + slack && covered.maxY <= box.maxY + slack;
    if (covered.isNone() || fits)
        return;
    auto clip = std::make_shared<Clip>();
    clip->areas.push_back(
        { Outline::rectangle(box.minX, box.minY, box.width(), box.height(), 0, 0).transformed(toCanvas), {},
            {} });
    Group group { element.name, {}, element.line, 1, std::move(clip), std::move(nodes) };
    nodes.clear();
    nodes.push_back({ std::move(group) });
}

void Builder::appendWrapped(const XmlElement& element, const Scope& scope, Nodes nodes, Nodes& out)
{
    const Style& style = scope.style;
    if (nodes.empty() || style.opacity == 0)
        return;
    std::shared_ptr<const Clip> cut;
    if (!style.clipPath.empty())
        cut = clip(style.clipPath, element.line, scope, nodes);
    Shape* only = nodes.size() == 1 ? std::get_if<Shape>(&nodes.front().content) : nullptr;
    if (only && !cut)
        only->opacity *= style.opacity;
    if (!cut && (only || style.opacity == 1)) {
        std::move(nodes.begin(), nodes.end(), std::back_inserter(out));
        return;
    }
    const std::string* id = element.attribute("id");
    Group group { element.name, id ? *id : std::string(), element.line, style.opacity, std::move(cut),
        std::move(nodes) };
    out.push_back({ std::move(group) });
}

Matrix Builder::transformOf(const XmlElement& element, const Style& style)
{
    if (style.transform)
        return *style.transform;
    const std::string* text = element.attribute("transform");
    if (!text)
        return {};
    const std::optional<Matrix> matrix = parseTransform(*text);
    if (!matrix)
        mDocument.warnOnce("transform", element.line, "'" + text->substr(0, 60) + "' is no transform");
    return matrix.value_or(Matrix {});
}

/// No extension is supported, and the user's language is English.
bool Builder::meetsConditions(const XmlElement& element)
{
    const std::string* language = element.attribute("systemLanguage");
    if (language)
        mDocument.warnOnce("language", element.line, "systemLanguage is compared with English");
    return !element.attribute("requiredExtensions") && (!language || trimmed(*language).starts_with("en"));
}

void Builder::warnOfSkipped(const XmlElement& element)
{
    if (element.name == "text")
        mDocument.warnOnce("text", element.line, "text is not drawn");
    else if (element.name == "foreignObject")
        mDocument.warnOnce("foreignObject", element.line, "foreign objects are not drawn");
    else
        mDocument.warnOnce("animation", element.line, "animations are left out; their first state is drawn");
}

Paint Builder::paint(const PaintValue& value, double opacity, const Scope& scope, const Box& bounds, int line)
{
    using Kind = PaintValue::Kind;
    if (value.kind == Kind::ContextFill || value.kind == Kind::ContextStroke) {
        const bool isFill = value.kind == Kind::ContextFill;
        if (const Paint* context = isFill ? scope.contextFill : scope.contextStroke)
            return *context;
        mDocument.warnOnce("context", line,
            fmt::format("context-{} paints nothing outside of a marker", isFill ? "fill" : "stroke"));
        return {};
    }
    return mPaints.resolve(value, opacity, scope.style, bounds, scope.viewport, line);
}

Drawing readDrawing(std::string_view text, const XmlLimits& xmlLimits, const DrawingLimits& limits)
{
    std::string unpacked;
    if (isGzip(text))
        text = unpacked = unpackGzip(text, xmlLimits.bytes);
    const XmlElement root = parseXml(text, xmlLimits);
    Document document(root, limits);
    Drawing drawing;
    Builder(document).build(drawing);
    drawing.warnings = document.takeWarnings();
    return drawing;
}

double Stroke::reach() const
{
    const double corner = join == Join::Miter ? std::max(miterLimit, 1.5) : 1.5;
    return width / 2 * corner;
}

Box boundsOf(const std::vector<Node>& nodes, const Matrix& fromCanvas, bool withStrokes)
{
    Box box;
    for (const Node& node : nodes) {
        const Shape* shape = std::get_if<Shape>(&node.content);
        if (!shape) {
            box.include(boundsOf(std::get<Group>(node.content).children, fromCanvas, withStrokes));
            continue;
        }
        const Matrix matrix = fromCanvas * shape->toCanvas;
        const Matrix& pen = shape->stroke.scales ? matrix : fromCanvas;
        const double around
            = withStrokes && shape->stroke.paints() ? shape->stroke.reach() * pen.largestScale() : 0;
        box.include(shape->outline.bounds(matrix).grown(around));
    }
    return box;
}

std::size_t shapeCount(const std::vector<Node>& nodes)
{
    std::size_t count = 0;
    for (const Node& node : nodes) {
        const Group* group = std::get_if<Group>(&node.content);
        count += group ? shapeCount(group->children) : 1;
    }
    return count;
}

} // namespace app::svg
