#pragma once

#include <vxr/platform/graphics/path/PathStrokeRun.h>

namespace vxr {

/// Cuts runs into dashes by their flattened length. The pattern starts anew with each run.
///
/// An odd count of lengths is gone through twice, so that on and off change places. A pattern with a negative
/// length, with one that is no finite number, or with nothing but zeros is solid. So is a run that would fall
/// into more dashes than the rest of the path's allowance of 2^18.
class PathDasher {
public:
    explicit PathDasher(const LineStyle&);

    bool isSolid() const { return mLengths.empty(); }
    /// Calls `emit` with each dash. On a closed run the last dash goes on into the first when both are on.
    void dash(const StrokeRun& run, const std::function<void(const StrokeRun&)>& emit);

private:
    /// One segment of the run being cut.
    struct Segment {
        const StrokeVertex& from;
        const StrokeVertex& to;
        double length;

        StrokeVertex at(double distance) const;
    };

    void restart();
    void nextLength();
    void cut(const Segment&, const std::function<void(const StrokeRun&)>& emit);
    void finishDash(const std::function<void(const StrokeRun&)>& emit);
    bool allows(const StrokeRun&);

    std::vector<double> mLengths;
    double mPhase = 0; ///< within one turn of the pattern
    double mTotal = 0;
    double mAllowance = 1 << 18;

    // Where the pattern stands.
    std::size_t mIndex = 0;
    double mRemaining = 0;
    bool mOn = true;

    StrokeRun mDash; ///< being built
    StrokeRun mFirst; ///< of a closed run that starts with a dash: kept until the last one is known
    bool mHoldsFirst = false;
};

} // namespace vxr
