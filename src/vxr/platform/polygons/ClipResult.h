#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <cstdlib>
#include <new>
#include <span>

namespace vxr {

/// An array of `count` records from malloc; none for 0.
template <class T> T* allocateArray(std::size_t count)
{
    if (count == 0)
        return nullptr;
    auto* array = static_cast<T*>(std::malloc(count * sizeof(T)));
    if (!array)
        throw std::bad_alloc();
    return array;
}

template <class T> void growArray(T*& array, std::size_t count)
{
    auto* grown = static_cast<T*>(std::realloc(array, count * sizeof(T)));
    if (!grown)
        throw std::bad_alloc();
    array = grown;
}

/// A polygon set that grows contour by contour, and is freed unless it is taken.
class ClipResult {
public:
    ClipResult() = default;
    ClipResult(const ClipResult&) = delete;
    ClipResult& operator=(const ClipResult&) = delete;
    ~ClipResult() { gpc_free_polygon(&mPolygon); }

    /// The vertices of a new contour, to be filled by the caller.
    std::span<gpc_vertex> add(std::size_t vertices, bool isHole)
    {
        const auto count = std::size_t(mPolygon.num_contours);
        if (count == mCapacity) {
            const std::size_t capacity = count * 2 + 4;
            growArray(mPolygon.hole, capacity);
            growArray(mPolygon.contour, capacity);
            mCapacity = capacity;
        }
        auto* array = allocateArray<gpc_vertex>(vertices);
        mPolygon.hole[count] = isHole;
        mPolygon.contour[count] = { int(vertices), array };
        mPolygon.num_contours = int(count + 1);
        return { array, vertices };
    }

    gpc_polygon take()
    {
        const gpc_polygon taken = mPolygon;
        mPolygon = {};
        mCapacity = 0;
        return taken;
    }

private:
    gpc_polygon mPolygon {};
    std::size_t mCapacity = 0;
};

} // namespace vxr
