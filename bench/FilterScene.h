#pragma once

#include <vxr/filters/FilterPipeline.h>
#include <vxr/filters/VXREffectStack.h>
#include <vxr/filters/VXRFilterRegistry.h>

#include <memory>
#include <vector>

namespace vxr::bench {

/// Twelve million opaque pixels, smooth with fine noise, as a photograph has them, and where they go.
struct FilterScene {
    static constexpr int width = 4000, height = 3000;

    std::vector<std::uint32_t> pixels, out;

    FilterScene()
        : pixels(std::size_t { width } * height)
        , out(pixels.size(), 1)
    {
        std::uint32_t seed = 1;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                seed = seed * 1664525u + 1013904223u;
                const auto noise = static_cast<int>(seed >> 28);
                const auto level = [&](int v) { return static_cast<std::uint32_t>(v + noise); };
                pixels[std::size_t(y) * width + std::size_t(x)] = 0xff000000 | level(x * 200 / width) << 16
                    | level(y * 200 / height) << 8 | level((x + y) % 512 * 3 / 8);
            }
    }

    void filter(const std::vector<FilterOperation>& operations)
    {
        const FilterFormat format = FilterFormat::nativeARGB();
        applyFilterOperations(
            operations, width, height, format, pixels.data(), 4 * width, format, out.data(), 4 * width);
    }
};

struct FilterSetting {
    const char *name, *key;
    float value;
};

inline constexpr FilterSetting allFilterSettings[] = {
    { "TesselLighting", "inputPower", 0.5f },
    { "TesselBrightnessContrast", "inputContrast", 0.1f },
    { "TesselSaturation", "inputSaturation", 0.3f },
    { "TesselUnsharpMask", "inputIntensity", 0.5f },
    { "TesselTintCorrection", "inputPower", 0.2f },
    { "TesselColorCorrection", "inputPower", 0.5f },
    { "TesselBlackAndWhitePoints", "inputBlack", 0.05f },
};

inline std::shared_ptr<VXRFilter> filterOf(const FilterSetting& setting)
{
    auto filter = VXRFilterRegistry::createFilter(setting.name);
    filter->setValueForKey(setting.value, setting.key);
    return filter;
}

inline std::vector<FilterOperation> chainOf(const std::vector<FilterSetting>& settings)
{
    VXREffectStack stack;
    for (const FilterSetting& setting : settings)
        stack.appendFilter(filterOf(setting));
    return stack.operations();
}

} // namespace vxr::bench
