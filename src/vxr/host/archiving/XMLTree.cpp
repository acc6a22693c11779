#include <vxr/host/archiving/XMLTree.h>

#include <cstring>
#include <new>

namespace vxr {
namespace {

constexpr unsigned stateBits = 3;
constexpr std::uintptr_t stateMask = (1u << stateBits) - 1;

NodeState stateIn(const void* field)
{
    return static_cast<NodeState>(reinterpret_cast<std::uintptr_t>(field) & stateMask);
}

void setStateIn(void*& field, NodeState state)
{
    const std::uintptr_t line = reinterpret_cast<std::uintptr_t>(field) & ~stateMask;
    field = reinterpret_cast<void*>(line | static_cast<std::uintptr_t>(state));
}

void appendAttribute(const xmlAttr* attribute, xmlNode* target)
{
    xmlNs* ns = nullptr;
    if (attribute->ns && std::strcmp(plainText(attribute->ns->href), plainText(XML_XML_NAMESPACE)) == 0) {
        ns = xmlSearchNs(target->doc, target, xmlText("xml"));
    } else if (attribute->ns) {
        const char* prefix = attribute->ns->prefix ? plainText(attribute->ns->prefix) : "n";
        ns = prefixedNamespace(target, { plainText(attribute->ns->href), prefix });
    }
    if (xmlHasNsProp(target, attribute->name, ns ? ns->href : nullptr))
        return;
    xmlChar* const value = xmlNodeListGetString(attribute->doc, attribute->children, 1);
    xmlNewNsProp(target, ns, attribute->name, value ? value : xmlText(""));
    xmlFree(value);
}

void replaceNamespace(xmlNode* element, const xmlNs* old, xmlNs* with)
{
    if (element->type != XML_ELEMENT_NODE)
        return;
    if (element->ns == old)
        element->ns = with;
    for (xmlAttr* attribute = element->properties; attribute; attribute = attribute->next) {
        if (attribute->ns == old)
            attribute->ns = with;
    }
    for (xmlNode* child = element->children; child; child = child->next)
        replaceNamespace(child, old, with);
}

/// An element that has been copied declares what it uses: here, only what isn't declared around it.
void dropKnownDeclarations(xmlNode* element)
{
    for (xmlNs** place = &element->nsDef; *place;) {
        xmlNs* const declared = *place;
        xmlNs* const known = xmlSearchNs(element->doc, element->parent, declared->prefix);
        if (!known || !xmlStrEqual(known->href, declared->href)) {
            place = &declared->next;
            continue;
        }
        replaceNamespace(element, declared, known);
        *place = declared->next;
        xmlFreeNs(declared);
    }
}

bool hasElementLike(const xmlNode* parent, const xmlNode* element)
{
    for (const xmlNode* child = parent->children; child; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && xmlStrEqual(child->name, element->name)
            && xmlStrEqual(child->ns ? child->ns->href : nullptr, element->ns ? element->ns->href : nullptr))
            return true;
    }
    return false;
}

void appendEscaped(std::string& out, std::string_view text, bool isAttribute)
{
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* escape = nullptr;
        switch (text[i]) {
        case '<':
            escape = "&lt;";
            break;
        case '>':
            escape = "&gt;";
            break;
        case '&':
            escape = "&amp;";
            break;
        case '\r':
            escape = "&#13;";
            break;
        case '"':
            escape = isAttribute ? "&quot;" : nullptr;
            break;
        case '\n':
            escape = isAttribute ? "&#10;" : nullptr;
            break;
        case '\t':
            escape = isAttribute ? "&#9;" : nullptr;
            break;
        default:
            break;
        }
        if (!escape)
            continue;
        out.append(text, begin, i - begin);
        out += escape;
        begin = i + 1;
    }
    out.append(text, begin);
}

void appendName(std::string& out, const xmlNs* ns, const xmlChar* name)
{
    if (ns && ns->prefix) {
        out += plainText(ns->prefix);
        out += ':';
    }
    out += plainText(name);
}

void appendStart(std::string& out, const xmlNode* element)
{
    out += '<';
    appendName(out, element->ns, element->name);
    for (const xmlNs* ns = element->nsDef; ns; ns = ns->next) {
        out += ns->prefix ? " xmlns:" : " xmlns";
        if (ns->prefix)
            out += plainText(ns->prefix);
        out += "=\"";
        appendEscaped(out, ns->href ? plainText(ns->href) : "", true);
        out += '"';
    }
    for (const xmlAttr* attribute = element->properties; attribute; attribute = attribute->next) {
        out += ' ';
        appendName(out, attribute->ns, attribute->name);
        out += "=\"";
        for (const xmlNode* text = attribute->children; text; text = text->next) {
            if (text->content)
                appendEscaped(out, plainText(text->content), true);
        }
        out += '"';
    }
}

bool holdsText(const xmlNode* element)
{
    for (const xmlNode* child = element->children; child; child = child->next) {
        if (child->type != XML_ELEMENT_NODE)
            return true;
    }
    return false;
}

