#include <vxr/platform/graphics/raster/RasterClip.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <algorithm>
#include <cstring>

namespace vxr {

std::shared_ptr<ClipMask> ClipMasks::take(const IntRect& box)
{
    const std::size_t size = static_cast<std::size_t>(box.width()) * static_cast<std::size_t>(box.height());
    const auto isFree = [](const std::shared_ptr<ClipMask>& mask) { return mask.use_count() == 1; };
    const bool mayKeep = size <= mostBytes;
    const auto found = mayKeep ? std::ranges::find_if(mKept, isFree) : mKept.end();
    const auto mask = found != mKept.end() ? *found : std::make_shared<ClipMask>();
    mask->box = box;
    mask->rows.assign(size, 0);
    if (mayKeep && found == mKept.end() && mKept.size() < mostKept)
        mKept.push_back(mask);
    return mask;
}

ClipMaker::ClipMaker(const IntRect& box, const RasterClip& cut, ClipMasks& masks)
    : mMask(masks.take(box))
    , mCut(cut)
{
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
