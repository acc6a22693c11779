#include <vxr/platform/graphics/raster/RasterClip.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <cstring>

namespace vxr {

ClipMaker::ClipMaker(const IntRect& box, const RasterClip& cut)
    : mMask(std::make_shared<ClipMask>())
    , mCut(cut)
{
    mMask->box = box;
    mMask->rows.resize(static_cast<std::size_t>(box.width()) * static_cast<std::size_t>(box.height()));
}

void ClipMaker::run(int x, int y, int count, std::uint8_t coverage)
{
    std::uint8_t* to = mMask->at(x, y);
    const auto size = static_cast<std::size_t>(count);
    if (!mCut.mask) {
        std::memset(to, coverage, size);
        return;
    }
    std::memcpy(to, mCut.mask->at(x, y), size);
    if (coverage != 255)
        spanKernels().fadeMask(to, size, coverage);
}

void ClipMaker::mask(int x, int y, int count, std::uint8_t* coverage)
{
    std::uint8_t* to = mMask->at(x, y);
    const auto size = static_cast<std::size_t>(count);
    std::memcpy(to, coverage, size);
    if (mCut.mask)
        spanKernels().multiplyMask(to, mCut.mask->at(x, y), size);
}

} // namespace vxr
