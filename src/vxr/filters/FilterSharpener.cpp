#include <vxr/filters/FilterSharpener.h>

#include <algorithm>

namespace vxr {

FilterSharpener::Means::Means(double sigma, int rowWidth, int height, int capacityInRows)
    : rows(sigma, rowWidth, height)
    , width(rowWidth)
    , capacity(capacityInRows)
    , kept(std::size_t(capacityInRows) * std::size_t(rowWidth))
{
}

void FilterSharpener::Means::take(const FilterKernels& kernels)
{
    rows.take(kernels, [&](const std::uint16_t* mean) {
        std::copy_n(mean, width, kept.data() + std::size_t(given++ % capacity) * std::size_t(width));
    });
}

FilterSharpener::FilterSharpener(const FilterOperation& operation, int width, int height)
    : mAmount(operation.scale)
    , mSigma(operation.radius)
    , mWidth(width)
    , mHeight(height)
    , mCapacity(std::min(3 * (ExtendedBox::forDeviation(mSigma).reach + 1) + 2, height))
    , mRows(std::size_t(mCapacity) * 4 * std::size_t(width))
    , mIsRowOpaque(std::size_t(mCapacity))
{
    for (int i = 0; i < (mAmount < 0 ? 3 : 1); ++i)
        mMeans.emplace_back(mSigma, width, height, mCapacity);
}

void FilterSharpener::takeAlpha(const FilterKernels& kernels, const std::uint16_t* alpha, bool isOpaque)
{
    if (isOpaque && !mAlphaMeans)
        return;
    if (!mAlphaMeans) {
        mAlphaMeans = std::make_unique<Means>(mSigma, mWidth, mHeight, mCapacity);
        for (int y = 0; y < mTaken; ++y) {
            std::fill_n(mAlphaMeans->rows.input(), mWidth, std::uint16_t { 0xffff });
            mAlphaMeans->take(kernels);
        }
    }
    std::copy_n(alpha, mWidth, mAlphaMeans->rows.input());
    mAlphaMeans->take(kernels);
}

void FilterSharpener::takeColors(const FilterKernels& kernels, const std::uint16_t* row, bool isOpaque)
{
    const std::size_t width = std::size_t(mWidth);
    for (std::size_t i = 0; i < mMeans.size(); ++i) {
        std::uint16_t* const input = mMeans[i].rows.input();
        if (mMeans.size() == 1)
            kernels.luma(row, row + width, row + 2 * width, mWidth, input);
        else
            std::copy_n(row + i * width, width, input);
        if (!isOpaque)
            kernels.multiply16(input, row + 3 * width, mWidth);
        mMeans[i].take(kernels);
    }
}

/// All means come out of the same number of rows.
void FilterSharpener::take(const FilterKernels& kernels, bool isOpaque, const Emit& emit)
{
    std::uint16_t* const row = rowAt(mTaken);
    std::uint16_t* const alpha = row + 3 * std::size_t(mWidth);
    if (isOpaque && mAlphaMeans)
        std::fill_n(alpha, mWidth, std::uint16_t { 0xffff });
    takeAlpha(kernels, alpha, isOpaque);
    takeColors(kernels, row, isOpaque);
    mIsRowOpaque[std::size_t(mTaken % mCapacity)] = isOpaque;
    ++mTaken;
    while (mGiven + 1 < mMeans[0].given) {
        ++mGiven;
        emit();
    }
}

void FilterSharpener::load(const FilterKernels& kernels, int x, FilterBlock& block) const
{
    const std::size_t width = std::size_t(mWidth), slot = std::size_t(mGiven % mCapacity);
    const std::size_t at = slot * width + std::size_t(x);
    const std::uint16_t* const row = mRows.data() + slot * 4 * width + x;
    const std::uint16_t* const alphaMean = mAlphaMeans ? mAlphaMeans->kept.data() + at : nullptr;
    if (mMeans.size() == 1) {
        kernels.sharpen({ row, row + width, row + 2 * width }, mMeans[0].kept.data() + at, alphaMean,
            block.count, mAmount, { block.red, block.green, block.blue });
    } else {
        for (std::size_t c = 0; c < 3; ++c)
            kernels.soften(row + c * width, mMeans[c].kept.data() + at, alphaMean, block.count, mAmount,
                block.colors()[c]);
    }
    if (isOpaque())
        std::fill_n(block.alpha, block.count, 1.0f);
    else
        kernels.from16(row + 3 * width, block.count, block.alpha);
    block.isLinear = false;
}

} // namespace vxr
