#include <vxr/platform/base/OptionalOperations.h>

#include <functional>
#include <map>

namespace vxr {

namespace {

auto& operations()
{
    static std::map<std::string, OptionalOperation, std::less<>> known;
    return known;
}

} // namespace

void registerOptionalOperation(std::string_view name, OptionalOperation operation)
{
    if (operation)
        operations().insert_or_assign(std::string(name), operation);
    else if (auto found = operations().find(name); found != operations().end())
        operations().erase(found);
}

OptionalOperation lookUpOptionalOperation(std::string_view name)
{
    const auto found = operations().find(name);
    return found == operations().end() ? nullptr : found->second;
}

} // namespace vxr
