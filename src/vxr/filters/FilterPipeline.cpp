#include <vxr/filters/FilterPipeline.h>

#include <vxr/filters/FilterPointPass.h>
#include <vxr/filters/FilterSharpener.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace vxr {

namespace {

constexpr float full16 = 65535;

int componentAt(const std::uint8_t* pixel, int place, int bits)
{
    if (bits == 8)
        return pixel[place];
    std::uint16_t value;
    std::memcpy(&value, pixel + 2 * place, sizeof value);
    return value;
}

void setComponent(std::uint8_t* pixel, int place, int bits, float v)
{
    if (bits == 8) {
        pixel[place] = static_cast<std::uint8_t>(v * 255 + 0.5f);
        return;
    }
    const auto value = static_cast<std::uint16_t>(v * full16 + 0.5f);
    std::memcpy(pixel + 2 * place, &value, sizeof value);
}

} // namespace

FilterFormat FilterFormat::wideRGBA(Alpha alpha, bool isLinear)
{
    return { 16, 4, false, { 0, 1, 2, 3 }, alpha, isLinear };
}

FilterFormat FilterFormat::nativeARGB()
{
    FilterFormat format;
    if constexpr (std::endian::native == std::endian::little)
        format.places = { 2, 1, 0, 3 };
    else
        format.places = { 1, 2, 3, 0 };
    return format;
}

FilterPipeline::FilterPipeline(std::span<const FilterOperation> operations, int width, int height,
    const FilterFormat& input, const FilterFormat& output, Sink sink)
    : FilterPipeline(operations, width, height, input, output, std::move(sink), filterKernels())
{
}

FilterPipeline::FilterPipeline(std::span<const FilterOperation> operations, int width, int height,
    const FilterFormat& input, const FilterFormat& output, Sink sink, const FilterKernels& kernels)
    : mWidth(width)
    , mHeight(height)
    , mInput(input)
    , mOutput(output)
    , mSink(std::move(sink))
    , mKernels(&kernels)
    , mPasses(1)
    , mBlock(std::make_unique<FilterBlock>())
{
    for (const FilterOperation& operation : operations) {
        if (operation.kind != FilterOperation::Kind::Sharpen) {
            mPasses.back().add(operation);
            continue;
        }
        mSharpeners.push_back(std::make_unique<FilterSharpener>(operation, width, height));
        mPasses.emplace_back();
    }
    makeTables();
}

FilterPipeline::~FilterPipeline() = default;

/// Tables of 65,536 values pay for large images only.
void FilterPipeline::makeTables()
{
    using Ending = FilterPointPass::Ending;
    const bool isLarge = double(mWidth) * mHeight >= 4 * 0x10000;
    for (std::size_t i = 0; i < mPasses.size() && isLarge; ++i) {
        if (i < mSharpeners.size())
            mPasses[i].makeEndingTables(*mKernels, Ending::Columns);
        else if (mOutput.isNativeARGB())
            mPasses[i].makeEndingTables(*mKernels, Ending::Pixels);
    }
    if (mInput.isNativeARGB())
        mPasses[0].makeByteTables(*mKernels);
}

bool FilterPipeline::endsLinear(std::span<const FilterOperation> operations, bool beginsLinear)
{
    for (const FilterOperation& operation : operations) {
        if (operation.kind != FilterOperation::Kind::Round)
            beginsLinear = operation.kind == FilterOperation::Kind::Gain
                || operation.kind == FilterOperation::Kind::Matrix;
    }
    return beginsLinear;
}

void FilterPipeline::load(const void* row, int x)
{
    FilterBlock& block = *mBlock;
    block.isLinear = mInput.isLinear;
    const auto* pixel = static_cast<const std::uint8_t*>(row) + std::size_t(x) * mInput.bytesPerPixel();
    if (mInput.isNativeARGB()) {
        mKernels->loadARGB(reinterpret_cast<const std::uint32_t*>(pixel), block.count, block.red, block.green,
            block.blue, block.alpha);
        return;
    }
    if (mInput == FilterFormat::wideRGBA(mInput.alpha, mInput.isLinear)
        && mInput.alpha != FilterFormat::Alpha::Premultiplied) {
        mKernels->loadWide(reinterpret_cast<const std::uint16_t*>(pixel), block.count, block.red, block.green,
            block.blue, block.alpha);
        if (mInput.alpha == FilterFormat::Alpha::None)
            std::fill_n(block.alpha, block.count, 1.0f);
        return;
    }
    const int bits = mInput.bitsPerComponent;
    const float scale = 1 / (bits == 8 ? 255.0f : full16);
    const bool hasAlpha = mInput.alpha != FilterFormat::Alpha::None;
    for (int i = 0; i < block.count; ++i, pixel += mInput.bytesPerPixel()) {
        // Alpha as it comes back from 16 bits.
        const int alpha16
            = hasAlpha ? componentAt(pixel, mInput.places[3], bits) * (bits == 8 ? 257 : 1) : 65535;
        const float alpha = float(alpha16) * (1 / full16);
        float factor = scale;
        if (mInput.alpha == FilterFormat::Alpha::Premultiplied)
            factor = alpha16 > 0 ? scale / alpha : 0;
        const auto color = [&](std::size_t c) {
            return std::min(
                float(componentAt(pixel, mInput.places[mInput.isGray ? 0 : c], bits)) * factor, 1.0f);
        };
        block.red[i] = color(0);
        block.green[i] = color(1);
        block.blue[i] = color(2);
        block.alpha[i] = alpha;
    }
}

