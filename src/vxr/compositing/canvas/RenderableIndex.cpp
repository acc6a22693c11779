#include <vxr/compositing/canvas/RenderableIndex.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vxr {

namespace {

constexpr float smallestCell = 128;
constexpr float farthest = 1 << 28; ///< what lies beyond is found every time

float sideAtLevel(int level) { return std::ldexp(smallestCell, level); }

int levelOf(const Rect& bounds)
{
    const float size = std::max({ bounds.size.width, bounds.size.height, smallestCell });
    return std::max(0, int(std::ceil(std::log2(size / smallestCell))));
}

std::int64_t cellOf(float coordinate, int level)
{
    return std::int64_t(std::floor(double(coordinate) / double(sideAtLevel(level))));
}

std::uint64_t cellKey(int level, std::int64_t x, std::int64_t y)
{
    constexpr std::uint64_t mask = (std::uint64_t(1) << 29) - 1;
    return std::uint64_t(level) << 58 | (std::uint64_t(x) & mask) << 29 | (std::uint64_t(y) & mask);
}

int levelOfKey(std::uint64_t key) { return int(key >> 58); }

/// The cell that an object stands in.
std::uint64_t keyOf(const Rect& bounds)
{
    const int level = levelOf(bounds);
    return cellKey(level, cellOf(bounds.midX(), level), cellOf(bounds.midY(), level));
}

bool meet(const Rect& a, const Rect& b)
{
    return a.minX() <= b.maxX() && b.minX() <= a.maxX() && a.minY() <= b.maxY() && b.minY() <= a.maxY();
}

/// Errors of differences of coordinates within the steady reach stay below 1/2048.
bool isUnsteadyCoordinate(float v)
{
    if (!(std::abs(v) < RenderableIndex::steadyReach))
        return true;
    const float eighths = v * 8, beside = std::abs(eighths - std::nearbyint(eighths));
    return beside != 0 && beside < 1.0f / 64;
}

bool isUnsteadyPlace(const Rect& bounds, const Rect& reached)
{
    return isUnsteadyCoordinate(bounds.origin.x) || isUnsteadyCoordinate(bounds.origin.y)
        || !(std::max(reached.size.width, reached.size.height) <= RenderableIndex::steadyView);
}

} // namespace

RenderableIndex::RenderableIndex(const VXRCanvasRole& canvas)
    : mCanvas(canvas)
{
}

RenderableIndex::~RenderableIndex() { forget(); }

void RenderableIndex::forget()
{
    for (const Entry& entry : mEntries)
        if (VXRRenderable* object = objectOf(entry))
            object->mIndexEntry = none;
    mObjects.clear();
    mEntryOfRank.clear();
    mEntries.clear();
    mFirstFree = none;
    mCells.clear();
    mCountAtLevel = {};
    mAlwaysFound.clear();
    mStale.clear();
    mVersion = 0;
}

VXRRenderable* RenderableIndex::objectOf(const Entry& entry) const
{
    return entry.tells ? mObjects[entry.rank] : nullptr;
}

// The list.

bool RenderableIndex::isSame(std::size_t rank, const List& list) const
{
    return mObjects[rank] == list[rank].get();
}

/// What the list has in common with the former one at both ends stays; what lies between is replaced.
void RenderableIndex::update(const List& list, std::uint64_t version)
{
    if (version == 0 || version != mVersion || list.size() != mObjects.size()) {
        const std::size_t oldCount = mObjects.size(), newCount = list.size();
        const std::size_t common = std::min(oldCount, newCount);
        std::size_t front = 0, back = 0;
        while (front < common && isSame(front, list))
            ++front;
        while (back < common - front && mObjects[oldCount - 1 - back] == list[newCount - 1 - back].get())
            ++back;
        for (std::size_t rank = front; rank < oldCount - back; ++rank)
            erase(mEntryOfRank[rank]);
        const auto replace = [&](auto& values, auto filler) {
            const auto from = values.begin() + std::ptrdiff_t(front);
            const auto to = values.begin() + std::ptrdiff_t(oldCount - back);
            if (newCount > oldCount)
                values.insert(to, newCount - oldCount, filler);
            else
                values.erase(from, from + std::ptrdiff_t(oldCount - newCount));
        };
        if (newCount != oldCount) {
            replace(mObjects, static_cast<VXRRenderable*>(nullptr));
            replace(mEntryOfRank, none);
            for (std::size_t rank = newCount - back; rank < newCount; ++rank)
                if (mEntryOfRank[rank] != none)
                    mEntries[mEntryOfRank[rank]].rank = std::uint32_t(rank);
        }
        makeRoom(newCount);
        for (std::size_t rank = front; rank < newCount - back; ++rank)
            insert(std::uint32_t(rank), list[rank].get());
        mVersion = version;
    }
    refresh();
}

