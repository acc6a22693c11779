#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>

#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/geometry/curves/PathCorners.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

#include <algorithm>

namespace vxr {

namespace {

/// How far from a corner its rounding begins, on both sides.
double cutAt(const CorneredSubPath& sub, std::size_t i, double radius)
{
    if (!sub.turnsAfter(i))
        return 0;
    const Cubic &before = sub.segments[i], &after = sub.segments[(i + 1) % sub.segments.size()];
    // A circle that touches both sides does so at radius times the tangent of half the turn.
    const double cosine = std::clamp(dot(directionAt(before, 1), directionAt(after, 0)), -1.0, 1.0);
    const double tangent = std::sqrt((1 - cosine) / std::max(1 + cosine, 1e-9));
    return std::min({ radius * tangent, 2 * radius, lengthOf(before) * 0.5, lengthOf(after) * 0.5 });
}

/// From `start` along `leaving` to `end` along `arriving`: an arc of a circle where the sides are straight.
Cubic rounding(Vec2 start, Vec2 leaving, Vec2 end, Vec2 arriving, double cut)
{
    const double turn = std::acos(std::clamp(dot(leaving, arriving), -1.0, 1.0));
    const double tangent = std::tan(turn / 2);
    const double arm = tangent > 1e-9 ? cut * (4.0 / 3) * std::tan(turn / 4) / tangent : cut * 2 / 3;
    return { start, start + leaving * arm, end - arriving * arm, end };
}

} // namespace

VXRPaintedPath VXRRoundedPathManipulation::manipulatedPath(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double radius = finiteOrZero(mRadius) * finiteOrZero(setting.lineWidth);
    if (!(radius > 0))
        return painted;
    auto result = painted.path->copy();
    result->removeAllPoints();
    for (const CorneredSubPath& sub : corneredSubPaths(*painted.path)) {
        const std::size_t count = sub.segments.size();
        std::vector<double> cuts(count);
        for (std::size_t i = 0; i < count; ++i)
            cuts[i] = cutAt(sub, i, radius);
        std::vector<Cubic> outline;
        for (std::size_t i = 0; i < count; ++i) {
            const Cubic& whole = sub.segments[i];
            const double before = cuts[(i + count - 1) % count], after = cuts[i];
            const double from = before > 0 ? parameterAtLength(whole, before) : 0,
                         to = after > 0 ? parameterAtLength(whole, lengthOf(whole) - after) : 1;
            const Cubic part = partBetween(whole, from, to);
            if (!outline.empty() && before > 0)
                outline.push_back(rounding(outline.back().end, directionAt(outline.back(), 1), part.start,
                    directionAt(part, 0), before));
            outline.push_back(part);
        }
        if (cuts[count - 1] > 0)
            outline.push_back(rounding(outline.back().end, directionAt(outline.back(), 1),
                outline.front().start, directionAt(outline.front(), 0), cuts[count - 1]));
        appendCurves(*result, outline, sub.closed, 0);
    }
    return { result, painted.isArea, painted.widthFactor };
}

float VXRRoundedPathManipulation::reachForLineWidth(float lineWidth) const
{
    return static_cast<float>(std::max(finiteOrZero(mRadius) * finiteOrZero(lineWidth), 0.0));
}

std::shared_ptr<VXRPathManipulation> VXRRoundedPathManipulation::copyWithZone() const
{
    return std::make_shared<VXRRoundedPathManipulation>(*this);
}

bool VXRRoundedPathManipulation::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXRRoundedPathManipulation*>(&other);
    return same && same->mRadius == mRadius;
}

} // namespace vxr
