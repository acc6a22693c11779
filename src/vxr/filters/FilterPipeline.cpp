#include <vxr/filters/FilterPipeline.h>

#include <vxr/filters/BoxColumns.h>
#include <vxr/filters/FilterKernels.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace vxr {

namespace {

constexpr int blockSize = 512; ///< pixels whose planes stay in the first cache
constexpr float full16 = 65535;

std::int32_t to16(float v) { return static_cast<std::int32_t>(v * full16 + 0.5f); }

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

FilterFormat FilterFormat::nativeARGB()
{
    FilterFormat format;
    if constexpr (std::endian::native == std::endian::little)
        format.places = { 2, 1, 0, 3 };
    else
        format.places = { 1, 2, 3, 0 };
    return format;
}

/// The planes of up to `blockSize` pixels.
struct FilterPipeline::Block {
    alignas(64) float red[blockSize], green[blockSize], blue[blockSize], alpha[blockSize];
    int count = 0;

    std::array<float*, 3> colors() { return { red, green, blue }; }

    // From and to four components of 16 bits a pixel.
    void readFrom(const std::int32_t* pixels)
    {
        for (int i = 0; i < count; ++i, pixels += 4) {
            red[i] = float(pixels[0]) * (1 / full16);
            green[i] = float(pixels[1]) * (1 / full16);
            blue[i] = float(pixels[2]) * (1 / full16);
            alpha[i] = float(pixels[3]) * (1 / full16);
        }
    }
    void writeTo(std::int32_t* pixels) const
    {
        for (int i = 0; i < count; ++i, pixels += 4) {
            pixels[0] = to16(red[i]);
            pixels[1] = to16(green[i]);
            pixels[2] = to16(blue[i]);
            pixels[3] = to16(alpha[i]);
        }
    }
};

/// Operations on single pixels, done together while a block is at hand.
class FilterPipeline::PointPass {
public:
    void add(const FilterOperation& operation) { mOperations.push_back(operation); }

    void run(const FilterKernels& kernels, Block& block) const
    {
        bool isLinear = false;
        const auto makeLinear = [&](bool linear) {
            if (linear == isLinear)
                return;
            isLinear = linear;
            for (float* plane : block.colors())
                (linear ? kernels.decode : kernels.encode)(plane, block.count);
        };
        for (const FilterOperation& operation : mOperations) {
            switch (operation.kind) {
            case FilterOperation::Kind::Gain:
                makeLinear(true);
                for (float* plane : block.colors())
                    kernels.gain(plane, block.count, operation.scale);
                break;
            case FilterOperation::Kind::Line:
                makeLinear(false);
                for (float* plane : block.colors())
                    kernels.line(plane, block.count, operation.scale, operation.offset);
                break;
            case FilterOperation::Kind::Matrix: {
                makeLinear(true);
                float matrix[9];
                std::copy(operation.matrix.begin(), operation.matrix.end(), matrix);
                kernels.colorMatrix(block.red, block.green, block.blue, block.count, matrix);
                break;
            }
            case FilterOperation::Kind::Custom:
                makeLinear(false);
                operation.custom(block.red, block.green, block.blue, block.count);
                for (float* plane : block.colors())
                    kernels.clamp(plane, block.count);
                break;
            case FilterOperation::Kind::Sharpen:
                break; // between passes
            }
        }
        makeLinear(false);
    }

private:
    std::vector<FilterOperation> mOperations;
};

/// Keeps the rows that the mean of a neighbourhood needs. Rows are straight red, green, blue and alpha of 16
/// bits; the mean is that of premultiplied ones, so that transparent pixels have no colour in it.
class FilterPipeline::Sharpener {
public:
    Sharpener(const FilterOperation& operation, int width, int height)
        : mAmount(operation.scale)
        , mBox(ExtendedBox::forDeviation(operation.radius))
        , mWidth(width)
        , mCapacity(std::min(3 * (mBox.reach + 1) + 2, height))
        , mOriginals(std::size_t(mCapacity) * rowSize())
        , mRow(rowSize())
        , mOther(rowSize())
        , mColumns { { mBox, 4 * width, height }, { mBox, 4 * width, height }, { mBox, 4 * width, height } }
    {
    }

    /// Where the next row is written before it is taken.
    std::int32_t* input() { return original(mTaken); }