void FilterPipeline::store(void* row, int x)
{
    FilterBlock& block = *mBlock;
    block.makeLinear(*mKernels, mOutput.isLinear);
    auto* pixel = static_cast<std::uint8_t*>(row) + std::size_t(x) * mOutput.bytesPerPixel();
    if (mOutput.isNativeARGB()) {
        mKernels->storeARGB(block.red, block.green, block.blue, block.alpha, block.count,
            reinterpret_cast<std::uint32_t*>(pixel));
        return;
    }
    const int bits = mOutput.bitsPerComponent;
    for (int i = 0; i < block.count; ++i, pixel += mOutput.bytesPerPixel()) {
        const float alpha = block.alpha[i];
        const float factor = mOutput.alpha == FilterFormat::Alpha::Premultiplied ? alpha : 1;
        if (mOutput.isGray) {
            float light[] = { block.red[i], block.green[i], block.blue[i] };
            if (light[0] != light[1] || light[1] != light[2]) {
                mKernels->decode(light, 3);
                light[0] = 0.2126f * light[0] + 0.7152f * light[1] + 0.0722f * light[2];
                mKernels->encode(light, 1);
            }
            setComponent(pixel, mOutput.places[0], bits, light[0] * factor);
        } else {
            setComponent(pixel, mOutput.places[0], bits, block.red[i] * factor);
            setComponent(pixel, mOutput.places[1], bits, block.green[i] * factor);
            setComponent(pixel, mOutput.places[2], bits, block.blue[i] * factor);
        }
        if (mOutput.alpha != FilterFormat::Alpha::None)
            setComponent(pixel, mOutput.places[3], bits, alpha);
    }
}

void FilterPipeline::push(const void* row) { runPass(0, row); }

bool FilterPipeline::isOpaqueRow(std::size_t pass, const void* row) const
{
    if (pass > 0)
        return mSharpeners[pass - 1]->isOpaque();
    if (mInput.alpha == FilterFormat::Alpha::None)
        return true;
    return mInput.isNativeARGB() && mKernels->isOpaque(static_cast<const std::uint32_t*>(row), mWidth);
}

void FilterPipeline::beginBlock(std::size_t pass, const void* row, int x, bool& isOpaque)
{
    FilterBlock& block = *mBlock;
    if (pass > 0) {
        mSharpeners[pass - 1]->load(*mKernels, x, block);
    } else if (mPasses[0].hasByteTables()) {
        const auto* pixels = static_cast<const std::uint32_t*>(row) + x;
        isOpaque = isOpaque || mKernels->isOpaque(pixels, block.count);
        if (isOpaque)
            return mPasses[0].beginFromBytes(*mKernels, pixels, block.count, block);
        load(row, x);
    } else {
        load(row, x);
    }
    mPasses[pass].begin(*mKernels, block);
}

void FilterPipeline::endBlock(std::size_t pass, int x, bool isOpaque, void* out)
{
    using Ending = FilterPointPass::Ending;
    FilterBlock& block = *mBlock;
    if (out) {
        if (isOpaque && mPasses[pass].hasEndingTables(Ending::Pixels))
            return mPasses[pass].finishOpaquePixels(*mKernels, block, static_cast<std::uint32_t*>(out) + x);
        mPasses[pass].finish(*mKernels, block);
        return store(out, x);
    }
    FilterSharpener& sharpener = *mSharpeners[pass];
    std::uint16_t* const columns[]
        = { sharpener.input(0) + x, sharpener.input(1) + x, sharpener.input(2) + x };
    if (mPasses[pass].hasEndingTables(Ending::Columns)) {
        mPasses[pass].finishColumns(*mKernels, block, columns);
    } else {
        mPasses[pass].finish(*mKernels, block);
        block.makeLinear(*mKernels, false);
        for (std::size_t c = 0; c < 3; ++c)
            mKernels->to16(block.colors()[c], block.count, columns[c]);
    }
    mKernels->to16(block.alpha, block.count, sharpener.input(3) + x);
}

void FilterPipeline::runPass(std::size_t pass, const void* row)
{
    const bool isLast = pass == mSharpeners.size();
    void* const out = isLast ? mSink(mStored++) : nullptr;
    const bool isOpaque = isOpaqueRow(pass, row);
    for (int x = 0; x < mWidth; x += FilterBlock::size) {
        mBlock->count = std::min(FilterBlock::size, mWidth - x);
        bool isOpaqueBlock = isOpaque;
        beginBlock(pass, row, x, isOpaqueBlock);
        endBlock(pass, x, isOpaqueBlock, out);
    }
    if (!isLast)
        mSharpeners[pass]->take(*mKernels, isOpaque, [&] { runPass(pass + 1, nullptr); });
}

void applyFilterOperations(std::span<const FilterOperation> operations, int width, int height,
    const FilterFormat& input, const void* pixels, std::size_t bytesPerRow, const FilterFormat& output,
    void* out, std::size_t outBytesPerRow)
{
    if (width <= 0 || height <= 0)
        return;
    const auto* rows = static_cast<const std::byte*>(pixels);
    auto* outRows = static_cast<std::byte*>(out);
    if (operations.empty() && input == output) {
        for (int y = 0; y < height; ++y)
            std::memmove(outRows + std::size_t(y) * outBytesPerRow, rows + std::size_t(y) * bytesPerRow,
                std::size_t(width) * input.bytesPerPixel());
        return;
    }
    FilterPipeline pipeline(operations, width, height, input, output,
        [&](int y) { return outRows + std::size_t(y) * outBytesPerRow; });
    for (int y = 0; y < height; ++y)
        pipeline.push(rows + std::size_t(y) * bytesPerRow);
}

} // namespace vxr
