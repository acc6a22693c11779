#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/imaging/ImportedBitmap.h>
#include <vxr/platform/pictures/ImportedImages.h>

namespace vxr {

std::shared_ptr<const Image> imageOfImportedBitmap(const std::shared_ptr<const ImportedBitmap>& bitmap)
{
    if (!bitmap || !bitmap->format().isDrawable)
        return nullptr;
    const BitmapFormat& format = bitmap->format();
    ImageLayout layout = ImageLayout::nativeARGB(
        static_cast<int>(format.width), static_cast<int>(format.height), format.bytesPerRow);
    if (!format.hasAlpha)
        layout.alpha = AlphaFormat::NoneSkipFirst;
    layout.isFullAlpha = !format.hasAlpha;
    return Image::create(layout, bitmap->pixels().data(), bitmap->pixels().size(), bitmap);
}

} // namespace vxr
