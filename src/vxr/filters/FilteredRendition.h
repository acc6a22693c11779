#pragma once

#include <vxr/filters/FilterSource.h>

#include <optional>

namespace vxr {

/// A filtered image at one size: the result, and the pixels below the layer that changes, so that only the
/// layers from there on run again. Both give the same bytes.
class FilteredRendition {
public:
    /// What the layers do, from the lowest one on. Each ends by rounding to 16 bits, or is empty.
    using Layers = std::vector<std::vector<FilterOperation>>;

    /// Radii shrink by `scale`, for a source that is smaller than the image by that.
    FilteredRendition(FilterSource source, double scale)
        : mSource(std::move(source))
        , mScale(scale)
    {
    }

    const std::shared_ptr<const Image>& result() const { return mResult; }
    /// Runs the layers. Those below `kept` are kept for the next time, unless they do nothing or would take
    /// more than `mostBytes`. Throws what a filter throws.
    const std::shared_ptr<const Image>& run(const Layers&, std::size_t kept, std::size_t mostBytes);
    void layerChanged(std::size_t layer); ///< counted as in `Layers`

    bool hasLower() const { return mLower.has_value(); }
    void dropLower() { mLower.reset(); }
    std::size_t bytesUsed() const;

private:
    /// Straight colours of 16 bits.
    struct Lower {
        std::size_t end; ///< the first layer that is not in it
        FilterSource source;
        std::size_t bytes;
    };

    void keepLower(const Layers&, std::size_t end);
    std::vector<FilterOperation> operations(const Layers&, std::size_t first, std::size_t end) const;
    const FilterSource& sourceFor(std::size_t& first) const;

    FilterSource mSource;
    double mScale;
    std::optional<Lower> mLower;
    std::shared_ptr<const Image> mResult;
};

} // namespace vxr
