#include <vxr/geometry/curves/PathCorners.h>

namespace vxr {

namespace {

struct Collector {
    std::vector<CorneredSubPath> all;

    void move(Vec2) { all.emplace_back(); }
    void line(Vec2 from, Vec2 to)
    {
        if (!(from == to))
            all.back().segments.push_back(cubicFromLine(from, to));
    }
    void curve(const Cubic& c)
    {
        if (directionAt(c, 0) != Vec2())
            all.back().segments.push_back(c);
    }
    void close(Vec2 from, Vec2 start)
    {
        line(from, start);
        all.back().closed = true;
    }
};

} // namespace

bool CorneredSubPath::turnsAfter(std::size_t i) const
{
    constexpr double leastCosine = 0.995;
    if (i + 1 == segments.size() && !closed)
        return false;
    const Cubic& next = segments[i + 1 == segments.size() ? 0 : i + 1];
    return dot(directionAt(segments[i], 1), directionAt(next, 0)) < leastCosine;
}

std::vector<CorneredSubPath> corneredSubPaths(const Path& path)
{
    Collector collector;
    walkFinite(path, collector);
    std::erase_if(collector.all, [](const CorneredSubPath& sub) { return sub.segments.empty(); });
    return std::move(collector.all);
}

} // namespace vxr
