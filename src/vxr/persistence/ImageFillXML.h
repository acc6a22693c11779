#pragma once

#include <vxr/persistence/VXRArchiving.h>

namespace vxr {

struct PropertyReader;

// How a picture is fitted, for all that place one. Throws `GenericException` for a technique without a word.
void encodeTechnique(std::int32_t technique, const Object&, VXAXMLNode*);
std::int32_t readTechnique(const PropertyReader&, std::int32_t fallback);

} // namespace vxr
