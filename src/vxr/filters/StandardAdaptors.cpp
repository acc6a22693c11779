#include <vxr/filters/StandardAdaptors.h>

#include <vxr/platform/base/Exceptions.h>

#include <fmt/format.h>

#include <cmath>

namespace vxr {

namespace {

/// One user property: its filter's key, its conversions, its default and its closed range.
struct Property {
    std::string_view name;
    std::string_view key;
    float (*toFilter)(float user);
    float (*toUser)(float filter); ///< before rounding
    float defaultValue;
    float minimum, maximum;
};

class StandardAdaptor final : public VXRFilterAdaptor {
public:
    StandardAdaptor(std::string className, std::string_view filterName, std::vector<Property> properties)
        : mClassName(std::move(className))
        , mFilterName(filterName)
        , mProperties(std::move(properties))
    {
        for (const Property& property : mProperties)
            mNames.emplace_back(property.name);
    }

    const std::vector<std::string>& properties() const override { return mNames; }
    std::string_view filterName() const override { return mFilterName; }

    float defaultValueForProperty(std::string_view name) const override
    {
        if (const Property* property = named(name))
            return property->defaultValue;
        throw InvalidArgumentException(mNames.size() > 1
                ? fmt::format("can't get default value for property {}", name)
                : fmt::format("can't get default value for property {} as filter adaptor {} doesn't "
                              "suppport it",
                    name, description()));
    }

    bool isValueValidForPropertyError(float value, std::string_view name, std::string* error) const override
    {
        if (error)
            error->clear();
        const Property* const property = named(name);
        if (!property)
            throw InvalidArgumentException(
                fmt::format("can't validate value for property {} as filter adaptor {} doesn't suppport it",
                    name, description()));
        if (value >= property->minimum && value <= property->maximum)
            return true;
        if (error)
            *error = fmt::format("{} is not between {} and {}", value, property->minimum, property->maximum);
        return false;
    }

    std::string_view filterPropertyForUserProperty(std::string_view name) const override
    {
        if (const Property* property = named(name))
            return property->key;
        throw InvalidArgumentException(fmt::format("{} can't handle property {}", description(), name));
    }

    std::string_view userPropertyForFilterProperty(std::string_view key) const override
    {
        return keyed(key).name;
    }

    float filterValueForUserValueForProperty(float value, std::string_view name) const override
    {
        if (const Property* property = named(name))
            return property->toFilter(value);
        throw GenericException(fmt::format(
            "{} can't handle property {} for user->filter value conversion", description(), name));
    }

    float userValueForFilterValueForProperty(float value, std::string_view key) const override
    {
        return std::round(keyed(key).toUser(value));
    }

private:
    std::string className() const override { return mClassName; }

    const Property* named(std::string_view name) const
    {
        for (const Property& property : mProperties) {
            if (property.name == name)
                return &property;
        }
        return nullptr;
    }

    const Property& keyed(std::string_view key) const
    {
        for (const Property& property : mProperties) {
            if (property.key == key)
                return property;
        }
        if (mFilterName == "TesselUnsharpMask")
            throw InvalidArgumentException(fmt::format(
                "Sharpness adaptor can't handle filter property {} for filter value->user value conversion",
                key));
        throw InvalidArgumentException(fmt::format("{} can't handle property {}", description(), key));
    }

    std::string mClassName;
    std::string_view mFilterName;
    std::vector<Property> mProperties;
    std::vector<std::string> mNames;
};

float hundredth(float u) { return u / 100; }
float hundredfold(float f) { return f * 100; }
float halfScale(float u) { return u / 200; }
float halfScaleBack(float f) { return f * 200; }

} // namespace

std::vector<std::unique_ptr<VXRFilterAdaptor>> standardAdaptors()
{
    std::vector<std::unique_ptr<VXRFilterAdaptor>> all;
    const auto add
        = [&](const char* className, std::string_view filterName, std::vector<Property> properties) {
              all.push_back(std::make_unique<StandardAdaptor>(className, filterName, std::move(properties)));
          };
    add("VXRExposureAdaptor", "TesselLighting",
        { { kVXRExposureProperty, "inputPower", [](float u) { return u * 3 / 100; },
            [](float f) { return f * 100 / 3; }, 0, -100, 100 } });
    add("VXRBrightnessContrastAdaptor", "TesselBrightnessContrast",
        { { kVXRBrightnessProperty, "inputBrightness", halfScale, halfScaleBack, 0, -100, 100 },
            { kVXRContrastProperty, "inputContrast", halfScale, halfScaleBack, 0, -100, 100 } });
    add("VXRSaturationAdaptor", "TesselSaturation",
        { { kVXRSaturationProperty, "inputSaturation", [](float u) { return u / 50 - 1; },
            [](float f) { return (f + 1) * 50; }, 50, 0, 100 } });
    add("VXRSharpnessAdaptor", "TesselUnsharpMask",
        { { kVXRSharpnessProperty, "inputIntensity", hundredth, hundredfold, 0, -100, 100 } });
    // The only conversion in double precision.
    add("VXRHueAdaptor", "TesselTintCorrection",
        { { kVXRHueProperty, "inputPower", [](float u) { return static_cast<float>(double(u) * 1.05 / 100); },
            [](float f) { return f * 100 / 1.05f; }, 0, -100, 100 } });
    add("VXRTemperatureAdaptor", "TesselColorCorrection",
        { { kVXRTemperatureProperty, "inputPower", [](float u) { return u * 1.875f / 100; },
            [](float f) { return f * 100 / 1.875f; }, 0, -100, 100 } });
    add("VXRBlackAndWhiteAdaptor", "TesselBlackAndWhitePoints",
        { { kVXRWhitePointProperty, "inputWhite", hundredth, hundredfold, 100, 0, 100 },
            { kVXRBlackPointProperty, "inputBlack", hundredth, hundredfold, 0, 0, 100 } });
    return all;
}

} // namespace vxr
