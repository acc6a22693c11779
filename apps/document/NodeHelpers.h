#pragma once

#include <vxr/host/archiving/VXAXMLArchiver.h>
#include <vxr/persistence/VXRArchiving.h>

namespace app {

// Shorthands for elements and attributes in `VelloraNamespace`.

inline vxr::VXAXMLNode* childNamed(const vxr::VXAXMLNode* node, const char* name)
{
    return vxr::vxaxmlFirstChildNsNamed(node, vxr::VelloraNamespace, name);
}

inline void setNumber(vxr::VXAXMLNode* node, const char* name, double value)
{
    vxr::vxaxmlSetDoubleNsProp(node, vxr::VelloraNamespace, name, value);
}

inline float numberOr(const vxr::VXAXMLNode* node, const char* name, float fallback)
{
    double value = fallback;
    vxr::vxaxmlGetDoubleNsProp(node, vxr::VelloraNamespace, name, value);
    return static_cast<float>(value);
}

inline void encodeChild(
    const vxr::Object* object, const char* name, vxr::VXAXMLNode* parent, vxr::VXAXMLArchiver& archiver)
{
    if (object)
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*object, parent, name, vxr::VelloraNamespace);
}

/// For the parts that may be of several classes.
inline void encodeAnyChild(
    const vxr::Object* object, const char* name, vxr::VXAXMLNode* parent, vxr::VXAXMLArchiver& archiver)
{
    if (object)
        archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
            *object, parent, name, vxr::VelloraNamespace);
}

} // namespace app