/// All at once for a page that comes as a whole.
void RenderableIndex::makeRoom(std::size_t entries)
{
    if (entries > mEntries.capacity())
        mEntries.reserve(std::max(entries, mEntries.capacity() + mEntries.capacity() / 2));
}

void RenderableIndex::insert(std::uint32_t rank, VXRRenderable* object)
{
    mObjects[rank] = object;
    mEntryOfRank[rank] = none;
    if (!object)
        return;
    std::uint32_t entry = mFirstFree;
    if (entry != none)
        mFirstFree = mEntries[entry].next;
    else {
        entry = std::uint32_t(mEntries.size());
        mEntries.emplace_back();
    }
    mEntryOfRank[rank] = entry;
    mEntries[entry] = {};
    mEntries[entry].rank = rank;
    const bool tells
        = object->canvas() == &mCanvas && object->mIndexEntry == none && object->tellsOfChangedBounds();
    if (tells) {
        mEntries[entry].tells = true;
        object->mIndexEntry = entry;
    }
    place(entry);
}

void RenderableIndex::erase(std::uint32_t entry)
{
    if (entry == none)
        return;
    unlink(entry);
    if (VXRRenderable* object = objectOf(mEntries[entry]))
        object->mIndexEntry = none;
    mEntries[entry] = {};
    mEntries[entry].next = std::exchange(mFirstFree, entry);
}

void RenderableIndex::remove(const VXRRenderable& object)
{
    const std::uint32_t entry = std::exchange(object.mIndexEntry, none);
    if (entry >= mEntries.size() || objectOf(mEntries[entry]) != &object)
        return;
    unlink(entry);
    mEntries[entry].tells = false;
    // Another one may come to lie at the same address.
    mObjects[mEntries[entry].rank] = nullptr;
    place(entry);
    mVersion = 0;
}

// Places.

bool RenderableIndex::mayLieInGrid(const Entry& entry) const
{
    const Rect& b = entry.bounds;
    const float reach
        = std::max({ std::abs(b.minX()), std::abs(b.maxX()), std::abs(b.minY()), std::abs(b.maxY()) });
    return entry.tells && reach < farthest && b.size.width >= 0 && b.size.height >= 0; // nothing is NaN
}

void RenderableIndex::place(std::uint32_t index)
{
    Entry& entry = mEntries[index];
    if (const VXRRenderable* object = objectOf(entry)) {
        entry.bounds = object->hitBounds();
        entry.hasShadow = object->hasShadow();
        entry.isUnsteady = isUnsteadyPlace(object->alignmentBounds(), entry.bounds);
    }
    entry.inGrid = mayLieInGrid(entry);
    if (!entry.inGrid) {
        entry.previous = std::uint32_t(mAlwaysFound.size());
        mAlwaysFound.push_back(index);
        return;
    }
    const std::uint64_t key = keyOf(entry.bounds);
    const auto [cell, isNew] = mCells.try_emplace(key, index);
    entry.next = isNew ? none : std::exchange(cell->second, index);
    entry.previous = none;
    if (entry.next != none)
        mEntries[entry.next].previous = index;
    ++mCountAtLevel[std::size_t(levelOfKey(key))];
}

void RenderableIndex::unlink(std::uint32_t index)
{
    Entry& entry = mEntries[index];
    if (!entry.inGrid) {
        const std::uint32_t last = mAlwaysFound.back();
        mAlwaysFound[entry.previous] = last;
        mEntries[last].previous = entry.previous;
        mAlwaysFound.pop_back();
        return;
    }
    const std::uint64_t key = keyOf(entry.bounds);
    if (entry.next != none)
        mEntries[entry.next].previous = entry.previous;
    if (entry.previous != none)
        mEntries[entry.previous].next = entry.next;
    else if (entry.next != none)
        mCells[key] = entry.next;
    else
        mCells.erase(key);
    --mCountAtLevel[std::size_t(levelOfKey(key))];
}

