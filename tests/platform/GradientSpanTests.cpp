#include <vxr/platform/graphics/pixels/GradientSpans.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>
#include <vector>

using namespace vxr;

namespace {

struct Blend {
    bool isRadial;
    Point start, end;
    float startRadius = 0, endRadius = 0;

    GradientSpans place(std::shared_ptr<const GradientTable> table, const AffineTransform& toDevice) const
    {
        return isRadial
            ? GradientSpans::radial(std::move(table), start, startRadius, end, endRadius, toDevice)
            : GradientSpans::axial(std::move(table), start, end, toDevice);
    }
};

std::vector<GradientStop> randomStops(std::mt19937& random)
{
    const auto component = [&] { return float(random() % 256) / 255; };
    std::vector<GradientStop> stops;
    const int count = 2 + int(random() % 4);
    for (int i = 0; i < count; ++i)
        stops.push_back(
            { float(i) / float(count - 1), { component(), component(), component(), component() } });
    return stops;
}

/// The channels of the colour at a parameter, premultiplied levels; transparent beyond an end that is not
/// extended.
std::array<double, 4> plainColor(const std::vector<GradientStop>& stops, double t, bool start, bool end)
{
    if ((t < 0 && !start) || (t > 1 && !end))
        return {};
    t = std::clamp(t, 0.0, 1.0);
    std::size_t i = 1;
    while (i + 1 < stops.size() && t >= stops[i].position)
        ++i;
    const GradientStop &a = stops[i - 1], &b = stops[i];
    const double part = (t - a.position) / (double(b.position) - a.position);
    const auto mixed = [&](std::size_t k) { return a.rgba[k] + (double(b.rgba[k]) - a.rgba[k]) * part; };
    const double scale = 255 * mixed(3);
    return { mixed(2) * scale, mixed(1) * scale, mixed(0) * scale, scale };
}

/// The parameters of a point, the one that counts first.
std::vector<double> plainParameters(const Blend& blend, double px, double py)
{
    const double x = px - blend.start.x, y = py - blend.start.y;
    const double dx = double(blend.end.x) - blend.start.x, dy = double(blend.end.y) - blend.start.y;
    if (!blend.isRadial)
        return { (x * dx + y * dy) / (dx * dx + dy * dy) };
    const double r = blend.startRadius, growth = double(blend.endRadius) - r;
    const double a = dx * dx + dy * dy - growth * growth, b = x * dx + y * dy + r * growth;
    const double c = x * x + y * y - r * r, square = b * b - a * c;
    std::vector<double> found;
    for (const double side : { 1.0, -1.0 }) {
        const double t = a == 0 ? c / (2 * b) : (b + (a < 0 ? -side : side) * std::sqrt(square)) / a;
        if (r + t * growth >= 0) // not if it is not a number
            found.push_back(t);
    }
    return found;
}

bool isNear(std::uint32_t pixel, const std::array<double, 4>& levels, double tolerance)
{
    for (int i = 0; i < 4; ++i)
        if (std::abs(int(pixel >> 8 * i & 0xff) - levels[std::size_t(i)]) > tolerance)
            return false;
    return true;
}

AffineTransform randomTransform(std::mt19937& random)
{
    const auto part = [&] { return float(int(random() % 2000) - 1000) / 400; };
    return { part() + 3, part(), part(), part() - 3, part() * 40, part() * 40 };
}

const Blend blends[] = {
    { false, { 10, 5 }, { 60, 40 } },
    { false, { 10, 5 }, { 10, 40 } },
    { true, { 30, 20 }, { 30, 20 }, 0, 25 },
    { true, { 30, 20 }, { 30, 20 }, 22, 7 },
    { true, { 30, 20 }, { 34, 26 }, 0, 30 }, // one within the other
    { true, { 30, 20 }, { 38, 16 }, 30, 4 },
    { true, { 10, 10 }, { 50, 30 }, 3, 9 }, // cones
    { true, { 10, 10 }, { 50, 30 }, 12, 2 },
    { true, { 10, 10 }, { 50, 30 }, 8, 8 }, // a strip
    { true, { 20, 20 }, { 30, 20 }, 5, 15 }, // touching within
    { true, { 20, 20 }, { 30, 20 }, 5, 15.1f },
};

} // namespace

TEST(GradientSpans, PixelsHaveTheColourOfTheFormulaUnderAnyTransform)
{
    std::mt19937 random(21);
    for (int trial = 0; trial < 150; ++trial) {
        const Blend& blend = blends[std::size_t(trial) % std::size(blends)];
        const auto stops = randomStops(random);
        const bool start = random() % 2, end = random() % 2;
        const auto toDevice = randomTransform(random);
        const auto back = toDevice.inverted();
        if (!back)
            continue;
        const auto table = std::make_shared<GradientTable>(stops, start, end);
        const GradientSpans spans = blend.place(table, toDevice);
        ASSERT_FALSE(spans.isEmpty());
        std::vector<std::uint32_t> row(100);
        for (int y = -20; y < 80; y += 7) {
            spans.fill(-10, y, row.size(), row.data());
            for (int i = 0; i < int(row.size()); ++i) {
                const double x = i - 9.5, yMiddle = y + 0.5;
                // Single precision of the inverse and the steps of the table move a parameter a little; at
                // an edge of the blend either side will do.
                bool found = false;
                for (const double dx : { 0.0, 0.02, -0.02 })
                    for (const double shift : { 0.0, 1e-3, -1e-3 }) {
                        const double px = back->m11 * (x + dx) + back->m21 * (yMiddle + dx) + back->tX;
                        const double py = back->m12 * (x + dx) + back->m22 * (yMiddle + dx) + back->tY;
                        std::array<double, 4> expected {};
                        for (const double t : plainParameters(blend, px, py)) {
                            expected = plainColor(stops, t + shift, start, end);
                            if ((t + shift >= 0 || start) && (t + shift <= 1 || end))
                                break;
                        }
                        found = found || isNear(row[std::size_t(i)], expected, 1.5);
                    }
                ASSERT_TRUE(found) << "trial " << trial << " at " << i << ", " << y;
            }
        }
    }
}

