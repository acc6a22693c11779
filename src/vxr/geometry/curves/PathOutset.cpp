#include <vxr/geometry/curves/PathOutset.h>

#include <vxr/geometry/curves/CubicIntersections.h>
#include <vxr/geometry/curves/CubicOffset.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/geometry/curves/PathCorners.h>

namespace vxr {

namespace {

/// Twice the area, by the polygon through some points of the curves.
double signedArea(const std::vector<Cubic>& curves)
{
    double area = 0;
    for (const Cubic& c : curves) {
        Vec2 from = c.start - curves.front().start;
        for (const double t : { 0.25, 0.5, 0.75, 1.0 }) {
            const Vec2 to = pointAt(c, t) - curves.front().start;
            area += cross(from, to);
            from = to;
        }
    }
    return area;
}

/// Makes one line of lines that go on straight, around the end of a closed outline too.
void mergeLines(std::vector<Cubic>& curves, bool closed)
{
    const auto goesOn = [](const Cubic& a, const Cubic& b) {
        return isStraight(a, 0) && isStraight(b, 0) && dot(directionAt(a, 1), directionAt(b, 0)) > 1 - 1e-12;
    };
    std::vector<Cubic> merged;
    for (const Cubic& c : curves) {
        if (!merged.empty() && goesOn(merged.back(), c))
            merged.back() = cubicFromLine(merged.back().start, c.end);
        else
            merged.push_back(c);
    }
    if (closed && merged.size() > 2 && goesOn(merged.back(), merged.front())) {
        merged.front() = cubicFromLine(merged.back().start, merged.front().end);
        merged.pop_back();
    }
    curves = std::move(merged);
}

class OutsetBuilder {
public:
    OutsetBuilder(double distance, double tolerance)
        : mDistance(distance)
        , mTolerance(tolerance)
    {
    }

    std::vector<Cubic> build(const CorneredSubPath& sub)
    {
        mOutline.clear();
        const auto& segments = sub.segments;
        for (std::size_t i = 0; i < segments.size(); ++i) {
            std::vector<Cubic> pieces = offsetCurves(segments[i], mDistance, mTolerance);
            if (i > 0)
                join(segments[i - 1], segments[i], pieces);
            mOutline.insert(mOutline.end(), pieces.begin(), pieces.end());
        }
        if (sub.closed && !mOutline.empty())
            joinEnds(segments.back(), segments.front());
        return std::move(mOutline);
    }

private:
    /// Ends the outline and starts `next` where the sides of a closing corner meet. False if they don't.
    bool trim(std::vector<Cubic>& before, std::vector<Cubic>& next) const
    {
        constexpr std::size_t reach = 6;
        for (std::size_t sum = 0; sum < 2 * reach; ++sum) {
            for (std::size_t i = 0; i <= sum; ++i) {
                const std::size_t k = sum - i;
                if (i >= std::min(reach, before.size()) || k >= std::min(reach, next.size()))
                    continue;
                const std::size_t at = before.size() - 1 - i;
                const auto found = crossingsOf(before[at], next[k]).crossings;
                if (found.empty())
                    continue;
                const auto [t, u] = found.back();
                before.resize(at + 1);
                before.back() = partBetween(before.back(), 0, t);
                next.erase(next.begin(), next.begin() + static_cast<std::ptrdiff_t>(k));
                next.front() = partBetween(next.front(), u, 1);
                next.front().start = before.back().end;
                return true;
            }
        }
        return false;
    }

    void addJoin(std::vector<Cubic>& to, Vec2 corner, Vec2 in, Vec2 out, Vec2 target) const
    {
        const Vec2 from = to.back().end;
        if ((target - from).length() <= mTolerance * 0.1) {
            to.back().end = target;
            return;
        }
        const bool opens = cross(in, out) * mDistance < 0 || dot(in, out) < -0.999;
        if (!opens) {
            to.push_back(cubicFromLine(from, target));
            return;
        }
        const double cosine = dot(in, out);
        // The tip stands 1 / cos(half the turn) distances away.
        if (std::sqrt((1 + cosine) / 2) * mostOutsetReach >= 1) {
            const Vec2 tip = corner + (leftNormal(in) + leftNormal(out)) * (mDistance / (1 + cosine));
            to.push_back(cubicFromLine(from, tip));
            to.push_back(cubicFromLine(tip, target));
            return;
        }
        const double side = mDistance < 0 ? -1 : 1;
        for (const Cubic& arc :
            arcBetween(corner, std::abs(mDistance), leftNormal(in) * side, leftNormal(out) * side))
            to.push_back(arc);
    }

    void join(const Cubic& before, const Cubic& after, std::vector<Cubic>& pieces)
    {
        if (mOutline.empty() || pieces.empty())
            return;
        const Vec2 in = directionAt(before, 1), out = directionAt(after, 0);
        const bool closes = cross(in, out) * mDistance > 0;
        if (closes && trim(mOutline, pieces))
            return;
        addJoin(mOutline, before.end, in, out, pieces.front().start);
    }

    void joinEnds(const Cubic& before, const Cubic& after)
    {
        const Vec2 in = directionAt(before, 1), out = directionAt(after, 0);
        if (cross(in, out) * mDistance > 0 && mOutline.size() > 1) {
            // Two halves, so that the same outline isn't cut at both ends at once.
            const auto middle = mOutline.begin() + static_cast<std::ptrdiff_t>(mOutline.size() / 2);
            std::vector<Cubic> first(mOutline.begin(), middle), second(middle, mOutline.end());
            const bool met = trim(second, first);
            first.insert(first.end(), second.begin(), second.end());
            mOutline = std::move(first);
            if (met)
                return;
        }
        addJoin(mOutline, before.end, in, out, mOutline.front().start);
    }

    double mDistance, mTolerance;
    std::vector<Cubic> mOutline;
};

} // namespace

std::shared_ptr<Path> outsetPath(const Path& path, double distance, double tolerance)
{
    const auto subPaths = corneredSubPaths(path);
    auto result = path.copy();
    result->removeAllPoints();
    if (!std::isfinite(distance))
        return result;

    double largest = 0;
    for (const CorneredSubPath& sub : subPaths)
        if (sub.closed)
            if (const double area = signedArea(sub.segments); std::abs(area) > std::abs(largest))
                largest = area;
    // To the right of what runs counter-clockwise, y up, is outside.
    const double outwards = largest > 0 ? -distance : distance;
    for (const CorneredSubPath& sub : subPaths) {
        auto outline = OutsetBuilder(sub.closed ? outwards : distance, tolerance).build(sub);
        if (outline.empty() || (sub.closed && signedArea(outline) * signedArea(sub.segments) <= 0))
            continue;
        mergeLines(outline, sub.closed);
        appendCurves(*result, outline, sub.closed, 0);
    }
    return result;
}

} // namespace vxr
