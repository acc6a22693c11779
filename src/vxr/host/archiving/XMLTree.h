#pragma once

#include <vxr/host/archiving/VXAXMLNode.h>

#include <libxml/tree.h>

#include <functional>

namespace vxr {

// What the sources of this folder share of libxml2's tree.

inline const xmlChar* xmlText(const char* text) { return reinterpret_cast<const xmlChar*>(text); }
inline const char* plainText(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

/// What has become of a node that was parsed, or of one that is being written. It stands in the node's own
/// field for applications, together with the line: libxml2 counts no further than 65,535.
enum class NodeState : unsigned {
    Untouched, ///< nobody has asked for it
    Asked, ///< a reader has found it by its name
    Object, ///< an object was made of it, or refused by its own class
    Unreadable, ///< it is of a class that nobody knows
    Written, ///< its start has been written already
};

NodeState stateOf(const xmlNode*);
NodeState stateOf(const xmlAttr*);
void setState(const xmlNode*, NodeState); ///< bookkeeping, so that it takes constant nodes
void setState(const xmlAttr*, NodeState);
void setLine(xmlNode*, long line);

bool isIn(const xmlNs* declared, const VXAXMLNamespace&);
const xmlAttr* findAttribute(const xmlNode*, const VXAXMLNamespace&, const char* name);

/// The namespace as an attribute of `node` can use it: with a prefix. Declared on the root when it is
/// unknown, so that a document declares it once; below what has been written already.
xmlNs* prefixedNamespace(xmlNode*, const VXAXMLNamespace&);
bool setAttribute(xmlNode*, const VXAXMLNamespace&, const char* name, const char* value);

/// Copies attributes that `target` doesn't have, and children. Of a child that is `Unreadable` only where
/// the target has no element of its name.
void appendContents(const xmlNode* source, xmlNode* target);

/// Takes the place of an element's children while its text is written: ends the start tag and appends the
/// lines of all children, if there are any.
struct TextFiller {
    const xmlNode* element;
    std::function<bool(std::string& out, int depth)> appendChildren;
};

/// Appends the lines of an element as libxml2 formats them: indented by two spaces where no text stands in
/// between.
void appendText(std::string& out, const xmlNode* element, int depth, const TextFiller* = nullptr);

} // namespace vxr
