#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadingRep.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/Shading.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

using namespace vxr;
using ::testing::ElementsAre;
using ::testing::ThrowsMessage;

namespace {

std::shared_ptr<Color> red() { return Color::colorWithCalibratedRGB(1, 0, 0); }
std::shared_ptr<Color> green() { return Color::colorWithCalibratedRGB(0, 1, 0); }
std::shared_ptr<Color> blue() { return Color::colorWithCalibratedRGB(0, 0, 1); }

std::shared_ptr<VXRGradientStop> stop(std::shared_ptr<Color> color, float fraction)
{
    return VXRGradientStop::gradientStopWithColorFraction(std::move(color), fraction);
}

/// A stop with a mark that tells it from others: its grey, in 256ths.
std::shared_ptr<VXRGradientStop> marked(int mark, float fraction)
{
    const float white = static_cast<float>(mark) / 256;
    return stop(Color::colorWithCalibratedRGB(white, white, white), fraction);
}
int markOf(const VXRGradientStop& stop) { return static_cast<int>(stop.color()->redComponent() * 256); }

/// Stops at the fractions, marked 0, 1, 2 and so on.
std::shared_ptr<VXRGradient> gradientAt(const std::vector<float>& fractions)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    VXRGradient::Stops stops;
    for (const float fraction : fractions)
        stops.push_back(marked(static_cast<int>(stops.size()), fraction));
    gradient->setGradientStops(stops);
    return gradient;
}

std::vector<int> marks(const VXRGradient& gradient)
{
    std::vector<int> all;
    for (const auto& s : gradient.gradientStops())
        all.push_back(markOf(*s));
    return all;
}

using RGBA = std::array<float, 4>;

RGBA evaluated(VXRGradient& gradient, float fraction)
{
    RGBA output {};
    _evaluateGradient(&gradient, &fraction, output.data());
    return output;
}

TEST(GradientStop, FractionsAreClampedAndStopsComparedByValue)
{
    EXPECT_EQ(stop(red(), -0.2f)->fraction(), 0);
    const auto a = stop(red(), 0.25f);
    EXPECT_TRUE(a->isEqual(*stop(red(), 0.25f)));
    EXPECT_FALSE(a->isEqual(*stop(red(), 0.2500001f)));
    EXPECT_FALSE(a->isEqual(*stop(blue(), 0.25f)));
    EXPECT_EQ(a->cloneWithFraction(7)->fraction(), 1);
    EXPECT_TRUE(a->cloneWithColor(blue())->isEqual(*stop(blue(), 0.25f)));
}

TEST(Gradient, StopsGoBehindThoseOfTheSameFraction)
{
    std::mt19937 random(2);
    auto gradient = gradientAt({ 0, 1 });
    VXRGradient::Stops expected = gradient->gradientStops();
    for (int mark = 2; mark < 200; ++mark) {
        expected.push_back(marked(mark, static_cast<float>(random() % 40) / 39));
        gradient->insertGradientStop(expected.back());
    }
    std::stable_sort(expected.begin(), expected.end(),
        [](const auto& a, const auto& b) { return a->fraction() < b->fraction(); });
    EXPECT_EQ(gradient->gradientStops(), expected);
}

TEST(Gradient, RefusesMissingStopsAndLivesWithMissingColours)
{
    auto gradient = gradientAt({ 0, 1 });
    const VXRGradient::Stops before = gradient->gradientStops();
    EXPECT_THROW(gradient->insertGradientStop(nullptr), InvalidArgumentException);
    EXPECT_THROW(gradient->setGradientStops({ before[0], nullptr }), InvalidArgumentException);
    EXPECT_EQ(gradient->gradientStops(), before);

    EXPECT_THROW(VXRShadingRep::shadingWithStartEnd(red(), nullptr), InvalidArgumentException);
    VXRGradient bare(nullptr, red(), VXRLinearGradient);
    bare.insertStopAtFraction(0.5f);
    EXPECT_EQ(bare.colorAtFraction(0.25f), nullptr);
    EXPECT_TRUE(bare.isEqual(*bare.copyWithZone()));
    bare.evenlyDistributeStops();
    bare.removeStop(*bare.stopAtIndex(0));
    EXPECT_EQ(bare.gradientStops().size(), 2u);
}

