#include <vxr/platform/graphics/path/PathStroker.h>

#include <vxr/platform/graphics/path/DashCounter.h>
#include <vxr/platform/graphics/path/PathDasher.h>
#include <vxr/platform/graphics/path/StrokeSegmenter.h>

namespace vxr {

namespace {

/// Writes contours as closed sub-paths.
class PathContours final : public ContourSink {
public:
    explicit PathContours(Path& path)
        : mPath(path)
    {
    }

    void addContour(std::span<const Vec2> vertices) override
    {
        mPoints.clear();
        for (const Vec2& v : vertices) {
            const Point p = v.point();
            if (mPoints.empty() || !(p == mPoints.back()))
                mPoints.push_back(p);
        }
        mPath.appendPolygon(mPoints);
    }

private:
    Path& mPath;
    std::vector<Point> mPoints;
};

/// At least the length of all runs, and their number.
struct Extent {
    double length = 0;
    std::size_t runs = 0;

    void move(Vec2) { ++runs; }
    void line(Vec2 from, Vec2 to) { length += (to - from).length(); }
    void curve(const Cubic& c)
    {
        line(c.start, c.control1);
        line(c.control1, c.control2);
        line(c.control2, c.end);
    }
    void close(Vec2 from, Vec2 start) { line(from, start); }
};

} // namespace

void PathStroker::stroke(const Path& path, const LineStyle& style, double tolerance, ContourSink& sink)
{
    if (!(style.width > 0) || !std::isfinite(style.width))
        return;
    // Half for the middle line, half for the arcs around it.
    constexpr double usualTolerance = 0.1;
    const double half = (tolerance > 0 ? tolerance : usualTolerance) * 0.5;
    const auto walk = [&](auto& runs) {
        StrokeSegmenter segmenter(half, half / 8, runs);
        walkFinite(path, segmenter);
        segmenter.finish();
    };
    mOutliner.reset(style, half, sink);
    mPattern.assign(style);
    if (mPattern.isSolid())
        return walk(mOutliner);

    Extent extent;
    walkFinite(path, extent);
    DashCounter counter(mPattern);
    const double dashes
        = mPattern.dashesIn(extent.length) + mPattern.dashesIn(0) * static_cast<double>(extent.runs);
    if (!(dashes <= DashCounter::allowance))
        walk(counter);
    PathDasher dasher(mPattern, counter.isDashed, mOutliner);
    walk(dasher);
}

std::shared_ptr<Path> Path::strokedOutline(const LineStyle& style, float tolerance) const
{
    auto outline = path();
    PathContours contours(*outline);
    PathStroker().stroke(*this, style, tolerance, contours);
    return outline;
}

} // namespace vxr
