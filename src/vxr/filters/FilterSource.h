#pragma once

#include <vxr/filters/FilterPipeline.h>

#include <functional>

namespace vxr {

class BitmapImageRep;
class Image;

/// The rows of a picture in a form that a `FilterPipeline` takes. Colours that are not the output's own, such
/// as inks, are converted as the rows are read.
class FilterSource {
public:
    static FilterSource ofImage(std::shared_ptr<const Image>);
    /// With all of the bits of 16-bit grey and RGB samples.
    static FilterSource ofRep(const std::shared_ptr<const BitmapImageRep>&);
    /// Over pixels that `owner` keeps alive.
    FilterSource(int width, int height, const FilterFormat&, const void* pixels, std::size_t bytesPerRow,
        std::shared_ptr<const void> owner);

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    bool isEmpty() const { return mWidth <= 0 || mHeight <= 0; }
    const FilterFormat& format() const { return mFormat; }
    bool isOpaque() const { return mFormat.alpha == FilterFormat::Alpha::None; }
    const void* row(int y) const { return mRow(y); } ///< valid until the next one

private:
    using Row = std::function<const void*(int y)>;

    FilterSource(int width, int height, const FilterFormat& format, Row row)
        : mWidth(width)
        , mHeight(height)
        , mFormat(format)
        , mRow(std::move(row))
    {
    }

    int mWidth, mHeight;
    FilterFormat mFormat;
    Row mRow;
};

/// As on memory.
void applyFilterOperations(std::span<const FilterOperation> operations, const FilterSource& source,
    const FilterFormat& output, void* out, std::size_t outBytesPerRow);

} // namespace vxr
