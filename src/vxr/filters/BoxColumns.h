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
    /// 2011, "Theoretical foundations of Gaussian convolution by extended box filtering"). Deviations are
    /// limited to 500 pixels.
    static ExtendedBox forDeviation(double sigma);
    float scale() const { return 1 / (float(2 * reach + 1) + 2 * edge); }
};

/// Averages rows of 16-bit values downwards, in a window of rows. Before the first and after the last row
/// these repeat.
class BoxColumns {
public:
    using Output = std::function<std::uint16_t*()>; ///< where an average is to be written
    using Done = std::function<void()>;

    BoxColumns(const ExtendedBox& box, int width, int height);

    std::uint16_t* input(); ///< where the next row is to be written
    /// Takes that row and averages what is complete.
    void take(const FilterKernels&, const Output&, const Done&);

private:
    const std::uint16_t* rowAt(int y) const;
    void average(const FilterKernels&, std::uint16_t* out);

    ExtendedBox mBox;
    int mWidth, mHeight, mCapacity;
    int mTaken = 0, mGiven = 0;
    std::vector<std::uint16_t> mRows;
    std::vector<std::int32_t> mSums;
};

/// A Gaussian mean of one plane by extended boxes, three along the rows and three downwards.
class GaussianRows {
public:
    using Emit = std::function<void(const std::uint16_t* row)>;

    GaussianRows(double sigma, int width, int height);

    std::uint16_t* input() { return mRow.data() + mMargin; } ///< where the next row is to be written
    /// Takes that row, which is lost then, and emits what is complete.
    void take(const FilterKernels&, const Emit&);

private:
    void averageRow(const FilterKernels&, std::vector<std::uint16_t>& row, std::uint16_t* out);

    ExtendedBox mBox;
    std::size_t mWidth, mMargin; ///< on either side of rows
    std::vector<std::uint16_t> mRow, mOther, mMean;
    std::vector<std::uint32_t> mSums; ///< of what precedes, modulo 2^32
    BoxColumns mColumns[3];
};

} // namespace vxr
