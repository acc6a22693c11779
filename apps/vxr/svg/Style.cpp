#include "Style.h"

namespace app::svg {

double Viewport::diagonal() const { return std::sqrt((width * width + height * height) / 2); }

std::string referencedId(std::string_view text)
{
    text = trimmed(text);
    if (!Scanner(text).consumeWord("url("))
        return {};
    text = trimmed(text.substr(4, text.find(')') - 4));
    if (text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front())
        text = text.substr(1, text.size() - 2);
    return text.starts_with('#') ? std::string(text.substr(1)) : std::string();
}

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

/// Sets the field behind a property to what it is in another style.
void copyField(Style& to, const Style& from, Property property)
{
    const auto copy = [&](auto field) { to.*field = from.*field; };
    switch (property) {
    case Property::ClipPath:
        return copy(&Style::clipPath);
    case Property::ClipRule:
        return copy(&Style::clipRule);
    case Property::Color:
        return copy(&Style::color);
    case Property::Display:
        return copy(&Style::isDisplayed);
    case Property::Fill:
        return copy(&Style::fill);
    case Property::FillOpacity:
        return copy(&Style::fillOpacity);
    case Property::FillRule:
        return copy(&Style::fillRule);
    case Property::Filter:
        return copy(&Style::filter);
    case Property::FontSize:
        return copy(&Style::fontSize);
    case Property::MarkerEnd:
        return copy(&Style::markerEnd);
    case Property::MarkerMid:
        return copy(&Style::markerMid);
    case Property::MarkerStart:
        return copy(&Style::markerStart);
    case Property::Mask:
        return copy(&Style::mask);
    case Property::MixBlendMode:
        return copy(&Style::blends);
    case Property::Opacity:
        return copy(&Style::opacity);
    case Property::Overflow:
        return copy(&Style::overflowVisible);
    case Property::StopColor:
        return copy(&Style::stopColor);
    case Property::StopOpacity:
        return copy(&Style::stopOpacity);
    case Property::Stroke:
        return copy(&Style::stroke);
    case Property::StrokeDasharray:
        return copy(&Style::dash);
    case Property::StrokeDashoffset:
        return copy(&Style::dashOffset);
    case Property::StrokeLinecap:
        return copy(&Style::cap);
    case Property::StrokeLinejoin:
        return copy(&Style::join);
    case Property::StrokeMiterlimit:
        return copy(&Style::miterLimit);
    case Property::StrokeOpacity:
        return copy(&Style::strokeOpacity);
    case Property::StrokeWidth:
        return copy(&Style::strokeWidth);
    case Property::Transform:
        return copy(&Style::transform);
    case Property::VectorEffect:
        return copy(&Style::scalesStroke);
    case Property::Visibility:
        return copy(&Style::isVisible);
    }
}

/// What a child starts from: the parent's style without what belongs to the parent alone.
Style inheritedFrom(const Style& parent)
{
    static const Style initial;
    Style style = parent;
    for (Property own : { Property::ClipPath, Property::Display, Property::Filter, Property::Mask,
             Property::MixBlendMode, Property::Opacity, Property::Overflow, Property::StopColor,
             Property::StopOpacity, Property::Transform, Property::VectorEffect })
        copyField(style, initial, own);
    return style;
}

/// Reads one element's declarations into a style, property by property.
class StyleReader {
public:
    StyleReader(Style& style, const Style& parent, const Viewport& viewport)
        : mStyle(style)
        , mParent(parent)
        , mViewport(viewport)
    {
    }

    /// False when the value can't be read.
    bool read(Property property, const std::string& text)
    {
        if (equalsIgnoringCase(text, "inherit"))
            return takeFrom(mParent, property);
        if (equalsIgnoringCase(text, "initial"))
            return takeFrom(Style {}, property);
        if (equalsIgnoringCase(text, "unset"))
            return true; // the style starts out with what is inherited and the rest initial
        switch (property) {
        case Property::Fill:
            return assign(mStyle.fill, parsePaint(text));
        case Property::Stroke:
            return assign(mStyle.stroke, parsePaint(text));
        case Property::FillOpacity:
            return assign(mStyle.fillOpacity, parseOpacity(text));
        case Property::StrokeOpacity:
            return assign(mStyle.strokeOpacity, parseOpacity(text));
        case Property::Opacity:
            return assign(mStyle.opacity, parseOpacity(text));
        case Property::StopOpacity:
            return assign(mStyle.stopOpacity, parseOpacity(text));
        case Property::Color:
            return assign(mStyle.color, parseColorOf(text, mParent.color));
        case Property::StopColor:
            return assign(mStyle.stopColor, parseColorOf(text, mStyle.color));
        case Property::FillRule:
            return assign(mStyle.fillRule, parseRule(text));
        case Property::ClipRule:
            return assign(mStyle.clipRule, parseRule(text));
        case Property::StrokeWidth:
            return assign(mStyle.strokeWidth, parseMeasure(text));
        case Property::StrokeDashoffset:
            return assign(mStyle.dashOffset, parseSigned(text));
        case Property::StrokeMiterlimit:
            return readMiterLimit(text);
        case Property::StrokeLinecap:
            return assign(mStyle.cap, oneOf<Cap>(text, { "butt", "round", "square" }));
        case Property::StrokeLinejoin:
            return readJoin(text);
        case Property::StrokeDasharray:
            return readDash(text);
        case Property::Display:
            mStyle.isDisplayed = text != "none";
            return true;
        case Property::Visibility:
            mStyle.isVisible = text == "visible";
            return true;
        case Property::Overflow:
            mStyle.overflowVisible = text == "visible" || text == "auto";
            return true;
        case Property::VectorEffect:
            mStyle.scalesStroke = text != "non-scaling-stroke";
            return true;
        case Property::MixBlendMode:
            mStyle.blends = text != "normal";
            return true;
        case Property::ClipPath:
            return readReference(mStyle.clipPath, text);
        case Property::MarkerStart:
            return readReference(mStyle.markerStart, text);
        case Property::MarkerMid:
            return readReference(mStyle.markerMid, text);
        case Property::MarkerEnd:
            return readReference(mStyle.markerEnd, text);
        case Property::Mask:
            mStyle.mask = text == "none" ? std::string() : text;
            return true;
        case Property::Filter:
            mStyle.filter = text == "none" ? std::string() : text;
            return true;
        case Property::FontSize:
            return readFontSize(text);
        case Property::Transform:
            mStyle.transform = parseTransform(text);
            return mStyle.transform.has_value();
        }
        return false;
    }

private:
    template <typename T> static bool assign(T& place, const std::optional<T>& value)
    {
        if (value)
            place = *value;
        return value.has_value();
    }

