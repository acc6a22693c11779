#include <vxr/images/VXRPDFImageData.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/images/ImageNames.h>
#include <vxr/images/VXRPDFRenderer.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/pictures/PDFImageRep.h>
#include <vxr/platform/pictures/PlatformImage.h>

namespace vxr {

VXRPDFImageData::VXRPDFImageData(const std::shared_ptr<VXEData>& data)
    : VXRImageData(data)
{
}

VXRPDFImageData::~VXRPDFImageData() = default;

std::shared_ptr<VXRPDFImageData> VXRPDFImageData::initWithVXEData(
    const std::shared_ptr<VXEData>& data, std::string* reason)
{
    if (!data->hasGoodData() || lowerCase(data->pathExtension()) != "pdf")
        return nullptr;
    std::shared_ptr<VXRPDFImageData> made(new VXRPDFImageData(data));
    made->_setupPDF(reason);
    if (made->mPDFRep && (made->naturalSize().width == 0 || made->naturalSize().height == 0))
        made->setPdfRep(nullptr);
    if (!made->mPDFRep)
        return nullptr;
    data->setHFSType(kHFSTypePDF);
    return made;
}

void VXRPDFImageData::setPdfRep(std::shared_ptr<PDFImageRep> rep)
{
    mPDFRep = std::move(rep);
    mPDFRef = mPDFRep ? mPDFRep->document() : nullptr;
}

// A page is cut to its art box. That it is turned is forgotten on purpose.
void VXRPDFImageData::_setupPDF(std::string* reason)
{
    const auto bytes = data()->data();
    if (!bytes || bytes->isEmpty())
        return;
    auto rep = PDFImageRep::imageRepWithData(bytes, reason);
    if (!rep)
        return;
    const PDFDocument& document = *rep->document();
    const Rect media = document.box(PDFBox::Media);
    const bool isNormal
        = intersectionRect(media, document.box(PDFBox::Art)) == media && document.rotationAngle() == 0;
    setPdfRep(
        isNormal ? std::move(rep) : PDFImageRep::imageRepWithData(document.normalisedData(reason), reason));
}

Size VXRPDFImageData::naturalSize() const { return mPDFRep->size(); }

std::shared_ptr<VXRImageRenderer> VXRPDFImageData::imageRenderer()
{
    return VXRPDFRenderer::imageRendererWithPDFRef(mPDFRef);
}

std::size_t VXRPDFImageData::bytesUsed() const { return data()->bytesUsed(); }

std::shared_ptr<PlatformImage> VXRPDFImageData::nsImage() { return PlatformImage::imageWithRep(mPDFRep); }

} // namespace vxr
