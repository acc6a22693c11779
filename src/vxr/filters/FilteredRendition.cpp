#include <vxr/filters/FilteredRendition.h>

#include <vxr/platform/graphics/Image.h>

#include <algorithm>

namespace vxr {

std::size_t FilteredRendition::bytesUsed() const
{
    const std::size_t result = mResult ? mResult->layout().bytesPerRow * std::size_t(mResult->height()) : 0;
    return result + (mLower ? mLower->bytes : 0);
}

void FilteredRendition::layerChanged(std::size_t layer)
{
    mResult.reset();
    if (mLower && layer < mLower->end)
        mLower.reset();
}

std::vector<FilterOperation> FilteredRendition::operations(
    const Layers& layers, std::size_t first, std::size_t end) const
{
    std::vector<FilterOperation> all;
    for (std::size_t i = first; i < std::min(end, layers.size()); ++i) {
        for (FilterOperation operation : layers[i]) {
            operation.radius = static_cast<float>(double { operation.radius } * mScale);
            all.push_back(std::move(operation));
        }
    }
    return all;
}

/// Advances `first` to the layer from which on it has to be filtered.
const FilterSource& FilteredRendition::sourceFor(std::size_t& first) const
{
    first = mLower ? mLower->end : 0;
    return mLower ? mLower->source : mSource;
}

void FilteredRendition::keepLower(const Layers& layers, std::size_t end)
{
    std::size_t first;
    const FilterSource& source = sourceFor(first);
    const auto below = operations(layers, first, end);
    if (below.empty())
        return;
    using Alpha = FilterFormat::Alpha;
    const FilterFormat format = FilterFormat::wideRGBA(
        source.isOpaque() ? Alpha::None : Alpha::Straight, FilterPipeline::endsLinear(below));
    const std::size_t bytesPerRow = 8 * std::size_t(source.width());
    const auto pixels = std::make_shared<std::vector<std::uint16_t>>(
        4 * std::size_t(source.width()) * std::size_t(source.height()));
    applyFilterOperations(below, source, format, pixels->data(), bytesPerRow);
    FilterSource lower(source.width(), source.height(), format, pixels->data(), bytesPerRow, pixels);
    mLower = Lower { end, std::move(lower), pixels->size() * sizeof(std::uint16_t) };
}

const std::shared_ptr<const Image>& FilteredRendition::run(
    const Layers& layers, std::size_t kept, std::size_t mostBytes)
{
    if (mResult || mSource.isEmpty())
        return mResult;
    if (8.0 * mSource.width() * mSource.height() <= double(mostBytes) && (!mLower || mLower->end < kept))
        keepLower(layers, kept);
    std::size_t first;
    const FilterSource& source = sourceFor(first);
    const std::size_t bytesPerRow = 4 * std::size_t(source.width());
    auto pixels = std::make_shared<std::vector<std::uint8_t>>(bytesPerRow * std::size_t(source.height()));
    ImageLayout layout = ImageLayout::nativeARGB(source.width(), source.height(), bytesPerRow);
    if (source.isOpaque()) {
        layout.alpha = AlphaFormat::NoneSkipFirst;
        layout.isFullAlpha = true;
    }
    applyFilterOperations(operations(layers, first, layers.size()), source, FilterFormat::nativeARGB(),
        pixels->data(), bytesPerRow);
    mResult = Image::create(layout, pixels->data(), pixels->size(), pixels);
    return mResult;
}

} // namespace vxr
