#include <vxr/platform/graphics/path/PathStroker.h>

#include <vxr/platform/graphics/path/PathDasher.h>

#include <numbers>

namespace vxr {

namespace {

constexpr double pi = std::numbers::pi;

Vec2 rotated(Vec2 v, double cosine, double sine)
{
    return { v.x * cosine - v.y * sine, v.x * sine + v.y * cosine };
}

/// Angle of the longest step around a circle whose chord stays within the tolerance.
double turnWithin(double radius, double tolerance)
{
    constexpr double least = 2 * pi / 4096, most = pi / 3;
    if (tolerance >= radius)
        return most;
    return std::clamp(2 * std::acos(1 - tolerance / radius), least, most);
}

} // namespace

PathStroker::PathStroker(const LineStyle& style, double tolerance, Path& outline)
    : mStyle(style)
    , mRadius(style.width * 0.5)
    , mMostTurn(turnWithin(mRadius, tolerance))
    , mLeastCosine(std::cos(mMostTurn / 2) * (1 - 1e-9))
    , mNegligible(std::min(1e-3, tolerance / mRadius / 64))
    , mOutline(outline)
{
}

void PathStroker::stroke(const StrokeRun& run)
{
    const auto& vertices = run.vertices;
    const std::size_t count = vertices.size();
    if (vertices[0].out == Vec2())
        return dot(vertices[0].p);
    if (count == 1 && mStyle.cap == LineCap::Butt)
        return;

    mLeft.clear();
    mRight.clear();
    mDirection = vertices[0].out;
    addOffsets(vertices[0].p);
    for (std::size_t i = 0; i + 1 < count; ++i) {
        segment(vertices[i], vertices[i + 1]);
        if (i + 2 < count)
            corner(vertices[i + 1]);
    }
    if (!run.closed)
        return finishOpen(run);

    corner(vertices[count - 1]);
    segment(vertices[count - 1], vertices[0]);
    corner(vertices[0]);
    write(mLeft);
    std::reverse(mRight.begin(), mRight.end());
    write(mRight);
}

/// Without a direction there is none that a square could take: only a round cap draws.
void PathStroker::dot(Vec2 p)
{
    if (mStyle.cap != LineCap::Round)
        return;
    mLeft.clear();
    addArc(mLeft, p, { mRadius, 0 }, -2 * pi);
    write(mLeft);
}

/// Whether the line across the outline, moving from one vertex to the next, only moves forwards: its ends
/// at either vertex then span a quadrilateral that runs the right way round. Where the outline bends tighter
/// than the half width it doesn't. Nor may the tangents leave the chord by so much that the sides would lie
/// outside of the tolerance, as they do beside a control point that stands close to its end.
bool PathStroker::isSwept(const StrokeVertex& from, const StrokeVertex& to) const
{
    const Vec2 chord = to.p - from.p, before = leftNormal(from.out), after = leftNormal(to.in);
    const double least = mLeastCosine * chord.length();
    if (!(vxr::dot(chord, from.out) >= least && vxr::dot(chord, to.in) >= least))
        return false;
    const Vec2 spread = (after - before) * mRadius;
    for (const Vec2& edge : { chord + spread, chord - spread })
        if (!(cross(edge, before) > 0 && cross(edge, after) > 0))
            return false;
    return true;
}

void PathStroker::segment(const StrokeVertex& from, const StrokeVertex& to)
{
    const bool swept = isSwept(from, to);
    const Vec2 chord = unit(to.p - from.p);
    turn(from.p, swept ? from.out : chord, Turn::Round);
    mDirection = swept ? to.in : chord;
    addOffsets(to.p);
}

/// The true tangents meet in the style's join. Where a segment was drawn along its chord, the sliver between
/// chord and tangent is round. Within a curve the next segment makes the turn itself.
void PathStroker::corner(const StrokeVertex& vertex)
{
    if (!vertex.corner)
        return;
    turn(vertex.p, vertex.in, Turn::Round);
    turn(vertex.p, vertex.out, Turn::Styled);
}

void PathStroker::turn(Vec2 p, Vec2 direction, Turn kind)
{
    const double sine = cross(mDirection, direction), cosine = vxr::dot(mDirection, direction);
    if (cosine > 0 && std::abs(sine) <= mNegligible) {
        mDirection = direction;
        return;
    }
    const bool toLeft = sine > 0;
    auto& outer = toLeft ? mRight : mLeft;
    const Vec2 before = leftNormal(mDirection) * (toLeft ? -mRadius : mRadius);
    const Vec2 after = leftNormal(direction) * (toLeft ? -mRadius : mRadius);
    if (kind == Turn::Round || mStyle.join == LineJoin::Round) {
        const double angle = std::atan2(std::abs(sine), cosine);
        addArc(outer, p, before, toLeft ? angle : -angle);
    } else if (mStyle.join == LineJoin::Miter) {
        // The tip stands 1 / sin(half the angle between the lines) half widths away; the square of that
        // sine is (1 + cosine) / 2.
        const double limit = mStyle.miterLimit;
        if (limit > 0 && limit * limit * (1 + cosine) >= 2)
            outer.push_back(p + (before + after) * (1 / (1 + cosine)));
    }
    (toLeft ? mLeft : mRight).push_back(p);
    mDirection = direction;
    addOffsets(p);
}

void PathStroker::addOffsets(Vec2 p)
{
    const Vec2 normal = leftNormal(mDirection) * mRadius;
    mLeft.push_back(p + normal);
    mRight.push_back(p - normal);
}

/// The points between the arc's ends, without them. A very long outline gets coarse arcs, which bounds it.
void PathStroker::addArc(std::vector<Vec2>& points, Vec2 center, Vec2 from, double angle) const
{
    constexpr std::size_t longOutline = 1 << 23;
    const bool coarse = mOutline.elementCount() + points.size() > longOutline;
    const double most = coarse ? pi / 3 : mMostTurn;
    const int steps = static_cast<int>(std::ceil(std::abs(angle) / most));
    const double cosine = std::cos(angle / steps), sine = std::sin(angle / steps);
    for (int i = 1; i < steps; ++i)
        points.push_back(center + (from = rotated(from, cosine, sine)));
}

/// From the left side of an end to its right side, looking along `direction`, without these two points.
void PathStroker::addCap(std::vector<Vec2>& points, Vec2 p, Vec2 direction) const
{
    const Vec2 normal = leftNormal(direction) * mRadius;
    if (mStyle.cap == LineCap::Round) {
        addArc(points, p, normal, -pi);
    } else if (mStyle.cap == LineCap::Square) {
        points.push_back(p + normal + direction * mRadius);
        points.push_back(p - normal + direction * mRadius);
    }
}

void PathStroker::finishOpen(const StrokeRun& run)
{
    const StrokeVertex &first = run.vertices.front(), &last = run.vertices.back();
    turn(last.p, last.in, Turn::Round);
    addCap(mLeft, last.p, last.in);
    mLeft.insert(mLeft.end(), mRight.rbegin(), mRight.rend());
    addCap(mLeft, first.p, -first.out);
    write(mLeft);
}

void PathStroker::write(const std::vector<Vec2>& points)
{
    Point last = points[0].point();
    mOutline.moveTo(last);
    for (const Vec2& p : points) {
        const Point next = p.point();
        if (next == last)
            continue;
        mOutline.lineTo(next);
        last = next;
    }
    mOutline.close();
}

std::shared_ptr<Path> Path::strokedOutline(const LineStyle& style, float tolerance) const
{
    auto outline = path();
    if (!(style.width > 0) || !std::isfinite(style.width))
        return outline;

    // Half for the middle line, half for the arcs around it.
    constexpr double usualTolerance = 0.1;
    const double half = (tolerance > 0 ? tolerance : usualTolerance) * 0.5;
    PathStroker stroker(style, half, *outline);
    PathDasher dasher(style);
    const auto strokeRun = [&](const StrokeRun& run) { stroker.stroke(run); };
    StrokeRunBuilder builder(half, half / 8, [&](const StrokeRun& run) { dasher.dash(run, strokeRun); });
    walkFinite(*this, builder);
    builder.finish();
    return outline;
}

} // namespace vxr
