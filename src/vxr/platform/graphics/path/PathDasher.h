#pragma once

#include <vxr/platform/graphics/path/DashPattern.h>
#include <vxr/platform/graphics/path/StrokeOutliner.h>

#include <cstddef>
#include <vector>

namespace vxr {

/// Cuts the runs of a stroke into dashes by their flattened length. The pattern restarts with each run. On a
/// closed run the last dash is joined to the first if both are on.
class PathDasher {
public:
    /// For each run, whether it is dashed; empty means all are. Solid runs pass through.
    PathDasher(DashPattern& pattern, const std::vector<bool>& isDashed, StrokeOutliner& outliner)
        : mPattern(pattern)
        , mIsDashed(isDashed)
        , mOutliner(outliner)
    {
    }

    // A run, in the form produced by `StrokeSegmenter`.
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
    bool mStartsOn = false; ///< the first dash begins at the start of the run
    bool mInFirst = false; ///< the first dash is not finished yet
    bool mInDash = false;
};

} // namespace vxr
