#pragma once

#include <vxr/filters/FilterBlock.h>
#include <vxr/filters/FilterOperation.h>

#include <vector>

namespace vxr {

/// Operations on single pixels, done together while a block is at hand.
///
/// What each colour goes through by itself, at the beginning from 8-bit values and at the end from 16-bit
/// ones, may come from tables. The loops themselves fill these, so that the results are the same.
class FilterPointPass {
public:
    enum class Ending { Pixels, Columns };

    void add(const FilterOperation& operation) { mOperations.push_back(operation); }
    // After the last operation: tables for `beginFromBytes`, and for one of the last two functions.
    void makeByteTables(const FilterKernels&);
    void makeEndingTables(const FilterKernels&, Ending);
    bool hasByteTables() const { return !mFromBytes[0].empty(); }
    bool hasEndingTables(Ending ending) const
    {
        return !(ending == Ending::Pixels ? mPixels[0].empty() : mColumns[0].empty());
    }

    // The operations up to those that the ending tables are for, or all of them.
    void begin(const FilterKernels& kernels, FilterBlock& block) const { run(kernels, block, 0, middle()); }
    /// Opaque pixels, alpha in the highest byte.
    void beginFromBytes(const FilterKernels&, const std::uint32_t* pixels, int count, FilterBlock&) const;

    // The rest, and where the block goes: encoded values.
    void finish(const FilterKernels&, FilterBlock&) const;
    void finishOpaquePixels(const FilterKernels&, const FilterBlock&, std::uint32_t* pixels) const;
    void finishColumns(const FilterKernels&, const FilterBlock&, std::uint16_t* const (&columns)[3]) const;

private:
    template <class Value> using Tables = std::array<std::vector<Value>, 3>;

    std::size_t middle() const { return mMiddle < mOperations.size() ? mMiddle : mOperations.size(); }
    void run(const FilterKernels&, FilterBlock&, std::size_t first, std::size_t end) const;
    template <class Store> void forAll16BitValues(const FilterKernels&, const Store&) const;

    std::vector<FilterOperation> mOperations;
    std::size_t mLeading = 0; ///< how many the byte tables stand for
    std::size_t mMiddle = SIZE_MAX; ///< from here on the ending tables
    Tables<float> mFromBytes;
    Tables<std::uint8_t> mPixels;
    Tables<std::uint16_t> mColumns;
    bool mIsLinearFromBytes = false, mIsLinearInMiddle = false;
    bool mIsSameForAll = false; ///< the ending tables of all colours
};

} // namespace vxr
