#include "StyleSheet.h"

#include "Scanner.h"

#include <algorithm>
#include <tuple>

namespace app::svg {

namespace {

/// Replaces comments by spaces.
std::string withoutComments(std::string_view css)
{
    std::string result;
    while (!css.empty()) {
        const std::size_t begin = css.find("/*");
        result.append(css.substr(0, begin));
        if (begin == std::string_view::npos)
            break;
        result.push_back(' ');
        const std::size_t end = css.find("*/", begin + 2);
        css = end == std::string_view::npos ? std::string_view() : css.substr(end + 2);
    }
    return result;
}

/// Removes and returns the front of the text up to one of `ends`, ignoring those in quotes and parentheses.
std::string_view takeUntil(std::string_view& text, std::string_view ends)
{
    char quote = '\0';
    int depth = 0;
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote) {
            if (c == quote)
                quote = '\0';
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            depth = std::max(0, depth - 1);
        } else if (depth == 0 && ends.find(c) != std::string_view::npos) {
            break;
        }
    }
    const std::string_view piece = text.substr(0, at);
    text.remove_prefix(at);
    return piece;
}

/// Skips an at-rule: to its semicolon, or over its block and the blocks in it.
void skipAtRule(std::string_view& css)
{
    takeUntil(css, ";{");
    if (css.empty())
        return;
    int depth = 0;
    do {
        depth += css.front() == '{' ? 1 : css.front() == '}' ? -1 : 0;
        css.remove_prefix(1);
        if (depth > 0)
            takeUntil(css, "{}");
    } while (depth > 0 && !css.empty());
}

std::optional<Selector> parseSelector(std::string_view text)
{
    Selector selector;
    Scanner in(trimmed(text));
    if (in.atEnd())
        return std::nullopt;
    if (!in.consume('*'))
        selector.type = in.word();
    while (!in.atEnd()) {
        const bool isClass = in.consume('.');
        if (!isClass && !in.consume('#'))
            return std::nullopt;
        const std::string_view name = in.word();
        if (name.empty() || (!isClass && !selector.id.empty()))
            return std::nullopt;
        if (isClass)
            selector.classes.emplace_back(name);
        else
            selector.id = name;
    }
    return selector;
}

std::vector<std::string_view> wordsOf(std::string_view list)
{
    std::vector<std::string_view> words;
    while (!(list = trimmed(list)).empty()) {
        std::size_t end = 0;
        while (end < list.size() && !isSpace(list[end]))
            ++end;
        words.push_back(list.substr(0, end));
        list.remove_prefix(end);
    }
    return words;
}

} // namespace

bool Selector::matches(const XmlElement& element) const
{
    if (!type.empty() && type != element.name)
        return false;
    if (!id.empty()) {
        const std::string* own = element.attribute("id");
        if (!own || *own != id)
            return false;
    }
    if (classes.empty())
        return true;
    const std::string* own = element.attribute("class");
    if (!own)
        return false;
    const std::vector<std::string_view> words = wordsOf(*own);
    return std::all_of(classes.begin(), classes.end(),
        [&](const std::string& name) { return std::find(words.begin(), words.end(), name) != words.end(); });
}

