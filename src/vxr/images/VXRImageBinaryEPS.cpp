#include <vxr/host/utility/VXUAssertionHandler.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/images/ImageNames.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/pictures/DataConsumer.h>
#include <vxr/platform/pictures/DataProvider.h>
#include <vxr/platform/pictures/EPSImageRep.h>
#include <vxr/platform/pictures/PSConverter.h>

#include <algorithm>

namespace vxr {

namespace {

VXRImageBinary::EPSConversion& applicationConversion()
{
    static VXRImageBinary::EPSConversion conversion;
    return conversion;
}

bool isEPSExtension(const std::string& path)
{
    const std::vector<std::string> types = EPSImageRep::imageUnfilteredFileTypes();
    return std::ranges::find(types, lowerCase(pathExtension(path))) != types.end();
}

using HeldData = std::shared_ptr<const Data>;

HeldData releasedBytes(void* info)
{
    auto* held = static_cast<HeldData*>(info);
    HeldData bytes = *held;
    delete held;
    return bytes;
}

} // namespace

const std::vector<std::string>& VXRImageBinary::epsImageFileTypes()
{
    static std::vector<std::string> types;
    std::vector<std::string> now = imageFileTypes();
    std::ranges::copy(EPSImageRep::imageUnfilteredFileTypes(), std::back_inserter(now));
    if (now != types)
        types = std::move(now);
    return types;
}

bool VXRImageBinary::epsCanInitFromFile(const std::string& path)
{
    return canInitFromFile(path) || isEPSExtension(path);
}

void VXRImageBinary::setApplicationPDFDataFromEPSData(EPSConversion conversion)
{
    applicationConversion() = std::move(conversion);
}

std::shared_ptr<MutableData> VXRImageBinary::pdfDataFromEPSDataPathError(
    const std::shared_ptr<const Data>& eps, const std::string& path, std::string*)
{
    if (!eps)
        return nullptr;
    const DataProvider provider(
        new HeldData(eps), eps->bytes().data(), eps->length(), ReleasePDFDocumentData);
    auto pdf = std::make_shared<MutableData>();
    DataConsumer consumer(pdf.get(), { PutBytesIntoNSData, nullptr });
    const auto converter = PSConverter::create();
    std::string reason = "There is no program that does it.";
    if (converter && converter->convert(provider, consumer, &reason))
        return pdf;
    VXULog_Fn(VXULogLevelWarning, "VXRImageBinaryEPS.cpp",
        "\"" + lastPathComponent(path) + "\" can't be converted: " + reason);
    return nullptr;
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::pdfImageBinaryFromEPSFileUsingDataManagerError(
    const std::string& path, VXEDataManager* manager, std::string* error)
{
    const auto eps = Data::dataWithContentsOfFile(path);
    if (!eps)
        return nullptr;
    const auto pdf = applicationConversion() ? applicationConversion()(eps, path, error)
                                             : pdfDataFromEPSDataPathError(eps, path, error);
    const std::string name = stringByDeletingPathExtension(lastPathComponent(path)) + ".pdf";
    return pdf ? imageBinaryWithDataNameTypeUsingDataManager(pdf, name, kHFSTypePDF, manager) : nullptr;
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::epsImageBinaryFromFileUsingDataManagerError(
    const std::string& path, VXEDataManager* manager, std::string* error)
{
    return isEPSExtension(path) ? pdfImageBinaryFromEPSFileUsingDataManagerError(path, manager, error)
                                : imageBinaryFromFileUsingDataManager(path, manager);
}

std::size_t PutBytesIntoNSData(void* info, const void* bytes, std::size_t count)
{
    auto* object = static_cast<Object*>(info);
    auto* data = dynamic_cast<MutableData*>(object);
    if (!data)
        VXUAssertionHandler::currentHandler().handleFailureInFile(
            "VXRImageBinary.cpp", __LINE__, "Bad parameter");
    if (data)
        data->appendBytes(bytes, count);
    return object ? count : 0;
}

std::size_t VXDPutBytesForNSMutableDataCGConsumer(void* info, const void* bytes, std::size_t count)
{
    (*static_cast<std::shared_ptr<MutableData>*>(info))->appendBytes(bytes, count);
    return count;
}

void VXDReleaseNSMutableDataConsumer(void* info) { delete static_cast<std::shared_ptr<MutableData>*>(info); }

void ReleasePDFDocumentData(void* info, const void*, std::size_t) { releasedBytes(info); }

void ReleasePICTData(void* info, const void*, std::size_t)
{
    static HeldData releasedLast;
    releasedLast = releasedBytes(info);
}

} // namespace vxr
