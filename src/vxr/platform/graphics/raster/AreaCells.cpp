#include <vxr/platform/graphics/raster/AreaCells.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace vxr {

/// The line of an edge that runs downwards, for its crossings with rows and columns. Slopes have 32 fraction
/// bits, cut towards 0, so that a crossing never leaves the edge; the products stay below 2^62.
struct EdgeLine {
    std::int32_t x0, y0, x1, y1;
    std::int64_t slope; ///< x for each unit of y
    mutable std::int64_t steepness = 0; ///< y for each unit of x, made when first asked for

    explicit EdgeLine(const FixedPoint& top, const FixedPoint& bottom)
        : x0(top.x)
        , y0(top.y)
        , x1(bottom.x)
        , y1(bottom.y)
        , slope(x0 == x1 ? 0 : (std::int64_t(x1) - x0) * one / (y1 - y0))
    {
    }

    std::int32_t xAt(std::int32_t y) const
    {
        return y == y1 ? x1 : x0 + std::int32_t(((std::int64_t(y) - y0) * slope + half) >> 32);
    }
    /// As `xAt`, with the bits that it cuts off; not for the lower end, below which it wraps around.
    std::uint64_t exactXAt(std::int32_t y) const
    {
        return (std::uint64_t(x0) << 32) + std::uint64_t(std::int64_t(y) - y0) * std::uint64_t(slope) + half;
    }
    std::int32_t yAt(std::int32_t x) const
    {
        if (steepness == 0)
            steepness = (std::int64_t(y1) - y0) * one / (std::int64_t(x1) - x0);
        return y0 + std::int32_t(((std::int64_t(x) - x0) * steepness + half) >> 32);
    }

private:
    static constexpr std::int64_t one = std::int64_t(1) << 32, half = one / 2;
};

namespace {

constexpr int subpixelBits = 8;
constexpr std::int32_t fraction(std::int32_t v) { return v & (subpixels - 1); }

} // namespace

void AreaCells::start(const IntRect& box)
{
    mBox = box;
    // One more than the pixels: the last column's edges carry over into it.
    mWordsPerRow = ((box.width() + 1) >> (groupBits + 6)) + 1;
    mStride = ((box.width() + 1 + 7) & ~7);
    const auto rows = static_cast<std::size_t>(box.height());
    if (const std::size_t cells = rows * static_cast<std::size_t>(mStride); mCells.size() < cells)
        mCells.resize(cells);
    if (const std::size_t words = rows * static_cast<std::size_t>(mWordsPerRow); mMarks.size() < words)
        mMarks.resize(words);
    if (mCoverage.size() < static_cast<std::size_t>(mStride))
        mCoverage.resize(static_cast<std::size_t>(mStride));
}

/// The cells and marks of one row.
struct AreaCells::Row {
    std::int32_t* cells;
    std::uint64_t* marks;

    Row(AreaCells& of, int row)
        : cells(of.mCells.data() + static_cast<std::ptrdiff_t>(row) * of.mStride)
        , marks(of.mMarks.data() + static_cast<std::ptrdiff_t>(row) * of.mWordsPerRow)
    {
    }

    /// Adds an edge within one cell: `height` units high, the sum of its ends' x within the cell being
    /// `twiceX`.
    void put(int column, std::int32_t height, std::int32_t twiceX)
    {
        std::int32_t* cell = cells + column;
        const auto carried = static_cast<std::uint32_t>(height * twiceX);
        const auto whole = static_cast<std::uint32_t>(height * 2 * subpixels);
        // Sums wrap around.
        cell[0] = static_cast<std::int32_t>(static_cast<std::uint32_t>(cell[0]) + whole - carried);
        cell[1] = static_cast<std::int32_t>(static_cast<std::uint32_t>(cell[1]) + carried);
        mark(column >> groupBits);
        if ((column & 7) == 7)
            mark((column + 1) >> groupBits);
    }

private:
    void mark(int group) { marks[group >> 6] |= std::uint64_t(1) << (group & 63); }
};

