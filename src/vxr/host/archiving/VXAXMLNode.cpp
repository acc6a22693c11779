#include <vxr/host/archiving/VXAXMLNode.h>

#include <libxml/tree.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace vxr {

const VXAXMLNamespace VelloraNamespace { "urn:vxr:model", "v" };
const VXAXMLNamespace VXANamespace { "urn:vxr:archive", "a" };

namespace {

const xmlChar* xml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }
const char* text(const xmlChar* characters) { return reinterpret_cast<const char*>(characters); }

bool isIn(const xmlNs* declared, const VXAXMLNamespace& ns)
{
    return declared && declared->href && std::strcmp(text(declared->href), ns.uri) == 0;
}

const xmlAttr* findAttribute(const xmlNode* node, const VXAXMLNamespace& ns, const char* name)
{
    if (!node || node->type != XML_ELEMENT_NODE)
        return nullptr;
    for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
        if (std::strcmp(text(attribute->name), name) == 0 && isIn(attribute->ns, ns))
            return attribute;
    }
    return nullptr;
}

/// The attribute's text where it lies: one text node, since documents with entities are refused.
bool attributeText(const xmlNode* node, const VXAXMLNamespace& ns, const char* name, std::string_view& out)
{
    const xmlAttr* attribute = findAttribute(node, ns, name);
    if (!attribute)
        return false;
    out = attribute->children && attribute->children->content ? text(attribute->children->content) : "";
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

/// The namespace as an attribute of `node` can use it: with a prefix. Declared on the root when it is
/// unknown, so that a document declares it once.
xmlNs* prefixedNamespace(xmlNode* node, const VXAXMLNamespace& ns)
{
    const xmlNode* root = node;
    for (const xmlNode* at = node; at && at->type == XML_ELEMENT_NODE; at = at->parent) {
        for (xmlNs* declared = at->nsDef; declared; declared = declared->next) {
            if (declared->prefix && isIn(declared, ns)
                && xmlSearchNs(node->doc, node, declared->prefix) == declared)
                return declared;
        }
        root = at;
    }
    auto* const holder = const_cast<xmlNode*>(root);
    std::string prefix = ns.prefix;
    while (xmlSearchNs(node->doc, node, xml(prefix.c_str())))
        prefix += '1';
    return xmlNewNs(holder, xml(ns.uri), xml(prefix.c_str()));
}

bool setAttribute(xmlNode* node, const VXAXMLNamespace& ns, const char* name, const char* value)
{
    if (!node || node->type != XML_ELEMENT_NODE)
        return false;
    xmlNs* const declared = prefixedNamespace(node, ns);
    return declared && xmlSetNsProp(node, declared, xml(name), xml(value));
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
    if (value.find('\0') != value.npos || !xmlCheckUTF8(xml(value.c_str())))
        return false;
    const auto isForbidden = [](unsigned char c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; };
    if (std::any_of(value.begin(), value.end(), isForbidden))
        return false;
    // U+FFFE and U+FFFF.
    return value.find("\xEF\xBF\xBE") == value.npos && value.find("\xEF\xBF\xBF") == value.npos;
}

bool equalsIgnoringCase(std::string_view a, std::string_view lower)
{
    return std::equal(a.begin(), a.end(), lower.begin(), lower.end(),
        [](char x, char y) { return (x >= 'A' && x <= 'Z' ? char(x - 'A' + 'a') : x) == y; });
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
    return node && isIn(node->ns, ns) && std::strcmp(text(node->name), name) == 0;
}

VXAXMLNode* vxaxmlFirstChildNsNamed(const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name)
{
    VXAXMLNode* child = vxaxmlFirstChildElement(node);
    while (child && !vxaxmlIsNsNamed(child, ns, name))
        child = vxaxmlNextSiblingElement(child);
    return child;
}

VXAXMLNode* vxaxmlFirstChildNamed(const VXAXMLNode* node, const char* name)
{
    VXAXMLNode* child = vxaxmlFirstChildElement(node);
    while (child && vxaxmlNodeName(child) != name)
        child = vxaxmlNextSiblingElement(child);
    return child;
}

VXAXMLNode* vxaxmlNextSiblingNsNamed(const VXAXMLNode* node, const VXAXMLNamespace& ns, const char* name)
{
    VXAXMLNode* sibling = vxaxmlNextSiblingElement(node);
    while (sibling && !vxaxmlIsNsNamed(sibling, ns, name))
        sibling = vxaxmlNextSiblingElement(sibling);
    return sibling;
}

VXAXMLNode* vxaxmlCreateChild(VXAXMLNode* parent, const VXAXMLNamespace& ns, const char* name)
{
    if (!parent)
        return nullptr;
    return xmlNewChild(parent, prefixedNamespace(parent, ns), xml(name), nullptr);
}

std::string_view vxaxmlNodeName(const VXAXMLNode* node) { return node && node->name ? text(node->name) : ""; }

long vxaxmlLine(const VXAXMLNode* node) { return node && node->line ? xmlGetLineNo(node) : 0; }

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
