#pragma once

#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/graphics/values/IntRect.h>

#include <cstdint>
#include <vector>

namespace vxr {

/// A coordinate in 1/256 of a pixel, y down. Edges lie within 2^21 pixels of 0.
struct FixedPoint {
    std::int32_t x = 0, y = 0;

    friend bool operator==(const FixedPoint&, const FixedPoint&) = default;
};

inline constexpr int subpixels = 256; ///< units of a fixed coordinate in a pixel

/// A directed edge of an outline.
struct Edge {
    FixedPoint from, to;
};

/// Takes the coverage of pixels, row by row from the top, from left to right. Pixels that are not covered are
/// left out.
class CoverageSink {
public:
    /// Pixels that are going to be covered soon, for fetching them into the cache.
    virtual void expect(int x, int y, int count) = 0;
    virtual void run(int x, int y, int count, std::uint8_t coverage) = 0;
    virtual void mask(int x, int y, int count, std::uint8_t* coverage) = 0; ///< the bytes may be changed

protected:
    ~CoverageSink() = default;
};

/// Signed areas of a band of rows: one sum per pixel, and a mark for every group of pixels that has some.
///
/// Each crossing of an edge with a row or column is a function of the edge and of that line alone, so the
/// sums are the same whatever part of a shape the band shows. Edges to the left of it count in its first
/// column, edges to the right are dropped.
class AreaCells {
public:
    /// Starts a band that shows `box`. The cells are all 0 then.
    void start(const IntRect& box);
    void add(const Edge&); ///< its part within the band's rows
    /// As `add`, with samples at the pixels' centres instead of areas.
    void addSamples(const Edge&);
    /// Hands on the coverage of each row and empties the cells.
    void sweep(WindingRule, CoverageSink&);

private:
    static constexpr int groupBits = 3;
    static constexpr int leastRun = 16; ///< pixels of one coverage that are handed on as a run

    struct Row;

    void addColumns(Row, std::int32_t xa, std::int32_t ya, std::int32_t xb, std::int32_t yb, int sign,
        const struct EdgeLine&);
    void expectRow(int row, CoverageSink&) const;
    void sweepRow(int row, WindingRule, CoverageSink&);

    IntRect mBox;
    int mStride = 0; ///< cells in a row
    int mWordsPerRow = 0;
    std::vector<std::int32_t> mCells;
    std::vector<std::uint64_t> mMarks;
    std::vector<std::uint8_t> mCoverage;
};

} // namespace vxr
