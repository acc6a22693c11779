#include "FilterOptions.h"

#include <vxr/filters/VXREffectStack.h>
#include <vxr/filters/VXRFilterAdaptor.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace app {

namespace {

struct Adjustment {
    const char* option;
    std::string_view property;
    const char* help;
    int minimum, maximum, neutral;
};

constexpr Adjustment adjustments[] = {
    { "--exposure", vxr::kVXRExposureProperty, "Darker or lighter, three stops either way", -100, 100, 0 },
    { "--brightness", vxr::kVXRBrightnessProperty, "All tones down or up", -100, 100, 0 },
    { "--contrast", vxr::kVXRContrastProperty, "Tones together or apart", -100, 100, 0 },
    { "--saturation", vxr::kVXRSaturationProperty, "From grey to colours twice as strong", 0, 100, 50 },
    { "--sharpness", vxr::kVXRSharpnessProperty, "Softer or sharper", -100, 100, 0 },
    { "--hue", vxr::kVXRHueProperty, "Turns the colours by up to 60 degrees", -100, 100, 0 },
    { "--temperature", vxr::kVXRTemperatureProperty, "Colder or warmer light", -100, 100, 0 },
    { "--white-point", vxr::kVXRWhitePointProperty, "The tone that becomes white", 0, 100, 100 },
    { "--black-point", vxr::kVXRBlackPointProperty, "The tone that becomes black", 0, 100, 0 },
};

} // namespace

void addFilterOptions(CLI::App& command, FilterOptions& options)
{
    command.add_option("IN", options.input, "A picture")->type_name("")->required();
    command.add_option("-o,--output", options.output, "The filtered picture (.png)")
        ->type_name("OUT")
        ->required()
        ->check([](const std::string& path) {
            return path.ends_with(".png") || path.ends_with(".PNG") ? std::string()
                                                                    : "'" + path + "' must end in .png";
        });
    for (const Adjustment& one : adjustments) {
        const auto take = [&options, one](const float& value) {
            options.values.push_back({ one.property, value });
        };
        command
            .add_option_function<float>(one.option, take,
                fmt::format("{}, {} to {} (default: {})", one.help, one.minimum, one.maximum, one.neutral))
            ->type_name("N")
            ->check([one](const std::string& text) {
                float value = 0;
                if (!CLI::detail::lexical_cast(text, value))
                    return std::string(); // the parser says so
                try {
                    vxr::VXREffectStack stack;
                    vxr::VXRFilterAdaptor::adaptorForProperty(one.property)
                        ->setValueForPropertyOnStack(value, one.property, stack);
                } catch (const std::exception& error) {
                    return std::string(error.what());
                }
                return std::string();
            });
    }
    command
        .add_option("--levels", options.levels,
            "Spread the tones first: by luminance, or each of the channels by itself")
        ->type_name("BY")
        ->check(CLI::IsMember({ "luminance", "channels" }).description(""));
    command
        .add_option("--clip", options.clipPercent,
            "Percent of the pixels that --levels may make black, and white, 0 to 25 (default: 0.5)")
        ->type_name("P")
        ->check(CLI::Range(0.0f, 25.0f).description(""));
    command.footer("Filters run in the order above, whatever the order of the options.\n"
                   "Exit status: 0 when the picture was written, 1 when it was not, 2 when the command line "
                   "is wrong.");
}

} // namespace app
