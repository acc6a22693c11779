#include <vxr/filters/BoxColumns.h>

#include <vxr/filters/FilterKernels.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vxr {

ExtendedBox ExtendedBox::forDeviation(double sigma)
{
    const double variance = sigma * sigma / 3;
    ExtendedBox box;
    box.reach = std::max(0, static_cast<int>((std::sqrt(1 + 12 * variance) - 1) / 2));
    const double r = box.reach;
    box.edge = static_cast<float>(
        (2 * r + 1) * (variance - r * (r + 1) / 3) / (2 * ((r + 1) * (r + 1) - variance)));
    box.edge = std::clamp(box.edge, 0.0f, 1.0f);
    return box;
}

BoxColumns::BoxColumns(const ExtendedBox& box, int count, int height)
    : mBox(box)
    , mCount(count)
    , mHeight(height)
    , mCapacity(std::min(2 * box.reach + 4, height))
    , mRows(std::size_t(mCapacity) * std::size_t(count))
    , mSums(std::size_t(count))
    , mOut(std::size_t(count))
{
}

const std::int32_t* BoxColumns::rowAt(int y) const
{
    y = std::clamp(y, 0, mHeight - 1);
    return mRows.data() + std::size_t(y % mCapacity) * std::size_t(mCount);
}

void BoxColumns::emit(const FilterKernels& kernels, const Emit& emit)
{
    const int y = mEmitted++;
    if (y == 0) {
        for (int k = -mBox.reach; k <= mBox.reach; ++k) {
            const std::int32_t* const row = rowAt(k);
            for (int i = 0; i < mCount; ++i)
                mSums[std::size_t(i)] += row[i];
        }
    } else {
        kernels.addRow(mSums.data(), rowAt(y + mBox.reach), rowAt(y - mBox.reach - 1), mCount);
    }
    kernels.boxRow(mOut.data(), mSums.data(), rowAt(y - mBox.reach - 1), rowAt(y + mBox.reach + 1), mCount,
        mBox.edge, mBox.scale());
    emit(mOut.data());
}

void BoxColumns::push(const FilterKernels& kernels, const std::int32_t* row, const Emit& emitRow)
{
    std::memcpy(mRows.data() + std::size_t(mTaken % mCapacity) * std::size_t(mCount), row,
        sizeof(std::int32_t) * std::size_t(mCount));
    ++mTaken;
    while (mEmitted < mTaken && (mEmitted + mBox.reach + 1 < mTaken || mTaken == mHeight))
        emit(kernels, emitRow);
}

void boxAlongRow(const ExtendedBox& box, const std::int32_t* row, std::int32_t* out, int width)
{
    // Four integers at once: every processor of ours has such registers, and the sums go from pixel to pixel.
    using Ints = std::int32_t __attribute__((vector_size(16)));
    using Floats = float __attribute__((vector_size(16)));
    const auto at = [&](int x) {
        Ints value;
        std::memcpy(&value, row + 4 * std::ptrdiff_t(std::clamp(x, 0, width - 1)), sizeof value);
        return value;
    };
    Ints sums {};
    for (int k = -box.reach; k <= box.reach; ++k)
        sums += at(k);
    const float scale = box.scale();
    for (int x = 0; x < width; ++x) {
        const Ints before = at(x - box.reach - 1), after = at(x + box.reach + 1);
        if (x > 0)
            sums += at(x + box.reach) - before;
        const Floats total = __builtin_convertvector(sums, Floats)
            + __builtin_convertvector(before + after, Floats) * box.edge;
        const Ints result = __builtin_convertvector(total * scale + 0.5f, Ints);
        std::memcpy(out + 4 * std::ptrdiff_t(x), &result, sizeof result);
    }
}

} // namespace vxr
