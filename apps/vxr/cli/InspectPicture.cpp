#include "InspectPicture.h"

#include <vxr/platform/imaging/Importer.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace app {

namespace {

using vxr::ImportKind;

ImportKind kindOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    std::ranges::transform(
        extension, extension.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    for (const vxr::ImportFileType& type : vxr::Importer::shared().fileTypes())
        if ("." + type.extension == extension)
            return type.kind;
    return ImportKind::Bitmap;
}

[[noreturn]] void fail(const vxr::ImportFailure& failure)
{
    throw std::runtime_error(failure.message.empty() ? "the picture can't be read" : failure.message);
}

const char* nameOf(vxr::BitmapModel model)
{
    return model == vxr::BitmapModel::Gray ? "grey" : model == vxr::BitmapModel::RGB ? "RGB" : "CMYK";
}

void printBitmap(const std::string& path, const vxr::BitmapInfo& info)
{
    const vxr::BitmapFormat& format = info.format;
    fmt::print("{}: {}, {} x {} pixels, {} bits, {}{}\n", path, info.kind, format.width, format.height,
        format.bitsPerSample, nameOf(format.model), format.hasAlpha ? " with alpha" : "");
    if (info.horizontalResolution > 0)
        fmt::print(
            "  resolution {:g} x {:g} pixels per inch\n", info.horizontalResolution, info.verticalResolution);
    if (!info.profile.empty())
        fmt::print("  profile {}, {} bytes\n", info.profileName.empty() ? "without a name" : info.profileName,
            info.profile.size());
    if (info.orientation != 1)
        fmt::print("  orientation {}\n", info.orientation);
    if (info.frames > 1)
        fmt::print("  frames {}\n", info.frames);
}

void printBox(const char* name, const vxr::PageBox& box)
{
    fmt::print("  {} box ({:g}, {:g}) {:g} x {:g}\n", name, box.x, box.y, box.width, box.height);
}

void printDocument(const std::string& path, const char* kind, const vxr::DocumentInfo& info)
{
    fmt::print("{}: {}, {:g} x {:g} points, {} page{}\n", path, kind, info.media.width, info.media.height,
        info.pages, info.pages == 1 ? "" : "s");
    printBox("media", info.media);
    printBox("crop", info.crop);
    printBox("bleed", info.bleed);
    printBox("trim", info.trim);
    printBox("art", info.art);
    if (info.rotation != 0)
        fmt::print("  rotation {} degrees\n", info.rotation);
}

} // namespace

void inspectPicture(const std::string& path)
{
    std::string reason;
    auto file = vxr::MemoryFile::createWithContentsOfFile(path, &reason);
    if (!file)
        throw std::runtime_error(reason.substr(std::min(reason.size(), path.size() + 2)));
    auto& importer = vxr::Importer::shared();
    vxr::ImportFailure failure;
    const ImportKind kind = kindOf(path);
    if (kind == ImportKind::Bitmap) {
        const auto info = importer.measureBitmap(*file, &failure);
        if (!info)
            fail(failure);
        return printBitmap(path, *info);
    }
    if (kind == ImportKind::EPS)
        file = importer.convertEPS(*file, &failure);
    else if (kind == ImportKind::PICT)
        file = importer.convertPICT(*file, &failure);
    const auto info = file ? importer.measureDocument(*file, &failure) : std::nullopt;
    if (!info)
        fail(failure);
    printDocument(path, kind == ImportKind::EPS ? "eps" : kind == ImportKind::PICT ? "pict" : "pdf", *info);
}

} // namespace app
