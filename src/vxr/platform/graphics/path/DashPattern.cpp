#include <vxr/platform/graphics/path/DashPattern.h>

#include <cmath>

namespace vxr {

void DashPattern::assign(const LineStyle& style)
{
    mLengths.clear();
    mPhase = 0;
    double total = 0;
    for (float length : style.dash) {
        if (!(length >= 0) || !std::isfinite(length))
            return;
        total += length;
    }
    if (!(total > 0))
        return;
    mLengths.assign(style.dash.begin(), style.dash.end());
    if (mLengths.size() % 2 != 0) {
        mLengths.insert(mLengths.end(), style.dash.begin(), style.dash.end());
        total *= 2;
    }
    mTotal = total;
    if (std::isfinite(style.dashPhase)) {
        mPhase = std::fmod(style.dashPhase, total);
        if (mPhase < 0)
            mPhase += total;
    }
}

void DashPattern::restart()
{
    mIndex = 0;
    mOn = true;
    mRemaining = mLengths[0];
    double phase = mPhase;
    while (phase > 0 && phase >= mRemaining) {
        phase -= mRemaining;
        next();
    }
    mRemaining -= phase;
}

void DashPattern::next()
{
    mIndex = (mIndex + 1) % mLengths.size();
    mRemaining = mLengths[mIndex];
    mOn = !mOn;
}

} // namespace vxr
