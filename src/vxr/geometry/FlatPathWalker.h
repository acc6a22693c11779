#pragma once

#include <vxr/platform/graphics/path/Path.h>

namespace vxr {

/// Logs that a path contains a curve where only lines are expected. `file` is the source file's name.
void logCurveInFlatPath(const char* file);

/// Passes the segments of a flat path to `Segment(start, end)` until it returns true.
template <class Segment> class FlatPathWalker {
public:
    FlatPathWalker(const char* file, Segment& segment)
        : mFile(file)
        , mSegment(segment)
    {
    }

    bool found() const { return mFound; }

    void moveTo(Point p) { mCurrent = mStart = p; }
    void lineTo(Point p)
    {
        mFound = mFound || mSegment(mCurrent, p);
        mCurrent = p;
    }
    void curveTo(Point, Point, Point) { logCurveInFlatPath(mFile); }
    void close() { lineTo(mStart); }

private:
    const char* mFile;
    Segment& mSegment;
    Point mCurrent, mStart;
    bool mFound = false;
};

/// Calls `segment(start, end)` for every line and closing line of a flat path until it returns true, and
/// returns whether it did. Curves are logged and skipped.
template <class Segment> bool walkFlatPath(const Path& flat, const char* file, Segment segment)
{
    FlatPathWalker walker(file, segment);
    flat.visit(walker);
    return walker.found();
}

} // namespace vxr
