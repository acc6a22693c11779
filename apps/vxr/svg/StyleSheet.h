#pragma once

#include "Property.h"
#include "Xml.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace app::svg {

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

/// The rules of a document's `style` elements. Selectors are types, classes, ids and compounds of them;
/// rules with other selectors are ignored.
class StyleSheet {
public:
    /// Adds the rules of one `style` element. `unsupported` is called with the text of each selector that
    /// is left out and with each at-rule.
    void add(std::string_view css, const std::function<void(std::string_view)>& unsupported = {});

    /// Presentation attributes, then rules by specificity and order, then the `style` attribute;
    /// `!important` overrides all of these. Throws `DocumentError` when all calls together have compared
    /// more selectors than `comparisonLimit`.
    Declarations cascade(const XmlElement&) const;
    static constexpr long comparisonLimit = 100'000'000;

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

    /// Rules that may match elements of one name, class or id, in order.
    using Index = std::unordered_map<std::string, std::vector<std::size_t>>;

    static std::vector<Declaration> parseBlock(std::string_view css);
    void addRule(Selector, std::size_t declarations);
    std::vector<std::size_t> matchingRules(const XmlElement&) const;

    std::vector<Rule> mRules;
    Index mByType, mByClass, mById;
    std::vector<std::size_t> mForAll; ///< rules without type, class and id
    mutable long mComparisons = 0;
    std::vector<std::vector<Declaration>> mBlocks;
};

} // namespace app::svg
