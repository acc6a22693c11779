#include <vxr/filters/VXRFilter.h>

#include <vxr/platform/base/Exceptions.h>

#include <fmt/format.h>

#include <cmath>

namespace vxr {

VXRFilter::VXRFilter(std::string name, std::vector<VXRFilterKey> keys)
    : mName(std::move(name))
    , mKeys(std::move(keys))
{
    for (const VXRFilterKey& key : mKeys)
        mValues.push_back(key.defaultValue);
}

VXRFilter::VXRFilter(const VXRFilter& other)
    : Object(other)
    , VXRFilterRole(other)
    , mName(other.mName)
    , mKeys(other.mKeys)
    , mValues(other.mValues)
{
}

VXRFilter::~VXRFilter() = default;

std::size_t VXRFilter::indexOf(std::string_view key) const
{
    for (std::size_t i = 0; i < mKeys.size(); ++i) {
        if (mKeys[i].name == key)
            return i;
    }
    throw InvalidArgumentException(fmt::format("filter {} has no value for key {}", mName, key));
}

float VXRFilter::valueForKey(std::string_view key) const { return mValues[indexOf(key)]; }

void VXRFilter::setValueForKey(float value, std::string_view key)
{
    float& kept = mValues[indexOf(key)];
    if (!std::isfinite(value))
        throw InvalidArgumentException(fmt::format("filter {} can't take {} for key {}", mName, value, key));
    if (kept == value)
        return;
    kept = value;
    if (mChangeHandler)
        mChangeHandler();
}

void VXRFilter::setDefaults()
{
    if (hasDefaults())
        return;
    for (std::size_t i = 0; i < mKeys.size(); ++i)
        mValues[i] = mKeys[i].defaultValue;
    if (mChangeHandler)
        mChangeHandler();
}

bool VXRFilter::hasDefaults() const
{
    for (std::size_t i = 0; i < mKeys.size(); ++i) {
        if (mValues[i] != mKeys[i].defaultValue)
            return false;
    }
    return true;
}

bool VXRFilter::isEqual(const Object& other) const
{
    const auto* filter = dynamic_cast<const VXRFilter*>(&other);
    return filter && mName == filter->mName && mValues == filter->mValues;
}

} // namespace vxr
