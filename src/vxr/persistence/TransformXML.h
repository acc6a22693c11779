#pragma once

#include <vxr/host/archiving/VXAXMLNode.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

namespace vxr {

/// A child element with the attributes "m11", "m12", "m21", "m22", "tx" and "ty".
void encodeTransformChild(const AffineTransform&, VXAXMLNode* parent, const char* name);

/// The identity, logged with the kind of object that asks, when the child or one of its numbers is missing.
AffineTransform transformFromChild(const VXAXMLNode* parent, const char* name, const char* kind);

} // namespace vxr