    template <typename T>
    static std::optional<T> oneOf(const std::string& text, std::initializer_list<std::string_view> words)
    {
        int i = 0;
        for (std::string_view word : words) {
            if (text == word)
                return static_cast<T>(i);
            ++i;
        }
        return std::nullopt;
    }

    static std::optional<FillRule> parseRule(const std::string& text)
    {
        return oneOf<FillRule>(text, { "nonzero", "evenodd" });
    }

    static std::optional<Rgba> parseColorOf(const std::string& text, const Rgba& current)
    {
        return equalsIgnoringCase(text, "currentcolor") ? current : parseColor(text);
    }

    std::optional<double> parseSigned(const std::string& text) const
    {
        const std::optional<Length> length = parseLength(text);
        if (!length)
            return std::nullopt;
        return length->resolved(mViewport.diagonal(), mStyle.fontSize);
    }

    std::optional<double> parseMeasure(const std::string& text) const
    {
        const std::optional<double> value = parseSigned(text);
        return value && *value >= 0 ? value : std::nullopt;
    }

    static bool readReference(std::string& id, const std::string& text)
    {
        id = referencedId(text);
        return !id.empty() || equalsIgnoringCase(text, "none");
    }

    bool readMiterLimit(const std::string& text)
    {
        const std::optional<double> value = parseSigned(text);
        if (!value || *value < 1)
            return false;
        mStyle.miterLimit = *value;
        return true;
    }

    bool readJoin(const std::string& text)
    {
        // The two newer kinds differ from a mitre only where it ends or which side it is cut.
        if (text == "miter-clip" || text == "arcs") {
            mStyle.join = Join::Miter;
            return true;
        }
        return assign(mStyle.join, oneOf<Join>(text, { "miter", "round", "bevel" }));
    }

    bool readDash(const std::string& text)
    {
        mStyle.dash.clear();
        if (text == "none")
            return true;
        const std::optional<std::vector<Length>> list = parseLengthList(text);
        if (!list)
            return false;
        double sum = 0;
        for (const Length& length : *list) {
            mStyle.dash.push_back(length.resolved(mViewport.diagonal(), mStyle.fontSize));
            if (mStyle.dash.back() < 0) {
                mStyle.dash.clear();
                return false;
            }
            sum += mStyle.dash.back();
        }
        if (!(sum > 0))
            mStyle.dash.clear();
        if (mStyle.dash.size() % 2 == 1) {
            const std::vector<double> once = mStyle.dash;
            mStyle.dash.insert(mStyle.dash.end(), once.begin(), once.end());
        }
        return true;
    }

    bool readFontSize(const std::string& text)
    {
        const std::optional<Length> length = parseLength(text);
        if (!length)
            return true; // a word such as `large`: text is not drawn, only `em` would notice
        mStyle.fontSize = std::max(0.0, length->resolved(mParent.fontSize, mParent.fontSize));
        return true;
    }

    bool takeFrom(const Style& other, Property property)
    {
        copyField(mStyle, other, property);
        return true;
    }

    Style& mStyle;
    const Style& mParent;
    const Viewport& mViewport;
};

} // namespace

Style computeStyle(
    const Style& parent, const Declarations& declarations, const Viewport& viewport, const BadValue& bad)
{
    Style style = inheritedFrom(parent);
    StyleReader reader(style, parent, viewport);
    const auto read = [&](Property property) {
        const std::string* text = declarations.get(property);
        if (text && !reader.read(property, *text) && bad)
            bad(property, *text);
    };
    // Others are measured by these two.
    read(Property::FontSize);
    read(Property::Color);
    for (std::size_t i = 0; i < propertyCount; ++i) {
        const auto property = static_cast<Property>(i);
        if (property != Property::FontSize && property != Property::Color)
            read(property);
    }
    return style;
}

} // namespace app::svg
