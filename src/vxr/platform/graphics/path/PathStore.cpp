#include <vxr/platform/graphics/path/PathStore.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vxr {

PathStore::PathStore(const PathStore& other)
{
    reserve(other.mElementCount, other.mPointCount);
    append(other);
}

PathStore& PathStore::operator=(const PathStore& other)
{
    if (this == &other)
        return *this;
    clear();
    append(other);
    return *this;
}

std::size_t PathStore::pointsBefore(std::size_t element) const
{
    const std::size_t stride = element / indexStride;
    std::size_t count = stride ? indexAt()[stride - 1] : 0;
    for (std::size_t i = stride * indexStride; i < element; ++i)
        count += pathPointCount(kindsAt()[i]);
    return count;
}

/// Where there is room.
void PathStore::addElement(PathElementKind kind, std::size_t pointsBefore)
{
    if (mElementCount && mElementCount % indexStride == 0)
        indexAt()[mElementCount / indexStride - 1] = static_cast<std::uint32_t>(pointsBefore);
    kindsAt()[mElementCount++] = kind;
}

void PathStore::append(PathElementKind kind, std::initializer_list<Point> points)
{
    makeRoom(1, points.size());
    addElement(kind, mPointCount);
    std::copy(points.begin(), points.end(), pointsAt() + mPointCount);
    mPointCount += static_cast<std::uint32_t>(points.size());
}

void PathStore::append(PathElementKind kind, std::span<const Point> points)
{
    makeRoom(points.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        addElement(kind, mPointCount + i);
    std::copy(points.begin(), points.end(), pointsAt() + mPointCount);
    mPointCount += static_cast<std::uint32_t>(points.size());
}

void PathStore::append(const PathStore& other)
{
    // Read before, since it may be this one.
    const std::size_t elements = other.mElementCount, points = other.mPointCount;
    makeRoom(elements, points);
    if (!mElementCount && elements) {
        std::copy_n(other.pointsAt(), points, pointsAt());
        std::copy_n(other.indexAt(), (elements - 1) / indexStride, indexAt());
        std::copy_n(other.kindsAt(), elements, kindsAt());
        mPointCount = other.mPointCount;
        mElementCount = other.mElementCount;
        return;
    }
    std::copy_n(other.pointsAt(), points, pointsAt() + mPointCount);
    std::size_t before = mPointCount;
    for (std::size_t i = 0; i < elements; ++i) {
        const PathElementKind kind = other.kindsAt()[i];
        addElement(kind, before);
        before += pathPointCount(kind);
    }
    mPointCount = static_cast<std::uint32_t>(before);
}

void PathStore::clear() { mPointCount = mElementCount = 0; }

void PathStore::fit()
{
    if (mPointCapacity != mPointCount || mElementCapacity != mElementCount)
        setCapacity(mElementCount, mPointCount);
}

void PathStore::reserve(std::size_t elements, std::size_t points)
{
    if (elements > mElementCapacity || points > mPointCapacity)
        setCapacity(
            std::max<std::size_t>(elements, mElementCapacity), std::max<std::size_t>(points, mPointCapacity));
}

/// For so many more. What grows doubles.
void PathStore::makeRoom(std::size_t elements, std::size_t points)
{
    elements += mElementCount;
    points += mPointCount;
    if (elements <= mElementCapacity && points <= mPointCapacity)
        return;
    const auto grown = [](std::size_t needed, std::size_t capacity) {
        constexpr std::size_t least = 8;
        return needed <= capacity ? capacity : std::max({ needed, 2 * capacity, least });
    };
    setCapacity(grown(elements, mElementCapacity), grown(points, mPointCapacity));
}

void PathStore::setCapacity(std::size_t elements, std::size_t points)
{
    if (elements > UINT32_MAX || points > UINT32_MAX)
        throw std::length_error("A path has too many points.");
    PathStore moved;
    moved.mPointCapacity = static_cast<std::uint32_t>(points);
    moved.mElementCapacity = static_cast<std::uint32_t>(elements);
    const std::size_t bytes
        = points * sizeof(Point) + elements / indexStride * sizeof(std::uint32_t) + elements;
    if (bytes)
        moved.mMemory = std::make_unique_for_overwrite<std::byte[]>(bytes);
    std::copy_n(pointsAt(), mPointCount, moved.pointsAt());
    if (mElementCount)
        std::copy_n(indexAt(), (mElementCount - 1) / indexStride, moved.indexAt());
    std::copy_n(kindsAt(), mElementCount, moved.kindsAt());
    moved.mPointCount = mPointCount;
    moved.mElementCount = mElementCount;
    std::swap(mMemory, moved.mMemory);
    mPointCapacity = moved.mPointCapacity;
    mElementCapacity = moved.mElementCapacity;
}

} // namespace vxr
