#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/platform/foundation/Exceptions.h>
#include <vxr/platform/graphics/Shading.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

using namespace vxr;
using ::testing::ElementsAre;
using ::testing::Pointwise;

namespace {

std::shared_ptr<Color> red() { return Color::colorWithCalibratedRGB(1, 0, 0); }
std::shared_ptr<Color> green() { return Color::colorWithCalibratedRGB(0, 1, 0); }
std::shared_ptr<Color> blue() { return Color::colorWithCalibratedRGB(0, 0, 1); }
std::shared_ptr<Color> gray(float white) { return Color::colorWithCalibratedRGB(white, white, white); }

std::shared_ptr<VXRGradientStop> stop(std::shared_ptr<Color> color, float fraction)
{
    return VXRGradientStop::gradientStopWithColorFraction(std::move(color), fraction);
}

/// Grey stops at the fractions, darker to lighter in the order given.
std::shared_ptr<VXRGradient> gradientAt(const std::vector<float>& fractions)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(gray(0), gray(1));
    VXRGradient::Stops stops;
    for (std::size_t i = 0; i < fractions.size(); ++i)
        stops.push_back(stop(gray(static_cast<float>(i) / 16), fractions[i]));
    gradient->setGradientStops(stops);
    return gradient;
}

std::vector<float> fractions(const VXRGradient& gradient)
{
    std::vector<float> all;
    for (const auto& s : gradient.gradientStops())
        all.push_back(s->fraction());
    return all;
}

/// The grey of each stop, in sixteenths.
std::vector<int> marks(const VXRGradient& gradient)
{
    std::vector<int> all;
    for (const auto& s : gradient.gradientStops())
        all.push_back(static_cast<int>(s->color()->redComponent() * 16));
    return all;
}

std::array<float, 4> components(const std::shared_ptr<Color>& color)
{
    const auto rgb = color->colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    return { rgb->redComponent(), rgb->greenComponent(), rgb->blueComponent(), rgb->alphaComponent() };
}

std::array<float, 4> evaluated(VXRGradient& gradient, float fraction)
{
    std::array<float, 4> output {};
    _evaluateGradient(&gradient, &fraction, output.data());
    return output;
}

TEST(GradientStop, FractionsAreClampedAndStopsComparedByValue)
{
    EXPECT_EQ(stop(red(), 1.5f)->fraction(), 1);
    EXPECT_EQ(stop(red(), -0.2f)->fraction(), 0);
    const auto a = stop(red(), 0.25f);
    EXPECT_TRUE(a->isEqual(*stop(red(), 0.25f)));
    EXPECT_FALSE(a->isEqual(*stop(red(), 0.2500001f)));
    EXPECT_FALSE(a->isEqual(*stop(blue(), 0.25f)));
    EXPECT_EQ(a->cloneWithFraction(7)->fraction(), 1);
    EXPECT_EQ(a->cloneWithFraction(7)->color(), a->color());
    EXPECT_EQ(a->cloneWithColor(blue())->fraction(), 0.25f);
    EXPECT_EQ(a->copyWithZone()->color(), a->color());
}

TEST(Gradient, StopsGoBehindThoseOfTheSameFraction)
{
    auto gradient = gradientAt({ 0, 0.5f, 1 });
    gradient->insertGradientStop(stop(gray(0.5f), 0.5f)); // mark 8
    EXPECT_THAT(marks(*gradient), ElementsAre(0, 1, 8, 2));
    gradient->insertGradientStop(stop(gray(0.75f), 1)); // mark 12
    EXPECT_THAT(marks(*gradient), ElementsAre(0, 1, 8, 2, 12));
    gradient->insertGradientStop(stop(gray(0.25f), 0)); // mark 4
    EXPECT_THAT(marks(*gradient), ElementsAre(0, 4, 1, 8, 2, 12));
}

TEST(Gradient, RandomInsertionsKeepTheOrder)
{
    std::mt19937 random(2);
    auto gradient = gradientAt({ 0, 1 });
    for (int i = 0; i < 200; ++i)
        gradient->insertGradientStop(stop(red(), static_cast<float>(random() % 40) / 39));
    const auto all = fractions(*gradient);
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    EXPECT_EQ(all.size(), 202u);
}

TEST(Gradient, InsertingAtAFractionTakesTheColourThatIsThere)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    gradient->insertStopAtFraction(0.25f);
    EXPECT_THAT(components(gradient->stopAtIndex(1)->color()), ElementsAre(0.75f, 0, 0.25f, 1));
    EXPECT_EQ(gradient->stopAtIndex(1)->fraction(), 0.25f);
}

