#pragma once

#include <vxr/filters/FilterOperation.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace vxr {

class FilterPointPass;
class FilterSharpener;
struct FilterBlock;
struct FilterKernels;

/// How pixels lie in memory: sRGB or grey, 8 or 16 bits a component in the machine's byte order.
struct FilterFormat {
    enum class Alpha { None, Straight, Premultiplied };

    int bitsPerComponent = 8;
    int componentsPerPixel = 4; ///< those that are ignored included
    bool isGray = false;
    /// Where red, green, blue and alpha stand within a pixel; grey stands at the place of red.
    std::array<int, 4> places { 0, 1, 2, 3 };
    Alpha alpha = Alpha::Premultiplied;
    bool isLinear = false; ///< colours in proportion to light; else encoded

    /// Premultiplied 32-bit pixels in the machine's byte order, alpha in the highest bits.
    VXR_EXPORT static FilterFormat nativeARGB();
    /// Sixteen bits each of red, green, blue and alpha; without an alpha its place is there and ignored.
    VXR_EXPORT static FilterFormat wideRGBA(Alpha alpha, bool isLinear);
    bool isNativeARGB() const { return *this == nativeARGB(); }
    std::size_t bytesPerPixel() const
    {
        return std::size_t(componentsPerPixel) * std::size_t(bitsPerComponent / 8);
    }

    friend bool operator==(const FilterFormat&, const FilterFormat&) = default;
};

/// Runs operations over an image row by row, in memory that grows with its width alone. Neighbouring
/// operations on single pixels run in one pass; between passes components have 16 bits. Grey results are the
/// luminance.
class VXR_EXPORT FilterPipeline {
public:
    /// Where finished rows go, from row 0 on.
    using Sink = std::function<void*(int y)>;

    FilterPipeline(std::span<const FilterOperation> operations, int width, int height,
        const FilterFormat& input, const FilterFormat& output, Sink sink);
    /// With another set than `filterKernels()`, for tests.
    FilterPipeline(std::span<const FilterOperation> operations, int width, int height,
        const FilterFormat& input, const FilterFormat& output, Sink sink, const FilterKernels& kernels);
    ~FilterPipeline();

    /// The next row. The last one finishes the image. A row may be written over its own input: row y is
    /// written after row y has been pushed.
    void push(const void* row);

    /// Whether operations leave their results in proportion to light, from where later ones go on.
    static bool endsLinear(std::span<const FilterOperation> operations, bool beginsLinear = false);

private:
    void makeTables();
    /// One row through a pass: from the input, or from the sharpener in front of the pass.
    void runPass(std::size_t pass, const void* row);
    void beginBlock(std::size_t pass, const void* row, int x, bool& isOpaque);
    void endBlock(std::size_t pass, int x, bool isOpaque, void* out);
    void load(const void* row, int x);
    void store(void* row, int x);
    bool isOpaqueRow(std::size_t pass, const void* row) const;

    int mWidth, mHeight;
    FilterFormat mInput, mOutput;
    Sink mSink;
    const FilterKernels* mKernels;
    std::vector<FilterPointPass> mPasses; ///< one more than there are sharpeners
    std::vector<std::unique_ptr<FilterSharpener>> mSharpeners; ///< between the passes
    std::unique_ptr<FilterBlock> mBlock;
    int mStored = 0;
};

/// Filters a whole image. `pixels` and `out` may be the same memory when the formats are. Does nothing for an
/// image without area.
VXR_EXPORT void applyFilterOperations(std::span<const FilterOperation> operations, int width, int height,
    const FilterFormat& input, const void* pixels, std::size_t bytesPerRow, const FilterFormat& output,
    void* out, std::size_t outBytesPerRow);

} // namespace vxr
