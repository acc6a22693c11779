#include <vxr/platform/graphics/Shading.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vxr;

namespace {

using Formula = float (*)(float);

void evaluateFormula(void* info, const float* input, float* output)
{
    const float value = reinterpret_cast<Formula>(info)(*input);
    output[0] = value;
    output[1] = 1 - value;
    output[2] = 0.25f;
    output[3] = 1;
}

std::shared_ptr<const Shading> shadingOf(Formula formula, std::span<const float> hints = {})
{
    return Shading::createAxial(ColorSpace::deviceRGB(), {}, { 100, 0 },
        std::make_shared<ShadingFunction>(reinterpret_cast<void*>(formula), evaluateFormula, nullptr), true,
        true, hints);
}

/// What the stops give at `t`; at a jump, its far side.
float redAt(const std::vector<ShadingStop>& stops, float t)
{
    std::size_t after = 1;
    while (after + 1 < stops.size() && stops[after].position <= t)
        ++after;
    const ShadingStop &a = stops[after - 1], &b = stops[after];
    const float length = b.position - a.position;
    const float u = length > 0 ? std::min((t - a.position) / length, 1.0f) : 1;
    return a.rgba[0] + (b.rgba[0] - a.rgba[0]) * u;
}

struct FunctionCase {
    const char* name;
    Formula formula;
    std::vector<float> hints;
    std::vector<float> jumps;
    std::size_t mostStops;
};

TEST(Shading, StopsStayWithinHalfALevelOfTheFunction)
{
    const FunctionCase cases[] = {
        { "line", [](float t) { return t; }, {}, {}, 2 },
        { "constant", [](float) { return 0.5f; }, {}, {}, 2 },
        { "parabola", [](float t) { return t * t; }, {}, {}, 40 },
        { "sine", [](float t) { return 0.5f + 0.5f * std::sin(t * 20); }, {}, {}, 200 },
        { "corner", [](float t) { return std::abs(t - 0.3f); }, {}, {}, 40 },
        { "corner on a hint", [](float t) { return std::abs(t - 0.3f); }, { 0.3f }, {}, 3 },
        { "step", [](float t) { return t < 0.3f ? 0.2f : 0.9f; }, {}, { 0.3f }, 12 },
        { "step on a hint", [](float t) { return t < 0.3f ? 0.2f : 0.9f; }, { 0.3f }, { 0.3f }, 4 },
        { "stairs", [](float t) { return std::floor(t * 5) / 5; }, {}, { 0.2f, 0.4f, 0.6f, 0.8f, 1 }, 60 },
        { "step at the end", [](float t) { return t < 1 ? t * 0.5f : 1.0f; }, { 0, 1 }, { 1 }, 3 },
        { "step at the start", [](float t) { return t > 0 ? t * 0.5f : 1.0f; }, { 0, 1 }, { 0 }, 3 },
    };
    for (const FunctionCase& c : cases) {
        const auto shading = shadingOf(c.formula, c.hints);
        const auto& stops = shading->stops();
        ASSERT_GE(stops.size(), 2u) << c.name;
        EXPECT_LE(stops.size(), c.mostStops) << c.name;
        EXPECT_EQ(stops.front().position, 0) << c.name;
        EXPECT_EQ(stops.back().position, 1) << c.name;
        for (std::size_t i = 1; i < stops.size(); ++i)
            EXPECT_LE(stops[i - 1].position, stops[i].position) << c.name;
        for (int i = 0; i <= 20011; ++i) {
            const float t = static_cast<float>(i) / 20011;
            if (std::ranges::any_of(c.jumps, [&](float jump) { return std::abs(t - jump) < 1e-5f; }))
                continue;
            ASSERT_NEAR(redAt(stops, t), c.formula(t), 0.5f / 255 + 1e-5f) << c.name << " at " << t;
        }
    }
}

TEST(Shading, BothSidesOfAJumpStandAtItsPlaceAndTheEndsExtend)
{
    const auto steps = [](float t) { return t <= 0 ? 0.1f : t < 0.5f ? 0.2f : t < 1 ? 0.8f : 0.9f; };
    const float hints[] = { 0, 0.5f, 0.5f, 1 };
    const auto shading = shadingOf(steps, hints);
    std::vector<std::pair<float, float>> stops; // positions and values
    for (const ShadingStop& stop : shading->stops())
        stops.emplace_back(stop.position, stop.rgba[0]);
    const std::vector<std::pair<float, float>> expected { { 0, 0.1f }, { 0, 0.2f }, { 0.5f, 0.2f },
        { 0.5f, 0.8f }, { 1, 0.8f }, { 1, 0.9f } };
    EXPECT_EQ(stops, expected);
}

TEST(Shading, WildFunctionsGiveABoundedNumberOfStops)
{
    const Formula noise
        = [](float t) { return std::abs(std::fmod(std::sin(t * 12.9898f) * 43758.5453f, 1.0f)); };
    EXPECT_LE(shadingOf(noise)->stops().size(), 4096u);
    std::vector<float> hints;
    for (int i = 0; i <= 500; ++i)
        hints.push_back(static_cast<float>(i) / 500);
    EXPECT_LE(shadingOf(noise, hints)->stops().size(), 500u * 25 + 2); // eight pieces each, with a jump

    const float badHints[] = { std::numeric_limits<float>::quiet_NaN(), -3, 7, 0.5f, 0.2f };
    EXPECT_EQ(shadingOf([](float t) { return t; }, badHints)->stops().size(), 2u);
}

TEST(Shading, FunctionValuesAreClampedAndNaNIsZero)
{
    const ShadingFunction function(
        nullptr,
        [](void*, const float* input, float* output) {
            output[0] = std::numeric_limits<float>::quiet_NaN();
            output[1] = -2;
            output[2] = 5;
            output[3] = *input;
        },
        nullptr);
    EXPECT_EQ(function(0.5f), (std::array<float, 4> { 0, 0, 1, 0.5f }));
    EXPECT_EQ(function(-3)[3], 0);
    EXPECT_EQ(function(9)[3], 1);
    EXPECT_EQ(function(std::numeric_limits<float>::quiet_NaN())[3], 0);
}

TEST(Shading, ReleaseRunsOnceWithTheInfo)
{
    int released = 0;
    {
        const auto function = std::make_shared<ShadingFunction>(
            &released, [](void*, const float*, float*) {}, [](void* info) { ++*static_cast<int*>(info); });
        Shading::createRadial(ColorSpace::deviceRGB(), {}, 0, {}, 100, function, true, true);
        EXPECT_EQ(released, 0);
    }
    EXPECT_EQ(released, 1);
}

} // namespace