TEST(GradientSpans, EveryCutOfARowGivesTheSameBytesAndSoDoesEveryProcessor)
{
    std::mt19937 random(22);
    for (int trial = 0; trial < 100; ++trial) {
        const Blend& blend = blends[std::size_t(trial) % std::size(blends)];
        auto toDevice = randomTransform(random);
        if (trial % 3 == 0)
            toDevice.tX += 1e5f;
        const auto table = std::make_shared<GradientTable>(randomStops(random), trial % 2, trial % 4 > 1);
        const GradientSpans spans = blend.place(table, toDevice);
        const int y = int(random() % 200) - 100, x = int(toDevice.tX) - 100;
        std::vector<std::uint32_t> whole(300), part(300);
        spans.fill(x, y, whole.size(), whole.data());
        for (std::size_t from = 0; from < whole.size();) {
            const std::size_t count = std::min<std::size_t>(whole.size() - from, 1 + random() % 40);
            spans.fill(x + int(from), y, count, part.data() + from);
            from += count;
        }
        ASSERT_EQ(part, whole) << trial;
    }
    const GradientTable table(randomStops(random), true, false);
    for (int trial = 0; trial < 60; ++trial) {
        const auto any = [&](double size) { return (int(random() % 2001) - 1000) * size / 1000; };
        const RadialBlend blend { any(60), any(60), float(any(500)), float(any(2)), trial % 2 ? 1.0f : -1.0f,
            float(table.steps()), trial % 3 == 0, trial % 5 > 2, trial % 7 > 3, table.colors() };
        const double u = any(9000), v = any(9000);
        std::vector<std::uint32_t> expected;
        for (const SpanKernels* kernels : availableSpanKernels()) {
            std::vector<std::uint32_t> colors(200);
            kernels->radial(blend, u, v, -77, colors.size(), colors.data());
            if (expected.empty())
                expected = colors;
            ASSERT_EQ(colors, expected) << kernels->name;
        }
    }
}

TEST(GradientSpans, EndColoursFillBesideAShortAxisAndNothingIsPaintedWithoutOne)
{
    const std::vector<GradientStop> stops { { 0, { 1, 0, 0, 1 } }, { 1, { 0, 0, 1, 1 } } };
    const auto table = std::make_shared<GradientTable>(stops, true, true);
    for (const float length : { 1.0f, 1e-3f, 1e-9f, 1e-30f }) {
        for (const float scale : { 1.0f, 1e-5f, 1e-12f }) {
            const auto spans
                = GradientSpans::axial(table, { 0, 0 }, { length, 0 }, { scale, 0, 0, scale, 1000, 0 });
            for (const int x : { -1000000, 0, 997, 1002, 2000, 1000000 }) {
                std::uint32_t color = 0;
                spans.fill(x, 20000, 1, &color);
                EXPECT_EQ(color, x < 1000 ? 0xffff0000 : 0xff0000ff) << length << ' ' << scale << ' ' << x;
            }
        }
    }
    const AffineTransform plain, singular { 1, 1, 1, 1, 0, 0 };
    EXPECT_TRUE(GradientSpans::axial(table, { 5, 5 }, { 5, 5 }, plain).isEmpty());
    EXPECT_TRUE(GradientSpans::axial(table, { 5, 5 }, { NAN, 5 }, plain).isEmpty());
    EXPECT_TRUE(GradientSpans::axial(table, { 5, 5 }, { 9, 5 }, singular).isEmpty());
    EXPECT_TRUE(GradientSpans::radial(table, { 5, 5 }, 3, { 5, 5 }, 3, plain).isEmpty());
    EXPECT_TRUE(GradientSpans::radial(table, { 5, 5 }, -3, { 5, 5 }, 3, plain).isEmpty());
    EXPECT_TRUE(GradientSpans::radial(table, { 5, 5 }, 3, { HUGE_VALF, 5 }, 3, plain).isEmpty());
}

TEST(GradientTable, JumpsKeepBothSidesAndTheEndsHaveTheirOwnColours)
{
    const auto grey = [](float at, float value) { return GradientStop { at, { value, value, value, 1 } }; };
    const std::vector<GradientStop> stops { grey(0, 0.2f), grey(0, 0.4f), grey(0.5f, 0.4f), grey(0.5f, 0.6f),
        grey(1, 0.6f), grey(1, 0.8f) };
    const GradientTable table(stops, true, true);
    const std::uint32_t* colors = table.colors();
    const int steps = table.steps(),
              places[] = { -1, 0, steps / 2 - 1, steps / 2, steps - 1, steps, steps + 1 };
    std::vector<int> levels;
    for (const int place : places)
        levels.push_back(int(colors[place] & 0xff));
    EXPECT_EQ(levels, (std::vector<int> { 51, 102, 102, 153, 153, 204, 204 }));
    EXPECT_EQ(colors[steps + 2], 0u);
}
