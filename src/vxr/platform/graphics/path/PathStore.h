#pragma once

#include <vxr/platform/base/Export.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>

namespace vxr {

enum class PathElementKind : std::uint8_t { MoveTo = 0, LineTo = 1, CurveTo = 2, Close = 3 };

/// How many points an element has.
constexpr std::size_t pathPointCount(PathElementKind kind)
{
    return kind == PathElementKind::CurveTo ? 3 : kind == PathElementKind::Close ? 0 : 1;
}

/// The elements of a path in one block of memory: their points, their kinds, and where the points of every
/// 16th element start. A page has as many of them as it has shapes. A copy takes no more than it holds.
class VXR_EXPORT PathStore {
public:
    PathStore() = default;
    PathStore(const PathStore&);
    PathStore& operator=(const PathStore&);
    ~PathStore() = default;

    std::span<const PathElementKind> kinds() const { return { kindsAt(), mElementCount }; }
    std::span<const Point> points() const { return { pointsAt(), mPointCount }; }
    std::span<Point> points() { return { pointsAt(), mPointCount }; }
    /// How many points lie before those of an element. In constant time.
    std::size_t pointsBefore(std::size_t element) const;

    // Elements and points beyond 2^32 throw `std::length_error`.
    void append(PathElementKind, std::initializer_list<Point>);
    void append(
        PathElementKind, std::span<const Point>); ///< one such element for each point; not of this store
    void append(const PathStore&); ///< `*this` is allowed
    void reserve(std::size_t elements, std::size_t points);
    void clear(); ///< keeps the memory
    void fit(); ///< keeps no more memory than is needed

private:
    static constexpr std::size_t indexStride = 16;

    Point* pointsAt() const { return reinterpret_cast<Point*>(mMemory.get()); }
    std::uint32_t* indexAt() const { return reinterpret_cast<std::uint32_t*>(pointsAt() + mPointCapacity); }
    PathElementKind* kindsAt() const
    {
        return reinterpret_cast<PathElementKind*>(indexAt() + mElementCapacity / indexStride);
    }
    void makeRoom(std::size_t elements, std::size_t points);
    void setCapacity(std::size_t elements, std::size_t points);
    void addElement(PathElementKind, std::size_t pointsBefore);

    std::unique_ptr<std::byte[]> mMemory;
    std::uint32_t mPointCount = 0, mElementCount = 0;
    std::uint32_t mPointCapacity = 0, mElementCapacity = 0;
};

} // namespace vxr
