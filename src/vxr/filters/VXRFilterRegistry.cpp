#include <vxr/filters/VXRFilterRegistry.h>

#include <vxr/filters/StandardFilters.h>
#include <vxr/platform/base/Exceptions.h>

#include <map>

namespace vxr {
namespace {

std::map<std::string, VXRFilterRegistry::Factory, std::less<>>& factories()
{
    static std::map<std::string, VXRFilterRegistry::Factory, std::less<>> shared = [] {
        std::map<std::string, VXRFilterRegistry::Factory, std::less<>> own;
        for (const auto& [name, factory] : standardFilters())
            own.emplace(name, factory);
        return own;
    }();
    return shared;
}

} // namespace

void VXRFilterRegistry::registerFilter(const std::string& name, Factory factory)
{
    if (!factories().emplace(name, std::move(factory)).second)
        throw InvalidArgumentException("a filter named " + name + " is already registered");
}

std::shared_ptr<VXRFilter> VXRFilterRegistry::createFilter(std::string_view name)
{
    const auto found = factories().find(name);
    return found == factories().end() ? nullptr : found->second();
}

std::vector<std::string> VXRFilterRegistry::filterNames()
{
    std::vector<std::string> names;
    for (const auto& [name, factory] : factories())
        names.push_back(name);
    return names;
}

} // namespace vxr