/// Without the ends of its lines; `depth` is negative within text, where nothing may be added.
void appendElement(std::string& out, const xmlNode* element, int depth, const TextFiller* filler)
{
    const auto appendIndent = [&](int levels) { out.append(2 * static_cast<std::size_t>(levels), ' '); };
    const auto appendEnd = [&] {
        out += "</";
        appendName(out, element->ns, element->name);
        out += '>';
    };
    appendStart(out, element);
    if (filler && filler->element == element) {
        if (!filler->appendChildren(out, depth)) {
            out += "/>";
            return;
        }
        appendIndent(depth);
        return appendEnd();
    }
    if (!element->children) {
        out += "/>";
        return;
    }
    out += '>';
    const bool isFormatted = depth >= 0 && !holdsText(element);
    for (const xmlNode* child = element->children; child; child = child->next) {
        const char* const content
            = child->type != XML_ELEMENT_NODE && child->content ? plainText(child->content) : "";
        if (isFormatted) {
            out += '\n';
            appendIndent(depth + 1);
        }
        if (child->type == XML_ELEMENT_NODE)
            appendElement(out, child, isFormatted ? depth + 1 : -1, filler);
        else if (child->type == XML_CDATA_SECTION_NODE)
            out.append("<![CDATA[").append(content).append("]]>");
        else
            appendEscaped(out, content, false);
    }
    if (isFormatted) {
        out += '\n';
        appendIndent(depth);
    }
    appendEnd();
}

} // namespace

NodeState stateOf(const xmlNode* node) { return stateIn(node->_private); }
NodeState stateOf(const xmlAttr* attribute) { return stateIn(attribute->_private); }
void setState(const xmlNode* node, NodeState state)
{
    setStateIn(const_cast<xmlNode*>(node)->_private, state);
}
void setState(const xmlAttr* attribute, NodeState state)
{
    setStateIn(const_cast<xmlAttr*>(attribute)->_private, state);
}

void setLine(xmlNode* node, long line)
{
    node->_private = reinterpret_cast<void*>(static_cast<std::uintptr_t>(line) << stateBits);
}

long vxaxmlLine(const VXAXMLNode* node)
{
    return node ? static_cast<long>(reinterpret_cast<std::uintptr_t>(node->_private) >> stateBits) : 0;
}

bool isIn(const xmlNs* declared, const VXAXMLNamespace& ns)
{
    return declared && declared->href && std::strcmp(plainText(declared->href), ns.uri) == 0;
}

const xmlAttr* findAttribute(const xmlNode* node, const VXAXMLNamespace& ns, const char* name)
{
    if (!node || node->type != XML_ELEMENT_NODE)
        return nullptr;
    for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
        if (std::strcmp(plainText(attribute->name), name) == 0 && isIn(attribute->ns, ns))
            return attribute;
    }
    return nullptr;
}

xmlNs* prefixedNamespace(xmlNode* node, const VXAXMLNamespace& ns)
{
    if (node->ns && node->ns->prefix && isIn(node->ns, ns))
        return node->ns;
    xmlNode* holder = node;
    for (xmlNode* at = node; at && at->type == XML_ELEMENT_NODE; at = at->parent) {
        for (xmlNs* declared = at->nsDef; declared; declared = declared->next) {
            if (declared->prefix && isIn(declared, ns)
                && xmlSearchNs(node->doc, node, declared->prefix) == declared)
                return declared;
        }
        if (stateOf(at) != NodeState::Written)
            holder = at;
    }
    std::string prefix = ns.prefix;
    while (xmlSearchNs(node->doc, node, xmlText(prefix.c_str())))
        prefix += '1';
    return xmlNewNs(holder, xmlText(ns.uri), xmlText(prefix.c_str()));
}

bool setAttribute(xmlNode* node, const VXAXMLNamespace& ns, const char* name, const char* value)
{
    if (!node || node->type != XML_ELEMENT_NODE)
        return false;
    xmlNs* const declared = prefixedNamespace(node, ns);
    if (!declared)
        return false;
    return findAttribute(node, ns, name) ? xmlSetNsProp(node, declared, xmlText(name), xmlText(value))
                                         : xmlNewNsProp(node, declared, xmlText(name), xmlText(value));
}

void appendContents(const xmlNode* source, xmlNode* target)
{
    for (const xmlAttr* attribute = source->properties; attribute; attribute = attribute->next)
        appendAttribute(attribute, target);
    for (xmlNode* child = source->children; child; child = child->next) {
        if (stateOf(child) == NodeState::Unreadable && hasElementLike(target, child))
            continue;
        xmlNode* const copy = xmlDocCopyNode(child, target->doc, 1);
        if (!copy)
            throw std::bad_alloc();
        xmlAddChild(target, copy);
        if (child->type == XML_ELEMENT_NODE)
            dropKnownDeclarations(copy);
    }
}

void appendText(std::string& out, const xmlNode* element, int depth, const TextFiller* filler)
{
    out.append(2 * static_cast<std::size_t>(depth), ' ');
    appendElement(out, element, depth, filler);
    out += '\n';
}

} // namespace vxr
