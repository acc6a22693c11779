#include "Gallery.h"

#include "Scene.h"

#include <vxr/platform/foundation/Exceptions.h>
#include <vxr/platform/graphics/CairoContext.h>
#include <vxr/platform/graphics/Image.h>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace vxr::demo {

namespace {

constexpr float pixelsPerPoint = 2;

void writePNG(const Scene& scene, const std::string& path)
{
    const auto context
        = CairoContext::createBitmap(static_cast<int>(std::ceil(scene.size.width * pixelsPerPoint)),
            static_cast<int>(std::ceil(scene.size.height * pixelsPerPoint)));
    context->setBaseTransform(AffineTransform::makeScale(pixelsPerPoint, pixelsPerPoint));
    drawScene(scene, context, true);
    std::string reason;
    if (!context->makeImage()->writePNG(path, &reason))
        throw GenericException(reason);
}

void writePDF(const Scene& scene, const std::string& path)
{
    const auto document = PDFContext::createWithFile(path);
    document->beginPage(
        { .media = { { 0, 0 }, scene.size }, .crop = {}, .bleed = {}, .trim = {}, .art = {} });
    drawScene(scene, document, false);
    document->endPage();
    document->close();
}

void writeIndex(const std::string& path)
{
    std::ofstream page(path);
    page << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>vxr gallery</title>\n"
            "<style>body{font:16px sans-serif;margin:2em;background:#eee}figure{display:inline-block;"
            "margin:1em;padding:1em;background:#fff;vertical-align:top}figcaption{max-width:30em;"
            "margin-top:.7em}</style></head><body>\n<h1>vxr gallery</h1>\n";
    for (const Scene& scene : scenes())
        page << "<figure><img src=\"" << scene.name << ".png\" width=\"" << scene.size.width << "\" height=\""
             << scene.size.height << "\" alt=\"" << scene.name << "\"><figcaption>" << scene.title
             << " <a href=\"" << scene.name << ".pdf\">PDF</a></figcaption></figure>\n";
    page << "</body></html>\n";
    if (!page.flush())
        throw GenericException(path + ": can't be written");
}

} // namespace

int writeGallery(const std::string& folder)
{
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    if (problem)
        throw GenericException(folder + ": " + problem.message());
    for (const Scene& scene : scenes()) {
        writePNG(scene, folder + "/" + scene.name + ".png");
        writePDF(scene, folder + "/" + scene.name + ".pdf");
    }
    writeIndex(folder + "/index.html");
    return static_cast<int>(scenes().size());
}

} // namespace vxr::demo
