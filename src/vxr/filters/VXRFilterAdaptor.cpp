#include <vxr/filters/VXRFilterAdaptor.h>

#include <vxr/filters/StandardAdaptors.h>
#include <vxr/filters/VXRFilterRegistry.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/base/Exceptions.h>

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace vxr {

namespace {

constexpr const char* thisFile = "VXRFilterAdaptor.cpp";

[[noreturn]] void failAssertion(const std::string& message) { raiseAssertion(thisFile, __LINE__, message); }

} // namespace

/// Adaptors by property, by filter name and in their order on a stack.
class VXRFilterAdaptor::Registry {
public:
    Registry()
    {
        std::size_t index = 0;
        for (auto& adaptor : standardAdaptors())
            p_registerWithPreferredIndex(std::move(adaptor), index++);
    }

    void p_registerWithPreferredIndex(std::unique_ptr<VXRFilterAdaptor> adaptor, std::size_t index)
    {
        VXRFilterAdaptor* const added = adaptor.get();
        for (const std::string& name : added->filterNames()) {
            const auto [entry, isNew] = mMapFiltersToAdaptors.emplace(name, added);
            if (!isNew)
                failAssertion(
                    fmt::format("filter name {} cannot be registered to filter adaptor {} because it is "
                                "already registered to {}",
                        name, added->className(), entry->second->className()));
        }
        for (const std::string& property : added->properties()) {
            const auto [entry, isNew] = mMapUserPropertiesToAdaptors.emplace(property, added);
            if (!isNew)
                failAssertion(
                    fmt::format("filter property {} cannot be registered to filter adaptor {} because it "
                                "is already registered to {}",
                        property, added->className(), entry->second->className()));
        }
        mSorted.emplace_back(index, std::move(adaptor));
        std::stable_sort(
            mSorted.begin(), mSorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    }

    VXRFilterAdaptor* forProperty(std::string_view property) const
    {
        return find(mMapUserPropertiesToAdaptors, property);
    }
    VXRFilterAdaptor* forFilter(std::string_view name) const { return find(mMapFiltersToAdaptors, name); }

    std::set<std::string> properties() const
    {
        std::set<std::string> all;
        for (const auto& [property, adaptor] : mMapUserPropertiesToAdaptors)
            all.insert(property);
        return all;
    }

    /// By preferred index, lowest first.
    std::vector<const VXRFilterAdaptor*> sorted() const
    {
        std::vector<const VXRFilterAdaptor*> all;
        for (const auto& [index, adaptor] : mSorted)
            all.push_back(adaptor.get());
        return all;
    }

private:
    using Map = std::map<std::string, VXRFilterAdaptor*, std::less<>>;

    static VXRFilterAdaptor* find(const Map& map, std::string_view key)
    {
        const auto found = map.find(key);
        return found == map.end() ? nullptr : found->second;
    }

    Map mMapUserPropertiesToAdaptors, mMapFiltersToAdaptors;
    std::vector<std::pair<std::size_t, std::unique_ptr<VXRFilterAdaptor>>> mSorted;
};

VXRFilterAdaptor::Registry& VXRFilterAdaptor::registry()
{
    static Registry shared;
    return shared;
}

VXRFilterAdaptor::~VXRFilterAdaptor() = default;

std::set<std::string> VXRFilterAdaptor::supportedProperties() { return registry().properties(); }

VXRFilterAdaptor* VXRFilterAdaptor::adaptorForProperty(std::string_view property)
{
    return registry().forProperty(property);
}

VXRFilterAdaptor* VXRFilterAdaptor::adaptorForFilter(const VXRFilterRole& filter)
{
    return registry().forFilter(filter.vxrNameFromFilter());
}

const std::vector<std::string>& VXRFilterAdaptor::properties() const
{
    throw GenericException("properties must be implemented by a concrete subclass.");
}

std::string_view VXRFilterAdaptor::filterName() const
{
    throw GenericException("filterName must be implemented by a concrete subclass.");
}

float VXRFilterAdaptor::defaultValueForProperty(std::string_view) const
{
    throw GenericException("defaultValueForProperty: must be defined by the subclass.");
}

bool VXRFilterAdaptor::isValueValidForPropertyError(float, std::string_view, std::string*) const
{
    throw GenericException("isValueValid:forProperty:error: must be implemented by a concrete subclass.");
}

std::string VXRFilterAdaptor::description() const
{
    return fmt::format("filter adaptor {} ({})", className(), fmt::ptr(static_cast<const void*>(this)));
}

bool VXRFilterAdaptor::handles(std::string_view property) const
{
    return std::ranges::find(properties(), property) != properties().end();
}

std::shared_ptr<VXRFilterRole> VXRFilterAdaptor::p_createFilter() const
{
    return VXRFilterRegistry::createFilter(filterName());
}

VXRFilterRole* VXRFilterAdaptor::p_resolveFilterOnStack(const VXREffectStackRole& stack) const
{
    for (std::size_t i = 1; i < stack.layerCount(); ++i) {
        VXRFilterRole* const filter = stack.filterAtIndex(i);
        if (filter && filter->vxrNameFromFilter() == filterName())
            return filter;
    }
    return nullptr;
}

VXRFilterRole* VXRFilterAdaptor::p_insertFilterOnStack(VXREffectStackRole& stack) const
{
    auto filter = p_createFilter();
    if (!filter)
        throw GenericException(
            fmt::format("couldn't find filter with name {}, and couldn't create it.", filterName()));
    filter->setDefaults();
    const std::size_t index = p_indexOnStack(stack);
    if (index == 0 || index > stack.layerCount())
        throw GenericException(
            fmt::format("created filter of type {}, but was told to put it at index {}, which is "
                        "invalid (stack has {} filters)",
                filterName(), index, stack.layerCount()));
    VXRFilterRole* const inserted = filter.get();
    stack.insertFilterLayerAtIndex(std::move(filter), index);
    return inserted;
}

std::size_t VXRFilterAdaptor::p_indexOnStack(const VXREffectStackRole& stack) const
{
    const auto sorted = registry().sorted();
    std::vector<const VXRFilterAdaptor*> onStack;
    for (std::size_t i = 1; i < stack.layerCount(); ++i) {
        const VXRFilterRole* const filter = stack.filterAtIndex(i);
        if (!filter)
            throw GenericException(fmt::format("layer {} isn't a filter", i));
        const VXRFilterAdaptor* const adaptor = adaptorForFilter(*filter);
        if (!adaptor)
            throw GenericException(
                fmt::format("found filter for which there was no adaptor ({})", filter->vxrNameFromFilter()));
        onStack.push_back(adaptor);
    }
    const auto placeOf = [&](const VXRFilterAdaptor* adaptor) {
        return static_cast<std::size_t>(std::ranges::find(onStack, adaptor) - onStack.begin());
    };
    if (const std::size_t own = placeOf(this); own < onStack.size())
        return own + 1;
    auto before = std::ranges::find(sorted, this);
    if (before == sorted.end())
        throw GenericException("asked to find index for adaptor which is not properly registered.");
    while (before != sorted.begin()) {
        if (const std::size_t lower = placeOf(*--before); lower < onStack.size())
            return lower + 2;
    }
    return 1;
}

float VXRFilterAdaptor::p_valueForPropertyOnFilter(
    std::string_view property, const VXRFilterRole& filter) const
{
    const std::string_view key = filterPropertyForUserProperty(property);
    return userValueForFilterValueForProperty(filter.valueForKey(key), key);
}

bool VXRFilterAdaptor::p_areAllValuesDefaultOnFilter(const VXRFilterRole& filter) const
{
    return std::ranges::all_of(properties(), [&](const std::string& property) {
        return p_valueForPropertyOnFilter(property, filter) == defaultValueForProperty(property);
    });
}

void VXRFilterAdaptor::setValueForPropertyOnStack(
    float value, std::string_view property, VXREffectStackRole& stack) const
{
    if (!handles(property))
        failAssertion(
            fmt::format("can't set value for property as filter adaptor {} doesn't handle property {}",
                description(), property));
    std::string error;
    if (!isValueValidForPropertyError(value, property, &error))
        throw GenericException(
            fmt::format("value '{}' for property '{}' is invalid, error {}", value, property, error));
    VXRFilterRole* filter = p_resolveFilterOnStack(stack);
    if (!filter && value != defaultValueForProperty(property))
        filter = p_insertFilterOnStack(stack);
    if (!filter)
        return;
    filter->setValueForKey(
        filterValueForUserValueForProperty(value, property), filterPropertyForUserProperty(property));
    if (!p_areAllValuesDefaultOnFilter(*filter))
        return;
    // A filter may be appended at the layer count, but only a layer below it can be removed.
    const std::size_t index = p_indexOnStack(stack);
    if (index > 0 && index < stack.layerCount())
        stack.removeLayerAtIndex(index);
    else
        VXULog_Fn(1, thisFile, "couldn't find filter on stack even though we just modified it.");
}

float VXRFilterAdaptor::valueForPropertyOnStack(
    std::string_view property, const VXREffectStackRole& stack) const
{
    if (!handles(property))
        failAssertion(
            fmt::format("can't retrieve value for property as filter adaptor {} doesn't handle property {}",
                description(), property));
    const VXRFilterRole* const filter = p_resolveFilterOnStack(stack);
    return filter ? p_valueForPropertyOnFilter(property, *filter) : defaultValueForProperty(property);
}

} // namespace vxr
