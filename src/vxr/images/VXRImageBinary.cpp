#include <vxr/images/VXRImageBinary.h>

#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEPasteboardAssistant.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/ImageNames.h>
#include <vxr/images/VXRBitmapImageData.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/images/VXRPDFImageData.h>
#include <vxr/images/VXRPICTImageData.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/pictures/PDFImageRep.h>
#include <vxr/platform/pictures/PICTImageRep.h>
#include <vxr/platform/pictures/Pasteboard.h>
#include <vxr/platform/pictures/PlatformImage.h>

namespace vxr {

namespace {

constexpr Size defaultNaturalSize { 100, 100 };

template <class Kind>
std::shared_ptr<VXRImageData> tryKind(const std::shared_ptr<VXEData>& data, std::string* reason)
{
    return Kind::initWithVXEData(data, reason);
}

} // namespace

VXRImageBinary::VXRImageBinary() = default;

VXRImageBinary::~VXRImageBinary() = default;

void VXRImageBinary::_constructImageData()
{
    if (isMissing() || isCorrupted())
        return;
    std::shared_ptr<VXRImageData> made;
    std::string reason = "No program reads files of its kind.";
    for (const auto kind :
        { tryKind<VXRPICTImageData>, tryKind<VXRPDFImageData>, tryKind<VXRBitmapImageData> }) {
        made = kind(mData, &reason);
        if (made)
            break;
    }
    setImageData(made);
    if (made) {
        mNaturalImageSize = made->naturalSize();
    } else {
        mData->setFileIsCorrupt(true);
        VXULog_Fn(VXULogLevelWarning, "VXRImageBinary.cpp",
            "The picture \"" + name() + "\" can't be shown: " + reason);
    }
    VXUObjectFlusher::instance().objectAddedData(*this);
}

const std::shared_ptr<VXRImageData>& VXRImageBinary::imageData()
{
    if (!mImageData && !isCorrupted() && !isMissing())
        _constructImageData();
    else
        VXUObjectFlusher::instance().objectTouched(*this);
    return mImageData;
}

void VXRImageBinary::setImageData(std::shared_ptr<VXRImageData> imageData)
{
    mImageData = std::move(imageData);
}

Size VXRImageBinary::naturalImageSize()
{
    if (mNaturalImageSize == Size {} && mData)
        _constructImageData();
    return mNaturalImageSize == Size {} ? defaultNaturalSize : mNaturalImageSize;
}

std::string VXRImageBinary::name() const { return mData ? mData->displayName() : std::string(); }

std::shared_ptr<PlatformImage> VXRImageBinary::nsImage()
{
    const auto decoded = imageData();
    return decoded ? decoded->nsImage() : nullptr;
}

std::shared_ptr<VXRImageRenderer> VXRImageBinary::imageRenderer()
{
    if (isMissing())
        return VXRDummyImageRenderer::missingImageRendererWithSize(naturalImageSize());
    // Whether the bytes can be decoded is known once that has been tried.
    const auto decoded = isCorrupted() ? nullptr : imageData();
    if (!decoded)
        return VXRDummyImageRenderer::brokenImageRendererWithSize(naturalImageSize());
    VXUObjectFlusher::instance().objectTouched(*this);
    return decoded->imageRenderer();
}

bool VXRImageBinary::isMissing() const { return !mData || !mData->hasGoodData(); }

bool VXRImageBinary::isCorrupted() const { return mData && mData->fileIsCorrupt(); }

bool VXRImageBinary::sharable() const { return mData && mData->sharable(); }

std::size_t VXRImageBinary::bytesUsed() const
{
    if (mImageData)
        return mImageData->bytesUsed();
    return mData ? mData->bytesUsed() : 0;
}

bool VXRImageBinary::isFlushable() const { return mImageData || (mData && mData->isFlushable()); }

void VXRImageBinary::flushLocalData()
{
    if (!isFlushable())
        return;
    if (mImageData)
        mImageData.reset();
    else
        mData->flushLocalData();
    NotificationCenter::defaultCenter().post(VXRImageBinaryWasFlushedNotification, this);
}

bool VXRImageBinary::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* binary = dynamic_cast<const VXRImageBinary*>(&other);
    return binary && mData && binary->mData && mData->isEquivalent(*binary->mData);
}

void VXRImageBinary::putNativeStandardPasteboardDataOnPasteboardAssistant(VXEPasteboardAssistant& assistant)
{
    if (isMissing() || isCorrupted())
        return;
    switch (mData->hfsType()) {
    case kHFSTypePDF:
        return assistant.setVXEDataForType(mData, kPasteboardTypePDF);
    case kHFSTypeTIFF:
        return assistant.setVXEDataForType(mData, kPasteboardTypeTIFF);
    case kHFSTypePICT:
        if (const auto pict = std::dynamic_pointer_cast<VXRPICTImageData>(imageData()))
            assistant.setDataForType(
                pict->PICTImageRepresentation()->PICTRepresentation(), kPasteboardTypePICT);
        return;
    default:
        break;
    }
    const auto image = nsImage();
    if (const auto tiff = image ? image->TIFFRepresentation() : nullptr)
        assistant.setDataForType(tiff, kPasteboardTypeTIFF);
}

void VXRImageBinary::encodeWithCoder(VXACoder& coder) const
{
    coder.encodeObject(mData.get());
    coder.encodeFloat(mNaturalImageSize.width);
    coder.encodeFloat(mNaturalImageSize.height);
    VXUObjectFlusher::instance().objectTouched(const_cast<VXRImageBinary&>(*this));
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::initWithCoder(VXADecoder& decoder)
{
    auto binary = std::make_shared<VXRImageBinary>();
    binary->mData = std::dynamic_pointer_cast<VXEData>(decoder.decodeObject());
    const float width = decoder.decodeFloat(), height = decoder.decodeFloat();
    binary->mNaturalImageSize = { width, height };
    return binary;
}

void VXRImageBinary::registerCoding()
{
    VXEData::registerCoding();
    [[maybe_unused]] static const bool once
        = (VXARegisterClass<VXRImageBinary>({ "VXRImageBinary",
               [](const Object& object, VXACoder& coder) {
                   static_cast<const VXRImageBinary&>(object).encodeWithCoder(coder);
               },
               [](VXADecoder& decoder) -> std::shared_ptr<Object> { return initWithCoder(decoder); } }),
            true);
}

} // namespace vxr