    void take(const FilterKernels& kernels, const BoxColumns::Emit& emit)
    {
        const std::int32_t* const row = original(mTaken++);
        for (std::size_t i = 0; i < rowSize(); i += 4) {
            const float alpha = float(row[i + 3]) * (1 / full16);
            for (std::size_t c = 0; c < 3; ++c)
                mRow[i + c] = static_cast<std::int32_t>(float(row[i + c]) * alpha + 0.5f);
            mRow[i + 3] = row[i + 3];
        }
        boxAlongRow(mBox, mRow.data(), mOther.data(), mWidth);
        boxAlongRow(mBox, mOther.data(), mRow.data(), mWidth);
        boxAlongRow(mBox, mRow.data(), mOther.data(), mWidth);
        mColumns[0].push(kernels, mOther.data(), [&](const std::int32_t* first) {
            mColumns[1].push(kernels, first, [&](const std::int32_t* second) {
                mColumns[2].push(
                    kernels, second, [&](const std::int32_t* mean) { emitSharpened(mean, emit); });
            });
        });
    }

private:
    std::size_t rowSize() const { return 4 * std::size_t(mWidth); }
    std::int32_t* original(int y) { return mOriginals.data() + std::size_t(y % mCapacity) * rowSize(); }

    void emitSharpened(const std::int32_t* mean, const BoxColumns::Emit& emit)
    {
        const std::int32_t* const row = original(mGiven++);
        for (std::size_t i = 0; i < rowSize(); i += 4) {
            const float scale = mean[i + 3] > 0 ? full16 / float(mean[i + 3]) : 0;
            for (std::size_t c = 0; c < 3; ++c) {
                const float v = float(row[i + c]);
                const float sharpened = v + mAmount * (v - float(mean[i + c]) * scale);
                mRow[i + c] = static_cast<std::int32_t>(std::clamp(sharpened, 0.0f, full16) + 0.5f);
            }
            mRow[i + 3] = row[i + 3];
        }
        emit(mRow.data());
    }

    float mAmount;
    ExtendedBox mBox;
    int mWidth, mCapacity, mTaken = 0, mGiven = 0;
    std::vector<std::int32_t> mOriginals, mRow, mOther;
    BoxColumns mColumns[3];
};

FilterPipeline::FilterPipeline(std::span<const FilterOperation> operations, int width, int height,
    const FilterFormat& input, const FilterFormat& output, Sink sink)
    : mWidth(width)
    , mHeight(height)
    , mInput(input)
    , mOutput(output)
    , mSink(std::move(sink))
    , mKernels(&filterKernels())
    , mBlock(std::make_unique<Block>())
{
    mPasses.push_back(std::make_unique<PointPass>());
    for (const FilterOperation& operation : operations) {
        if (operation.kind != FilterOperation::Kind::Sharpen) {
            mPasses.back()->add(operation);
            continue;
        }
        mSharpeners.push_back(std::make_unique<Sharpener>(operation, width, height));
        mPasses.push_back(std::make_unique<PointPass>());
    }
}

FilterPipeline::~FilterPipeline() = default;

void FilterPipeline::setKernels(const FilterKernels& kernels) { mKernels = &kernels; }

void FilterPipeline::load(const void* row, int x, Block& block) const
{
    const auto* pixel = static_cast<const std::uint8_t*>(row) + std::size_t(x) * mInput.bytesPerPixel();
    if (mInput.isNativeARGB()) {
        mKernels->loadARGB(reinterpret_cast<const std::uint32_t*>(pixel), block.count, block.red, block.green,
            block.blue, block.alpha);
        return;
    }
    const int bits = mInput.bitsPerComponent;
    const float scale = 1 / (bits == 8 ? 255.0f : full16);
    const bool hasAlpha = mInput.alpha != FilterFormat::Alpha::None;
    for (int i = 0; i < block.count; ++i, pixel += mInput.bytesPerPixel()) {
        const float alpha = hasAlpha ? float(componentAt(pixel, mInput.places[3], bits)) * scale : 1;
        float factor = scale;
        if (mInput.alpha == FilterFormat::Alpha::Premultiplied)
            factor = alpha > 0 ? scale / alpha : 0;
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

void FilterPipeline::store(void* row, int x, const Block& block) const
{
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

void FilterPipeline::push(const void* row) { runPass(0, row, nullptr); }

void FilterPipeline::runPass(std::size_t pass, const void* row, const std::int32_t* sharpened)
{
    const bool isLast = pass == mSharpeners.size();
    void* const out = isLast ? mSink(mStored++) : nullptr;
    for (int x = 0; x < mWidth; x += blockSize) {
        Block& block = *mBlock;
        block.count = std::min(blockSize, mWidth - x);
        if (sharpened)
            block.readFrom(sharpened + 4 * std::size_t(x));
        else
            load(row, x, block);
        mPasses[pass]->run(*mKernels, block);
        if (isLast)
            store(out, x, block);
        else
            block.writeTo(mSharpeners[pass]->input() + 4 * std::size_t(x));
    }
    if (!isLast)
        mSharpeners[pass]->take(
            *mKernels, [&](const std::int32_t* next) { runPass(pass + 1, nullptr, next); });
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
