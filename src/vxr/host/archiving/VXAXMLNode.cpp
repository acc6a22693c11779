#include <vxr/host/archiving/XMLTree.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace vxr {

const VXAXMLNamespace VelloraNamespace { "urn:vxr:model", "v" };
const VXAXMLNamespace VXANamespace { "urn:vxr:archive", "a" };

namespace {

/// The attribute's text where it lies: one text node, since documents with entities are refused.
bool attributeText(const xmlNode* node, const VXAXMLNamespace& ns, const char* name, std::string_view& out)
{
    const xmlAttr* attribute = findAttribute(node, ns, name);
    if (!attribute)
        return false;
    setState(attribute, NodeState::Asked);
    const xmlNode* const value = attribute->children;
    out = value && value->content ? plainText(value->content) : "";
    return true;
}

std::string_view trimmed(std::string_view value)
{
    constexpr std::string_view spaces = " \t\r\n";
    const auto first = value.find_first_not_of(spaces);
    if (first == value.npos)
        return {};
    return value.substr(first, value.find_last_not_of(spaces) - first + 1);
}

template <class Number>
bool numberAttribute(const xmlNode* node, const VXAXMLNamespace& ns, const char* name, Number& out)
{
    std::string_view value;
    if (!attributeText(node, ns, name, value))
        return false;
    value = trimmed(value);
    if (value.size() > 1 && value[0] == '+' && value[1] != '-')
        value.remove_prefix(1);
    Number number {};
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size())
        return false;
    out = number;
    return true;
}

template <class Number>
bool setNumber(xmlNode* node, const VXAXMLNamespace& ns, const char* name, Number value)
{
    char buffer[40];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer - 1, value);
    if (error != std::errc())
        return false;
    *end = 0;
    return setAttribute(node, ns, name, buffer);
}

/// Whether XML 1.0 can hold the text.
bool isXMLText(const std::string& value)
{
    const auto isPlain = [](unsigned char c) { return c >= 0x20 && c < 0x80; };
    if (std::all_of(value.begin(), value.end(), isPlain))
        return true;
    const auto isForbidden = [](unsigned char c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; };
    if (std::any_of(value.begin(), value.end(), isForbidden) || !xmlCheckUTF8(xmlText(value.c_str())))
        return false;
    // U+FFFE and U+FFFF.
    return value.find("\xEF\xBF\xBE") == value.npos && value.find("\xEF\xBF\xBF") == value.npos;
}

bool equalsIgnoringCase(std::string_view a, std::string_view lower)
{
    return std::equal(a.begin(), a.end(), lower.begin(), lower.end(),
        [](char x, char y) { return (x >= 'A' && x <= 'Z' ? char(x - 'A' + 'a') : x) == y; });
}

/// A name as elements of the document hold it.
xmlChar* ownedName(xmlDoc* document, const char* name)
{
    return document && document->dict ? const_cast<xmlChar*>(xmlDictLookup(document->dict, xmlText(name), -1))
                                      : xmlStrdup(xmlText(name));
}

xmlNode* asked(xmlNode* node)
{
    if (node && stateOf(node) == NodeState::Untouched)
        setState(node, NodeState::Asked);
    return node;
}

