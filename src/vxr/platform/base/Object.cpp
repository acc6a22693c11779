#include <vxr/platform/base/Object.h>

#include <cxxabi.h>
#include <fmt/format.h>

#include <cstdlib>
#include <typeinfo>

namespace vxr {

Object::~Object() = default;

std::string Object::description() const
{
    int status = 0;
    const char* mangled = typeid(*this).name();
    const std::unique_ptr<char, void (*)(void*)> readable(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), std::free);
    return fmt::format("<{} {}>", readable ? readable.get() : mangled, static_cast<const void*>(this));
}

} // namespace vxr
