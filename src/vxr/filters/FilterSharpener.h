#pragma once

#include <vxr/filters/BoxColumns.h>
#include <vxr/filters/FilterBlock.h>
#include <vxr/filters/FilterOperation.h>

#include <memory>

namespace vxr {

/// Keeps the rows that the mean of a neighbourhood needs: planes of straight encoded colours and alpha of 16
/// bits. Sharpening needs the mean of the luma, softening that of each colour. Means are weighted by alpha,
/// so that transparent pixels don't count in them.
class FilterSharpener {
public:
    /// Called for each row that is complete.
    using Emit = std::function<void()>;

    FilterSharpener(const FilterOperation& operation, int width, int height);

    /// Where a plane of the next row, red to alpha, is written before it is taken.
    std::uint16_t* input(std::size_t plane) { return rowAt(mTaken) + plane * std::size_t(mWidth); }
    /// `isOpaque` promises that alpha is full; its plane need not be written then.
    void take(const FilterKernels&, bool isOpaque, const Emit&);

    /// The pixels of the row that has been emitted last, sharpened and encoded.
    void load(const FilterKernels&, int x, FilterBlock&) const;
    bool isOpaque() const { return mIsRowOpaque[std::size_t(mGiven % mCapacity)]; } ///< that row

private:
    /// The means of a plane, in a window of rows as those of the pixels.
    struct Means {
        Means(double sigma, int width, int height, int capacity);
        void take(const FilterKernels&); ///< what has been written to `rows.input()`

        GaussianRows rows;
        int width, capacity, given = 0;
        std::vector<std::uint16_t> kept;
    };

    std::uint16_t* rowAt(int y)
    {
        return mRows.data() + std::size_t(y % mCapacity) * 4 * std::size_t(mWidth);
    }
    void takeAlpha(const FilterKernels&, const std::uint16_t* alpha, bool isOpaque);
    void takeColors(const FilterKernels&, const std::uint16_t* row, bool isOpaque);

    float mAmount;
    double mSigma;
    int mWidth, mHeight, mCapacity, mTaken = 0, mGiven = -1;
    std::vector<std::uint16_t> mRows;
    std::vector<bool> mIsRowOpaque;
    std::vector<Means> mMeans; ///< of luma, or of red, green and blue
    /// From the first row that is not opaque on: until then the mean is full.
    std::unique_ptr<Means> mAlphaMeans;
};

} // namespace vxr
