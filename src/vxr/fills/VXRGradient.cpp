#include <vxr/fills/VXRGradient.h>

#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Shading.h>

#include <algorithm>
#include <functional>

namespace vxr {

namespace {

/// The colour between two stops; their own if they are the same stop. Null if one has no colour.
std::shared_ptr<Color> colorBetween(const std::shared_ptr<VXRGradientStop>& before,
    const std::shared_ptr<VXRGradientStop>& after, float fraction)
{
    if (!before || !after || !before->color() || !after->color())
        return nullptr;
    if (before == after)
        return before->color();
    const float t = (fraction - before->fraction()) / (after->fraction() - before->fraction());
    return before->color()->blendedColorWithFractionOfColor(t, *after->color());
}

void requireIndex(std::size_t index, std::size_t count)
{
    if (index >= count)
        throw InvalidArgumentException("Gradient stop " + std::to_string(index) + " is beyond the "
            + std::to_string(count) + " there are.");
}

void requireStop(const std::shared_ptr<VXRGradientStop>& stop)
{
    if (!stop)
        throw InvalidArgumentException("A gradient's stop is missing.");
}

void requireRemovable(std::size_t count)
{
    if (count < 3)
        throw GenericException("Attempted to remove too many gradient stops. Must have at least 2.");
}

} // namespace

VXRGradient::VXRGradient() = default;

VXRGradient::VXRGradient(std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type)
{
    insertGradientStop(VXRGradientStop::gradientStopWithColorFraction(std::move(startColor), 0));
    insertGradientStop(VXRGradientStop::gradientStopWithColorFraction(std::move(endColor), 1));
    setGradientType(type);
    setOpacity(1);
}

VXRGradient::~VXRGradient() = default;

std::shared_ptr<VXRGradient> VXRGradient::linearGradientWithStartColorEndColor(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor)
{
    return std::make_shared<VXRGradient>(std::move(startColor), std::move(endColor), VXRLinearGradient);
}

std::shared_ptr<VXRGradient> VXRGradient::radialGradientWithStartColorEndColor(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor)
{
    return std::make_shared<VXRGradient>(std::move(startColor), std::move(endColor), VXRRadialGradient);
}

void VXRGradient::setGradientStops(const Stops& stops)
{
    if (&stops == &mStops)
        return;
    std::for_each(stops.begin(), stops.end(), requireStop);
    mStops = stops;
    mOrderKnownAt = UINT64_MAX;
    releaseShadingRef();
}

std::shared_ptr<VXRGradientStop> VXRGradient::stopAtIndex(std::size_t index) const
{
    requireIndex(index, mStops.size());
    return mStops[index];
}

void VXRGradient::insertGradientStop(std::shared_ptr<VXRGradientStop> stop)
{
    requireStop(stop);
    if (mStops.empty()) {
        mStops.push_back(std::move(stop));
        mOrderKnownAt = UINT64_MAX;
        return;
    }
    const auto greater = firstBehind(stop->fraction());
    const bool last = greater == mStops.end();
    const bool ascends = stopsAscend() && stop->fraction() >= 0;
    mStops.insert(greater, std::move(stop));
    mAscends = ascends;
    if (last)
        releaseShadingRef();
}

void VXRGradient::insertStopAtFraction(float fraction)
{
    insertGradientStop(VXRGradientStop::gradientStopWithColorFraction(colorAtFraction(fraction), fraction));
    releaseShadingRef();
}

void VXRGradient::removeStop(const VXRGradientStop& stop)
{
    requireRemovable(mStops.size());
    const VXRGradientStop sought(
        stop.color(), stop.fraction()); // `stop` may be destroyed by the first removal
    std::erase_if(mStops, [&](const auto& other) { return sought.isEqual(*other); });
    releaseShadingRef();
}

std::shared_ptr<VXRGradientStop> VXRGradient::removeStopAtIndex(std::size_t index)
{
    requireRemovable(mStops.size());
    requireIndex(index, mStops.size());
    std::shared_ptr<VXRGradientStop> removed = mStops[index];
    mStops.erase(mStops.begin() + static_cast<std::ptrdiff_t>(index));
    return removed;
}

void VXRGradient::reverseStopOrder()
{
    const auto reverse = [](VXRGradientStop& stop) { stop._setFraction(1 - stop.fraction()); };
    for (auto i = mStops.begin(), j = mStops.end(); i < j; ++i) {
        --j;
        reverse(**i);
        if (i >= j)
            break;
        reverse(**j);
        std::swap(*i, *j);
    }
    releaseShadingRef();
}

void VXRGradient::evenlyDistributeStops()
{
    const auto step = static_cast<float>(1.0 / (static_cast<double>(mStops.size()) - 1));
    float fraction = 0;
    for (const auto& stop : mStops) {
        stop->_setFraction(fraction);
        fraction += step;
    }
    releaseShadingRef();
}

/// Stops ascend unless a gradient that shares them has moved them, or an unsorted list was set.
bool VXRGradient::stopsAscend() const
{
    if (mOrderKnownAt != VXRGradientStop::moves()) {
        mOrderKnownAt = VXRGradientStop::moves();
        float last = 0;
        mAscends = std::all_of(mStops.begin(), mStops.end(), [&](const auto& stop) {
            const bool follows = stop->fraction() >= last; // false for NaN
            last = stop->fraction();
            return follows;
        });
    }
    return mAscends;
}

VXRGradient::Stops::const_iterator VXRGradient::firstBehind(float fraction) const
{
    const auto isBehind = [&](const auto& stop) { return stop->fraction() > fraction; };
    if (!stopsAscend())
        return std::find_if(mStops.begin(), mStops.end(), isBehind);
    return std::partition_point(mStops.begin(), mStops.end(), std::not_fn(isBehind));
}

std::shared_ptr<VXRGradientStop> VXRGradient::stopBeforeFraction(float fraction) const
{
    if (mStops.empty())
        return nullptr;
    const float clamped = VXRClamp(fraction, 0, 1);
    if (clamped >= 0 && stopsAscend()) {
        const auto behind = firstBehind(clamped);
        return behind == mStops.begin() ? mStops.front() : *std::prev(behind);
    }
    const auto found = std::find_if(
        mStops.rbegin(), mStops.rend(), [&](const auto& stop) { return stop->fraction() <= clamped; });
    return found == mStops.rend() ? mStops.front() : *found;
}

std::shared_ptr<VXRGradientStop> VXRGradient::stopAfterFraction(float fraction) const
{
    if (mStops.empty())
        return nullptr;
    const float clamped = VXRClamp(fraction, 0, 1);
    if (clamped == 1)
        return mStops.back();
    const auto found = firstBehind(clamped);
    return found == mStops.end() ? mStops.back() : *found;
}

std::shared_ptr<Color> VXRGradient::colorAtFraction(float fraction) const
{
    if (fraction == 0)
        return firstColor();
    if (fraction == 1)
        return lastColor();
    return colorBetween(stopBeforeFraction(fraction), stopAfterFraction(fraction), fraction);
}

std::shared_ptr<Color> VXRGradient::firstColor() const
{
    return mStops.empty() ? nullptr : mStops.front()->color();
}

std::shared_ptr<Color> VXRGradient::lastColor() const
{
    return mStops.empty() ? nullptr : mStops.back()->color();
}

void VXRGradient::setGradientType(int type)
{
    mType = type;
    releaseShadingRef();
}

std::vector<VXRGradient::SampledStop> VXRGradient::stopsToSample() const
{
    std::vector<SampledStop> stops;
    stops.reserve(mStops.size());
    for (const auto& stop : mStops)
        stops.push_back({ stop->color(), stop->fraction() });
    return stops;
}

std::shared_ptr<const Shading> VXRGradient::shadingRef() const
{
    std::vector<SampledStop> stops = stopsToSample();
    if (mShadingRef && stops == mSampledStops)
        return mShadingRef;

    // The colour may jump where stops coincide, and its slope changes at every stop.
    std::vector<float> hints;
    for (const SampledStop& stop : stops)
        hints.push_back(stop.fraction);
    std::sort(hints.begin(), hints.end());
    mSampledStops = std::move(stops);
    if (mShadingRef) {
        mShadingRef->resample(hints);
        return mShadingRef;
    }
    const auto function
        = std::make_shared<ShadingFunction>(const_cast<VXRGradient*>(this), _evaluateGradient, nullptr);
    if (mType == VXRLinearGradient)
        mShadingRef = Shading::createAxial(
            VXRGenericRGBColorSpace(), { 0, 0 }, { 100, 0 }, function, true, true, hints);
    else
        mShadingRef = Shading::createRadial(
            VXRGenericRGBColorSpace(), { 0, 0 }, 0, { 0, 0 }, 100, function, true, true, hints);
    return mShadingRef;
}

void VXRGradient::releaseShadingRef()
{
    mShadingRef.reset();
    mSampledStops.clear();
}

void VXRGradient::_setAlpha(Context& context) const { context.setAlpha(mOpacity); }

void VXRGradient::drawShading(Context& context, Point start, float angle, float length) const
{
    const float scale = length / 100;
    context.translate(start.x, start.y);
    context.rotate(angle);
    context.scale(scale, scale);
    context.setInterpolationQuality(InterpolationQuality::High);
    context.drawShading(*shadingRef());
}

void VXRGradient::drawSwatchInRect(const Rect& rect) const
{
    const Point start
        = mType == VXRLinearGradient ? Point { rect.minX(), rect.midY() } : VXRCenterOfRect(rect);
    const Point far { rect.maxX(), rect.midY() };
    const float scale = VXRDistance(start, far) / 100;
    Context& context = currentDrawingPort();
    const StateSaver saved(context);
    context.clipToRect(rect);
    _setAlpha(context);
    context.translate(start.x, start.y);
    context.scale(scale, scale);
    context.drawShading(*shadingRef());
}

void VXRGradient::paintShape(VXRPaintedShape&) { throw GenericException("Subclass responsibility."); }

void VXRGradient::paintRect(const Rect&) { throw GenericException("Subclass responsibility."); }

bool VXRGradient::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* gradient = dynamic_cast<const VXRGradient*>(&other);
    return gradient && mType == gradient->mType && mOpacity == gradient->mOpacity
        && std::equal(mStops.begin(), mStops.end(), gradient->mStops.begin(), gradient->mStops.end(),
            [](const auto& a, const auto& b) { return a->isEqual(*b); });
}

void VXRGradient::copyGradientTo(VXRGradient& copy) const
{
    copy.setOpacity(mOpacity);
    copy.setGradientType(mType);
    copy.setGradientStops(mStops);
}

std::shared_ptr<VXRGradient> VXRGradient::copyWithZone() const
{
    auto copy = std::make_shared<VXRGradient>();
    copyGradientTo(*copy);
    return copy;
}

void _evaluateGradient(void* gradient, const float* input, float* output)
{
    const auto& self = *static_cast<const VXRGradient*>(gradient);
    std::fill(output, output + 4, 0.0f);
    const auto mixed = colorBetween(self.stopBeforeFraction(*input), self.stopAfterFraction(*input), *input);
    const auto color = mixed ? mixed->colorUsingColorSpaceName(NSCalibratedRGBColorSpace) : nullptr;
    if (!color)
        return;
    output[0] = color->redComponent();
    output[1] = color->greenComponent();
    output[2] = color->blueComponent();
    output[3] = color->alphaComponent();
}

} // namespace vxr
