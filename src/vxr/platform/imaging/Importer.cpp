#include <vxr/platform/imaging/Importer.h>

#include <vxr/platform/imaging/ImportProgram.h>

#include <utility>

namespace vxr {

namespace {

std::shared_ptr<Importer>& current()
{
    static std::shared_ptr<Importer> importer;
    return importer;
}

} // namespace

Importer::~Importer() = default;

Importer& Importer::shared()
{
    if (!current())
        current() = std::make_shared<ImportProgram>();
    return *current();
}

void Importer::setShared(std::shared_ptr<Importer> importer) { current() = std::move(importer); }

} // namespace vxr
