#include <vxr/platform/graphics/path/PathVector.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace vxr {

Path::Path() = default;
Path::Path(const Path&) = default;
Path& Path::operator=(const Path&) = default;
Path::~Path() = default;

std::shared_ptr<Path> Path::path() { return std::make_shared<Path>(); }

std::shared_ptr<Path> Path::pathWithRect(const Rect& rect)
{
    auto made = path();
    made->appendRect(rect);
    return made;
}

std::shared_ptr<Path> Path::pathWithOvalInRect(const Rect& rect)
{
    auto made = path();
    made->appendOvalInRect(rect);
    return made;
}

std::shared_ptr<Path> Path::copy() const { return std::make_shared<Path>(*this); }

void Path::append(PathElementKind kind, std::initializer_list<Point> points)
{
    if (!hasCurrentPoint())
        removeAllPoints();
    if (mKinds.size() % indexStride == 0)
        mPointIndex.push_back(mPoints.size());
    mKinds.push_back(kind);
    mPoints.insert(mPoints.end(), points);
}

void Path::moveTo(Point p)
{
    mSubpathStart = mPoints.size();
    append(PathElementKind::MoveTo, { p });
}

void Path::lineTo(Point p)
{
    if (!hasCurrentPoint())
        moveTo(p);
    else
        append(PathElementKind::LineTo, { p });
}

void Path::curveTo(Point control1, Point control2, Point end)
{
    if (!hasCurrentPoint())
        moveTo(control1);
    append(PathElementKind::CurveTo, { control1, control2, end });
}

void Path::close()
{
    // A close before any point stands only until something else comes.
    if (isEmpty() || hasCurrentPoint())
        append(PathElementKind::Close, {});
}

void Path::appendRect(const Rect& rect)
{
    moveTo({ rect.minX(), rect.minY() });
    lineTo({ rect.maxX(), rect.minY() });
    lineTo({ rect.maxX(), rect.maxY() });
    lineTo({ rect.minX(), rect.maxY() });
    close();
}

void Path::appendOvalInRect(const Rect& rect)
{
    // Control arm of a quarter circle that meets the circle at its middle: 4 (sqrt 2 - 1) / 3 of the radius.
    constexpr double arm = 0.55228474983079340;
    const double rx = rect.size.width * 0.5, ry = rect.size.height * 0.5;
    const double cx = rect.origin.x + rx, cy = rect.origin.y + ry;
    const auto at = [&](double x, double y) {
        return Point { static_cast<float>(cx + x * rx), static_cast<float>(cy + y * ry) };
    };
    moveTo(at(1, 0));
    curveTo(at(1, arm), at(arm, 1), at(0, 1));
    curveTo(at(-arm, 1), at(-1, arm), at(-1, 0));
    curveTo(at(-1, -arm), at(-arm, -1), at(0, -1));
    curveTo(at(arm, -1), at(1, -arm), at(1, 0));
    close();
}

void Path::appendPolygon(std::span<const Point> vertices)
{
    if (vertices.empty())
        return;
    moveTo(vertices[0]);
    const std::size_t start = mPoints.size(), first = mKinds.size();
    mPoints.insert(mPoints.end(), vertices.begin() + 1, vertices.end());
    mKinds.resize(first + vertices.size() - 1, PathElementKind::LineTo);
    for (std::size_t i = (first + indexStride - 1) / indexStride * indexStride; i < mKinds.size();
         i += indexStride)
        mPointIndex.push_back(start + (i - first));
    close();
}

void Path::appendPath(const Path& other)
{
    if (!other.hasCurrentPoint())
        return;
    if (!hasCurrentPoint())
        removeAllPoints();
    const std::size_t start = mPoints.size();
    const std::size_t elements = other.mKinds.size(), points = other.mPoints.size();
    mSubpathStart = start + other.mSubpathStart;
    // By index, since `other` may be this path.
    mPoints.resize(start + points);
    std::copy_n(other.mPoints.begin(), points, mPoints.begin() + static_cast<std::ptrdiff_t>(start));
    mKinds.reserve(mKinds.size() + elements);
    std::size_t at = start;
    for (std::size_t i = 0; i < elements; ++i) {
        if (mKinds.size() % indexStride == 0)
            mPointIndex.push_back(at);
        const PathElementKind kind = other.mKinds[i];
        mKinds.push_back(kind);
        at += pathPointCount(kind);
    }
}

void Path::removeAllPoints()
{
    mKinds.clear();
    mPoints.clear();
    mPointIndex.clear();
    mSubpathStart = 0;
    mMeasured = 0;
}

void Path::reserve(std::size_t elements)
{
    mKinds.reserve(elements);
    mPoints.reserve(elements);
}

PathElement Path::elementAtIndex(std::size_t index) const
{
    std::size_t at = mPointIndex[index / indexStride];
    for (std::size_t i = index - index % indexStride; i < index; ++i)
        at += pathPointCount(mKinds[i]);
    PathElement element { mKinds[index], {} };
    std::copy_n(mPoints.begin() + static_cast<std::ptrdiff_t>(at), pathPointCount(element.kind),
        element.points.begin());
    return element;
}

Point Path::currentPoint() const
{
    if (!hasCurrentPoint())
        return {};
    return mKinds.back() == PathElementKind::Close ? mPoints[mSubpathStart] : mPoints.back();
}

Rect Path::bounds() const
{
    if (mMeasured == 0) {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        mLeast = { infinity, infinity };
        mMost = { -infinity, -infinity };
    }
    for (; mMeasured < mPoints.size(); ++mMeasured) {
        const Point p = mPoints[mMeasured];
        if (!std::isfinite(p.x) || !std::isfinite(p.y))
            continue;
        mLeast = { std::min(mLeast.x, p.x), std::min(mLeast.y, p.y) };
        mMost = { std::max(mMost.x, p.x), std::max(mMost.y, p.y) };
    }
    if (mLeast.x > mMost.x)
        return {};
    return { mLeast.x, mLeast.y, mMost.x - mLeast.x, mMost.y - mLeast.y };
}

void Path::transformUsingAffineTransform(const AffineTransform& transform)
{
    for (Point& p : mPoints)
        p = transform.map(p);
    mMeasured = 0;
}

std::shared_ptr<Path> Path::transformedBy(const AffineTransform& transform) const
{
    auto made = copy();
    made->transformUsingAffineTransform(transform);
    return made;
}

void Path::setLineDash(const float* lengths, int count, float phase)
{
    mStyle.dash.assign(lengths, lengths + std::max(count, 0));
    mStyle.dashPhase = phase;
}

std::string Path::description() const
{
    constexpr std::size_t shown = 64; // a log line, not a dump
    std::string text = "Path [";
    std::size_t at = 0;
    for (std::size_t i = 0; i < std::min(mKinds.size(), shown); ++i) {
        fmt::format_to(std::back_inserter(text), "{}{}", i ? " " : "", "MLCZ"[static_cast<int>(mKinds[i])]);
        for (std::size_t j = 0; j < pathPointCount(mKinds[i]); ++j, ++at)
            fmt::format_to(std::back_inserter(text), "{}{} {}", j ? " " : "", mPoints[at].x, mPoints[at].y);
    }
    return text + (mKinds.size() > shown ? " ...]" : "]");
}

} // namespace vxr
