#pragma once

#include <vxr/persistence/VXRArchiving.h>

namespace vxr {

// For the readers and writers of subclasses: what every gradient writes and reads.
void encodeGradient(const VXRGradient&, VXAXMLArchiver&, VXAXMLNode*, std::uint32_t version);
void readGradient(VXRGradient&, VXAXMLUnarchiver&, VXAXMLNode*);

} // namespace vxr