xmlNode* nextElement(xmlNode* node)
{
    while (node && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

bool readPair(const xmlNode* parent, const VXAXMLNamespace& ns, const char* name, const char* first,
    const char* second, float& a, float& b)
{
    const xmlNode* child = vxaxmlFirstChildNsNamed(parent, ns, name);
    double x, y;
    if (!child || !numberAttribute(child, ns, first, x) || !numberAttribute(child, ns, second, y))
        return false;
    a = static_cast<float>(x);
    b = static_cast<float>(y);
    return true;
}

xmlNode* createPair(xmlNode* parent, const VXAXMLNamespace& ns, const char* name, const char* first,
    const char* second, float a, float b)
{
    xmlNode* const child = vxaxmlCreateChild(parent, ns, name);
    setNumber(child, ns, first, double(a));
    setNumber(child, ns, second, double(b));
    return child;
}

} // namespace

bool vxaxmlGetDoubleNsProp(const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, double& out)
{
    return numberAttribute(node, ns, name, out);
}

bool vxaxmlSetDoubleNsProp(VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, double value)
{
    return setNumber(node, ns, name, value);
}

bool vxaxmlGetUnsignedLongNsProp(
    const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, std::uint32_t& out)
{
    return numberAttribute(node, ns, name, out);
}

bool vxaxmlSetUnsignedLongNsProp(
    VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, std::uint32_t value)
{
    return setNumber(node, ns, name, value);
}

bool vxaxmlGetNSStringNsProp(
    const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, std::string& out)
{
    std::string_view value;
    if (!attributeText(node, ns, name, value))
        return false;
    out = value;
    return true;
}

bool vxaxmlSetNSStringNsProp(
    VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, std::string_view value)
{
    const std::string copy(value);
    return isXMLText(copy) && setAttribute(node, ns, name, copy.c_str());
}

bool vxaxmlBoolNsPropDefault(
    const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, bool fallback)
{
    std::string_view value;
    if (!attributeText(node, ns, name, value))
        return fallback;
    value = trimmed(value);
    for (const auto word : { "true", "1", "yes" }) {
        if (equalsIgnoringCase(value, word))
            return true;
    }
    for (const auto word : { "false", "0", "no" }) {
        if (equalsIgnoringCase(value, word))
            return false;
    }
    return fallback;
}

bool vxaxmlSetBoolNsPropDefault(
    VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, bool value, bool fallback)
{
    if (value != fallback)
        return vxaxmlSetBoolNsProp(node, ns, name, value);
    if (const xmlAttr* attribute = findAttribute(node, ns, name))
        xmlRemoveProp(const_cast<xmlAttr*>(attribute));
    return true;
}

bool vxaxmlSetBoolNsProp(VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, bool value)
{
    return setAttribute(node, ns, name, value ? "true" : "false");
}

VXAXMLNode* vxaxmlFirstChildElement(const VXAXMLNode* node)
{
    return node ? nextElement(node->children) : nullptr;
}

VXAXMLNode* vxaxmlNextSiblingElement(const VXAXMLNode* node)
{
    return node ? nextElement(node->next) : nullptr;
}

bool vxaxmlIsNsNamed(const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name)
{
    return node && isIn(node->ns, ns) && std::strcmp(plainText(node->name), name) == 0;
}

VXAXMLNode* vxaxmlFirstChildNsNamed(const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name)
{
    VXAXMLNode* child = vxaxmlFirstChildElement(node);
    while (child && !vxaxmlIsNsNamed(child, ns, name))
        child = vxaxmlNextSiblingElement(child);
    return asked(child);
}

VXAXMLNode* vxaxmlFirstChildNamed(const VXAXMLNode* node, const char* name)
{
    VXAXMLNode* child = vxaxmlFirstChildElement(node);
    while (child && vxaxmlNodeName(child) != name)
        child = vxaxmlNextSiblingElement(child);
    return asked(child);
}

VXAXMLNode* vxaxmlNextSiblingNsNamed(const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name)
{
    VXAXMLNode* sibling = vxaxmlNextSiblingElement(node);
    while (sibling && !vxaxmlIsNsNamed(sibling, ns, name))
        sibling = vxaxmlNextSiblingElement(sibling);
    return asked(sibling);
}

VXAXMLNode* vxaxmlCreateChild(VXAXMLNode* parent, const VXAXMLNamespace& ns, const char* name)
{
    if (!parent)
        return nullptr;
    xmlNode* const child = xmlNewDocNodeEatName(
        parent->doc, prefixedNamespace(parent, ns), ownedName(parent->doc, name), nullptr);
    if (!child)
        return nullptr;
    // Not by `xmlAddChild`, which looks for text to join.
    child->parent = parent;
    child->prev = parent->last;
    (parent->last ? parent->last->next : parent->children) = child;
    parent->last = child;
    return child;
}

std::string_view vxaxmlNodeName(const VXAXMLNode* node)
{
    return node && node->name ? plainText(node->name) : "";
}

VXAXMLNode* vxaxmlCreatePointChild(
    VXAXMLNode* parent, const VXAXMLNamespace& ns, const char* name, Point point)
{
    return createPair(parent, ns, name, "x", "y", point.x, point.y);
}

bool vxaxmlPopulatePointFromChild(
    const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, Point& out)
{
    return readPair(node, ns, name, "x", "y", out.x, out.y);
}

VXAXMLNode* vxaxmlCreateSizeChild(VXAXMLNode* parent, const VXAXMLNamespace& ns, const char* name, Size size)
{
    return createPair(parent, ns, name, "width", "height", size.width, size.height);
}

bool vxaxmlPopulateSizeFromChild(
    const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name, Size& out)
{
    return readPair(node, ns, name, "width", "height", out.width, out.height);
}

} // namespace vxr
