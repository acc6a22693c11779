#pragma once

#include <vxr/persistence/VXRArchiving.h>

namespace vxr {

// For the readers and writers of subclasses: what a plain stroke writes and reads.
void encodeStroke(const VXRStroke&, VXAXMLArchiver&, VXAXMLNode*, std::uint32_t version);
void readStroke(VXRStroke&, VXAXMLUnarchiver&, VXAXMLNode*);

} // namespace vxr
