#include <vxr/platform/imaging/ImportedBitmap.h>

#include <utility>

namespace vxr {

ImportedBitmap::ImportedBitmap(
    BitmapInfo info, BitmapFormat format, const std::byte* pixels, std::shared_ptr<const void> owner)
    : mInfo(std::move(info))
    , mFormat(format)
    , mPixels(pixels)
    , mOwner(std::move(owner))
{
}

ImportedBitmap::~ImportedBitmap() = default;

std::span<const std::byte> ImportedBitmap::pixels() const
{
    return { mPixels, std::size_t(mFormat.bytesPerRow) * mFormat.height };
}

} // namespace vxr
