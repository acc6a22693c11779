#pragma once

#include "Xml.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app::svg {

/// The properties that the importer understands.
enum class Property {
    ClipPath,
    ClipRule,
    Color,
    Display,
    Fill,
    FillOpacity,
    FillRule,
    Filter,
    FontSize,
    MarkerEnd,
    MarkerMid,
    MarkerStart,
    Mask,
    MixBlendMode,
    Opacity,
    Overflow,
    StopColor,
    StopOpacity,
    Stroke,
    StrokeDasharray,
    StrokeDashoffset,
    StrokeLinecap,
    StrokeLinejoin,
    StrokeMiterlimit,
    StrokeOpacity,
    StrokeWidth,
    Transform,
    VectorEffect,
    Visibility,
};
inline constexpr std::size_t propertyCount = static_cast<std::size_t>(Property::Visibility) + 1;

std::optional<Property> propertyNamed(std::string_view name);
std::string_view nameOf(Property);

/// The winning value of each property of one element, as text.
struct Declarations {
    std::array<std::optional<std::string>, propertyCount> values;

    const std::string* get(Property property) const
    {
        const auto& value = values[static_cast<std::size_t>(property)];
        return value ? &*value : nullptr;
    }
};

/// `circle.big#one`: what an element must be to be selected.
struct Selector {
    std::string type; ///< empty for any
    std::string id; ///< empty for any
    std::vector<std::string> classes;

    bool matches(const XmlElement&) const;
    int specificity() const; ///< id, then classes, then type
};

/// The rules of a document's `style` elements. Selectors are type, class and id, and their compounds;
/// rules with other selectors are left out.
class StyleSheet {
public:
    /// Adds the rules of one `style` element. `unsupported` is called with the text of each selector that
    /// is left out and with each at-rule.
    void add(std::string_view css, const std::function<void(std::string_view)>& unsupported = {});

    /// Presentation attributes, then rules by specificity and order, then the `style` attribute;
    /// `!important` goes before all of that.
    Declarations cascade(const XmlElement&) const;

    bool isEmpty() const { return mRules.empty(); }

private:
    struct Declaration {
        Property property;
        std::string value;
        bool isImportant = false;
    };
    struct Rule {
        Selector selector;
        std::size_t declarations; ///< index into mBlocks
    };

    static std::vector<Declaration> parseBlock(std::string_view css);

    std::vector<Rule> mRules;
    std::vector<std::vector<Declaration>> mBlocks;
};

} // namespace app::svg
