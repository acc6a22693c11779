#include <vxr/geometry/PathAdditions.h>

#include <vxr/geometry/VXRPolygon.h>
#include <vxr/platform/graphics/path/PathStroker.h>

#include <algorithm>

// Areas as paths, by way of polygon sets.

namespace vxr {

namespace {

/// The contours of a clipped set touch each other at most, so that the even-odd rule tells its holes apart,
/// whichever way they run.
std::shared_ptr<Path> pathOfArea(const gpc_polygon* polygon)
{
    auto path = bezierFromPolygon(polygon);
    path->setWindingRule(WindingRule::EvenOdd);
    return path;
}

std::shared_ptr<Path> combined(gpc_op operation, const Path& path, const Path& other)
{
    const VXRPolygonOwner a(polygonFromBezier(path)), b(polygonFromBezier(other)), result(emptyPolygon());
    VXRClipPolygons(operation, *a, *b, *result);
    return pathOfArea(result.get());
}

/// Copies the segments of a path whose ends are finite. Where one is left out, the sub-path is open.
class FiniteCopy {
public:
    explicit FiniteCopy(Path& copy)
        : mCopy(copy)
    {
    }

    void moveTo(Point p)
    {
        mStart = p;
        mIsWhole = true;
        begin(p);
    }

    void lineTo(Point p)
    {
        if (mHasPoint && isFinite(p)) {
            mCopy.lineTo(p);
        } else {
            mIsWhole = false;
            begin(p);
        }
    }

    void curveTo(Point control1, Point control2, Point end)
    {
        if (mHasPoint && isFinite(control1) && isFinite(control2) && isFinite(end))
            mCopy.curveTo(control1, control2, end);
        else
            lineTo(end);
    }

    void close()
    {
        if (mIsWhole && mHasPoint)
            mCopy.close();
        else
            lineTo(mStart);
    }

private:
    void begin(Point p)
    {
        mHasPoint = isFinite(p);
        if (mHasPoint)
            mCopy.moveTo(p);
    }

    Path& mCopy;
    Point mStart;
    bool mHasPoint = false;
    bool mIsWhole = false;
};

/// Collects contours into a polygon set.
class PolygonContours final : public ContourSink {
public:
    explicit PolygonContours(gpc_polygon& polygon)
        : mPolygon(polygon)
    {
    }

    void addContour(std::span<const Vec2> contour) override
    {
        mVertices.clear();
        for (const Vec2& v : contour)
            mVertices.push_back({ v.x, v.y });
        const gpc_vertex_list list { static_cast<int>(mVertices.size()), mVertices.data() };
        gpc_add_contour(&mPolygon, &list, 0);
    }

private:
    gpc_polygon& mPolygon;
    std::vector<gpc_vertex> mVertices;
};

/// Dots where the open sub-paths begin.
Path startsOfOpenRuns(const Path& path)
{
    Path dots;
    for (const VXRSegmentRun& run : pathAsSegments(path)) {
        const VXRPathSegment& first = run.segments.front();
        if (run.closed || (first.start == first.out && first.start == first.end))
            continue;
        dots.moveTo(first.start);
        dots.close();
    }
    return dots;
}

/// Collects contours into a path.
class PathContours final : public ContourSink {
public:
    explicit PathContours(Path& path)
        : mPath(path)
    {
    }

    void addContour(std::span<const Vec2> contour) override
    {
        mPoints.clear();
        for (const Vec2& v : contour)
            mPoints.push_back(v.point());
        mPath.appendPolygon(mPoints);
    }

private:
    Path& mPath;
    std::vector<Point> mPoints;
};

/// What `outlineStroke` covers, under the nonzero rule.
void addStrokeContours(const Path& path, ContourSink& sink)
{
    Path finite;
    path.visit(FiniteCopy(finite));
    LineStyle style = path.lineStyle();
    style.cap = LineCap::Butt;
    style.dash.clear();
    finite.setFlatness(path.flatness());
    const float tolerance = VXRAreaFlatness(finite);
    PathStroker stroker;
    stroker.stroke(finite, style, tolerance, sink);
    if (style.join == LineJoin::Round) {
        // Round segments begin with a disc, and end square.
        style.cap = LineCap::Round;
        stroker.stroke(startsOfOpenRuns(finite), style, tolerance, sink);
    }
}

} // namespace

std::shared_ptr<Path> outlineStroke(const Path& path)
{
    if (path.isEmpty())
        return nullptr;
    const VXRPolygonOwner contours(emptyPolygon()), area(emptyPolygon());
    PolygonContours sink(*contours);
    addStrokeContours(path, sink);
    VXRUniteNonZero(*contours, *area);
    return pathOfArea(area.get());
}

bool outlineStrokeContainsPoint(const Path& path, Point point)
{
    Path contours;
    PathContours sink(contours);
    addStrokeContours(path, sink);
    return contours.containsPoint(point);
}

std::shared_ptr<Path> uniteWithBezierPath(const Path& path, const Path& other)
{
    return combined(GPC_UNION, path, other);
}

std::shared_ptr<Path> intersectBezierPath(const Path& path, const Path& other)
{
    return combined(GPC_INT, path, other);
}

std::shared_ptr<Path> excludeBezierPath(const Path& path, const Path& other)
{
    return combined(GPC_DIFF, path, other);
}

} // namespace vxr
