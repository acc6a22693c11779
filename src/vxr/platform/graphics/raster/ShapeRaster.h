#pragma once

#include <vxr/platform/graphics/raster/AreaCells.h>

namespace vxr {

/// A box with upright sides in device space.
struct FixedBox {
    FixedPoint upperLeft, lowerRight;
};

/// Turns the outline of a shape into the coverage of its pixels, band by band. What it allocates it keeps for
/// the next shape, but for what very many edges take.
class ShapeRaster {
public:
    /// Starts a shape of which `visible` is wanted.
    void start(const IntRect& visible, bool antialias);
    const IntRect& visible() const { return mVisible; }

    void add(const Edge&);
    /// The pixels that the edges so far may cover.
    IntRect box() const;
    void finish(WindingRule, CoverageSink&);
    /// The same for an upright box alone, without edges. The bytes are those that its edges would give.
    void fillBox(const FixedBox&, CoverageSink&) const;
    IntRect boxOf(const FixedBox&) const; ///< the pixels that `fillBox` may cover

private:
    void sortIntoBands(const IntRect& box, int rows, std::size_t bands);
    void addToCells(const Edge&);
    void put(const Edge&);
    void sumUp();

    IntRect mVisible;
    bool mAntialias = true;
    std::int32_t mLeft = 0, mTop = 0, mRight = 0, mBottom = 0; ///< of `mVisible`, fixed
    FixedPoint mLeast, mMost; ///< of the edges
    std::vector<Edge> mEdges;
    AreaCells mCells;
    bool mIsSummed = false; ///< the cells hold edges that are no longer kept, of all that is visible
    std::vector<std::uint32_t> mBandEnds, mOrder, mActive;
};

} // namespace vxr
