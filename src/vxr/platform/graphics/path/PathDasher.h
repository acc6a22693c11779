#pragma once

#include <vxr/platform/graphics/path/DashPattern.h>
#include <vxr/platform/graphics/path/StrokeOutliner.h>

#include <cstddef>
#include <vector>

namespace vxr {

/// Cuts the runs of a stroke into dashes by their flattened length. The pattern starts anew with each run; on
/// a closed run the last dash goes on into the first when both are on.
class PathDasher {
public:
    /// `isDashed` says of each run in turn whether it is; empty for all. Solid runs pass through.
    PathDasher(DashPattern& pattern, const std::vector<bool>& isDashed, StrokeOutliner& outliner)
        : mPattern(pattern)
        , mIsDashed(isDashed)
        , mOutliner(outliner)
    {
    }

    // A run, as `StrokeSegmenter` gives it.
    void begin(Vec2 p, Vec2 direction);
    void segment(Vec2 to, Vec2 out, Vec2 in, bool corner);
    void end();
    void close();

private:
    void finishDash();
    bool endsInDot() const;
    void dotAtEnd();

    DashPattern& mPattern;
    const std::vector<bool>& mIsDashed;
    StrokeOutliner& mOutliner;
    std::size_t mRun = 0;

    bool mPassesThrough = false;
    Vec2 mStart, mStartDirection;
    Vec2 mPoint, mArrival;
    bool mHasSegment = false;
    bool mStartsOn = false; ///< the first dash begins where the run does
    bool mInFirst = false; ///< that dash is still being drawn
    bool mInDash = false;
};

} // namespace vxr
