#include <vxr/filters/BoxColumns.h>

#include <vxr/filters/FilterKernels.h>

#include <algorithm>
#include <cmath>

namespace vxr {

ExtendedBox ExtendedBox::forDeviation(double sigma)
{
    constexpr double mostPixels = 500;
    sigma = sigma > 0 ? std::min(sigma, mostPixels) : 0; // NaN too
    const double variance = sigma * sigma / 3;
    ExtendedBox box;
    box.reach = std::max(0, static_cast<int>((std::sqrt(1 + 12 * variance) - 1) / 2));
    const double r = box.reach;
    box.edge = static_cast<float>(
        (2 * r + 1) * (variance - r * (r + 1) / 3) / (2 * ((r + 1) * (r + 1) - variance)));
    box.edge = std::clamp(box.edge, 0.0f, 1.0f);
    return box;
}

BoxColumns::BoxColumns(const ExtendedBox& box, int width, int height)
    : mBox(box)
    , mWidth(width)
    , mHeight(height)
    , mCapacity(std::min(2 * box.reach + 4, height))
    , mRows(std::size_t(mCapacity) * std::size_t(width))
    , mSums(std::size_t(width))
{
}

std::uint16_t* BoxColumns::input()
{
    return mRows.data() + std::size_t(mTaken % mCapacity) * std::size_t(mWidth);
}

const std::uint16_t* BoxColumns::rowAt(int y) const
{
    y = std::clamp(y, 0, mHeight - 1);
    return mRows.data() + std::size_t(y % mCapacity) * std::size_t(mWidth);
}

void BoxColumns::average(const FilterKernels& kernels, std::uint16_t* out)
{
    const int y = mGiven++, reach = mBox.reach;
    for (int k = -reach - 1; y == 0 && k < reach; ++k) {
        const std::uint16_t* const row = rowAt(k);
        for (int x = 0; x < mWidth; ++x)
            mSums[std::size_t(x)] += row[x];
    }
    kernels.boxColumns(mSums.data(), rowAt(y - reach - 1), rowAt(y + reach), rowAt(y + reach + 1), mWidth,
        mBox.edge, mBox.scale(), out);
}

void BoxColumns::take(const FilterKernels& kernels, const Output& output, const Done& done)
{
    ++mTaken;
    while (mGiven < mTaken && (mGiven + mBox.reach + 1 < mTaken || mTaken == mHeight)) {
        average(kernels, output());
        done();
    }
}

GaussianRows::GaussianRows(double sigma, int width, int height)
    : mBox(ExtendedBox::forDeviation(sigma))
    , mWidth(std::size_t(width))
    , mMargin(std::size_t(mBox.reach) + 1)
    , mRow(mWidth + 2 * mMargin)
    , mOther(mRow.size())
    , mMean(mWidth)
    , mSums(mRow.size() + 1)
    , mColumns { { mBox, width, height }, { mBox, width, height }, { mBox, width, height } }
{
}

void GaussianRows::averageRow(
    const FilterKernels& kernels, std::vector<std::uint16_t>& padded, std::uint16_t* out)
{
    std::uint16_t* const row = padded.data();
    std::fill_n(row, mMargin, row[mMargin]);
    std::fill_n(row + mMargin + mWidth, mMargin, row[mMargin + mWidth - 1]);
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < padded.size(); ++i)
        mSums[i + 1] = sum += row[i];
    kernels.boxRow(mSums.data() + 1, mSums.data() + 2 * mMargin, row, row + 2 * mMargin,
        static_cast<int>(mWidth), mBox.edge, mBox.scale(), out);
}

void GaussianRows::take(const FilterKernels& kernels, const Emit& emit)
{
    averageRow(kernels, mRow, mOther.data() + mMargin);
    averageRow(kernels, mOther, mRow.data() + mMargin);
    averageRow(kernels, mRow, mColumns[0].input());
    const auto takeThird = [&] {
        mColumns[2].take(
            kernels, [&] { return mMean.data(); }, [&] { emit(mMean.data()); });
    };
    const auto takeSecond = [&] {
        mColumns[1].take(
            kernels, [&] { return mColumns[2].input(); }, takeThird);
    };
    mColumns[0].take(
        kernels, [&] { return mColumns[1].input(); }, takeSecond);
}

} // namespace vxr
