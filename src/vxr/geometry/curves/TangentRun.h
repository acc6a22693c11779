#pragma once

#include <vxr/platform/graphics/path/PathFlattener.h>

#include <functional>
#include <vector>

namespace vxr {

/// A vertex of a flattened outline. The directions are unit vectors and those of the outline itself: on a
/// curve its tangents, not the chords of its flattening.
struct TangentVertex {
    Vec2 p;
    Vec2 in; ///< direction of arrival; that of departure where an open run begins
    Vec2 out; ///< direction of departure; that of arrival where an open run ends
    bool corner = false; ///< not within a curve
};

/// One connected piece of outline. A single vertex stands for a dot.
struct TangentRun {
    std::vector<TangentVertex> vertices;
    bool closed = false; ///< a segment leads from the last vertex back to the first
};

/// Turns a path into runs. Feed it through `walkFinite`, then call `finish`.
class TangentRunBuilder {
public:
    /// Lines not longer than `leastStep` are left out, so that noise has no say in the joins. `emit` gets
    /// each run; a dot when all of a sub-path's lines and curves lie in one point. A bare move gives none.
    TangentRunBuilder(double tolerance, double leastStep, std::function<void(const TangentRun&)> emit);

    void move(Vec2 p);
    void line(Vec2 from, Vec2 to);
    void curve(const Cubic&);
    void close(Vec2 from, Vec2 start);
    void finish();

private:
    CurveFlattener mFlattener;
    double mLeastStep;
    std::function<void(const TangentRun&)> mEmit;
    TangentRun mRun;
    bool mDrawn = false; ///< the sub-path has more than its move
};

} // namespace vxr