void RenderableIndex::boundsMayChange(const VXRRenderable& object)
{
    const std::uint32_t index = object.mIndexEntry;
    if (index >= mEntries.size() || objectOf(mEntries[index]) != &object || mEntries[index].isStale)
        return;
    mEntries[index].isStale = true;
    mStale.push_back(index);
}

/// Places anew what has moved. Shadows are shared and may be changed without their objects' knowledge.
void RenderableIndex::refresh()
{
    const auto transform = mCanvas.additionalShadowTransform();
    if (mShadowChanges != VXRShadow::changeCount() || transform != mShadowTransform) {
        mShadowChanges = VXRShadow::changeCount();
        mShadowTransform = transform;
        for (const Entry& entry : mEntries)
            if (const VXRRenderable* object = entry.hasShadow ? objectOf(entry) : nullptr)
                boundsMayChange(*object);
    }
    for (const std::uint32_t index : mStale) {
        Entry& entry = mEntries[index];
        if (!entry.isStale)
            continue; // freed meanwhile, and perhaps taken again
        entry.isStale = false;
        if (!entry.tells)
            continue;
        unlink(index);
        place(index);
    }
    mStale.clear();
}

// Finding.

template <class Accepts>
std::vector<std::uint32_t> RenderableIndex::findInAnyOrder(const Rect& rect, Accepts accepts) const
{
    std::vector<std::uint32_t> ranks;
    for (const std::uint32_t entry : mAlwaysFound)
        if (mObjects[mEntries[entry].rank])
            ranks.push_back(mEntries[entry].rank);
    for (int level = 0; level < levels; ++level)
        if (mCountAtLevel[std::size_t(level)])
            visitLevel(level, rect, [&](const Entry& entry) {
                if (accepts(entry) && meet(entry.bounds, rect))
                    ranks.push_back(entry.rank);
            });
    return ranks;
}

std::vector<std::uint32_t> RenderableIndex::find(const Rect& rect) const
{
    std::vector<std::uint32_t> ranks = findInAnyOrder(rect, [](const Entry&) { return true; });
    std::sort(ranks.begin(), ranks.end());
    return ranks;
}

std::vector<std::uint32_t> RenderableIndex::findUnsteady(const Rect& rect) const
{
    return findInAnyOrder(rect, [](const Entry& entry) { return entry.isUnsteady; });
}

/// All entries of cells that the rectangle comes near.
template <class Take> void RenderableIndex::visitLevel(int level, const Rect& rect, Take take) const
{
    const float half = sideAtLevel(level) * 0.501f; // an object reaches at most half a cell out of its own
    const auto limited = [](float v) { return std::clamp(v, -2 * farthest, 2 * farthest); };
    const std::int64_t x0 = cellOf(limited(rect.minX() - half), level),
                       x1 = cellOf(limited(rect.maxX() + half), level);
    const std::int64_t y0 = cellOf(limited(rect.minY() - half), level),
                       y1 = cellOf(limited(rect.maxY() + half), level);
    const auto takeFrom = [&](std::uint32_t index) {
        for (; index != none; index = mEntries[index].next)
            take(mEntries[index]);
    };
    if (double(x1 - x0 + 1) * double(y1 - y0 + 1) > double(mCells.size())) {
        for (const auto& [key, first] : mCells)
            if (levelOfKey(key) == level)
                takeFrom(first);
        return;
    }
    for (std::int64_t y = y0; y <= y1; ++y)
        for (std::int64_t x = x0; x <= x1; ++x)
            if (const auto cell = mCells.find(cellKey(level, x, y)); cell != mCells.end())
                takeFrom(cell->second);
}

std::size_t RenderableIndex::byteSize() const
{
    constexpr std::size_t cellNode = 32;
    return mObjects.capacity() * sizeof mObjects[0] + mEntryOfRank.capacity() * 4
        + mEntries.capacity() * sizeof(Entry) + mCells.size() * cellNode
        + mCells.bucket_count() * sizeof(void*) + (mAlwaysFound.capacity() + mStale.capacity()) * 4;
}

} // namespace vxr