void AreaCells::add(const Edge& edge)
{
    if (edge.from.y == edge.to.y)
        return;
    // Shared edges cancel exactly when both are walked the same way.
    const bool down = edge.from.y < edge.to.y;
    const int sign = down ? 1 : -1;
    const EdgeLine line(down ? edge.from : edge.to, down ? edge.to : edge.from);
    const std::int32_t top = mBox.y0 * subpixels, bottom = mBox.y1 * subpixels;
    std::int32_t y = std::max(line.y0, top);
    const std::int32_t end = std::min(line.y1, bottom);
    if (y >= end)
        return;
    const std::int32_t left = mBox.x0 * subpixels, right = mBox.x1 * subpixels;
    if (std::min(line.x0, line.x1) >= right)
        return;
    if (line.x0 == line.x1 || std::max(line.x0, line.x1) <= left) {
        const std::int32_t x = std::max(line.x0, left) - left;
        const int column = line.x0 <= left ? 0 : x >> subpixelBits;
        const std::int32_t twiceX = line.x0 <= left || line.x0 != line.x1 ? 0 : 2 * fraction(x);
        Row row(*this, (y >> subpixelBits) - mBox.y0);
        for (; y < end; row.cells += mStride, row.marks += mWordsPerRow) {
            const std::int32_t next = std::min((y | (subpixels - 1)) + 1, end);
            row.put(column, sign * (next - y), twiceX);
            y = next;
        }
        return;
    }
    const std::int32_t width = mBox.width() * subpixels;
    std::int32_t x = (y == line.y0 ? line.x0 : line.xAt(y)) - left;
    // Where the line crosses the rows' ends, in whole steps of exact numbers: the same as `xAt` gives.
    std::uint64_t crossing = line.exactXAt((y | (subpixels - 1)) + 1);
    Row row(*this, (y >> subpixelBits) - mBox.y0);
    while (y < end) {
        const std::int32_t next = std::min((y | (subpixels - 1)) + 1, end);
        const std::int32_t nextX
            = (next == line.y1 ? line.x1 : std::int32_t(std::int64_t(crossing) >> 32)) - left;
        if (x >> subpixelBits == nextX >> subpixelBits && x >= 0 && x < width)
            row.put(x >> subpixelBits, sign * (next - y), fraction(x) + fraction(nextX));
        else
            addColumns(row, x, y, nextX, next, sign, line);
        x = nextX;
        y = next;
        crossing += std::uint64_t(line.slope) * subpixels;
        row.cells += mStride;
        row.marks += mWordsPerRow;
    }
}

/// Adds the part of an edge within one row: from (xa, ya) down to (xb, yb), x from the band's left side.
void AreaCells::addColumns(Row row, std::int32_t xa, std::int32_t ya, std::int32_t xb, std::int32_t yb,
    int sign, const EdgeLine& line)
{
    const std::int32_t width = mBox.width() * subpixels;
    const int columnA = xa >> subpixelBits, columnB = xb >> subpixelBits;
    if (columnA == columnB && xa >= 0) // beside the band: what lies within goes by another way
        return;
    if (xa <= 0 && xb <= 0)
        return row.put(0, sign * (yb - ya), 0);
    if (xa >= width && xb >= width)
        return;
    // From left to right; the heights keep the sign of a walk downwards.
    if (xa > xb) {
        std::swap(xa, xb);
        std::swap(ya, yb);
        sign = -sign;
    }
    const std::int32_t low = std::min(ya, yb), high = std::max(ya, yb);
    const std::int32_t left = mBox.x0 * subpixels;
    const auto crossing = [&](std::int32_t x) { return std::clamp(line.yAt(x + left), low, high); };
    std::int32_t y = ya;
    int column = xa >> subpixelBits;
    std::int32_t from = fraction(xa);
    if (xa < 0) {
        const std::int32_t next = crossing(0);
        row.put(0, sign * (next - y), 0);
        y = next;
        column = 0;
        from = 0;
    }
    const int last = xb >> subpixelBits;
    const int stop = std::min(last, mBox.width());
    for (; column < stop; ++column) {
        const std::int32_t next = crossing((column + 1) * subpixels);
        row.put(column, sign * (next - y), from + subpixels);
        y = next;
        from = 0;
    }
    if (column == last && xb < width)
        row.put(column, sign * (yb - y), from + fraction(xb));
}

