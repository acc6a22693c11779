#pragma once

#include <vxr/platform/base/Export.h>

#include <string>
#include <string_view>

namespace vxr {

/// A platform operation that may be missing, held without its type.
using OptionalOperation = void (*)();

/// Makes `operation` known under `name`, in place of what the name stood for; null takes it away.
VXR_EXPORT void registerOptionalOperation(std::string_view name, OptionalOperation operation);

/// What `name` stands for now; null when the platform has no such operation.
VXR_EXPORT OptionalOperation lookUpOptionalOperation(std::string_view name);

/// The same with the type under which the operation was registered. The caller vouches for the type.
template <class Function> Function* lookUpOptionalOperationOfType(std::string_view name)
{
    return reinterpret_cast<Function*>(lookUpOptionalOperation(name));
}

template <class Function> void registerOptionalOperationOfType(std::string_view name, Function* operation)
{
    registerOptionalOperation(name, reinterpret_cast<OptionalOperation>(operation));
}

} // namespace vxr
