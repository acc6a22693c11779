#pragma once

#include <vxr/platform/graphics/raster/ShapeRaster.h>

#include <memory>
#include <vector>

namespace vxr {

/// The coverage of a clip's pixels within a box.
struct ClipMask {
    IntRect box;
    std::vector<std::uint8_t> rows;

    const std::uint8_t* at(int x, int y) const { return rows.data() + offset(x, y); }
    std::uint8_t* at(int x, int y) { return rows.data() + offset(x, y); }

private:
    std::ptrdiff_t offset(int x, int y) const
    {
        return static_cast<std::ptrdiff_t>(y - box.y0) * box.width() + (x - box.x0);
    }
};

/// What can be seen: all of a box of pixels, or what a mask over at least that box shows of it.
struct RasterClip {
    IntRect box;
    std::shared_ptr<const ClipMask> mask;
};

/// The memory of masks that no clip refers to any more, for those to come.
class ClipMasks {
public:
    std::shared_ptr<ClipMask> take(const IntRect& box); ///< covers nothing; throws `std::bad_alloc`

private:
    static constexpr std::size_t mostKept = 8, mostBytes = 1 << 20; ///< of each

    std::vector<std::shared_ptr<ClipMask>> mKept; ///< those in use too
};

/// Makes the mask of a clip out of the coverage of the outline that it is cut by.
class ClipMaker final : public CoverageSink {
public:
    /// `box` lies within the clip that is cut. Throws `std::bad_alloc`.
    ClipMaker(const IntRect& box, const RasterClip& cut, ClipMasks&);

    void expect(int, int, int) override { } // it is fresh in the cache
    void run(int x, int y, int count, std::uint8_t coverage) override;
    void mask(int x, int y, int count, std::uint8_t* coverage) override;

    RasterClip take() { return { mMask->box, std::move(mMask) }; }

private:
    std::shared_ptr<ClipMask> mMask;
    const RasterClip& mCut;
};

} // namespace vxr
