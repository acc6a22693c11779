#include <vxr/images/VXRPICTImageData.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/images/ImageNames.h>
#include <vxr/images/VXRPICTRenderer.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/pictures/PICTImageRep.h>
#include <vxr/platform/pictures/PlatformImage.h>

namespace vxr {

namespace {

constexpr std::size_t headerLength = 512;

std::shared_ptr<const Data> withHeader(const Data& picture)
{
    const std::vector<std::byte> zeros(headerLength);
    auto file = std::make_shared<MutableData>();
    file->appendBytes(zeros.data(), zeros.size());
    file->appendBytes(picture.bytes().data(), picture.length());
    return file;
}

} // namespace

VXRPICTImageData::VXRPICTImageData(const std::shared_ptr<VXEData>& data)
    : VXRImageData(data)
{
}

VXRPICTImageData::~VXRPICTImageData() = default;

std::shared_ptr<VXRPICTImageData> VXRPICTImageData::initWithVXEData(
    const std::shared_ptr<VXEData>& data, std::string* reason)
{
    const std::string extension = lowerCase(data->pathExtension());
    if (!data->hasGoodData() || (!extension.empty() && extension != "pict" && extension != "pct"))
        return nullptr;
    std::shared_ptr<VXRPICTImageData> made(new VXRPICTImageData(data));
    made->mPICTImageRep = PICTImageRep::imageRepWithData(data->data(), reason);
    if (!made->mPICTImageRep)
        return nullptr;
    if (made->mPICTImageRep->PICTRepresentation()->length() == data->byteSize())
        data->setData(withHeader(*data->data()));
    data->setHFSType(kHFSTypePICT);
    return made;
}

std::shared_ptr<const Data> VXRPICTImageData::PICTData() const { return data()->data(); }

Size VXRPICTImageData::naturalSize() const { return mPICTImageRep->size(); }

std::shared_ptr<VXRImageRenderer> VXRPICTImageData::imageRenderer()
{
    return VXRPICTRenderer::imageRendererWithPICTData(PICTData(), mPICTImageRep->document());
}

std::size_t VXRPICTImageData::bytesUsed() const
{
    return data()->bytesUsed() + mPICTImageRep->PICTRepresentation()->length();
}

std::shared_ptr<PlatformImage> VXRPICTImageData::nsImage()
{
    return PlatformImage::imageWithRep(mPICTImageRep);
}

} // namespace vxr
