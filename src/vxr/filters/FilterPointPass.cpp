#include <vxr/filters/FilterPointPass.h>

#include <algorithm>

namespace vxr {

namespace {

bool mixesColors(const FilterOperation& operation)
{
    return operation.kind == FilterOperation::Kind::Matrix || operation.kind == FilterOperation::Kind::Custom;
}

bool isLight(const FilterOperation& operation)
{
    return operation.kind == FilterOperation::Kind::Matrix || operation.kind == FilterOperation::Kind::Gain;
}

} // namespace

void FilterPointPass::run(
    const FilterKernels& kernels, FilterBlock& block, std::size_t first, std::size_t end) const
{
    for (std::size_t i = first; i < end; ++i) {
        const FilterOperation& operation = mOperations[i];
        if (operation.kind != FilterOperation::Kind::Round)
            block.makeLinear(kernels, isLight(operation));
        const auto colors = block.colors();
        switch (operation.kind) {
        case FilterOperation::Kind::Gain:
            for (float* plane : colors)
                kernels.gain(plane, block.count, operation.scale);
            break;
        case FilterOperation::Kind::Line:
            for (float* plane : colors)
                kernels.line(plane, block.count, operation.scale, operation.offset);
            break;
        case FilterOperation::Kind::Lines:
            for (std::size_t c = 0; c < 3; ++c)
                kernels.line(colors[c], block.count, operation.matrix[c], operation.matrix[3 + c]);
            break;
        case FilterOperation::Kind::Matrix: {
            float matrix[9];
            std::copy(operation.matrix.begin(), operation.matrix.end(), matrix);
            const bool rounds = i + 1 < end && mOperations[i + 1].kind == FilterOperation::Kind::Round;
            kernels.colorMatrix(block.red, block.green, block.blue, block.count, matrix, rounds);
            i += rounds;
            break;
        }
        case FilterOperation::Kind::Custom:
            operation.custom(block.red, block.green, block.blue, block.count);
            for (float* plane : colors)
                kernels.clamp(plane, block.count);
            break;
        case FilterOperation::Kind::Round:
            for (float* plane : colors)
                kernels.round16(plane, block.count);
            break;
        case FilterOperation::Kind::Sharpen: // between passes
            break;
        }
    }
}

void FilterPointPass::finish(const FilterKernels& kernels, FilterBlock& block) const
{
    run(kernels, block, middle(), mOperations.size());
}

// Tables.

void FilterPointPass::makeByteTables(const FilterKernels& kernels)
{
    const auto mixing = std::ranges::find_if(mOperations, mixesColors);
    mLeading = std::min(static_cast<std::size_t>(mixing - mOperations.begin()), middle());
    const bool hasMore = mLeading < middle();
    FilterBlock block;
    block.count = 256;
    std::uint32_t grays[256];
    for (std::uint32_t v = 0; v < 256; ++v)
        grays[v] = 0xff000000 | v * 0x10101;
    kernels.loadARGB(grays, block.count, block.red, block.green, block.blue, block.alpha);
    run(kernels, block, 0, mLeading);
    if (hasMore)
        block.makeLinear(kernels, isLight(mOperations[mLeading]));
    mIsLinearFromBytes = block.isLinear;
    for (std::size_t c = 0; c < 3; ++c)
        mFromBytes[c].assign(block.colors()[c], block.colors()[c] + 256);
}

void FilterPointPass::beginFromBytes(
    const FilterKernels& kernels, const std::uint32_t* pixels, int count, FilterBlock& block) const
{
    const float *const reds = mFromBytes[0].data(), *const greens = mFromBytes[1].data(),
                       *const blues = mFromBytes[2].data();
    for (int i = 0; i < count; ++i) {
        const std::uint32_t pixel = pixels[i];
        block.red[i] = reds[pixel >> 16 & 255];
        block.green[i] = greens[pixel >> 8 & 255];
        block.blue[i] = blues[pixel & 255];
    }
    std::fill_n(block.alpha, count, 1.0f);
    block.count = count;
    block.isLinear = mIsLinearFromBytes;
    run(kernels, block, mLeading, middle());
}

/// Calls `store` with blocks that hold all values of 16 bits, finished, and the first one of each.
template <class Store>
void FilterPointPass::forAll16BitValues(const FilterKernels& kernels, const Store& store) const
{
    FilterBlock block;
    for (int first = 0; first < 0x10000; first += FilterBlock::size) {
        block.count = FilterBlock::size;
        std::uint16_t values[FilterBlock::size];
        for (int i = 0; i < block.count; ++i)
            values[i] = static_cast<std::uint16_t>(first + i);
        for (float* plane : block.colors())
            kernels.from16(values, block.count, plane);
        std::fill_n(block.alpha, block.count, 1.0f);
        block.isLinear = mIsLinearInMiddle;
        finish(kernels, block);
        block.makeLinear(kernels, false);
        store(block, static_cast<std::size_t>(first));
    }
}

void FilterPointPass::makeEndingTables(const FilterKernels& kernels, Ending ending)
{
    const auto mixing = std::find_if(mOperations.rbegin(), mOperations.rend(), mixesColors).base();
    if (mixing == mOperations.begin() || mixing == mOperations.end()
        || mixing->kind != FilterOperation::Kind::Round)
        return;
    mMiddle = static_cast<std::size_t>(mixing - mOperations.begin()) + 1;
    mIsLinearInMiddle = isLight(mixing[-1]);
    for (std::size_t c = 0; c < 3; ++c) {
        mPixels[c].resize(ending == Ending::Pixels ? 0x10000 : 0);
        mColumns[c].resize(ending == Ending::Columns ? 0x10000 : 0);
    }
    forAll16BitValues(kernels, [&](const FilterBlock& block, std::size_t first) {
        if (ending == Ending::Columns) {
            for (std::size_t c = 0; c < 3; ++c)
                kernels.to16(block.colors()[c], block.count, mColumns[c].data() + first);
            return;
        }
        std::uint32_t pixels[FilterBlock::size];
        kernels.storeARGB(block.red, block.green, block.blue, block.alpha, block.count, pixels);
        for (std::size_t i = 0; i < FilterBlock::size; ++i) {
            for (std::size_t c = 0; c < 3; ++c)
                mPixels[c][first + i] = static_cast<std::uint8_t>(pixels[i] >> (16 - 8 * c));
        }
    });
    // Where all colours go the same way, one table stays in the cache.
    if (mPixels[0] == mPixels[1] && mPixels[1] == mPixels[2] && mColumns[0] == mColumns[1]
        && mColumns[1] == mColumns[2])
        mIsSameForAll = true;
}

void FilterPointPass::finishOpaquePixels(
    const FilterKernels& kernels, const FilterBlock& block, std::uint32_t* pixels) const
{
    std::uint16_t values[3][FilterBlock::size];
    for (std::size_t c = 0; c < 3; ++c)
        kernels.to16(block.colors()[c], block.count, values[c]);
    const std::uint8_t* const reds = mPixels[0].data();
    const std::uint8_t* const greens = mPixels[mIsSameForAll ? 0 : 1].data();
    const std::uint8_t* const blues = mPixels[mIsSameForAll ? 0 : 2].data();
    for (int i = 0; i < block.count; ++i)
        pixels[i] = 0xff000000 | std::uint32_t { reds[values[0][i]] } << 16
            | std::uint32_t { greens[values[1][i]] } << 8 | blues[values[2][i]];
}

void FilterPointPass::finishColumns(
    const FilterKernels& kernels, const FilterBlock& block, std::uint16_t* const (&columns)[3]) const
{
    for (std::size_t c = 0; c < 3; ++c) {
        kernels.to16(block.colors()[c], block.count, columns[c]);
        const std::uint16_t* const table = mColumns[mIsSameForAll ? 0 : c].data();
        for (int i = 0; i < block.count; ++i)
            columns[c][i] = table[columns[c][i]];
    }
}

} // namespace vxr
