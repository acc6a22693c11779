#include "PropertyTable.h"

#include <algorithm>
#include <array>

namespace app::svg {

namespace {

std::optional<PaintValue> parsePaint(std::string_view text)
{
    using Kind = PaintValue::Kind;
    PaintValue paint;
    if (equalsIgnoringCase(text, "none"))
        return paint;
    if (equalsIgnoringCase(text, "currentcolor")) {
        paint.kind = Kind::CurrentColor;
        return paint;
    }
    if (text == "context-fill" || text == "context-stroke") {
        paint.kind = text == "context-fill" ? Kind::ContextFill : Kind::ContextStroke;
        return paint;
    }
    if (Scanner(text).consumeWord("url(")) {
        paint.kind = Kind::Reference;
        paint.reference = referencedId(text);
        const std::size_t end = text.find(')');
        if (end == std::string_view::npos)
            return std::nullopt;
        const std::string_view rest = trimmed(text.substr(end + 1));
        if (rest.empty())
            return paint;
        const std::optional<PaintValue> fallback = parsePaint(rest);
        if (!fallback || fallback->kind == Kind::Reference)
            return std::nullopt;
        paint.fallback = fallback->kind;
        paint.color = fallback->color;
        return paint;
    }
    const std::optional<Rgba> color = parseColor(text);
    if (!color)
        return std::nullopt;
    paint.kind = Kind::Color;
    paint.color = *color;
    return paint;
}

bool set(bool& place, bool value)
{
    place = value;
    return true;
}

template <typename T> bool assign(T& place, const std::optional<T>& value)
{
    if (value)
        place = *value;
    return value.has_value();
}

template <typename T>
std::optional<T> oneOf(const std::string& text, std::initializer_list<std::string_view> words)
{
    const auto found = std::find(words.begin(), words.end(), text);
    return found == words.end() ? std::nullopt : std::optional(static_cast<T>(found - words.begin()));
}

std::optional<FillRule> parseRule(const std::string& text)
{
    return oneOf<FillRule>(text, { "nonzero", "evenodd" });
}

std::optional<Rgba> parseColorOf(const std::string& text, const Rgba& current)
{
    return equalsIgnoringCase(text, "currentcolor") ? current : parseColor(text);
}

std::optional<double> parseSigned(const StyleReading& r, const std::string& text)
{
    const std::optional<Length> length = parseLength(text);
    if (!length)
        return std::nullopt;
    return length->resolved(r.viewport.diagonal(), r.style.fontSize);
}

std::optional<double> parseMeasure(const StyleReading& r, const std::string& text)
{
    const std::optional<double> value = parseSigned(r, text);
    return value && *value >= 0 ? value : std::nullopt;
}

bool readReference(std::string& id, const std::string& text)
{
    id = referencedId(text);
    return !id.empty() || equalsIgnoringCase(text, "none");
}

bool readMiterLimit(StyleReading& r, const std::string& text)
{
    const std::optional<double> value = parseSigned(r, text);
    return value && *value >= 1 && assign(r.style.miterLimit, value);
}

bool readJoin(StyleReading& r, const std::string& text)
{
    // The two newer kinds differ from a miter only where it ends or which side it is cut.
    if (text == "miter-clip" || text == "arcs") {
        r.style.join = Join::Miter;
        return true;
    }
    return assign(r.style.join, oneOf<Join>(text, { "miter", "round", "bevel" }));
}

bool readDash(StyleReading& r, const std::string& text)
{
    std::vector<double>& dash = r.style.dash;
    dash.clear();
    if (text == "none")
        return true;
    const std::optional<std::vector<Length>> list = parseLengthList(text);
    if (!list)
        return false;
    double sum = 0;
    for (const Length& length : *list) {
        dash.push_back(length.resolved(r.viewport.diagonal(), r.style.fontSize));
        if (dash.back() < 0) {
            dash.clear();
            return false;
        }
        sum += dash.back();
    }
    if (!(sum > 0))
        dash.clear();
    if (dash.size() % 2 == 1) {
        const std::vector<double> once = dash;
        dash.insert(dash.end(), once.begin(), once.end());
    }
    return true;
}

bool readFontSize(StyleReading& r, const std::string& text)
{
    // Keywords such as `large` are ignored: text is not drawn, so they would only affect `em`.
    if (const std::optional<Length> length = parseLength(text))
        r.style.fontSize = std::max(0.0, length->resolved(r.parent.fontSize, r.parent.fontSize));
    return true;
}

bool readTransform(StyleReading& r, const std::string& text)
{
    r.style.transform = parseTransform(text);
    return r.style.transform.has_value();
}

template <auto field> void copyField(Style& to, const Style& from) { to.*field = from.*field; }

using R = StyleReading;
using Text = const std::string&;

/// In the order of the enumeration.
constexpr std::array<PropertyRow, propertyCount> table { {
    { "animation", false, false, nullptr, nullptr, "none", "" },
    { "animation-name", false, false, nullptr, nullptr, "none", "" },
    { "backdrop-filter", false, false, nullptr, nullptr, "none", "" },
    { "clip", false, true, nullptr, nullptr, "auto", "" },
    { "clip-path", false, true, copyField<&Style::clipPath>,
        [](R& r, Text text) { return readReference(r.style.clipPath, text); } },
    { "clip-rule", true, true, copyField<&Style::clipRule>,
        [](R& r, Text text) { return assign(r.style.clipRule, parseRule(text)); } },
    { "color", true, true, copyField<&Style::color>,
        [](R& r, Text text) { return assign(r.style.color, parseColorOf(text, r.parent.color)); } },
    { "color-interpolation", false, true, nullptr, nullptr, "auto|srgb", "" },
    { "cx", false, false, nullptr, nullptr, "auto", "" },
    { "cy", false, false, nullptr, nullptr, "auto", "" },
    { "d", false, false, nullptr, nullptr, "auto", "" },
    { "display", false, true, copyField<&Style::isDisplayed>,
        [](R& r, Text text) { return set(r.style.isDisplayed, text != "none"); } },
    { "fill", true, true, copyField<&Style::fill>,
        [](R& r, Text text) { return assign(r.style.fill, parsePaint(text)); } },
    { "fill-opacity", true, true, copyField<&Style::fillOpacity>,
        [](R& r, Text text) { return assign(r.style.fillOpacity, parseOpacity(text)); } },
    { "fill-rule", true, true, copyField<&Style::fillRule>,
        [](R& r, Text text) { return assign(r.style.fillRule, parseRule(text)); } },
    { "filter", false, true, nullptr, nullptr, "none", "filters are not applied" },
    { "font-size", true, true, copyField<&Style::fontSize>,
        [](R& r, Text text) { return readFontSize(r, text); } },
    { "height", false, false, nullptr, nullptr, "auto", "" },
    { "marker-end", true, true, copyField<&Style::markerEnd>,
        [](R& r, Text text) { return readReference(r.style.markerEnd, text); } },
    { "marker-mid", true, true, copyField<&Style::markerMid>,
        [](R& r, Text text) { return readReference(r.style.markerMid, text); } },
    { "marker-start", true, true, copyField<&Style::markerStart>,
        [](R& r, Text text) { return readReference(r.style.markerStart, text); } },
    { "mask", false, true, nullptr, nullptr, "none", "masks are not applied" },
    { "mix-blend-mode", false, true, nullptr, nullptr, "normal", "blend modes are not applied" },
    { "offset-path", false, false, nullptr, nullptr, "none", "" },
    { "opacity", false, true, copyField<&Style::opacity>,
        [](R& r, Text text) { return assign(r.style.opacity, parseOpacity(text)); } },
    { "overflow", false, true, copyField<&Style::overflowVisible>,
        [](R& r, Text text) { return set(r.style.overflowVisible, text == "visible" || text == "auto"); } },
    { "paint-order", false, true, nullptr, nullptr, "normal|fill", "" },
    { "r", false, false, nullptr, nullptr, "auto", "" },
    { "rotate", false, false, nullptr, nullptr, "none", "" },
    { "rx", false, false, nullptr, nullptr, "auto", "" },
    { "ry", false, false, nullptr, nullptr, "auto", "" },
    { "scale", false, false, nullptr, nullptr, "none", "" },
    { "shape-rendering", false, true, nullptr, nullptr, "auto|geometricprecision", "" },
    { "stop-color", false, true, copyField<&Style::stopColor>,
        [](R& r, Text text) { return assign(r.style.stopColor, parseColorOf(text, r.style.color)); } },
    { "stop-opacity", false, true, copyField<&Style::stopOpacity>,
        [](R& r, Text text) { return assign(r.style.stopOpacity, parseOpacity(text)); } },
    { "stroke", true, true, copyField<&Style::stroke>,
        [](R& r, Text text) { return assign(r.style.stroke, parsePaint(text)); } },
    { "stroke-dasharray", true, true, copyField<&Style::dash>,
        [](R& r, Text text) { return readDash(r, text); } },
    { "stroke-dashoffset", true, true, copyField<&Style::dashOffset>,
        [](R& r, Text text) { return assign(r.style.dashOffset, parseSigned(r, text)); } },
    { "stroke-linecap", true, true, copyField<&Style::cap>,
        [](R& r, Text text) {
            return assign(r.style.cap, oneOf<Cap>(text, { "butt", "round", "square" }));
        } },
    { "stroke-linejoin", true, true, copyField<&Style::join>,
        [](R& r, Text text) { return readJoin(r, text); } },
    { "stroke-miterlimit", true, true, copyField<&Style::miterLimit>,
        [](R& r, Text text) { return readMiterLimit(r, text); } },
    { "stroke-opacity", true, true, copyField<&Style::strokeOpacity>,
        [](R& r, Text text) { return assign(r.style.strokeOpacity, parseOpacity(text)); } },
    { "stroke-width", true, true, copyField<&Style::strokeWidth>,
        [](R& r, Text text) { return assign(r.style.strokeWidth, parseMeasure(r, text)); } },
    { "transform", false, false, copyField<&Style::transform>,
        [](R& r, Text text) { return readTransform(r, text); } },
    { "transform-origin", false, true, nullptr, nullptr, "0|0 0|0px 0px|0px", "" },
    { "translate", false, false, nullptr, nullptr, "none", "" },
    { "vector-effect", false, true, copyField<&Style::scalesStroke>,
        [](R& r, Text text) { return set(r.style.scalesStroke, text != "non-scaling-stroke"); } },
    { "visibility", true, true, copyField<&Style::isVisible>,
        [](R& r, Text text) { return set(r.style.isVisible, text == "visible"); } },
    { "width", false, false, nullptr, nullptr, "auto", "" },
    { "x", false, false, nullptr, nullptr, "auto", "" },
    { "y", false, false, nullptr, nullptr, "auto", "" },
} };
static_assert(
    std::is_sorted(table.begin(), table.end(), [](const auto& a, const auto& b) { return a.name < b.name; }));

bool hasWord(std::string_view list, std::string_view word)
{
    while (!list.empty()) {
        const std::size_t end = list.find('|');
        if (equalsIgnoringCase(list.substr(0, end), word))
            return true;
        list = end == std::string_view::npos ? std::string_view() : list.substr(end + 1);
    }
    return false;
}

} // namespace

const PropertyRow& rowOf(Property property) { return table[static_cast<std::size_t>(property)]; }

std::string_view nameOf(Property property) { return rowOf(property).name; }

std::optional<Property> propertyNamed(std::string_view name)
{
    const auto found = std::lower_bound(table.begin(), table.end(), name,
        [](const PropertyRow& row, std::string_view key) { return row.name < key; });
    if (found == table.end() || found->name != name)
        return std::nullopt;
    return static_cast<Property>(found - table.begin());
}

std::optional<Property> propertyOfAttribute(std::string_view name)
{
    const std::optional<Property> property = propertyNamed(name);
    return property && rowOf(*property).isAttribute ? property : std::nullopt;
}

ReadResult PropertyRow::readValue(StyleReading& reading, const std::string& text) const
{
    const bool inherits = equalsIgnoringCase(text, "inherit");
    const bool isInitial = equalsIgnoringCase(text, "initial");
    // The style starts out with what is inherited and the rest initial, so `unset` changes nothing.
    if (equalsIgnoringCase(text, "unset") || (!read && (inherits || isInitial)))
        return ReadResult::Read;
    if (!read)
        return hasWord(harmless, text) ? ReadResult::Read : ReadResult::NotApplied;
    if (inherits || isInitial) {
        copy(reading.style, inherits ? reading.parent : Style {});
        return ReadResult::Read;
    }
    return read(reading, text) ? ReadResult::Read : ReadResult::Bad;
}

std::string PropertyRow::warning() const
{
    return complaint.empty() ? "'" + std::string(name) + "' is not applied" : std::string(complaint);
}

} // namespace app::svg
