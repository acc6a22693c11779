#include <vxr/filters/VXREffectStack.h>

#include <vxr/platform/base/Exceptions.h>

#include <fmt/format.h>

#include <algorithm>

namespace vxr {

VXREffectStack::VXREffectStack() = default;

VXREffectStack::~VXREffectStack()
{
    for (const Layer& layer : mLayers)
        layer.filter->setChangeHandler(nullptr);
}

const VXREffectStack::Layer& VXREffectStack::layerAt(std::size_t index) const
{
    if (index == 0 || index > mLayers.size())
        throw InvalidArgumentException(fmt::format(
            "layer {} of the effect stack isn't a filter (there are {} layers)", index, layerCount()));
    return mLayers[index - 1];
}

VXRFilter* VXREffectStack::filterAtIndex(std::size_t index) const
{
    return index == 0 || index > mLayers.size() ? nullptr : mLayers[index - 1].filter.get();
}

void VXREffectStack::changed(std::size_t index)
{
    if (mChangeHandler)
        mChangeHandler(index);
}

void VXREffectStack::filterChanged(const VXRFilter* filter)
{
    for (std::size_t i = 0; i < mLayers.size(); ++i) {
        if (mLayers[i].filter.get() == filter)
            return changed(i + 1);
    }
}

void VXREffectStack::insertFilterLayerAtIndex(std::shared_ptr<VXRFilterRole> role, std::size_t index)
{
    auto filter = std::dynamic_pointer_cast<VXRFilter>(role);
    if (!filter || filter->hasChangeHandler())
        throw InvalidArgumentException("only a filter that stands on no effect stack can be inserted");
    if (index == 0 || index > layerCount())
        throw InvalidArgumentException(
            fmt::format("no filter can be inserted at layer {} (there are {} layers)", index, layerCount()));
    VXRFilter* const inserted = filter.get();
    mLayers.insert(
        mLayers.begin() + static_cast<std::ptrdiff_t>(index - 1), Layer { std::move(filter), true });
    inserted->setChangeHandler([this, inserted] { filterChanged(inserted); });
    changed(index);
}

void VXREffectStack::removeLayerAtIndex(std::size_t index)
{
    layerAt(index).filter->setChangeHandler(nullptr);
    mLayers.erase(mLayers.begin() + static_cast<std::ptrdiff_t>(index - 1));
    changed(index);
}

void VXREffectStack::removeAllFilters()
{
    if (mLayers.empty())
        return;
    for (const Layer& layer : mLayers)
        layer.filter->setChangeHandler(nullptr);
    mLayers.clear();
    changed(1);
}

bool VXREffectStack::isEnabledAtIndex(std::size_t index) const { return layerAt(index).isEnabled; }

void VXREffectStack::setEnabledAtIndex(bool enabled, std::size_t index)
{
    if (layerAt(index).isEnabled == enabled)
        return;
    mLayers[index - 1].isEnabled = enabled;
    changed(index);
}

std::vector<FilterOperation> VXREffectStack::operations(std::size_t first, std::size_t end) const
{
    std::vector<FilterOperation> all;
    for (std::size_t i = std::max<std::size_t>(first, 1); i < std::min(end, layerCount()); ++i) {
        if (!mLayers[i - 1].isEnabled)
            continue;
        const auto operations = mLayers[i - 1].filter->operations();
        all.insert(all.end(), operations.begin(), operations.end());
        if (!operations.empty())
            all.push_back(FilterOperation::round());
    }
    return all;
}

bool VXREffectStack::isEqual(const Object& other) const
{
    const auto* stack = dynamic_cast<const VXREffectStack*>(&other);
    return stack
        && std::equal(mLayers.begin(), mLayers.end(), stack->mLayers.begin(), stack->mLayers.end(),
            [](const Layer& a, const Layer& b) {
                return a.isEnabled == b.isEnabled && a.filter->isEqual(*b.filter);
            });
}

std::shared_ptr<VXREffectStack> VXREffectStack::copyWithZone() const
{
    auto copy = std::make_shared<VXREffectStack>();
    for (const Layer& layer : mLayers) {
        copy->appendFilter(layer.filter->copyWithZone());
        copy->mLayers.back().isEnabled = layer.isEnabled;
    }
    return copy;
}

} // namespace vxr
