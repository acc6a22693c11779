#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <span>
#include <utility>
#include <vector>

namespace vxr::testing {

/// A polygon set that owns its contents, for tests that write contours as lists of points.
class TestPolygon {
public:
    using Contour = std::vector<gpc_vertex>;

    TestPolygon() = default;
    TestPolygon(std::initializer_list<Contour> contours)
        : TestPolygon(std::vector(contours))
    {
    }
    explicit TestPolygon(const std::vector<Contour>& contours)
    {
        for (const Contour& c : contours)
            add(c);
    }
    TestPolygon(TestPolygon&& other) noexcept
        : mSet(std::exchange(other.mSet, {}))
    {
    }
    TestPolygon& operator=(TestPolygon&& other) noexcept
    {
        std::swap(mSet, other.mSet);
        return *this;
    }
    ~TestPolygon() { gpc_free_polygon(&mSet); }

    void add(const Contour& contour)
    {
        const gpc_vertex_list list { int(contour.size()), const_cast<gpc_vertex*>(contour.data()) };
        gpc_add_contour(&mSet, &list, 0);
    }

    gpc_polygon& set() { return mSet; }
    const gpc_polygon& set() const { return mSet; }
    int count() const { return mSet.num_contours; }
    std::span<const gpc_vertex> contour(int i) const
    {
        return { mSet.contour[i].vertex, std::size_t(mSet.contour[i].num_vertices) };
    }

private:
    gpc_polygon mSet {};
};

inline TestPolygon::Contour square(double x, double y, double side)
{
    return { { x, y }, { x + side, y }, { x + side, y + side }, { x, y + side } };
}

inline TestPolygon clip(gpc_op operation, const TestPolygon& subject, const TestPolygon& other)
{
    TestPolygon result;
    gpc_polygon_clip(operation, &subject.set(), &other.set(), &result.set());
    return result;
}

} // namespace vxr::testing
