#pragma once

#include <vxr/platform/graphics/path/Path.h>

namespace vxr {

/// Tells `file`'s readers that a path had a curve where only lines are expected.
void logCurveInFlatPath(const char* file);

/// Calls `segment(start, end)` for every line of a flat path and for every closing line, until it answers
/// true; then the answer is true too. Curves are logged and skipped.
template <class Segment> bool walkFlatPath(const Path& flat, const char* file, Segment segment)
{
    Point current, start;
    const Point* point = flat.points().data();
    for (const PathElementKind kind : flat.kinds()) {
        switch (kind) {
        case PathElementKind::MoveTo:
            current = start = *point++;
            break;
        case PathElementKind::LineTo:
            if (segment(current, *point))
                return true;
            current = *point++;
            break;
        case PathElementKind::CurveTo:
            logCurveInFlatPath(file);
            point += 3;
            break;
        case PathElementKind::Close:
            if (segment(current, start))
                return true;
            current = start;
            break;
        }
    }
    return false;
}

} // namespace vxr
