#pragma once

#include <vxr/platform/base/Export.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <cstdint>
#include <string>
#include <string_view>

struct _xmlNode;

namespace vxr {

/// An element node of libxml2, as the archiver hands it to the classes that write themselves. It belongs to
/// its document.
using VXAXMLNode = ::_xmlNode;

/// An XML namespace and the prefix under which it is declared when a document does not know it yet.
struct VXAXMLNamespace {
    const char* uri;
    const char* prefix;
};

/// Where every attribute and child element of styles and renderables lies.
VXR_EXPORT extern const VXAXMLNamespace VelloraNamespace;
/// The archive's own words: the class attribute.
VXR_EXPORT extern const VXAXMLNamespace VXANamespace;
/// The attribute of `VXANamespace` that names an element's class by the class's element name.
inline constexpr const char* VXAVXClassAttribute = "class";

// Attributes. Getters answer whether the attribute is there and can be read; `out` is left alone otherwise.
// Setters replace a value that is there and answer whether it was written: a string that XML cannot hold
// (not UTF-8, control characters) is not. Numbers are written with the fewest digits that read back to the
// same double, "inf", "-inf" and "nan" among them, whatever the locale.
VXR_EXPORT bool vxaxmlGetDoubleNsProp(
    const VXAXMLNode*, const VXAXMLNamespace&, const char* name, double& out);
VXR_EXPORT bool vxaxmlSetDoubleNsProp(VXAXMLNode*, const VXAXMLNamespace&, const char* name, double value);
VXR_EXPORT bool vxaxmlGetUnsignedLongNsProp(
    const VXAXMLNode*, const VXAXMLNamespace&, const char* name, std::uint32_t& out);
VXR_EXPORT bool vxaxmlSetUnsignedLongNsProp(
    VXAXMLNode*, const VXAXMLNamespace&, const char* name, std::uint32_t value);
VXR_EXPORT bool vxaxmlGetNSStringNsProp(
    const VXAXMLNode*, const VXAXMLNamespace&, const char* name, std::string& out);
VXR_EXPORT bool vxaxmlSetNSStringNsProp(
    VXAXMLNode*, const VXAXMLNamespace&, const char* name, std::string_view value);
/// "true", "1" and "yes" are true, "false", "0" and "no" false, in any case of letters; `fallback` for
/// anything else.
VXR_EXPORT bool vxaxmlBoolNsPropDefault(
    const VXAXMLNode*, const VXAXMLNamespace&, const char* name, bool fallback);
/// Writes the attribute only when `value` differs from `fallback`, and removes it otherwise.
VXR_EXPORT bool vxaxmlSetBoolNsPropDefault(
    VXAXMLNode*, const VXAXMLNamespace&, const char* name, bool value, bool fallback);
VXR_EXPORT bool vxaxmlSetBoolNsProp(VXAXMLNode*, const VXAXMLNamespace&, const char* name, bool value);

// Elements. Searches look at direct children; null when there is none.
VXR_EXPORT VXAXMLNode* vxaxmlFirstChildNsNamed(const VXAXMLNode*, const VXAXMLNamespace&, const char* name);
VXR_EXPORT VXAXMLNode* vxaxmlFirstChildNamed(const VXAXMLNode*, const char* name); ///< in any namespace
VXR_EXPORT VXAXMLNode* vxaxmlNextSiblingNsNamed(const VXAXMLNode*, const VXAXMLNamespace&, const char* name);
VXR_EXPORT VXAXMLNode* vxaxmlFirstChildElement(const VXAXMLNode*);
VXR_EXPORT VXAXMLNode* vxaxmlNextSiblingElement(const VXAXMLNode*);
VXR_EXPORT VXAXMLNode* vxaxmlCreateChild(VXAXMLNode* parent, const VXAXMLNamespace&, const char* name);
VXR_EXPORT std::string_view vxaxmlNodeName(const VXAXMLNode*); ///< without prefix; lives with the node
VXR_EXPORT bool vxaxmlIsNsNamed(const VXAXMLNode*, const VXAXMLNamespace&, const char* name);
VXR_EXPORT long vxaxmlLine(const VXAXMLNode*); ///< in the text that was parsed; 0 for a new node

// A point is a child element with the attributes "x" and "y", a size one with "width" and "height".
VXR_EXPORT VXAXMLNode* vxaxmlCreatePointChild(
    VXAXMLNode* parent, const VXAXMLNamespace&, const char* name, Point);
VXR_EXPORT bool vxaxmlPopulatePointFromChild(
    const VXAXMLNode*, const VXAXMLNamespace&, const char* name, Point& out);
VXR_EXPORT VXAXMLNode* vxaxmlCreateSizeChild(
    VXAXMLNode* parent, const VXAXMLNamespace&, const char* name, Size);
VXR_EXPORT bool vxaxmlPopulateSizeFromChild(
    const VXAXMLNode*, const VXAXMLNamespace&, const char* name, Size& out);

} // namespace vxr