void AreaCells::addSamples(const Edge& edge)
{
    if (edge.from.y == edge.to.y)
        return;
    const bool down = edge.from.y < edge.to.y;
    const int sign = down ? 1 : -1;
    const EdgeLine line(down ? edge.from : edge.to, down ? edge.to : edge.from);
    constexpr std::int32_t half = subpixels / 2;
    // Rows whose middle lies on the edge, its lower end excluded.
    const int first = std::max((line.y0 + half - 1) >> subpixelBits, mBox.y0);
    const int end = std::min((line.y1 + half - 1) >> subpixelBits, mBox.y1);
    for (int row = first; row < end; ++row) {
        const std::int32_t x = line.xAt(row * subpixels + half);
        const int column = std::max((x + half - 1) >> subpixelBits, mBox.x0) - mBox.x0;
        if (column < mBox.width())
            Row(*this, row - mBox.y0).put(column, sign * subpixels, 0);
    }
}

void AreaCells::sweep(WindingRule rule, CoverageSink& sink)
{
    constexpr int rowsAhead = 4;
    const int rows = mBox.height();
    for (int row = 0; row < std::min(rowsAhead, rows); ++row)
        expectRow(row, sink);
    for (int row = 0; row < rows; ++row) {
        if (row + rowsAhead < rows)
            expectRow(row + rowsAhead, sink);
        sweepRow(row, rule, sink);
    }
}

// Only what has marks: constant runs between are long, and the processor notices them by itself.
void AreaCells::expectRow(int row, CoverageSink& sink) const
{
    const std::uint64_t* marks = mMarks.data() + static_cast<std::ptrdiff_t>(row) * mWordsPerRow;
    for (int word = 0; word < mWordsPerRow; ++word)
        for (std::uint64_t left = marks[word]; left != 0;) {
            const int bit = std::countr_zero(left);
            const int length = std::min(std::countr_one(left >> bit), 64 - bit);
            left &= length == 64 ? 0 : ~(((std::uint64_t(1) << length) - 1) << bit);
            const int from = (word * 64 + bit) << groupBits;
            const int count = std::min(length << groupBits, mBox.width() - from);
            if (count > 0)
                sink.expect(mBox.x0 + from, mBox.y0 + row, count);
        }
}

void AreaCells::sweepRow(int row, WindingRule rule, CoverageSink& sink)
{
    const SpanKernels& kernels = spanKernels();
    const auto sum = rule == WindingRule::NonZero ? kernels.sumNonZero : kernels.sumEvenOdd;
    const auto coverageOf = rule == WindingRule::NonZero ? coverageNonZero : coverageEvenOdd;
    const int y = mBox.y0 + row, width = mBox.width();
    std::int32_t* cells = mCells.data() + static_cast<std::ptrdiff_t>(row) * mStride;
    std::uint64_t* marks = mMarks.data() + static_cast<std::ptrdiff_t>(row) * mWordsPerRow;
    std::uint8_t* coverage = mCoverage.data();
    std::int32_t carry = 0;
    int done = 0; // columns that were handed on
    int ready = 0; // columns whose coverage is known
    const auto flush = [&] {
        if (ready > done)
            sink.mask(mBox.x0 + done, y, ready - done, coverage + done);
        done = ready;
    };
    // Columns between marked groups are all alike.
    const auto pass = [&](int to) {
        const int count = to - ready;
        if (count <= 0)
            return;
        const std::uint8_t constant = coverageOf(carry);
        if (count >= leastRun || (constant == 0 && ready == done)) {
            flush();
            if (constant > 0)
                sink.run(mBox.x0 + ready, y, count, constant);
            done = ready = to;
        } else {
            std::memset(coverage + ready, constant, static_cast<std::size_t>(count));
            ready = to;
        }
    };
    for (int word = 0; word < mWordsPerRow; ++word) {
        while (marks[word] != 0) {
            const int bit = std::countr_zero(marks[word]);
            // Adjacent marked groups are summed in one go.
            const int length = std::min(std::countr_one(marks[word] >> bit), 64 - bit);
            const int from = (word * 64 + bit) << groupBits;
            const int to = std::min(from + (length << groupBits), mStride);
            marks[word] &= length == 64 ? 0 : ~(((std::uint64_t(1) << length) - 1) << bit);
            pass(std::min(from, width));
            carry = sum(cells + from, static_cast<std::size_t>(to - from), carry, coverage + from);
            ready = std::min(to, width);
        }
    }
    pass(width);
    flush();
}

} // namespace vxr
