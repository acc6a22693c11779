#include <vxr/platform/graphics/path/PathVector.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace vxr {

Path::Path() = default;
Path::~Path() = default;

Path::Path(const Path& other)
    : Object(other)
    , mElements(other.mElements)
    , mSubpathStart(other.mSubpathStart)
    , mMeasured(other.mMeasured)
    , mLeast(other.mLeast)
    , mMost(other.mMost)
{
    copyStyle(other);
}

Path& Path::operator=(const Path& other)
{
    if (this == &other)
        return *this;
    mElements = other.mElements;
    mSubpathStart = other.mSubpathStart;
    mMeasured = other.mMeasured;
    mLeast = other.mLeast;
    mMost = other.mMost;
    copyStyle(other);
    return *this;
}

void Path::copyStyle(const Path& other)
{
    mStyle = other.mStyle ? std::make_unique<LineStyle>(*other.mStyle) : nullptr;
    mFlatness = other.mFlatness;
    mWindingRule = other.mWindingRule;
}

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
    mElements.append(kind, points);
}

void Path::moveTo(Point p)
{
    mSubpathStart = static_cast<std::uint32_t>(points().size());
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
    mElements.append(PathElementKind::LineTo, vertices.subspan(1));
    close();
}

void Path::appendPath(const Path& other)
{
    if (!other.hasCurrentPoint())
        return;
    if (!hasCurrentPoint())
        removeAllPoints();
    const auto start = static_cast<std::uint32_t>(points().size()) + other.mSubpathStart;
    mElements.append(other.mElements);
    mSubpathStart = start;
}

void Path::removeAllPoints()
{
    mElements.clear();
    mSubpathStart = 0;
    mMeasured = 0;
}

void Path::reserve(std::size_t elements) { mElements.reserve(elements, elements); }

PathElement Path::elementAtIndex(std::size_t index) const
{
    PathElement element { kinds()[index], {} };
    std::copy_n(points().data() + mElements.pointsBefore(index), pathPointCount(element.kind),
        element.points.begin());
    return element;
}

Point Path::currentPoint() const
{
    if (!hasCurrentPoint())
        return {};
    return kinds().back() == PathElementKind::Close ? points()[mSubpathStart] : points().back();
}

Rect Path::bounds() const
{
    if (mMeasured == 0) {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        mLeast = { infinity, infinity };
        mMost = { -infinity, -infinity };
    }
    const std::span<const Point> all = points();
    for (; mMeasured < all.size(); ++mMeasured) {
        const Point p = all[mMeasured];
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
    for (Point& p : mElements.points())
        p = transform.map(p);
    mMeasured = 0;
}

std::shared_ptr<Path> Path::transformedBy(const AffineTransform& transform) const
{
    auto made = copy();
    made->transformUsingAffineTransform(transform);
    return made;
}

const LineStyle& Path::lineStyle() const
{
    static const LineStyle plain;
    return mStyle ? *mStyle : plain;
}

LineStyle& Path::ownStyle()
{
    if (!mStyle)
        mStyle = std::make_unique<LineStyle>();
    return *mStyle;
}

void Path::setLineDash(const float* lengths, int count, float phase)
{
    LineStyle& style = ownStyle();
    style.dash.assign(lengths, lengths + std::max(count, 0));
    style.dashPhase = phase;
}

std::string Path::description() const
{
    constexpr std::size_t shown = 64; // a log line, not a dump
    std::string text = "Path [";
    std::size_t at = 0;
    for (std::size_t i = 0; i < std::min(kinds().size(), shown); ++i) {
        fmt::format_to(std::back_inserter(text), "{}{}", i ? " " : "", "MLCZ"[static_cast<int>(kinds()[i])]);
        for (std::size_t j = 0; j < pathPointCount(kinds()[i]); ++j, ++at)
            fmt::format_to(std::back_inserter(text), "{}{} {}", j ? " " : "", points()[at].x, points()[at].y);
    }
    return text + (kinds().size() > shown ? " ...]" : "]");
}

} // namespace vxr