TEST(Gradient, BracketingStops)
{
    const struct {
        const char* name;
        std::vector<float> fractions;
        float at;
        int before, after; ///< marks
    } cases[] = {
        { "on the last of equal stops", { 0, 0.5f, 0.5f, 1 }, 0.5f, 2, 3 },
        { "just below equal stops", { 0, 0.5f, 0.5f, 1 }, 0.4999f, 0, 1 },
        { "below the first", { 0.25f, 0.5f }, 0.1f, 0, 0 },
        { "exactly 1", { 0, 0.5f, 1, 1 }, 1, 3, 3 },
        { "exactly 0 with two stops there", { 0, 0, 1 }, 0, 1, 2 },
        { "below 0", { 0, 1 }, -3, 0, 1 },
    };
    for (const auto& c : cases) {
        const auto gradient = gradientAt(c.fractions);
        EXPECT_EQ(markOf(*gradient->stopBeforeFraction(c.at)), c.before) << c.name;
        EXPECT_EQ(markOf(*gradient->stopAfterFraction(c.at)), c.after) << c.name;
    }
}

// The stated scans, on gradients whose shared stops were moved behind their back too.
TEST(Gradient, BracketsOfManyStopsAreThoseOfAScan)
{
    std::mt19937 random(8);
    for (int trial = 0; trial < 40; ++trial) {
        VXRGradient gradient(red(), Color::blackColor(), VXRLinearGradient);
        for (int i = 0; i < 30; ++i)
            gradient.insertGradientStop(
                VXRGradientStop::gradientStopWithColorFraction(red(), float(random() % 20) / 19));
        const auto sharing = gradient.copyWithZone();
        if (trial % 2)
            sharing->reverseStopOrder();
        if (trial % 4 > 1)
            gradient.insertGradientStop(VXRGradientStop::gradientStopWithColorFraction(red(), 0.25f));
        const auto& stops = gradient.gradientStops();
        for (int i = -1; i < 41; ++i) {
            const float at = float(i) / 38, inside = std::clamp(at, 0.0f, 1.0f);
            auto before = stops.front(), after = stops.back();
            for (const auto& stop : stops)
                before = stop->fraction() <= inside ? stop : before;
            for (auto stop = stops.rbegin(); inside < 1 && stop != stops.rend(); ++stop)
                after = (*stop)->fraction() > inside ? *stop : after;
            ASSERT_EQ(gradient.stopBeforeFraction(at), before) << trial << " at " << at;
            ASSERT_EQ(gradient.stopAfterFraction(at), after) << trial << " at " << at;
        }
    }
}

TEST(Gradient, ColoursAreMixedStraightBetweenStops)
{
    // Alpha is a channel like the others: the colour is not weighed by it.
    auto gradient
        = VXRGradient::linearGradientWithStartColorEndColor(red(), Color::colorWithCalibratedRGB(0, 0, 1, 0));
    EXPECT_EQ(evaluated(*gradient, 0.5f), (RGBA { 0.5f, 0, 0.5f, 0.5f }));
    EXPECT_EQ(gradient->colorAtFraction(0), gradient->firstColor());
    EXPECT_EQ(gradient->colorAtFraction(1), gradient->lastColor());
    gradient->insertStopAtFraction(0.25f);
    EXPECT_TRUE(gradient->stopAtIndex(1)->isEqual(
        *stop(Color::colorWithCalibratedRGB(0.75f, 0, 0.25f, 0.75f), 0.25f)));

    // Outside the stops it is the nearest one's.
    const auto inner = gradientAt({ 0.25f, 0.5f });
    EXPECT_EQ(inner->colorAtFraction(0.1f), inner->firstColor());
    EXPECT_EQ(inner->colorAtFraction(0.9f), inner->lastColor());
    EXPECT_EQ(evaluated(*inner, 1)[0], 1 / 256.0f);
    EXPECT_EQ(evaluated(*inner, 0.375f)[0], 0.5f / 256);

    gradient = VXRGradient::linearGradientWithStartColorEndColor(
        Color::colorWithCalibratedWhite(0.25f), Color::colorWithDeviceCMYK(0, 1, 0, 0));
    EXPECT_EQ(evaluated(*gradient, 0), (RGBA { 0.25f, 0.25f, 0.25f, 1 }));
    EXPECT_EQ(evaluated(*gradient, 1), (RGBA { 1, 0, 1, 1 }));
}

TEST(Gradient, RemovalTakesAllEqualStopsAndLeavesTwo)
{
    const char tooMany[] = "Attempted to remove too many gradient stops. Must have at least 2.";
    auto gradient = gradientAt({ 0, 0.5f, 1 });
    EXPECT_THROW(gradient->removeStopAtIndex(3), InvalidArgumentException);
    const auto middle = gradient->stopAtIndex(1);
    gradient->insertGradientStop(middle->copyWithZone());
    gradient->removeStop(*gradient->stopAtIndex(1));
    EXPECT_THAT(marks(*gradient), ElementsAre(0, 2));
    gradient->insertGradientStop(middle);
    EXPECT_EQ(gradient->removeStopAtIndex(1), middle);
    EXPECT_THAT([&] { gradient->removeStopAtIndex(0); }, ThrowsMessage<GenericException>(tooMany));
    EXPECT_THAT(
        [&] { gradient->removeStop(*gradient->stopAtIndex(0)); }, ThrowsMessage<GenericException>(tooMany));
    EXPECT_THAT(marks(*gradient), ElementsAre(0, 2));
}

