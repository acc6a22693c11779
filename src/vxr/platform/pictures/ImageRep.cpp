#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/EPSImageRep.h>
#include <vxr/platform/pictures/ImageRep.h>

#include <algorithm>
#include <cctype>

namespace vxr {

namespace {

void appendOnce(std::vector<std::string>& list, const std::string& entry)
{
    if (!entry.empty() && std::ranges::find(list, entry) == list.end())
        list.push_back(entry);
}

/// Entries of the kinds that `wanted` accepts.
template <class Wanted> std::vector<std::string> fileTypes(Wanted wanted)
{
    std::vector<std::string> list;
    for (const ImportFileType& type : Importer::shared().fileTypes()) {
        if (!wanted(type.kind))
            continue;
        std::string upper = type.extension;
        std::ranges::transform(
            upper, upper.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        appendOnce(list, type.extension);
        appendOnce(list, upper);
        appendOnce(list, type.hfsType);
    }
    return list;
}

} // namespace

ImageRep::~ImageRep() = default;

std::vector<std::string> imageUnfilteredFileTypes()
{
    return fileTypes([](ImportKind) { return true; });
}

std::vector<std::string> EPSImageRep::imageUnfilteredFileTypes()
{
    return fileTypes([](ImportKind kind) { return kind == ImportKind::EPS; });
}

} // namespace vxr
