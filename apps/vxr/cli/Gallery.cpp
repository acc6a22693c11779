#include "Commands.h"
#include "Console.h"
#include "Files.h"

#include <apps/demo/Scene.h>

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/Image.h>

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <stdexcept>

namespace app {

namespace {

constexpr float pixelsPerPoint = 2;

void writePNG(const vxr::demo::Scene& scene, const std::string& path)
{
    const auto side = [](float points) { return static_cast<int>(std::ceil(points * pixelsPerPoint)); };
    const auto context = vxr::BitmapContext::createBitmap(side(scene.size.width), side(scene.size.height));
    context->setBaseTransform(vxr::AffineTransform::makeScale(pixelsPerPoint, pixelsPerPoint));
    vxr::demo::drawScene(scene, context, true);
    const SignalsHeld held;
    std::string reason;
    if (!context->makeImage()->writePNG(path, &reason))
        throw std::runtime_error(reason);
}

void writePDF(const vxr::demo::Scene& scene, const std::string& path)
{
    const auto context
        = vxr::DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
              writeFile(path, { reinterpret_cast<const char*>(data), size });
              return true;
          });
    vxr::PDFPageBoxes boxes;
    boxes.media = { {}, scene.size };
    context->beginPage(boxes);
    vxr::demo::drawScene(scene, context, false);
    context->endPage();
    context->close();
}

std::string escaped(const std::string& text)
{
    std::string result;
    for (char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '"')
            result += "&quot;";
        else
            result += c;
    }
    return result;
}

void writeIndex(const std::string& path)
{
    std::string page = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>VXR gallery</title>
<style>
body { font: 16px/1.4 sans-serif; margin: 2em; background: #eee; color: #222 }
figure { display: inline-block; margin: 1em; padding: 1em; background: #fff; vertical-align: top }
figcaption { max-width: 30em; margin-top: .7em }
</style></head>
<body><h1>VXR gallery</h1>
)";
    for (const vxr::demo::Scene& scene : vxr::demo::scenes())
        page += fmt::format("<figure><img src=\"{0}.png\" width=\"{1}\" height=\"{2}\" alt=\"{0}\">"
                            "<figcaption>{3} <a href=\"{0}.pdf\">PDF</a></figcaption></figure>\n",
            escaped(scene.name), scene.size.width, scene.size.height, escaped(scene.title));
    page += "</body></html>\n";
    writeFile(path, page);
}

} // namespace

int runGallery(const GalleryOptions& options)
{
    const auto& scenes = vxr::demo::scenes();
    Console console(scenes.size());
    std::string path = options.folder;
    try {
        makeFolder(options.folder);
        const std::filesystem::path folder(options.folder);
        for (const vxr::demo::Scene& scene : scenes) {
            console.startStep(scene.name);
            writePNG(scene, path = (folder / (scene.name + ".png")).string());
            writePDF(scene, path = (folder / (scene.name + ".pdf")).string());
        }
        writeIndex(path = (folder / "index.html").string());
    } catch (const std::exception& error) {
        console.error(path, 0, error.what());
        return exitFailed;
    }
    return 0;
}

} // namespace app