int Selector::specificity() const
{
    return (id.empty() ? 0 : 1'000'000) + static_cast<int>(std::min<std::size_t>(classes.size(), 99'999)) * 10
        + (type.empty() ? 0 : 1);
}

std::vector<StyleSheet::Declaration> StyleSheet::parseBlock(std::string_view css)
{
    std::vector<Declaration> block;
    const auto add = [&](std::string_view name, std::string_view value, bool important) {
        if (const std::optional<Property> property = propertyNamed(name))
            block.push_back({ *property, std::string(value), important });
    };
    while (!css.empty()) {
        std::string_view text = takeUntil(css, ";");
        css.remove_prefix(std::min<std::size_t>(1, css.size()));
        const std::size_t colon = text.find(':');
        if (colon == std::string_view::npos)
            continue;
        std::string name(trimmed(text.substr(0, colon)));
        std::transform(name.begin(), name.end(), name.begin(),
            [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 32) : c; });
        std::string_view value = trimmed(text.substr(colon + 1));
        bool important = false;
        if (const std::size_t mark = value.rfind('!'); mark != std::string_view::npos
            && equalsIgnoringCase(trimmed(value.substr(mark + 1)), "important")) {
            important = true;
            value = trimmed(value.substr(0, mark));
        }
        if (value.empty())
            continue;
        if (name == "marker") {
            for (std::string_view part : { "marker-start", "marker-mid", "marker-end" })
                add(part, value, important);
        } else {
            add(name, value, important);
        }
    }
    return block;
}

void StyleSheet::add(std::string_view source, const std::function<void(std::string_view)>& unsupported)
{
    const std::string text = withoutComments(source);
    std::string_view css = trimmed(text);
    for (std::string_view mark : { "<!--", "-->" }) { // old files hide their rules from older programs
        if (css.starts_with(mark))
            css.remove_prefix(mark.size());
    }
    while (!(css = trimmed(css)).empty()) {
        if (css.front() == '@') {
            if (unsupported)
                unsupported(css.substr(0, css.find_first_of(" \t\n\r;{")));
            skipAtRule(css);
            continue;
        }
        std::string_view selectors = takeUntil(css, "{");
        css.remove_prefix(std::min<std::size_t>(1, css.size()));
        const std::string_view block = takeUntil(css, "}");
        css.remove_prefix(std::min<std::size_t>(1, css.size()));
        mBlocks.push_back(parseBlock(block));
        while (!selectors.empty()) {
            const std::string_view one = takeUntil(selectors, ",");
            selectors.remove_prefix(std::min<std::size_t>(1, selectors.size()));
            if (std::optional<Selector> selector = parseSelector(one))
                addRule(std::move(*selector), mBlocks.size() - 1);
            else if (unsupported && !trimmed(one).empty() && trimmed(one) != "-->")
                unsupported(trimmed(one));
        }
    }
}

void StyleSheet::addRule(Selector selector, std::size_t declarations)
{
    // Filed under its most selective part.
    std::vector<std::size_t>& list = !selector.id.empty() ? mById[selector.id]
        : !selector.classes.empty()                       ? mByClass[selector.classes.back()]
        : !selector.type.empty()                          ? mByType[selector.type]
                                                          : mForAll;
    list.push_back(mRules.size());
    mRules.push_back({ std::move(selector), declarations });
}

std::vector<std::size_t> StyleSheet::matchingRules(const XmlElement& element) const
{
    std::vector<std::size_t> result;
    const auto collect = [&](const std::vector<std::size_t>& list) {
        mComparisons += static_cast<long>(list.size());
        if (mComparisons > comparisonLimit)
            throw DocumentError(element.line, "too many style rules apply to too many elements");
        std::copy_if(list.begin(), list.end(), std::back_inserter(result),
            [&](std::size_t rule) { return mRules[rule].selector.matches(element); });
    };
    const auto collectFrom = [&](const Index& index, std::string_view key) {
        if (const auto found = index.find(std::string(key)); found != index.end())
            collect(found->second);
    };
    collect(mForAll);
    if (!mByType.empty())
        collectFrom(mByType, element.name);
    const std::string* id = mById.empty() ? nullptr : element.attribute("id");
    if (id)
        collectFrom(mById, *id);
    if (const std::string* classes = mByClass.empty() ? nullptr : element.attribute("class")) {
        for (std::string_view word : wordsOf(*classes))
            collectFrom(mByClass, word);
    }
    std::sort(result.begin(), result.end());
    return result;
}

Declarations StyleSheet::cascade(const XmlElement& element) const
{
    // Origin 0 presentation attribute, 1 rule, 2 style attribute; later equals replace earlier ones.
    using Weight = std::tuple<bool, int, int>;
    Declarations result;
    std::array<Weight, propertyCount> weights {};
    const auto offer = [&](Property property, const std::string& value, const Weight& weight) {
        const auto index = static_cast<std::size_t>(property);
        if (result.values[index] && weight < weights[index])
            return;
        result.values[index] = value;
        weights[index] = weight;
    };

    for (const XmlAttribute& attribute : element.attributes) {
        if (const std::optional<Property> property = propertyOfAttribute(attribute.name))
            offer(*property, std::string(trimmed(attribute.value)), { false, 0, 0 });
    }
    for (std::size_t index : matchingRules(element)) {
        const Rule& rule = mRules[index];
        for (const Declaration& d : mBlocks[rule.declarations])
            offer(d.property, d.value, { d.isImportant, 1, rule.selector.specificity() });
    }
    if (const std::string* style = element.attribute("style")) {
        for (const Declaration& d : parseBlock(withoutComments(*style)))
            offer(d.property, d.value, { d.isImportant, 2, 0 });
    }
    return result;
}

} // namespace app::svg
