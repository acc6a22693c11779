#pragma once

#include <vxr/platform/base/Export.h>

#include <string>
#include <string_view>

namespace vxr {

/// A platform operation that may be missing, without its type.
using OptionalOperation = void (*)();

/// Registers `operation` under `name`, replacing any former one; null removes it.
VXR_EXPORT void registerOptionalOperation(std::string_view name, OptionalOperation operation);

/// The operation registered under `name`; null if the platform has none.
VXR_EXPORT OptionalOperation lookUpOptionalOperation(std::string_view name);

/// The same, cast to the type it was registered with. The caller is responsible for the type.
template <class Function> Function* lookUpOptionalOperationOfType(std::string_view name)
{
    return reinterpret_cast<Function*>(lookUpOptionalOperation(name));
}

template <class Function> void registerOptionalOperationOfType(std::string_view name, Function* operation)
{
    registerOptionalOperation(name, reinterpret_cast<OptionalOperation>(operation));
}

} // namespace vxr