struct BracketCase {
    const char* name;
    std::vector<float> fractions;
    float at;
    int before, after; ///< marks
};

TEST(Gradient, BracketingStops)
{
    const BracketCase cases[] = {
        { "between", { 0, 0.5f, 1 }, 0.7f, 1, 2 },
        { "on a stop", { 0, 0.5f, 1 }, 0.5f, 1, 2 },
        { "on the last of equal stops", { 0, 0.5f, 0.5f, 1 }, 0.5f, 2, 3 },
        { "just below equal stops", { 0, 0.5f, 0.5f, 1 }, 0.4999f, 0, 1 },
        { "below the first", { 0.25f, 0.5f }, 0.1f, 0, 0 },
        { "above the last", { 0.25f, 0.5f }, 0.9f, 1, 1 },
        { "exactly 1", { 0, 0.5f, 1, 1 }, 1, 3, 3 },
        { "beyond 1", { 0, 0.5f }, 7, 1, 1 },
        { "exactly 0 with two stops there", { 0, 0, 1 }, 0, 1, 2 },
        { "below 0", { 0, 1 }, -3, 0, 1 },
    };
    for (const BracketCase& c : cases) {
        const auto gradient = gradientAt(c.fractions);
        const auto mark = [](const auto& s) { return static_cast<int>(s->color()->redComponent() * 16); };
        EXPECT_EQ(mark(gradient->stopBeforeFraction(c.at)), c.before) << c.name;
        EXPECT_EQ(mark(gradient->stopAfterFraction(c.at)), c.after) << c.name;
    }
}

TEST(Gradient, ColoursAreMixedStraightBetweenStops)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    EXPECT_THAT(components(gradient->colorAtFraction(0.5f)), ElementsAre(0.5f, 0, 0.5f, 1));
    EXPECT_EQ(gradient->colorAtFraction(0), gradient->firstColor());
    EXPECT_EQ(gradient->colorAtFraction(1), gradient->lastColor());

    // Alpha is a channel like the others: the colour is not weighed by it.
    gradient
        = VXRGradient::linearGradientWithStartColorEndColor(red(), Color::colorWithCalibratedRGB(0, 0, 1, 0));
    EXPECT_THAT(components(gradient->colorAtFraction(0.5f)), ElementsAre(0.5f, 0, 0.5f, 0.5f));
    EXPECT_EQ(evaluated(*gradient, 0.5f), (std::array<float, 4> { 0.5f, 0, 0.5f, 0.5f }));

    // Outside the stops it is the nearest one's.
    const auto inner = gradientAt({ 0.25f, 0.5f });
    EXPECT_EQ(inner->colorAtFraction(0.1f), inner->firstColor());
    EXPECT_EQ(inner->colorAtFraction(0.9f), inner->lastColor());
    EXPECT_EQ(evaluated(*inner, 0.1f)[0], 0);
    EXPECT_EQ(evaluated(*inner, 1)[0], 1 / 16.0f);
}

TEST(Gradient, GreyAndCMYKStopsAreEvaluatedInCalibratedRGB)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(
        Color::colorWithCalibratedWhite(0.25f), Color::colorWithDeviceCMYK(0, 1, 0, 0));
    EXPECT_EQ(evaluated(*gradient, 0), (std::array<float, 4> { 0.25f, 0.25f, 0.25f, 1 }));
    EXPECT_EQ(evaluated(*gradient, 1), (std::array<float, 4> { 1, 0, 1, 1 }));
}

TEST(Gradient, RemovalLeavesTwoStops)
{
    auto gradient = gradientAt({ 0, 0.5f, 1 });
    const auto middle = gradient->stopAtIndex(1);
    EXPECT_EQ(gradient->removeStopAtIndex(1), middle);
    EXPECT_THAT(fractions(*gradient), ElementsAre(0, 1));
    for (const auto& remove : { std::function([&] { gradient->removeStopAtIndex(0); }),
             std::function([&] { gradient->removeStop(*gradient->stopAtIndex(0)); }) }) {
        try {
            remove();
            ADD_FAILURE() << "removed one of two";
        } catch (const GenericException& error) {
            EXPECT_STREQ(error.what(), "Attempted to remove too many gradient stops. Must have at least 2.");
        }
        EXPECT_EQ(gradient->gradientStops().size(), 2u);
    }
    EXPECT_THROW(gradientAt({ 0, 0.5f, 1 })->removeStopAtIndex(3), InvalidArgumentException);
}

