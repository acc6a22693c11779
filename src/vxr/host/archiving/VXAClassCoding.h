#pragma once

#include <vxr/platform/base/Object.h>

#include <string>
#include <string_view>
#include <typeindex>
#include <typeinfo>

namespace vxr {

class VXACoder;
class VXADecoder;

/// How the objects of one class are written to a sequential coder and read back. The name stands in the
/// stream.
struct VXAClassCoding {
    std::string name;
    void (*encode)(const Object&, VXACoder&) = nullptr;
    std::shared_ptr<Object> (*decode)(VXADecoder&) = nullptr;
};

/// Adds a class, or replaces what is known of it.
VXR_EXPORT void VXARegisterClassCoding(std::type_index type, VXAClassCoding coding);

template <class Class> void VXARegisterClass(VXAClassCoding coding)
{
    VXARegisterClassCoding(typeid(Class), std::move(coding));
}

// None for what was never registered.
const VXAClassCoding* VXAClassCodingForType(std::type_index type);
const VXAClassCoding* VXAClassCodingNamed(std::string_view name);

} // namespace vxr
