#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace vxr {

struct FilterKernels;

/// A box whose width need not be whole: `reach` pixels on either side count fully and one more by `edge`.
struct ExtendedBox {
    int reach = 0;
    float edge = 0;

    /// Three of these in a row have the variance of a Gaussian of that standard deviation (Gwosdek et al.
    /// 2011, "Theoretical foundations of Gaussian convolution by extended box filtering").
    static ExtendedBox forDeviation(double sigma);
    float scale() const { return 1 / (float(2 * reach + 1) + 2 * edge); }
};

/// Averages rows of integers downwards, in a window of rows. Before the first and after the last row these
/// repeat.
class BoxColumns {
public:
    using Emit = std::function<void(const std::int32_t* row)>;

    BoxColumns(const ExtendedBox& box, int count, int height);

    /// Takes the next row and emits what is complete.
    void push(const FilterKernels&, const std::int32_t* row, const Emit&);

private:
    const std::int32_t* rowAt(int y) const;
    void emit(const FilterKernels&, const Emit&);

    ExtendedBox mBox;
    int mCount, mHeight, mCapacity;
    int mTaken = 0, mEmitted = 0;
    std::vector<std::int32_t> mRows, mSums, mOut;
};

/// The same along a row of four integers a pixel, from `row` to `out`.
void boxAlongRow(const ExtendedBox& box, const std::int32_t* row, std::int32_t* out, int width);

} // namespace vxr
