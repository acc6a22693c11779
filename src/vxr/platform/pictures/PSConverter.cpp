#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/DataConsumer.h>
#include <vxr/platform/pictures/DataProvider.h>
#include <vxr/platform/pictures/PSConverter.h>

namespace vxr {

std::shared_ptr<PSConverter> PSConverter::create()
{
    return Importer::shared().isAvailable() ? std::make_shared<PSConverter>() : nullptr;
}

bool PSConverter::convert(const DataProvider& provider, DataConsumer& consumer, std::string* reason)
{
    const auto eps = MemoryFile::createWithCopy(provider.bytes(), provider.size());
    ImportFailure failure;
    const auto pdf = eps ? Importer::shared().convertEPS(*eps, &failure) : nullptr;
    if (!pdf && reason)
        *reason = failure.message;
    return pdf && consumer.put(pdf->bytes().data(), pdf->size());
}

} // namespace vxr
