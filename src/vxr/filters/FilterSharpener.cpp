#include <vxr/filters/FilterSharpener.h>

#include <algorithm>

namespace vxr {

FilterSharpener::FilterSharpener(const FilterOperation& operation, int width, int height)
    : mAmount(operation.scale)
    , mSigma(operation.radius)
    , mWidth(width)
    , mHeight(height)
    , mCapacity(std::min(3 * (ExtendedBox::forDeviation(mSigma).reach + 1) + 2, height))
    , mRows(std::size_t(mCapacity) * 4 * std::size_t(width))
    , mIsRowOpaque(std::size_t(mCapacity))
    , mLumaMean(mSigma, width, height)
{
}

/// Both means come out of the same number of rows, so that those of alpha are there first.
void FilterSharpener::takeAlpha(const FilterKernels& kernels, const std::uint16_t* alpha, bool isOpaque)
{
    if (isOpaque && !mAlphaMean)
        return;
    const auto keep = [&](const std::uint16_t* mean) {
        std::copy_n(
            mean, mWidth, mAlphaMeans.data() + std::size_t(mAlphaGiven++ % mCapacity) * std::size_t(mWidth));
    };
    if (!mAlphaMean) {
        mAlphaMean = std::make_unique<GaussianRows>(mSigma, mWidth, mHeight);
        mAlphaMeans.resize(std::size_t(mCapacity) * std::size_t(mWidth));
        for (int y = 0; y < mTaken; ++y) {
            std::fill_n(mAlphaMean->input(), mWidth, std::uint16_t { 0xffff });
            mAlphaMean->take(kernels, keep);
        }
    }
    std::copy_n(alpha, mWidth, mAlphaMean->input());
    mAlphaMean->take(kernels, keep);
}

void FilterSharpener::take(const FilterKernels& kernels, bool isOpaque, const Emit& emit)
{
    std::uint16_t* const row = rowAt(mTaken);
    const std::size_t width = std::size_t(mWidth);
    std::uint16_t* const alpha = row + 3 * width;
    kernels.luma(row, row + width, row + 2 * width, mWidth, mLumaMean.input());
    if (!isOpaque)
        kernels.multiply16(mLumaMean.input(), alpha, mWidth);
    else if (mAlphaMean)
        std::fill_n(alpha, width, std::uint16_t { 0xffff });
    takeAlpha(kernels, alpha, isOpaque);
    mIsRowOpaque[std::size_t(mTaken % mCapacity)] = isOpaque;
    ++mTaken;
    mLumaMean.take(kernels, [&](const std::uint16_t* mean) {
        ++mGiven;
        mMean = mean;
        emit();
    });
}

void FilterSharpener::load(const FilterKernels& kernels, int x, FilterBlock& block) const
{
    const std::size_t width = std::size_t(mWidth), slot = std::size_t(mGiven % mCapacity);
    const std::uint16_t* const row = mRows.data() + slot * 4 * width + x;
    const std::uint16_t* const alphaMean = mAlphaMean ? mAlphaMeans.data() + slot * width + x : nullptr;
    kernels.sharpen({ row, row + width, row + 2 * width }, mMean + x, alphaMean, block.count, mAmount,
        { block.red, block.green, block.blue });
    if (isOpaque())
        std::fill_n(block.alpha, block.count, 1.0f);
    else
        kernels.from16(row + 3 * width, block.count, block.alpha);
    block.isLinear = false;
}

} // namespace vxr
