#pragma once

#include <vxr/filters/FilterOperation.h>
#include <vxr/platform/base/Object.h>
#include <vxr/protocols/VXRFilterRole.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace vxr {

/// A value that a filter takes.
struct VXRFilterKey {
    std::string name;
    float defaultValue = 0;
    float minimum = 0, maximum = 1; ///< the range in which the effect is defined; values are clamped into it
};

/// An image filter: some values by key, and the operations on pixels that they stand for. Hosts derive their
/// own and register them by name (`VXRFilterRegistry`).
class VXR_EXPORT VXRFilter : public Object, public VXRFilterRole {
public:
    VXRFilter(std::string name, std::vector<VXRFilterKey> keys); ///< with the default values
    ~VXRFilter() override;

    std::string_view vxrNameFromFilter() const override { return mName; }
    std::span<const VXRFilterKey> keys() const { return mKeys; }
    /// Throws `InvalidArgumentException` for an unknown key.
    float valueForKey(std::string_view key) const override;
    /// Throws `InvalidArgumentException` for an unknown key or a value that is not finite; the filter is then
    /// unchanged.
    void setValueForKey(float value, std::string_view key) override;
    void setDefaults() override;
    bool hasDefaults() const;

    /// What is done to pixels, one after the other. Nothing where the filter is the identity; pixels then
    /// keep their bytes.
    virtual std::vector<FilterOperation> operations() const = 0;

    bool isEqual(const Object& other) const override; ///< same name and values
    virtual std::shared_ptr<VXRFilter> copyWithZone() const = 0;

    /// Called after a value has changed. Belongs to the stack that the filter stands on; copies don't take it
    /// over.
    void setChangeHandler(std::function<void()> handler) { mChangeHandler = std::move(handler); }
    bool hasChangeHandler() const { return static_cast<bool>(mChangeHandler); }

protected:
    VXRFilter(const VXRFilter&);
    float valueAt(std::size_t index) const { return mValues[index]; } ///< in the order of the keys

private:
    std::size_t indexOf(std::string_view key) const;

    std::string mName;
    std::vector<VXRFilterKey> mKeys;
    std::vector<float> mValues;
    std::function<void()> mChangeHandler;
};

} // namespace vxr