TEST(Gradient, ReversalMirrorsFractionsAndOrder)
{
    for (const auto& list :
        { std::vector<float> { 0, 1 }, { 0, 0.25f, 0.5f }, { 0, 0.25f, 0.5f, 0.875f }, {} }) {
        const auto gradient = gradientAt(list);
        gradient->reverseStopOrder();
        const std::size_t count = list.size();
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(gradient->stopAtIndex(i)->fraction(), 1 - list[count - 1 - i]);
            EXPECT_EQ(markOf(*gradient->stopAtIndex(i)), static_cast<int>(count - 1 - i));
        }
    }
}

TEST(Gradient, EvenDistributionAccumulatesItsSteps)
{
    for (const std::size_t count : { 1, 2, 4, 7, 11 }) {
        auto gradient = gradientAt(std::vector<float>(count, 0.5f));
        gradient->evenlyDistributeStops();
        const auto step = static_cast<float>(1.0 / static_cast<double>(count - 1));
        float sum = 0;
        for (std::size_t k = 0; k < count; ++k) {
            EXPECT_EQ(gradient->stopAtIndex(k)->fraction(), std::min<float>(sum, 1)) << k;
            sum = sum + step;
        }
    }
}

TEST(Gradient, CopiesAreEqualUntilChangedAndShareStopsButNotTheList)
{
    auto angle = VXRAngleGradient::radialGradientWithStartColorEndColor(red(), blue());
    auto placed = VXRTransformGradient::linearGradientWithStartColorEndColor(red(), blue());
    angle->setGradientAngle(0.5f);
    angle->setOpacity(0.5f);
    placed->setStartPoint({ 1, 2 });
    placed->setEndPoint({ 3, 4 });
    placed->setTransform(AffineTransform::makeScale(2, 3));
    using Placed = VXRTransformGradient;
    const struct {
        const char* name;
        VXRGradient& gradient;
        void (*change)(VXRGradient&);
    } changes[] = {
        { "opacity", *angle, [](auto& g) { g.setOpacity(1); } },
        { "type", *angle, [](auto& g) { g.setGradientType(VXRLinearGradient); } },
        { "one more stop", *angle, [](auto& g) { g.insertStopAtFraction(0.5f); } },
        { "stop", *angle,
            [](auto& g) {
                g.setGradientStops({ stop(red(), 0), stop(green(), 1) });
            } },
        { "angle", *angle, [](auto& g) { dynamic_cast<VXRAngleGradient&>(g).setGradientAngle(1); } },
        { "start", *placed,
            [](auto& g) {
                dynamic_cast<Placed&>(g).setStartPoint({ 1, 3 });
            } },
        { "end", *placed,
            [](auto& g) {
                dynamic_cast<Placed&>(g).setEndPoint({ 3, 5 });
            } },
        { "transform", *placed, [](auto& g) { dynamic_cast<Placed&>(g).setTransform({}); } },
    };
    for (const auto& c : changes) {
        const auto copy = c.gradient.copyWithZone();
        EXPECT_TRUE(c.gradient.isEqual(*copy)) << c.name;
        EXPECT_EQ(copy->stopAtIndex(1), c.gradient.stopAtIndex(1));
        c.change(*copy);
        EXPECT_FALSE(c.gradient.isEqual(*copy)) << c.name;
        EXPECT_EQ(c.gradient.gradientStops().size(), 2u);
    }
    const auto plain = VXRGradient::radialGradientWithStartColorEndColor(red(), blue());
    plain->setOpacity(0.5f);
    EXPECT_TRUE(plain->isEqual(*angle)) << "the receiver's class or a subclass";
    EXPECT_FALSE(angle->isEqual(*plain));
}

