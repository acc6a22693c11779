#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/cairo/CairoFactory.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace vxr {

std::shared_ptr<DocumentContext> DocumentContext::createWithWriter(Write write)
{
    return makePDFContext(std::move(write));
}

std::shared_ptr<DocumentContext> DocumentContext::createWithFile(const std::string& path)
{
    std::shared_ptr<std::FILE> file(std::fopen(path.c_str(), "wb"), [](std::FILE* opened) {
        if (opened)
            std::fclose(opened);
    });
    if (!file)
        throw GenericException("Can't create " + path + ": " + std::strerror(errno));
    return createWithWriter([file](const unsigned char* data, std::size_t size) {
        return std::fwrite(data, 1, size, file.get()) == size && std::fflush(file.get()) == 0;
    });
}

} // namespace vxr
