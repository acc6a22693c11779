#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/protocols/VXREffectStackRole.h>
#include <vxr/protocols/VXRFilterRole.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace vxr {

// User properties. The strings stand in documents.
inline constexpr std::string_view kVXRExposureProperty = "kVXRExposureProperty";
inline constexpr std::string_view kVXRBrightnessProperty = "kVXRBrightnessProperty";
inline constexpr std::string_view kVXRContrastProperty = "kVXRContrastProperty";
inline constexpr std::string_view kVXRSaturationProperty = "kVXRSaturationProperty";
inline constexpr std::string_view kVXRSharpnessProperty = "kVXRSharpnessProperty";
inline constexpr std::string_view kVXRHueProperty = "kVXRHueProperty";
inline constexpr std::string_view kVXRTemperatureProperty = "kVXRTemperature";
inline constexpr std::string_view kVXRWhitePointProperty = "kVXRWhitePoint";
inline constexpr std::string_view kVXRBlackPointProperty = "kVXRBlackPoint";

/// Translates user properties of an image, such as exposure from -100 to 100, into the values of a filter on
/// the image's effect stack. Stateless: one shared instance per class. A filter whose values are all back at
/// their defaults is removed from the stack; it is made when a value is set that is not the default.
class VXR_EXPORT VXRFilterAdaptor : public Object {
public:
    ~VXRFilterAdaptor() override;

    // The registry: all adaptors, made on first use.
    static std::set<std::string> supportedProperties();
    static VXRFilterAdaptor* adaptorForProperty(std::string_view property); ///< null when there is none
    static VXRFilterAdaptor* adaptorForFilter(const VXRFilterRole& filter); ///< by the filter's name

    // What a class is about. The base throws `GenericException`.
    virtual const std::vector<std::string>& properties() const;
    virtual std::string_view filterName() const;
    std::set<std::string> filterNames() const { return { std::string(filterName()) }; }

    /// Throws `AssertionFailure` for a property of another adaptor and `GenericException` for a value that is
    /// not valid; the stack is then unchanged.
    virtual void setValueForPropertyOnStack(
        float value, std::string_view property, VXREffectStackRole& stack) const;
    /// The default when the filter is not on the stack.
    float valueForPropertyOnStack(std::string_view property, const VXREffectStackRole& stack) const;

    // The base versions throw `GenericException`.
    virtual float defaultValueForProperty(std::string_view property) const;
    /// Inside the property's closed range; NaN is not. Says why not in `error`.
    virtual bool isValueValidForPropertyError(
        float value, std::string_view property, std::string* error) const;

    // Conversions between user and filter values.
    virtual std::string_view filterPropertyForUserProperty(std::string_view property) const = 0;
    virtual std::string_view userPropertyForFilterProperty(std::string_view key) const = 0;
    virtual float filterValueForUserValueForProperty(float value, std::string_view property) const = 0;
    /// Rounded to a whole number, halves away from zero. `key` is the filter's.
    virtual float userValueForFilterValueForProperty(float value, std::string_view key) const = 0;

    std::string description() const override;

    /// The layer on which this adaptor's filter stands or would be inserted. Throws `GenericException` when a
    /// layer is no filter or one that no adaptor knows.
    std::size_t p_indexOnStack(const VXREffectStackRole& stack) const;

protected:
    VXRFilterAdaptor() = default;
    virtual std::string className() const = 0;

private:
    class Registry;
    static Registry& registry();

    bool handles(std::string_view property) const;
    std::shared_ptr<VXRFilterRole> p_createFilter() const;
    VXRFilterRole* p_resolveFilterOnStack(const VXREffectStackRole& stack) const;
    VXRFilterRole* p_insertFilterOnStack(VXREffectStackRole& stack) const;
    float p_valueForPropertyOnFilter(std::string_view property, const VXRFilterRole& filter) const;
    bool p_areAllValuesDefaultOnFilter(const VXRFilterRole& filter) const;
};

} // namespace vxr
