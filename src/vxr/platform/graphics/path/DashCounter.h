#pragma once

#include <vxr/platform/graphics/path/DashPattern.h>
#include <vxr/platform/graphics/path/PathVector.h>

#include <vector>

namespace vxr {

/// Counts the dashes of each run. Once the 2^18 dashes allowed per path are used up, further runs are drawn
/// solid.
class DashCounter {
public:
    explicit DashCounter(const DashPattern& pattern)
        : mPattern(pattern)
    {
    }

    static constexpr double allowance = 1 << 18;
    std::vector<bool> isDashed; ///< one per run

    void begin(Vec2 p, Vec2 direction)
    {
        mPoint = p;
        mLength = 0;
        mIsDot = direction == Vec2();
    }
    void segment(Vec2 to, Vec2, Vec2, bool)
    {
        mLength += (to - mPoint).length();
        mPoint = to;
    }
    void end()
    {
        const double dashes = mIsDot ? 0 : mPattern.dashesIn(mLength);
        isDashed.push_back(dashes <= mLeft);
        if (isDashed.back())
            mLeft -= dashes;
    }
    void close() { end(); }

private:
    const DashPattern& mPattern;
    double mLeft = allowance;
    Vec2 mPoint;
    double mLength = 0;
    bool mIsDot = false;
};

} // namespace vxr
