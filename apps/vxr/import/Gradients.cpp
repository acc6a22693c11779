#include "Gradients.h"

#include "FocalGradient.h"

#include <vxr/fills/VXRTransformGradient.h>

#include <algorithm>
#include <cmath>

namespace app {

namespace {

/// More repetitions than this can't be told apart, but each costs a stop.
constexpr int repetitionLimit = 256;

/// The fraction of a second stop at 0.
constexpr float leastFraction = 1e-6f;

struct Range {
    int first = 0;
    int last = 1;
};

/// The steps of a linear gradient that `covered`, grown by `margin`, reaches.
Range linearSteps(const svg::Gradient& gradient, const svg::Outline& covered, double margin)
{
    // In the space of the axis the gradient's parameter is the x coordinate.
    const svg::Vec axis = gradient.end - gradient.start;
    const svg::Matrix fromAxis { axis.x, axis.y, -axis.y, axis.x, gradient.start.x, gradient.start.y };
    const svg::Matrix toAxis = (gradient.toUser * fromAxis).inverse();
    const svg::Box box = covered.bounds(toAxis);
    if (box.isNone())
        return {};
    const double grown = margin * toAxis.largestScale();
    const auto limit = [](double v) {
        return static_cast<int>(std::clamp<double>(v, -repetitionLimit / 2.0, repetitionLimit / 2.0));
    };
    const int first = limit(std::floor(box.minX - grown));
    return { first, std::max(first + 1, limit(std::ceil(box.maxX + grown))) };
}

/// How often a radial gradient's circles must be repeated to cover it; they grow from focus to circle
/// and on.
int radialSteps(const svg::Gradient& gradient, const svg::Outline& covered, double margin)
{
    const svg::Matrix fromUser = gradient.toUser.inverse();
    const svg::Box box = covered.bounds(fromUser);
    if (box.isNone())
        return 1;
    const double grown = margin * fromUser.largestScale();
    const svg::Vec corners[]
        = { { box.minX - grown, box.minY - grown }, { box.maxX + grown, box.minY - grown },
              { box.minX - grown, box.maxY + grown }, { box.maxX + grown, box.maxY + grown } };
    for (int steps = 1; steps < repetitionLimit; ++steps) {
        const svg::Vec center = gradient.focus + (gradient.center - gradient.focus) * steps;
        const double radius = gradient.focusRadius + (gradient.radius - gradient.focusRadius) * steps;
        if (std::all_of(std::begin(corners), std::end(corners),
                [&](svg::Vec p) { return std::hypot(p.x - center.x, p.y - center.y) <= radius; }))
            return steps;
    }
    return repetitionLimit;
}

std::vector<std::shared_ptr<vxr::VXRGradientStop>> stopsFrom(const std::vector<svg::GradientStop>& stops)
{
    std::vector<std::shared_ptr<vxr::VXRGradientStop>> result;
    for (const svg::GradientStop& stop : stops) {
        // Of several stops at 0 the library uses the last. The area before the gradient takes the colour of
        // the first, so later stops are moved to just above 0.
        float fraction = static_cast<float>(stop.offset);
        if (!result.empty())
            fraction = std::max(fraction, leastFraction);
        result.push_back(
            vxr::VXRGradientStop::gradientStopWithColorFraction(colorFrom(stop.color), fraction));
    }
    return result;
}

struct PlacedGradient {
    std::shared_ptr<vxr::VXRTransformGradient> gradient; ///< from (0, 0) to (1, 0), or the disc of radius 1
    svg::Matrix place; ///< to the space of the drawing's gradient
};

PlacedGradient makeLinear(const svg::Gradient& gradient, const svg::Outline& covered, double margin)
{
    const bool repeats = gradient.spread != svg::Gradient::Spread::Pad;
    const Range range = repeats ? linearSteps(gradient, covered, margin) : Range {};
    const svg::Vec step = gradient.end - gradient.start;
    const svg::Vec axis = step * (range.last - range.first);
    const svg::Vec start = gradient.start + step * range.first;
    auto result = std::make_shared<vxr::VXRTransformGradient>(colorFrom(gradient.stops.front().color),
        colorFrom(gradient.stops.back().color), vxr::VXRLinearGradient);
    result->setGradientStops(stopsFrom(repeatedStops(gradient, range.first, range.last)));
    return { std::move(result), { axis.x, axis.y, -axis.y, axis.x, start.x, start.y } };
}

PlacedGradient makeRadial(const svg::Gradient& gradient, const svg::Outline& covered, double margin)
{
    const bool repeats = gradient.spread != svg::Gradient::Spread::Pad;
    const int steps = repeats ? radialSteps(gradient, covered, margin) : 1;
    const svg::Vec center = gradient.focus + (gradient.center - gradient.focus) * steps;
    const double radius = gradient.focusRadius + (gradient.radius - gradient.focusRadius) * steps;
    const svg::Vec focus = (gradient.focus - center) * (1 / radius);
    const auto first = colorFrom(gradient.stops.front().color);
    const auto last = colorFrom(gradient.stops.back().color);
    std::shared_ptr<vxr::VXRTransformGradient> result;
    if (gradient.focus == gradient.center && gradient.focusRadius == 0)
        result = std::make_shared<vxr::VXRTransformGradient>(first, last, vxr::VXRRadialGradient);
    else
        result = std::make_shared<FocalGradient>(
            first, last, pointFrom(focus), static_cast<float>(gradient.focusRadius / radius));
    result->setGradientStops(stopsFrom(repeatedStops(gradient, 0, steps)));
    return { std::move(result), { radius, 0, 0, radius, center.x, center.y } };
}

} // namespace

std::vector<svg::GradientStop> repeatedStops(const svg::Gradient& gradient, int first, int last)
{
    if (first == 0 && last == 1)
        return gradient.stops;
    std::vector<svg::GradientStop> result;
    const double count = last - first;
    const auto add = [&](int step, double offset, const svg::Rgba& color) {
        result.push_back({ (step - first + offset) / count, color });
    };
    for (int step = first; step < last; ++step) {
        // Each repetition is padded with the colours of its first and last stop.
        std::vector<svg::GradientStop> stops = gradient.stops;
        if (stops.front().offset > 0)
            stops.insert(stops.begin(), { 0, stops.front().color });
        if (stops.back().offset < 1)
            stops.push_back({ 1, stops.back().color });
        const bool backwards = gradient.spread == svg::Gradient::Spread::Reflect && step % 2 != 0;
        if (backwards) {
            for (auto stop = stops.rbegin(); stop != stops.rend(); ++stop)
                add(step, 1 - stop->offset, stop->color);
        } else {
            for (const svg::GradientStop& stop : stops)
                add(step, stop.offset, stop.color);
        }
    }
    return result;
}

std::shared_ptr<vxr::VXRShapePainter> painterFrom(
    const svg::Paint& paint, const svg::Outline& covered, double margin, svg::Vec origin)
{
    if (paint.kind == svg::Paint::Kind::None)
        return nullptr;
    if (paint.kind == svg::Paint::Kind::Color)
        return colorFrom(paint.color);
    const svg::Gradient& source = *paint.gradient;
    PlacedGradient made = source.kind == svg::Gradient::Kind::Linear ? makeLinear(source, covered, margin)
                                                                     : makeRadial(source, covered, margin);
    // The placement is entirely in the transform: bounding boxes can make the axis so short that its angle
    // would be lost in single precision.
    made.gradient->setStartPoint({ 0, 0 });
    made.gradient->setEndPoint({ 1, 0 });
    made.gradient->setTransform(
        transformFrom(svg::Matrix::translation(-origin.x, -origin.y) * source.toUser * made.place));
    made.gradient->setOpacity(static_cast<float>(paint.opacity));
    return made.gradient;
}

} // namespace app
