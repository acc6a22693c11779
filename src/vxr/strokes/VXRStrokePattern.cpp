#include <vxr/strokes/VXRStrokePattern.h>

#include <algorithm>

namespace vxr {

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::strokePatternWithPatternCountPhase(
    const float* pattern, int count, float phase)
{
    return std::make_shared<VXRStrokePattern>(pattern, count, phase);
}

namespace {

std::shared_ptr<VXRStrokePattern> patternOfType(int type)
{
    auto pattern = std::make_shared<VXRStrokePattern>(nullptr, 0, 0.0f);
    pattern->_setPatternType(type);
    return pattern;
}

std::shared_ptr<VXRStrokePattern> evenDashes(float length)
{
    const float lengths[] = { length, length };
    return VXRStrokePattern::strokePatternWithPatternCountPhase(lengths, 2, 0);
}

} // namespace

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::solidPattern()
{
    return patternOfType(VXRStrokePatternSolid);
}

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::emptyPattern()
{
    return patternOfType(VXRStrokePatternEmpty);
}

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::shortDashPattern() { return evenDashes(1); }

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::mediumDashPattern() { return evenDashes(3); }

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::longDashPattern() { return evenDashes(6); }

VXRStrokePattern::VXRStrokePattern(const float* pattern, int count, float phase)
    : mPhase(phase)
{
    _setPatternCount(pattern, count);
}

void VXRStrokePattern::_setPatternCount(const float* pattern, int count)
{
    mCount = static_cast<std::int8_t>(std::clamp(count, 0, capacity));
    // The given array may be our own.
    if (mCount > 0 && pattern != mPattern)
        std::copy_n(pattern, mCount, mPattern);
    std::fill(mPattern + mCount, mPattern + capacity, 0.0f);
}

void VXRStrokePattern::_setPatternType(int type)
{
    mType = static_cast<std::int8_t>(std::clamp(type, -128, 127));
}

void VXRStrokePattern::applyToBezierPathLineWidth(Path& path, float lineWidth) const
{
    float dash[capacity];
    for (int i = 0; i < mCount; ++i)
        dash[i] = lineWidth * mPattern[i];
    path.setLineDash(dash, mCount, lineWidth * mPhase);
}

bool VXRStrokePattern::isEqual(const Object& object) const
{
    if (!isOfReceiversClass(object))
        return false;
    if (this == &object)
        return true;
    const auto& other = static_cast<const VXRStrokePattern&>(object);
    // Deliberately lopsided: a dashed receiver does not ask for the other's type.
    if (mType != VXRStrokePatternDashed && mType != other.mType)
        return false;
    return mPhase == other.mPhase && mCount == other.mCount
        && std::equal(mPattern, mPattern + mCount, other.mPattern);
}

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::copyWithZone() const
{
    auto copy = makeOfSameClass(mPattern, mCount, mPhase);
    copy->_setPatternType(mType);
    return copy;
}

std::shared_ptr<VXRStrokePattern> VXRStrokePattern::makeOfSameClass(
    const float* pattern, int count, float phase) const
{
    return std::make_shared<VXRStrokePattern>(pattern, count, phase);
}

bool VXRStrokePattern::isOfReceiversClass(const Object& other) const
{
    return dynamic_cast<const VXRStrokePattern*>(&other) != nullptr;
}

} // namespace vxr
