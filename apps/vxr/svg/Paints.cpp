#include "Document.h"

#include <fmt/format.h>

#include <set>

namespace app::svg {

namespace {

/// How far inside its circle a focus is kept, as SVG 1.1 requires: on the circle itself the blend would have
/// no width on one side.
constexpr double focusLimit = 0.999;

Paint solid(Rgba color, double opacity)
{
    Paint paint;
    paint.kind = Paint::Kind::Color;
    paint.color = color;
    paint.color.a *= opacity;
    return paint;
}

/// Reads points and radii, lengths in percent being parts of `whole`. False when there is nothing between
/// start and end.
template <typename Measure> bool placeGradient(Gradient& gradient, const Viewport& whole, Measure measure)
{
    const double w = whole.width;
    const double h = whole.height;
    const double d = whole.diagonal();
    if (gradient.kind == Gradient::Kind::Linear) {
        gradient.start = { measure("x1", w, 0), measure("y1", h, 0) };
        gradient.end = { measure("x2", w, w), measure("y2", h, 0) };
        return gradient.start != gradient.end;
    }
    gradient.center = { measure("cx", w, w / 2), measure("cy", h, h / 2) };
    gradient.radius = measure("r", d, d / 2);
    gradient.focus = { measure("fx", w, gradient.center.x), measure("fy", h, gradient.center.y) };
    gradient.focusRadius = std::clamp(measure("fr", d, 0), 0.0, std::max(0.0, gradient.radius * focusLimit));
    const Vec away = gradient.focus - gradient.center;
    const double limit = gradient.radius * focusLimit - gradient.focusRadius;
    if (const double distance = std::hypot(away.x, away.y); distance > limit)
        gradient.focus = gradient.center + away * (limit / distance);
    return gradient.radius > 0;
}

bool isGradient(const XmlElement& element)
{
    return element.name == "linearGradient" || element.name == "radialGradient";
}

} // namespace

Paint PaintResolver::resolve(const PaintValue& value, double opacity, const Style& style, const Box& bounds,
    const Viewport& viewport, int line)
{
    using Kind = PaintValue::Kind;
    const auto simple = [&](Kind kind) {
        if (kind == Kind::Color)
            return solid(value.color, opacity);
        return kind == Kind::CurrentColor ? solid(style.color, opacity) : Paint {};
    };
    if (value.kind != Kind::Reference)
        return simple(value.kind);

    const XmlElement* target = mDocument.elementWithId(value.reference);
    if (target && isGradient(*target))
        return paintFor(source(*target, viewport), opacity, bounds, viewport);
    if (target && target->name == "pattern")
        mDocument.warnOnce("pattern", line, "patterns are not drawn");
    else
        mDocument.warnOnce("paint", line, fmt::format("there is no gradient '{}'", value.reference));
    return simple(value.fallback);
}

const PaintResolver::Source& PaintResolver::source(const XmlElement& gradient, const Viewport& viewport)
{
    const auto [found, isNew] = mSources.try_emplace(&gradient);
    Source& result = found->second;
    if (!isNew)
        return result;
    result.element = &gradient;
    result.kind = gradient.name == "radialGradient" ? Gradient::Kind::Radial : Gradient::Kind::Linear;
    std::set<const XmlElement*> seen;
    for (const XmlElement* each = &gradient; each && isGradient(*each); each = mDocument.referenced(*each)) {
        mDocument.visit(*each);
        if (!seen.insert(each).second) {
            mDocument.warnOnce("gradient loop", each->line, "a gradient refers to itself");
            break;
        }
        for (const XmlAttribute& attribute : each->attributes)
            result.attributes.try_emplace(attribute.name, &attribute.value);
        if (result.stops.empty())
            result.stops = readStops(*each, viewport);
    }
    return result;
}

std::vector<GradientStop> PaintResolver::readStops(const XmlElement& gradient, const Viewport& viewport)
{
    std::vector<GradientStop> stops;
    const Style parent = mDocument.styleInPlace(gradient, viewport);
    double least = 0;
    for (const XmlElement& child : gradient.children) {
        if (child.name != "stop")
            continue;
        mDocument.visit(child);
        const std::string* offset = child.attribute("offset");
        least = std::max(least, offset ? parseOpacity(*offset).value_or(0) : 0);
        const Style style = mDocument.styleOf(child, parent, viewport);
        Rgba color = style.stopColor;
        color.a *= style.stopOpacity;
        stops.push_back({ least, color });
    }
    return stops;
}

Paint PaintResolver::paintFor(
    const Source& source, double opacity, const Box& bounds, const Viewport& viewport)
{
    const auto attribute = [&](const char* name) -> const std::string* {
        const auto found = source.attributes.find(name);
        return found == source.attributes.end() ? nullptr : found->second;
    };
    if (source.stops.empty())
        return {};
    const Paint last = solid(source.stops.back().color, opacity);
    if (source.stops.size() == 1)
        return last;

    auto gradient = std::make_shared<Gradient>();
    gradient->kind = source.kind;
    gradient->stops = source.stops;
    const std::string* units = attribute("gradientUnits");
    const bool userSpace = units && *units == "userSpaceOnUse";
    if (!userSpace) {
        // A shape without width or height has no box to measure by, and is not painted.
        if (bounds.isNone() || !(bounds.width() > 0 && bounds.height() > 0))
            return {};
        gradient->toUser = { bounds.width(), 0, 0, bounds.height(), bounds.minX, bounds.minY };
    }
    if (const std::string* text = attribute("gradientTransform")) {
        if (const std::optional<Matrix> matrix = parseTransform(*text))
            gradient->toUser = gradient->toUser * *matrix;
        else
            mDocument.warnOnce("gradientTransform", source.element->line, "'" + *text + "' is no transform");
    }
    if (const std::string* text = attribute("spreadMethod"))
        gradient->spread = *text == "reflect" ? Gradient::Spread::Reflect
            : *text == "repeat"               ? Gradient::Spread::Repeat
                                              : Gradient::Spread::Pad;

    const auto measure = [&](const char* name, double whole, double fallback) {
        const std::string* text = attribute(name);
        const std::optional<Length> length = text ? parseLength(*text) : std::nullopt;
        return length ? length->resolved(whole, Style {}.fontSize) : fallback;
    };
    const bool hasExtent = placeGradient(*gradient, userSpace ? viewport : Viewport { 1, 1 }, measure);
    if (!hasExtent || !gradient->toUser.isInvertible())
        return last;
    Paint paint;
    paint.kind = Paint::Kind::Gradient;
    paint.gradient = std::move(gradient);
    paint.opacity = opacity;
    return paint;
}

} // namespace app::svg
