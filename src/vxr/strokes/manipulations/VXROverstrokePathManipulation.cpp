#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>

#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/geometry/curves/PathCorners.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

#include <algorithm>

namespace vxr {

VXRPaintedPath VXROverstrokePathManipulation::manipulatedPath(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double most = finiteOrZero(mOvershoot) * finiteOrZero(setting.lineWidth);
    if (painted.isArea || !(most > 0))
        return painted;
    auto result = painted.path->copy();
    result->removeAllPoints();
    const DrawnNoise noise(mSeed);
    std::uint64_t corner = 0;
    const auto length = [&] { return most * (0.5 + 0.5 * noise.at(corner++)); };
    for (CorneredSubPath& sub : corneredSubPaths(*painted.path)) {
        const std::size_t count = sub.segments.size();
        // A closed sub-path is run through from a corner to the same corner; without one it stays closed.
        std::size_t first = 0;
        if (sub.closed) {
            while (first < count && !sub.turnsAfter((first + count - 1) % count))
                ++first;
            if (first == count) {
                appendCurves(*result, sub.segments, true);
                continue;
            }
        }
        std::vector<Cubic> line;
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t i = (first + k) % count;
            const Cubic& segment = sub.segments[i];
            const bool begins = line.empty() && (sub.closed || k > 0), ends = sub.turnsAfter(i);
            if (begins)
                line.push_back(
                    cubicFromLine(segment.start - directionAt(segment, 0) * length(), segment.start));
            line.push_back(segment);
            if (!ends && k + 1 < count)
                continue;
            if (ends)
                line.push_back(cubicFromLine(segment.end, segment.end + directionAt(segment, 1) * length()));
            appendCurves(*result, line, false);
            line.clear();
        }
    }
    return { result, false, painted.widthFactor };
}

float VXROverstrokePathManipulation::reachForLineWidth(float lineWidth) const
{
    return static_cast<float>(std::max(finiteOrZero(mOvershoot) * finiteOrZero(lineWidth), 0.0));
}

std::shared_ptr<VXRPathManipulation> VXROverstrokePathManipulation::copyWithZone() const
{
    return std::make_shared<VXROverstrokePathManipulation>(*this);
}

bool VXROverstrokePathManipulation::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXROverstrokePathManipulation*>(&other);
    return same && same->mOvershoot == mOvershoot && same->mSeed == mSeed;
}

} // namespace vxr
