// Documents, read page by page, written and read again: nothing crashes, hangs or leaks, whatever the bytes
// are, and what was read once reads the same again. An input that is no container is taken as a page's text.

#include <apps/document/Document.h>

#include <vxr/host/archiving/VXAXMLDocument.h>

#include <cstdint>
#include <cstdlib>

namespace {

void readPage(const std::string& text)
{
    std::vector<std::string> troubles;
    try {
        const app::DocumentPage page = app::DocumentPage::fromText(text, troubles);
        // The stops that a gradient without any is given are put in order when they are read.
        const std::string written = app::DocumentPage::fromText(page.text(), troubles).text();
        const app::DocumentPage again = app::DocumentPage::fromText(written, troubles);
        if (again.renderables.size() != page.renderables.size() || again.text() != written)
            std::abort();
        for (const auto& renderable : page.renderables)
            renderable->erasableBounds();
    } catch (const vxr::VXAXMLError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 1u << 16)
        return 0;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (!bytes.starts_with("PK")) {
        readPage(bytes);
        return 0;
    }
    try {
        app::ContainerLimits limits;
        limits.entries = 100;
        limits.entryBytes = limits.salvagedBytes = 1u << 20;
        const auto document = app::Document::fromBytes(bytes, limits);
        for (std::size_t i = 0; i < document->pageCount(); ++i)
            document->page(i);
        const std::string written = document->bytes();
        if (app::Document::fromBytes(written)->bytes() != written)
            std::abort();
    } catch (const app::DocumentFileError&) {
    }
    return 0;
}
