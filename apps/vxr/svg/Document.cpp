#include "Document.h"

#include <fmt/format.h>

namespace app::svg {

namespace {
constexpr std::size_t warningLimit = 100;
constexpr std::size_t styleTextLimit = 1u << 20;
} // namespace

Document::Document(const XmlElement& root, const DrawingLimits& limits)
    : mRoot(root)
    , mLimits(limits)
{
    index(root, nullptr);
}

void Document::index(const XmlElement& element, const XmlElement* parent)
{
    mParents.emplace(&element, parent);
    if (const std::string* id = element.attribute("id"))
        mIds.emplace(*id, &element);
    if (element.name == "style") {
        const std::string* type = element.attribute("type");
        if (type && !type->empty() && *type != "text/css")
            warnOnce("style type", element.line, "style sheets of type '" + *type + "' are not understood");
        else if (element.text.size() > styleTextLimit)
            warn(element.line, "the style sheet is too long and is left out");
        else
            mSheet.add(element.text, [&](std::string_view what) {
                warnOnce("selector", element.line, fmt::format("the rule '{}' is not understood", what));
            });
    }
    for (const XmlElement& child : element.children)
        index(child, &element);
}

const XmlElement* Document::elementWithId(std::string_view id) const
{
    const auto found = mIds.find(id);
    return found == mIds.end() ? nullptr : found->second;
}

const XmlElement* Document::referenced(const XmlElement& element) const
{
    const std::string* href = element.attribute("href");
    if (!href)
        href = element.attribute("xlink:href");
    if (!href)
        return nullptr;
    const std::string_view target = trimmed(*href);
    return target.starts_with('#') ? elementWithId(target.substr(1)) : nullptr;
}

Style Document::styleOf(const XmlElement& element, const Style& parent, const Viewport& viewport)
{
    return computeStyle(
        parent, mSheet.cascade(element), viewport, [&](Property property, const std::string& warning) {
            warnOnce("value of " + std::string(nameOf(property)), element.line, warning);
        });
}

Style Document::styleInPlace(const XmlElement& element, const Viewport& viewport)
{
    const auto found = mParents.find(&element);
    const XmlElement* parent = found == mParents.end() ? nullptr : found->second;
    return styleOf(element, parent ? styleInPlace(*parent, viewport) : Style {}, viewport);
}

void Document::warnOnce(const std::string& kind, int line, const std::string& message)
{
    if (mKindsWarned.insert(kind).second)
        warn(line, message);
}

void Document::warn(int line, const std::string& message)
{
    if (mWarnings.size() < warningLimit)
        mWarnings.push_back({ line, message });
}

void Document::visit(const XmlElement& element)
{
    if (++mVisits > mLimits.visits)
        throw DocumentError(element.line,
            fmt::format("the drawing grows to more than {} elements through its references", mLimits.visits));
}

} // namespace app::svg