TEST(Gradient, RemovingAStopRemovesAllThatEqualIt)
{
    auto gradient = gradientAt({ 0, 0.5f, 1 });
    gradient->insertGradientStop(gradient->stopAtIndex(1)->copyWithZone());
    gradient->removeStop(*gradient->stopAtIndex(1));
    EXPECT_THAT(fractions(*gradient), ElementsAre(0, 1));
}

TEST(Gradient, ReversalMirrorsFractionsAndOrder)
{
    auto gradient = gradientAt({ 0, 0.25f, 1 });
    gradient->reverseStopOrder();
    EXPECT_THAT(fractions(*gradient), ElementsAre(0, 0.75f, 1));
    EXPECT_THAT(marks(*gradient), ElementsAre(2, 1, 0));

    for (const auto& list : { std::vector<float> { 0, 1 }, { 0, 0.25f, 0.5f, 0.875f }, { 0.5f }, {} }) {
        auto twice = gradientAt(list);
        twice->reverseStopOrder();
        twice->reverseStopOrder();
        EXPECT_EQ(fractions(*twice), list);
    }
}

TEST(Gradient, EvenDistributionAccumulatesItsSteps)
{
    for (const int count : { 2, 3, 4, 7, 11 }) {
        auto gradient = gradientAt(std::vector<float>(static_cast<std::size_t>(count), 0.5f));
        gradient->evenlyDistributeStops();
        const auto step = static_cast<float>(1.0 / (count - 1));
        float sum = 0;
        for (int k = 0; k < count; ++k) {
            EXPECT_EQ(gradient->stopAtIndex(static_cast<std::size_t>(k))->fraction(), std::min<float>(sum, 1))
                << k;
            sum = sum + step;
        }
    }
    auto single = gradientAt({ 0.5f });
    single->evenlyDistributeStops();
    EXPECT_THAT(fractions(*single), ElementsAre(0));
}

TEST(Gradient, CopiesShareStopsButNotTheList)
{
    auto gradient = gradientAt({ 0, 0.25f, 1 });
    gradient->setOpacity(0.5f);
    auto copy = gradient->copyWithZone();
    EXPECT_TRUE(copy->isEqual(*gradient));
    EXPECT_EQ(copy->stopAtIndex(1), gradient->stopAtIndex(1));
    copy->insertStopAtFraction(0.5f);
    EXPECT_EQ(gradient->gradientStops().size(), 3u);

    gradient->copyWithZone()->reverseStopOrder();
    EXPECT_THAT(fractions(*gradient), ElementsAre(1, 0.75f, 0));
}

TEST(Gradient, CopiesKeepTheirClassAndItsFields)
{
    auto angle = VXRAngleGradient::radialGradientWithStartColorEndColor(red(), blue());
    angle->setGradientAngle(0.5f);
    const auto angleCopy = angle->copyWithZone();
    EXPECT_TRUE(angle->isEqual(*angleCopy));
    EXPECT_EQ(dynamic_cast<VXRAngleGradient&>(*angleCopy).gradientAngle(), 0.5f);
    EXPECT_EQ(angleCopy->gradientType(), VXRRadialGradient);

    auto placed = VXRTransformGradient::linearGradientWithStartColorEndColor(red(), blue());
    placed->setStartPoint({ 1, 2 });
    placed->setEndPoint({ 3, 4 });
    placed->setTransform(AffineTransform::makeScale(2, 3));
    const auto placedCopy = placed->copyWithZone();
    EXPECT_TRUE(placed->isEqual(*placedCopy));
    dynamic_cast<VXRTransformGradient&>(*placedCopy).setEndPoint({ 3, 5 });
    EXPECT_FALSE(placed->isEqual(*placedCopy));
}

TEST(Gradient, EqualityAsksTheReceiversClass)
{
    const auto plain = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    const auto angle = VXRAngleGradient::linearGradientWithStartColorEndColor(red(), blue());
    EXPECT_TRUE(plain->isEqual(*angle));
    EXPECT_FALSE(angle->isEqual(*plain));
    EXPECT_FALSE(angle->isEqual(*VXRTransformGradient::linearGradientWithStartColorEndColor(red(), blue())));

    const auto same = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    EXPECT_TRUE(plain->isEqual(*same));
    same->setOpacity(0.5f);
    EXPECT_FALSE(plain->isEqual(*same));
    EXPECT_FALSE(plain->isEqual(*VXRGradient::radialGradientWithStartColorEndColor(red(), blue())));
    EXPECT_FALSE(plain->isEqual(*VXRGradient::linearGradientWithStartColorEndColor(red(), green())));
    const auto more = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    more->insertStopAtFraction(0.5f);
    EXPECT_FALSE(plain->isEqual(*more));
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
        EXPECT_EQ(gradient->shadingRef(), before);
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
    auto gradient = gradientAt({ 0, 1 });
    const auto shading = gradient->shadingRef();
    gradient->insertGradientStop(stop(green(), 0.5f));
    const auto hasGreen = [&] {
        return std::any_of(gradient->shadingRef()->stops().begin(), gradient->shadingRef()->stops().end(),
            [](const ShadingStop& s) { return s.rgba[1] > 0.999f && s.rgba[0] < 0.001f; });
    };
    EXPECT_EQ(gradient->shadingRef(), shading);
    EXPECT_TRUE(hasGreen());

    // Stops shared with a copy change under the shading as well.
    gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    gradient->insertGradientStop(stop(green(), 0.25f));
    gradient->shadingRef();
    gradient->copyWithZone()->evenlyDistributeStops();
    const auto& stops = gradient->shadingRef()->stops();
    EXPECT_EQ(stops[1].position, 0.5f);
}

