#include <vxr/platform/graphics/raster/ShapeRaster.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <limits>
#include <utility>

namespace vxr {

namespace {

constexpr int subpixelBits = 8;
constexpr std::size_t bandCells = 1 << 16; ///< in a band, so that it stays in the cache
constexpr int leastBandRows = 8;
constexpr std::size_t mostEdges = 1 << 18; ///< more are summed up at once rather than kept
constexpr std::size_t mostSummed = 1 << 24; ///< cells; larger pictures keep all edges

int pixelOf(std::int32_t v) { return v >> subpixelBits; }
int pixelAfter(std::int32_t v) { return (v + subpixels - 1) >> subpixelBits; }

} // namespace

void ShapeRaster::start(const IntRect& visible, bool antialias)
{
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    mVisible = visible;
    mAntialias = antialias;
    mLeft = visible.x0 * subpixels;
    mTop = visible.y0 * subpixels;
    mRight = visible.x1 * subpixels;
    mBottom = visible.y1 * subpixels;
    mLeast = { most, most };
    mMost = { least, least };
    mEdges.clear();
    if (mEdges.capacity() > mostEdges)
        mEdges.shrink_to_fit();
    if (std::exchange(mIsSummed, false))
        mCells = {};
}

// What lies to the left counts by its height alone; above, below and to the right nothing does.
void ShapeRaster::add(const Edge& edge)
{
    const auto [lowX, highX] = std::minmax(edge.from.x, edge.to.x);
    const auto [lowY, highY] = std::minmax(edge.from.y, edge.to.y);
    if (lowY == highY || highY <= mTop || lowY >= mBottom)
        return;
    mMost = { std::max(mMost.x, highX), std::max(mMost.y, highY) };
    if (lowX >= mRight)
        return;
    mLeast = { std::min(mLeast.x, lowX), std::min(mLeast.y, lowY) };
    if (highX <= mLeft)
        put({ { mLeft, edge.from.y }, { mLeft, edge.to.y } });
    else
        put(edge);
}

inline void ShapeRaster::put(const Edge& edge)
{
    if (mEdges.size() == mostEdges)
        sumUp();
    mEdges.push_back(edge);
}

// Sums don't depend on the order of edges, nor on the box that is summed up.
void ShapeRaster::sumUp()
{
    const auto cells
        = static_cast<std::size_t>(mVisible.width()) * static_cast<std::size_t>(mVisible.height());
    if (cells > mostSummed)
        return;
    if (!mIsSummed)
        mCells.start(mVisible);
    mIsSummed = true;
    for (const Edge& edge : mEdges)
        addToCells(edge);
    mEdges.clear();
}

IntRect ShapeRaster::box() const
{
    if (mEdges.empty() && !mIsSummed)
        return {};
    const IntRect edges { pixelOf(mLeast.x), pixelOf(mLeast.y), pixelAfter(mMost.x), pixelAfter(mMost.y) };
    return intersection(edges, mVisible);
}

inline void ShapeRaster::addToCells(const Edge& edge)
{
    if (mAntialias)
        mCells.add(edge);
    else
        mCells.addSamples(edge);
}

void ShapeRaster::finish(WindingRule rule, CoverageSink& sink)
{
    const IntRect shape = box();
    if (shape.isEmpty())
        return;
    if (mIsSummed) {
        sumUp();
        return mCells.sweep(rule, sink);
    }
    const auto width = static_cast<std::size_t>(shape.width());
    if (width * static_cast<std::size_t>(shape.height()) <= bandCells) {
        mCells.start(shape);
        for (const Edge& edge : mEdges)
            addToCells(edge);
        return mCells.sweep(rule, sink);
    }
    const int rows = std::max(static_cast<int>(bandCells / width), leastBandRows);
    const auto bands = static_cast<std::size_t>((shape.height() + rows - 1) / rows);
    sortIntoBands(shape, rows, bands);
    mActive.clear();
    std::size_t next = 0;
    IntRect band = shape;
    for (std::size_t i = 0; i < bands; ++i) {
        band.y0 = shape.y0 + static_cast<int>(i) * rows;
        band.y1 = std::min(band.y0 + rows, shape.y1);
        for (; next < mBandEnds[i]; ++next)
            mActive.push_back(mOrder[next]);
        mCells.start(band);
        std::size_t kept = 0;
        for (const std::uint32_t index : mActive) {
            const Edge& edge = mEdges[index];
            addToCells(edge);
            if (std::max(edge.from.y, edge.to.y) > band.y1 * subpixels)
                mActive[kept++] = index;
        }
        mActive.resize(kept);
        mCells.sweep(rule, sink);
    }
}

// A counting sort by the first band that an edge touches.
void ShapeRaster::sortIntoBands(const IntRect& shape, int rows, std::size_t bands)
{
    const auto bandOf = [&](const Edge& edge) {
        const int row = std::max(pixelOf(std::min(edge.from.y, edge.to.y)), shape.y0);
        return static_cast<std::size_t>((row - shape.y0) / rows);
    };
    mBandEnds.assign(bands + 1, 0);
    for (const Edge& edge : mEdges)
        ++mBandEnds[bandOf(edge) + 1];
    for (std::size_t i = 1; i <= bands; ++i)
        mBandEnds[i] += mBandEnds[i - 1];
    mOrder.resize(mEdges.size());
    for (std::size_t i = 0; i < mEdges.size(); ++i)
        mOrder[mBandEnds[bandOf(mEdges[i])]++] = static_cast<std::uint32_t>(i);
}

IntRect ShapeRaster::boxOf(const FixedBox& box) const
{
    return intersection({ pixelOf(box.upperLeft.x), pixelOf(box.upperLeft.y), pixelAfter(box.lowerRight.x),
                            pixelAfter(box.lowerRight.y) },
        mVisible);
}

void ShapeRaster::fillBox(const FixedBox& box, CoverageSink& sink) const
{
    auto [a, b] = box;
    if (!mAntialias) {
        const auto onSamples = [](std::int32_t v) { return (v + subpixels / 2 - 1) & ~(subpixels - 1); };
        a = { onSamples(a.x), onSamples(a.y) };
        b = { onSamples(b.x), onSamples(b.y) };
    }
    const std::int32_t x0 = std::max(a.x, mLeft), x1 = std::min(b.x, mRight);
    const std::int32_t y0 = std::max(a.y, mTop), y1 = std::min(b.y, mBottom);
    if (x0 >= x1 || y0 >= y1)
        return;
    const int first = pixelOf(x0), last = pixelAfter(x1) - 1;
    // Whole columns between one on either side that may be covered in part.
    const auto widthOf = [&](int column) {
        return std::min(x1, (column + 1) * subpixels) - std::max(x0, column * subpixels);
    };
    const bool wholeFirst = widthOf(first) == subpixels, wholeLast = widthOf(last) == subpixels;
    const int from = wholeFirst ? first : first + 1, to = wholeLast ? last + 1 : last;
    for (int row = pixelOf(y0); row < pixelAfter(y1); ++row) {
        const std::int32_t height = std::min(y1, (row + 1) * subpixels) - std::max(y0, row * subpixels);
        const auto put = [&](int column, int count, std::int32_t width) {
            if (const std::uint8_t coverage = coverageNonZero(2 * height * width))
                sink.run(column, row, count, coverage);
        };
        if (!wholeFirst)
            put(first, 1, widthOf(first));
        if (from < to)
            put(from, to - from, subpixels);
        if (!wholeLast && last != first)
            put(last, 1, widthOf(last));
    }
}

} // namespace vxr
