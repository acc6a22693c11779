#include "Clips.h"

#include <vxr/geometry/PathAdditions.h>

#include <algorithm>

namespace app {

namespace {

using Areas = std::vector<svg::Clip::Area>;

bool overlap(const svg::Box& a, const svg::Box& b)
{
    return a.minX < b.maxX && b.minX < a.maxX && a.minY < b.maxY && b.minY < a.maxY;
}

bool anyOverlap(const Areas& areas)
{
    std::vector<svg::Box> boxes;
    for (const svg::Clip::Area& area : areas) {
        const svg::Box box = area.outline.bounds();
        if (std::any_of(
                boxes.begin(), boxes.end(), [&](const svg::Box& other) { return overlap(box, other); }))
            return true;
        boxes.push_back(box);
    }
    return false;
}

/// Whether the area is covered wherever the winding number isn't zero: all but even-odd areas of several
/// sub-paths.
bool hasPlainWinding(const svg::Clip::Area& area)
{
    const auto& verbs = area.outline.verbs();
    return area.rule == svg::FillRule::NonZero
        || std::count(verbs.begin(), verbs.end(), svg::Verb::Move) == 1;
}

/// Areas with the same direction are united by the nonzero rule, which keeps their curves.
std::shared_ptr<vxr::Path> joined(const Areas& areas, svg::FillRule rule)
{
    svg::Outline all;
    for (const svg::Clip::Area& area : areas)
        all.append(area.outline.signedArea() < 0 ? area.outline.reversed() : area.outline);
    return pathFrom(all, rule);
}

/// The union of two paths by their polygons. The library drops vertices closer than 0.7 units, so it is
/// given the paths enlarged.
std::shared_ptr<vxr::Path> combined(const vxr::Path& a, const vxr::Path& b, bool intersect)
{
    constexpr float enlargement = 64;
    const auto large = vxr::AffineTransform::makeScale(enlargement, enlargement);
    const auto first = a.transformedBy(large);
    const auto second = b.transformedBy(large);
    auto result
        = intersect ? vxr::intersectBezierPath(*first, *second) : vxr::uniteWithBezierPath(*first, *second);
    result->transformUsingAffineTransform(vxr::AffineTransform::makeScale(1 / enlargement, 1 / enlargement));
    result->setWindingRule(vxr::WindingRule::EvenOdd);
    return result;
}

std::shared_ptr<vxr::Path> pathOfArea(const svg::Clip::Area& area)
{
    std::shared_ptr<vxr::Path> path = pathFrom(area.outline, area.rule);
    if (area.within) {
        for (const std::shared_ptr<vxr::Path>& other : clipPathsFrom(*area.within))
            path = combined(*path, *other, true);
    }
    return path;
}

std::shared_ptr<vxr::Path> unionOf(const Areas& areas)
{
    if (areas.empty())
        return vxr::Path::path();
    const bool areWhole
        = std::none_of(areas.begin(), areas.end(), [](const auto& area) { return area.within; });
    if (areWhole && areas.size() > 1) {
        if (std::all_of(areas.begin(), areas.end(), hasPlainWinding))
            return joined(areas, svg::FillRule::NonZero);
        const bool sameRule = std::all_of(
            areas.begin(), areas.end(), [&](const auto& area) { return area.rule == areas.front().rule; });
        if (sameRule && !anyOverlap(areas))
            return joined(areas, areas.front().rule);
    }
    std::shared_ptr<vxr::Path> path = pathOfArea(areas.front());
    for (std::size_t i = 1; i < areas.size(); ++i)
        path = combined(*path, *pathOfArea(areas[i]), false);
    return path;
}

} // namespace

ClipPaths clipPathsFrom(const svg::Clip& clip)
{
    ClipPaths paths { unionOf(clip.areas) };
    if (clip.within) {
        const ClipPaths more = clipPathsFrom(*clip.within);
        paths.insert(paths.end(), more.begin(), more.end());
    }
    return paths;
}

} // namespace app