TEST(Gradient, ShadingsLieAlongAHundredUnits)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    auto shading = gradient->shadingRef();
    EXPECT_EQ(shading->kind(), Shading::Kind::Axial);
    EXPECT_EQ(shading->start(), (Point { 0, 0 }));
    EXPECT_EQ(shading->end(), (Point { 100, 0 }));
    EXPECT_TRUE(shading->extendsStart() && shading->extendsEnd());
    gradient->setGradientType(7); // any other type is radial
    shading = gradient->shadingRef();
    EXPECT_EQ(shading->kind(), Shading::Kind::Radial);
    EXPECT_EQ(shading->startRadius(), 0);
    EXPECT_EQ(shading->endRadius(), 100);
    EXPECT_EQ(shading->end(), (Point { 0, 0 }));
    EXPECT_TRUE(shading->extendsStart() && shading->extendsEnd());
}

TEST(Gradient, HardStepsStandInTheShadingWithBothSides)
{
    auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    gradient->insertGradientStop(stop(green(), 0.5f));
    gradient->insertGradientStop(stop(blue(), 0.5f));
    const auto& stops = gradient->shadingRef()->stops();
    ASSERT_EQ(stops.size(), 4u);
    EXPECT_EQ(stops[1].position, 0.5f);
    EXPECT_EQ(stops[2].position, 0.5f);
    EXPECT_NEAR(stops[1].rgba[1], 1, 1e-4);
    EXPECT_NEAR(stops[2].rgba[2], 1, 1e-4);
}

TEST(Gradient, ShadingsTakeNoMoreStopsThanTheGradientHas)
{
    auto gradient = gradientAt({ 0, 0.1f, 0.15f, 0.3f, 0.33f, 0.5f, 0.6f, 0.71f, 0.8f, 0.82f, 0.9f, 1 });
    EXPECT_LE(gradient->shadingRef()->stops().size(), 12u);
}

TEST(Gradient, TheBaseClassPaintsNothing)
{
    const auto gradient = VXRGradient::linearGradientWithStartColorEndColor(red(), blue());
    try {
        gradient->paintRect({ 0, 0, 1, 1 });
        ADD_FAILURE() << "painted";
    } catch (const GenericException& error) {
        EXPECT_STREQ(error.what(), "Subclass responsibility.");
    }
}

TEST(AngleGradient, DegreesAndRadians)
{
    const auto gradient = VXRAngleGradient::linearGradientWithStartColorEndColor(red(), blue());
    gradient->setGradientAngleInDegrees(90);
    EXPECT_EQ(gradient->gradientAngle(), 1.57079637f); // the float nearest to half of pi
    EXPECT_FLOAT_EQ(gradient->gradientAngleInDegrees(), 90);
}

TEST(AngleGradient, BestLengthIsHalfTheExtentAlongTheDirection)
{
    const VXRAngleGradient gradient;
    const Rect rect { 30, -70, 200, 100 };
    EXPECT_FLOAT_EQ(gradient._bestGradientLengthForRectAtAngle(rect, 0), 100);
    EXPECT_NEAR(gradient._bestGradientLengthForRectAtAngle(rect, 1.5707963f), 50, 1e-3);
    EXPECT_NEAR(gradient._bestGradientLengthForRectAtAngle(rect, 0.78539816f), 106.066, 1e-3);
    for (int i = -20; i <= 20; ++i) {
        const float a = static_cast<float>(i) * 0.33f;
        EXPECT_NEAR(gradient._bestGradientLengthForRectAtAngle(rect, a),
            (std::abs(200 * std::cos(a)) + std::abs(100 * std::sin(a))) / 2, 1e-3)
            << a;
    }
}

} // namespace
