#pragma once

#include <vxr/platform/graphics/path/PathFlattener.h>

#include <functional>
#include <vector>

namespace vxr {

/// A vertex of a flattened outline that is to be stroked. The directions are unit vectors and those of the
/// outline itself: on a curve its tangents, not the chords of its flattening.
struct StrokeVertex {
    Vec2 p;
    Vec2 in; ///< direction of arrival; that of departure where an open run begins
    Vec2 out; ///< direction of departure; that of arrival where an open run ends
    bool corner = false; ///< takes the style's join; within a curve every turn is round
};

/// One connected piece of outline. A single vertex stands for a dot.
struct StrokeRun {
    std::vector<StrokeVertex> vertices;
    bool closed = false; ///< a segment leads from the last vertex back to the first
};

/// Turns a path into runs. Feed it through `walkFinite`, then call `finish`.
class StrokeRunBuilder {
public:
    /// Lines not longer than `leastStep` are left out, so that noise has no say in the joins. `emit` gets
    /// each run; a dot when all of a sub-path's lines and curves lie in one point. A bare move gives none.
    StrokeRunBuilder(double tolerance, double leastStep, std::function<void(const StrokeRun&)> emit);

    void move(Vec2 p);
    void line(Vec2 from, Vec2 to);
    void curve(const Cubic&);
    void close(Vec2 from, Vec2 start);
    void finish();

private:
    CurveFlattener mFlattener;
    double mLeastStep;
    std::function<void(const StrokeRun&)> mEmit;
    StrokeRun mRun;
    bool mDrawn = false; ///< the sub-path has more than its move
};

/// Direction at the start of a curve, from the first control point that differs; zero when none does.
Vec2 startDirection(const Cubic&);
Vec2 endDirection(const Cubic&);

/// `v` at length 1; zero when it has none.
Vec2 unit(Vec2 v);

} // namespace vxr
