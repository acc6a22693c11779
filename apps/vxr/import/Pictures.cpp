#include "Pictures.h"

#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/images/VXRImageRenderer.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/renderables/VXRShape.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <stdexcept>

namespace app {

namespace {

/// Lower case, without its dot.
std::string extensionOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    extension.erase(0, 1);
    std::ranges::transform(
        extension, extension.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return extension;
}

/// Kinds that everybody takes for pictures, whether or not anything here reads them.
bool isWellKnown(const std::string& extension)
{
    static constexpr std::string_view known[] { "jpg", "jpeg", "png", "tif", "tiff", "gif", "bmp", "ico",
        "psd", "jp2", "webp", "pdf", "eps", "pict", "pct" };
    return std::ranges::find(known, extension) != std::end(known);
}

} // namespace

bool isPicture(const std::string& path)
{
    const std::string extension = extensionOf(path);
    if (extension.empty() || extension == "svg" || extension == "svgz")
        return false;
    if (!vxr::Importer::shared().isAvailable()) {
        if (isWellKnown(extension))
            throw std::runtime_error("pictures can't be read: the program vxr-import is missing");
        return false;
    }
    const auto& types = vxr::Importer::shared().fileTypes();
    return std::ranges::any_of(
        types, [&](const vxr::ImportFileType& type) { return type.extension == extension; });
}

std::shared_ptr<vxr::VXRImageBinary> readPicture(const std::string& path)
{
    if (!vxr::Importer::shared().isAvailable())
        throw std::runtime_error("pictures can't be read: the program vxr-import is missing");
    std::string reason;
    if (!vxr::MemoryFile::createWithContentsOfFile(path, &reason))
        throw std::runtime_error(reason.substr(std::min(reason.size(), path.size() + 2)));
    auto binary = vxr::VXRImageBinary::epsImageBinaryFromFileUsingDataManagerError(path, nullptr, nullptr);
    if (!binary || !binary->imageIsLoaded())
        throw std::runtime_error("the picture can't be read");
    return binary;
}

ImportedDrawing importPicture(const std::string& path)
{
    const auto binary = readPicture(path);
    ImportedDrawing drawing;
    drawing.size = binary->naturalImageSize();
    drawing.pointsPerUnit = 1;
    drawing.shapeCount = 1;
    const auto shape = vxr::VXRShape::shapeWithRect({ 0, 0, drawing.size.width, drawing.size.height });
    const auto fill = vxr::VXRImageFill::imageFillWithImageRenderer(binary->imageRenderer());
    fill->setTechnique(vxr::VXRImageFillStretch);
    shape->setFill(fill);
    shape->setStroke(nullptr);
    drawing.renderables.push_back(shape);
    drawing.sources[shape.get()] = { "picture", 1 };
    return drawing;
}

} // namespace app
