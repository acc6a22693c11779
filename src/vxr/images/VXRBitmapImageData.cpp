#include <vxr/images/VXRBitmapImageData.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/images/ImageNames.h>
#include <vxr/images/VXRBitmapImages.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/PlatformImage.h>

namespace vxr {

VXRBitmapImageData::VXRBitmapImageData(const std::shared_ptr<VXEData>& data)
    : VXRImageData(data)
{
}

VXRBitmapImageData::~VXRBitmapImageData() = default;

std::shared_ptr<VXRBitmapImageData> VXRBitmapImageData::initWithVXEData(
    const std::shared_ptr<VXEData>& data, std::string* reason)
{
    const std::string extension = lowerCase(data->pathExtension());
    if (!data->hasGoodData() || extension == "pdf" || extension == "pict")
        return nullptr;
    std::shared_ptr<VXRBitmapImageData> made(new VXRBitmapImageData(data));
    made->mImageRep = BitmapImageRep::imageRepWithData(data->data(), reason);
    if (!made->mImageRep || !made->imageRef())
        return nullptr;
    if (data->hfsType() == kHFSTypePICT || data->hfsType() == kHFSTypePDF)
        data->setHFSType(0);
    return made;
}

const std::shared_ptr<const Image>& VXRBitmapImageData::imageRef()
{
    if (!mImageRef)
        mImageRef = VXRImageRefFromBitmapImageRep(*mImageRep, true);
    return mImageRef;
}

void VXRBitmapImageData::stripColorSyncProfile()
{
    mImageRef.reset();
    mImageRef = VXRImageRefFromBitmapImageRep(*mImageRep, false);
}

const std::shared_ptr<const Image>& VXRBitmapImageData::compressedImageRef()
{
    if (!mMayMakeCompressedImage || mCompressedImageRef)
        return mCompressedImageRef;
    const std::string extension = lowerCase(data()->pathExtension());
    if (extension == "jpeg" || extension == "jpg")
        mCompressedImageRef = VXRImageRefFromJPEGData(data()->data(), *mImageRep);
    mMayMakeCompressedImage = mCompressedImageRef != nullptr;
    return mCompressedImageRef;
}

Size VXRBitmapImageData::naturalSize() const
{
    return { static_cast<float>(mImageRep->pixelsWide()), static_cast<float>(mImageRep->pixelsHigh()) };
}

std::shared_ptr<VXRImageRenderer> VXRBitmapImageData::imageRenderer()
{
    auto renderer = VXRBitmapRenderer::imageRendererWithImageRefImageRep(imageRef(), mImageRep);
    renderer->setCompressedImageRef(compressedImageRef());
    return renderer;
}

std::size_t VXRBitmapImageData::bytesUsed() const
{
    return mImageRep->bytesPerRow() * static_cast<std::size_t>(mImageRep->pixelsHigh()) + data()->bytesUsed();
}

std::shared_ptr<PlatformImage> VXRBitmapImageData::nsImage()
{
    return PlatformImage::imageWithRep(mImageRep);
}

} // namespace vxr