TEST(Gradient, OnlySomeChangesDropTheShading)
{
    struct Change {
        const char* name;
        std::function<void(VXRGradient&)> make;
        bool drops;
    };
    const Change changes[] = {
        { "type", [](auto& g) { g.setGradientType(g.gradientType()); }, true },
        { "opacity", [](auto& g) { g.setOpacity(0.5f); }, false },
        { "same list", [](auto& g) { g.setGradientStops(g.gradientStops()); }, false },
        { "equal list", [](auto& g) { g.setGradientStops(VXRGradient::Stops(g.gradientStops())); }, true },
        { "insertion in the middle", [](auto& g) { g.insertGradientStop(stop(red(), 0.7f)); }, false },
        { "insertion at the end", [](auto& g) { g.insertGradientStop(stop(red(), 1)); }, true },
        { "insertion at a fraction", [](auto& g) { g.insertStopAtFraction(0.7f); }, true },
        { "removal", [](auto& g) { g.removeStop(*g.stopAtIndex(1)); }, true },
        { "removal by index", [](auto& g) { g.removeStopAtIndex(1); }, false },
        { "reversal", [](auto& g) { g.reverseStopOrder(); }, true },
        { "distribution", [](auto& g) { g.evenlyDistributeStops(); }, true },
    };
    for (const Change& change : changes) {
        auto gradient = gradientAt({ 0, 0.5f, 1 });
        const auto before = gradient->shadingRef();
        change.make(*gradient);
        EXPECT_EQ(gradient->shadingRef() != before, change.drops) << change.name;
    }
    VXRGradient empty;
    const auto before = empty.shadingRef();
    empty.insertGradientStop(stop(red(), 0.5f));
    EXPECT_EQ(empty.shadingRef(), before) << "first stop of an empty list";
}

TEST(Gradient, TheShadingFollowsTheStopsEvenWhereItIsKept)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    const auto shading = gradient->shadingRef();
    gradient->insertGradientStop(stop(green(), 0.25f));
    EXPECT_EQ(gradient->shadingRef(), shading);
    EXPECT_NEAR(shading->stops().at(1).rgba[1], 1, 1e-3);
    EXPECT_EQ(shading->stops()[1].position, 0.25f);
    // Stops shared with a copy change under the shading as well.
    gradient->copyWithZone()->evenlyDistributeStops();
    EXPECT_EQ(gradient->shadingRef()->stops()[1].position, 0.5f);
}

TEST(Gradient, ShadingsLieAlongAHundredUnitsWithBothSidesOfHardSteps)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    gradient->insertGradientStop(stop(green(), 0.5f));
    gradient->insertGradientStop(stop(blue(), 0.5f));
    auto shading = gradient->shadingRef();
    EXPECT_EQ(shading->kind(), Shading::Kind::Axial);
    EXPECT_EQ(shading->start(), (Point { 0, 0 }));
    EXPECT_EQ(shading->end(), (Point { 100, 0 }));
    EXPECT_TRUE(shading->extendsStart() && shading->extendsEnd());
    const auto& stops = shading->stops();
    ASSERT_EQ(stops.size(), 4u);
    EXPECT_TRUE(stops[1].position == 0.5f && stops[2].position == 0.5f);
    EXPECT_NEAR(stops[1].rgba[1], 1, 1e-4);
    EXPECT_NEAR(stops[2].rgba[2], 1, 1e-4);

    gradient->setGradientType(7); // any other type is radial
    shading = gradient->shadingRef();
    EXPECT_EQ(shading->kind(), Shading::Kind::Radial);
    EXPECT_EQ(shading->startRadius(), 0);
    EXPECT_EQ(shading->endRadius(), 100);
    EXPECT_EQ(shading->end(), (Point { 0, 0 }));
    EXPECT_TRUE(shading->extendsStart() && shading->extendsEnd());
}

TEST(Gradient, TheBaseClassPaintsNothing)
{
    const auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    EXPECT_THAT(
        [&] {
            gradient->paintRect({ 0, 0, 1, 1 });
        },
        ThrowsMessage<GenericException>("Subclass responsibility."));
}

TEST(AngleGradient, DegreesAndRadians)
{
    VXRAngleGradient gradient;
    gradient.setGradientAngleInDegrees(90);
    EXPECT_EQ(gradient.gradientAngle(), 1.57079637f); // the float nearest to half of pi
    EXPECT_FLOAT_EQ(gradient.gradientAngleInDegrees(), 90);
}

TEST(AngleGradient, BestLengthIsHalfTheExtentAlongTheDirection)
{
    const VXRAngleGradient gradient;
    for (int i = -20; i <= 20; ++i) {
        const float a = static_cast<float>(i) * 0.33f;
        EXPECT_NEAR(gradient._bestGradientLengthForRectAtAngle({ 30, -70, 200, 100 }, a),
            (std::abs(200 * std::cos(a)) + std::abs(100 * std::sin(a))) / 2, 1e-3)
            << a;
    }
}

} // namespace
