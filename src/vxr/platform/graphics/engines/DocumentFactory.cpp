#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/FileReplacement.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/cairo/CairoFactory.h>

#include <utility>

namespace vxr {

std::shared_ptr<DocumentContext> DocumentContext::createWithWriter(Write write)
{
    return makePDFContext(std::move(write));
}

std::shared_ptr<DocumentContext> DocumentContext::createWithFile(const std::string& path)
{
    std::shared_ptr<FileReplacement> file;
    try {
        file = std::make_shared<FileReplacement>(path);
    } catch (const GenericException& failure) {
        throw GenericException("Can't create " + path + ": " + failure.what());
    }
    return createWithWriter([file](const unsigned char* data, std::size_t size) {
        file->write(data, size);
        file->commit();
        return true;
    });
}

} // namespace vxr
