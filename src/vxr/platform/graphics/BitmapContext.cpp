#include <vxr/platform/graphics/BitmapContext.h>

#include <vxr/platform/graphics/Image.h>

namespace vxr {

std::shared_ptr<const Image> BitmapContext::makeImage() const
{
    const ImageLayout layout { width(), height(), bytesPerRow(), AlphaFormat::PremultipliedFirst, true,
        nullptr };
    const std::size_t lastRow = 4 * static_cast<std::size_t>(width());
    return Image::createWithCopy(
        layout, pixels(), bytesPerRow() * static_cast<std::size_t>(height() - 1) + lastRow);
}

} // namespace vxr
