#include <vxr/filters/VXREffectStack.h>
#include <vxr/filters/VXRFilterAdaptor.h>
#include <vxr/filters/VXRFilterRegistry.h>
#include <vxr/platform/base/Exceptions.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace vxr {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

void set(std::string_view property, float value, VXREffectStack& stack)
{
    VXRFilterAdaptor::adaptorForProperty(property)->setValueForPropertyOnStack(value, property, stack);
}

float get(std::string_view property, const VXREffectStack& stack)
{
    return VXRFilterAdaptor::adaptorForProperty(property)->valueForPropertyOnStack(property, stack);
}

std::vector<std::string> names(const VXREffectStack& stack)
{
    std::vector<std::string> all;
    for (std::size_t i = 1; i < stack.layerCount(); ++i)
        all.emplace_back(stack.filterAtIndex(i)->vxrNameFromFilter());
    return all;
}

template <class Exception, class Body> std::string messageOf(const Body& body)
{
    try {
        body();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "nothing thrown";
}

struct PropertyCase {
    std::string_view property;
    const char* filter;
    const char* key;
    float user, filterValue, defaultValue, minimum, maximum;
};

const PropertyCase propertyCases[] = {
    { kVXRExposureProperty, "TesselLighting", "inputPower", 33, 0.99f, 0, -100, 100 },
    { kVXRBrightnessProperty, "TesselBrightnessContrast", "inputBrightness", -100, -0.5f, 0, -100, 100 },
    { kVXRContrastProperty, "TesselBrightnessContrast", "inputContrast", 25, 0.125f, 0, -100, 100 },
    { kVXRSaturationProperty, "TesselSaturation", "inputSaturation", 0, -1, 50, 0, 100 },
    { kVXRSharpnessProperty, "TesselUnsharpMask", "inputIntensity", 70, 0.7f, 0, -100, 100 },
    { kVXRHueProperty, "TesselTintCorrection", "inputPower", 100, 1.05f, 0, -100, 100 },
    { kVXRTemperatureProperty, "TesselColorCorrection", "inputPower", -100, -1.875f, 0, -100, 100 },
    { kVXRWhitePointProperty, "TesselBlackAndWhitePoints", "inputWhite", 80, 0.8f, 100, 0, 100 },
    { kVXRBlackPointProperty, "TesselBlackAndWhitePoints", "inputBlack", 1, 0.01f, 0, 0, 100 },
};

TEST(FilterAdaptor, ConvertsStoresAndForgetsEachProperty)
{
    for (const auto& c : propertyCases) {
        SCOPED_TRACE(c.property);
        const VXRFilterAdaptor& adaptor = *VXRFilterAdaptor::adaptorForProperty(c.property);
        VXREffectStack stack;
        EXPECT_EQ(get(c.property, stack), c.defaultValue);
        set(c.property, c.defaultValue, stack);
        EXPECT_EQ(stack.layerCount(), 1u);
        set(c.property, c.user, stack);
        ASSERT_THAT(names(stack), ElementsAre(c.filter));
        EXPECT_EQ(stack.filterAtIndex(1)->valueForKey(c.key), c.filterValue);
        EXPECT_EQ(get(c.property, stack), c.user);
        EXPECT_EQ(VXRFilterAdaptor::adaptorForFilter(*stack.filterAtIndex(1)), &adaptor);
        set(c.property, c.defaultValue, stack);
        EXPECT_EQ(stack.layerCount(), 1u);
        for (const float bad : { c.minimum - 0.5f, c.maximum + 0.5f, nan }) {
            std::string error;
            EXPECT_FALSE(adaptor.isValueValidForPropertyError(bad, c.property, &error));
            EXPECT_THAT(messageOf<GenericException>([&] { set(c.property, bad, stack); }),
                HasSubstr("' is invalid, error " + error));
            EXPECT_EQ(stack.layerCount(), 1u);
        }
        // Every whole user value comes back as it went.
        for (float u = c.minimum; u <= c.maximum; ++u) {
            const float f = adaptor.filterValueForUserValueForProperty(u, c.property);
            EXPECT_EQ(adaptor.userValueForFilterValueForProperty(f, c.key), u);
        }
    }
    EXPECT_EQ(VXRFilterAdaptor::supportedProperties().size(), std::size(propertyCases));
}

TEST(FilterAdaptor, PutsItsFilterInOrderWhateverStandsThere)
{
    const struct {
        std::vector<std::string_view> set;
        std::vector<std::string> order;
    } cases[] = {
        { { kVXRExposureProperty, kVXRHueProperty, kVXRSaturationProperty },
            { "TesselLighting", "TesselSaturation", "TesselTintCorrection" } },
        { { kVXRExposureProperty, kVXRHueProperty, kVXRTemperatureProperty },
            { "TesselLighting", "TesselTintCorrection", "TesselColorCorrection" } },
        { { kVXRHueProperty, kVXRExposureProperty }, { "TesselLighting", "TesselTintCorrection" } },
        { { kVXRBlackPointProperty, kVXRSharpnessProperty, kVXRBrightnessProperty, kVXRContrastProperty },
            { "TesselBrightnessContrast", "TesselUnsharpMask", "TesselBlackAndWhitePoints" } },
    };
    for (const auto& [properties, order] : cases) {
        VXREffectStack stack;
        for (const auto property : properties)
            set(property, 10, stack);
        EXPECT_EQ(names(stack), order);
    }
    VXREffectStack stack;
    set(kVXRBrightnessProperty, 10, stack);
    set(kVXRContrastProperty, 10, stack);
    set(kVXRBrightnessProperty, 0, stack);
    EXPECT_EQ(stack.layerCount(), 2u);
    set(kVXRContrastProperty, 0, stack);
    EXPECT_EQ(stack.layerCount(), 1u);
}

TEST(FilterAdaptor, SaysWhatItCannotDo)
{
    const VXRFilterAdaptor& exposure = *VXRFilterAdaptor::adaptorForProperty(kVXRExposureProperty);
    const VXRFilterAdaptor& sharpness = *VXRFilterAdaptor::adaptorForProperty(kVXRSharpnessProperty);
    VXREffectStack stack;
    EXPECT_THAT(messageOf<AssertionFailure>([&] { exposure.setValueForPropertyOnStack(1, "x", stack); }),
        ::testing::MatchesRegex(
            "can't set value for property as filter adaptor filter adaptor VXRExposureAdaptor "
            "\\(0x[0-9a-f]+\\) doesn't handle property x"));
    EXPECT_THAT(messageOf<AssertionFailure>([&] { exposure.valueForPropertyOnStack("x", stack); }),
        HasSubstr("can't retrieve value for property as filter adaptor "));
    EXPECT_THAT(messageOf<GenericException>([&] { exposure.filterValueForUserValueForProperty(1, "x"); }),
        HasSubstr("can't handle property x for user->filter value conversion"));
    EXPECT_THAT(messageOf<InvalidArgumentException>([&] { exposure.filterPropertyForUserProperty("x"); }),
        HasSubstr("can't handle property x"));
    EXPECT_THAT(messageOf<InvalidArgumentException>([&] { exposure.defaultValueForProperty("x"); }),
        HasSubstr("can't get default value for property x as filter adaptor"));
    EXPECT_EQ(
        messageOf<InvalidArgumentException>([&] { sharpness.userValueForFilterValueForProperty(1, "x"); }),
        "Sharpness adaptor can't handle filter property x for filter value->user value conversion");
    std::string error = "before";
    EXPECT_THAT(
        messageOf<InvalidArgumentException>([&] { exposure.isValueValidForPropertyError(1, "x", &error); }),
        HasSubstr("doesn't suppport it"));
    EXPECT_EQ(error, "");
    // A filter that no adaptor knows keeps new ones from finding their place.
    struct Foreign : VXRFilter {
        Foreign()
            : VXRFilter("Foreign", {})
        {
        }
        std::vector<FilterOperation> operations() const override { return {}; }
        std::shared_ptr<VXRFilter> copyWithZone() const override { return std::make_shared<Foreign>(); }
    };
    stack.appendFilter(std::make_shared<Foreign>());
    EXPECT_EQ(messageOf<GenericException>([&] { set(kVXRHueProperty, 1, stack); }),
        "found filter for which there was no adaptor (Foreign)");
    EXPECT_EQ(stack.layerCount(), 2u);
}

TEST(EffectStack, TellsTheLowestLayerThatChanged)
{
    VXREffectStack stack;
    std::vector<std::size_t> changes;
    stack.setChangeHandler([&](std::size_t layer) { changes.push_back(layer); });
    set(kVXRExposureProperty, 10, stack); // inserted, then set
    set(kVXRHueProperty, 10, stack);
    stack.filterAtIndex(1)->setValueForKey(1, "inputPower");
    stack.filterAtIndex(1)->setValueForKey(1, "inputPower");
    stack.setEnabledAtIndex(false, 2);
    EXPECT_EQ(stack.operations().size(), 2u) << "one and its rounding";
    stack.removeLayerAtIndex(1);
    EXPECT_THAT(changes, ElementsAre(1, 1, 2, 2, 1, 2, 1));
    const auto copy = stack.copyWithZone();
    EXPECT_TRUE(copy->isEqual(stack));
    copy->setEnabledAtIndex(true, 1);
    EXPECT_FALSE(copy->isEqual(stack));
    EXPECT_EQ(changes.size(), 7u);
}

TEST(EffectStack, RefusesWhatCannotStandOnIt)
{
    VXREffectStack stack, other;
    const auto filter = VXRFilterRegistry::createFilter("TesselSaturation");
    EXPECT_EQ(VXRFilterRegistry::createFilter("nothing"), nullptr);
    EXPECT_THROW(stack.insertFilterLayerAtIndex(filter, 0), InvalidArgumentException);
    EXPECT_THROW(stack.insertFilterLayerAtIndex(filter, 2), InvalidArgumentException);
    EXPECT_THROW(stack.insertFilterLayerAtIndex(nullptr, 1), InvalidArgumentException);
    stack.appendFilter(filter);
    EXPECT_THROW(other.appendFilter(filter), InvalidArgumentException);
    EXPECT_THROW(stack.removeLayerAtIndex(2), InvalidArgumentException);
    EXPECT_THROW(filter->setValueForKey(INFINITY, "inputSaturation"), InvalidArgumentException);
    EXPECT_THROW(filter->setValueForKey(0, "inputPower"), InvalidArgumentException);
    EXPECT_THROW(VXRFilterRegistry::registerFilter("TesselSaturation", nullptr), InvalidArgumentException);
    stack.removeLayerAtIndex(1);
    other.appendFilter(filter);
    EXPECT_EQ(other.layerCount(), 2u);
}

} // namespace
} // namespace vxr
