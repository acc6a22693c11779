#include <vxr/platform/graphics/ImageImpl.h>

#include <algorithm>
#include <cstring>

namespace vxr {

int ImageLayout::bytesPerPixel() const
{
    return (space ? space->componentCount() : 3) + (alpha == AlphaFormat::None ? 0 : 1);
}

ImageLayout ImageLayout::nativeARGB(int width, int height, std::size_t bytesPerRow)
{
    return { .width = width,
        .height = height,
        .bytesPerRow = bytesPerRow,
        .alpha = AlphaFormat::PremultipliedFirst,
        .nativeOrder = true,
        .space = ColorSpace::deviceRGB() };
}

bool isPossibleLayout(const ImageLayout& layout, std::size_t size)
{
    if (layout.width < 1 || layout.height < 1 || layout.width > maxImageSide || layout.height > maxImageSide)
        return false;
    if (layout.alpha < AlphaFormat::None || layout.alpha > AlphaFormat::NoneSkipFirst)
        return false;
    if (layout.nativeOrder && layout.bytesPerPixel() != 4)
        return false;
    const std::size_t row = static_cast<std::size_t>(layout.width) * layout.bytesPerPixel();
    if (layout.bytesPerRow < row || size < row)
        return false;
    // The last row may end right after its last pixel.
    return (size - row) / layout.bytesPerRow >= static_cast<std::size_t>(layout.height) - 1;
}

Image::Impl::Impl(
    const ImageLayout& imageLayout, const std::uint8_t* imagePixels, std::shared_ptr<const void> pixelOwner)
    : layout(imageLayout)
    , sourceWidth(imageLayout.width)
    , sourceHeight(imageLayout.height)
    , mPixels(imagePixels)
    , mOwner(std::move(pixelOwner))
{
}

const std::uint8_t* Image::Impl::bytes()
{
    if (!mPixels && makePixels) {
        const auto made = makePixels();
        mPixels = made.get();
        mOwner = made;
    }
    return mPixels;
}

Image::Image(std::unique_ptr<Impl> impl)
    : mImpl(std::move(impl))
{
}

Image::~Image() = default;

std::shared_ptr<const Image> Image::createWithCopy(
    const ImageLayout& layout, const void* pixels, std::size_t size)
{
    if (!pixels || !isPossibleLayout(layout, size))
        return nullptr;
    const std::size_t used = layout.bytesPerRow * (static_cast<std::size_t>(layout.height) - 1)
        + static_cast<std::size_t>(layout.width) * layout.bytesPerPixel();
    auto copy = std::make_shared_for_overwrite<std::uint8_t[]>(used);
    std::memcpy(copy.get(), pixels, used);
    const std::uint8_t* data = copy.get();
    return create(layout, data, used, std::shared_ptr<const void>(std::move(copy), data));
}

std::shared_ptr<const Image> Image::create(
    const ImageLayout& layout, const void* pixels, std::size_t size, std::shared_ptr<const void> owner)
{
    if (!pixels || !isPossibleLayout(layout, size))
        return nullptr;
    return std::make_shared<Image>(
        std::make_unique<Impl>(layout, static_cast<const std::uint8_t*>(pixels), std::move(owner)));
}

std::shared_ptr<const Image> Image::createWithJPEG(const ImageLayout& layout, const void* pixels,
    std::size_t size, std::shared_ptr<const void> owner, std::shared_ptr<const Data> jpeg)
{
    const auto image = create(layout, pixels, size, std::move(owner));
    if (image)
        image->impl().jpeg = std::move(jpeg);
    return image;
}

std::shared_ptr<const Image> Image::createWithBlend(const ImageLayout& layout, const ImageBlend& blend,
    std::function<std::shared_ptr<const std::uint8_t>()> makePixels)
{
    if (!isPossibleLayout(layout, layout.bytesPerRow * static_cast<std::size_t>(std::max(layout.height, 0))))
        return nullptr;
    auto impl = std::make_unique<Impl>(layout, nullptr, nullptr);
    impl->blend = blend;
    impl->makePixels = std::move(makePixels);
    return std::make_shared<Image>(std::move(impl));
}

int Image::width() const { return mImpl->layout.width; }

int Image::height() const { return mImpl->layout.height; }

const ImageLayout& Image::layout() const { return mImpl->layout; }

const std::uint8_t* Image::pixels() const { return mImpl->bytes(); }

bool Image::isOpaque() const
{
    const AlphaFormat alpha = mImpl->layout.alpha;
    return alpha == AlphaFormat::None || alpha == AlphaFormat::NoneSkipLast
        || alpha == AlphaFormat::NoneSkipFirst;
}

int Image::halvings() const { return mImpl->halvings; }

Size Image::sourceSize() const
{
    return { static_cast<float>(mImpl->sourceWidth), static_cast<float>(mImpl->sourceHeight) };
}

void Image::prepare() const { mImpl->native(); }

} // namespace vxr
