#include "PropertyTable.h"

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

/// What a child starts from: the parent's style without what belongs to the parent alone.
Style inheritedFrom(const Style& parent)
{
    static const Style initial;
    Style style = parent;
    for (std::size_t i = 0; i < propertyCount; ++i) {
        const PropertyRow& row = rowOf(static_cast<Property>(i));
        if (!row.isInherited && row.copy)
            row.copy(style, initial);
    }
    return style;
}

} // namespace

Style computeStyle(const Style& parent, const Declarations& declarations, const Viewport& viewport,
    const StyleComplaint& complain)
{
    Style style = inheritedFrom(parent);
    StyleReading reading { style, parent, viewport };
    const auto read = [&](Property property) {
        const std::string* text = declarations.get(property);
        if (!text)
            return;
        const PropertyRow& row = rowOf(property);
        const ReadResult result = row.readValue(reading, *text);
        if (!complain || result == ReadResult::Read)
            return;
        complain(property,
            result == ReadResult::NotApplied
                ? row.warning()
                : "'" + text->substr(0, 60) + "' is no value for " + std::string(row.name));
    };
    // Other properties depend on these two.
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
