// What documents cost: pages beside the parsing and serialising of their own bytes, and opening a long
// document beside opening a short one.

#include <bench/Compare.h>

#include <apps/document/Document.h>
#include <apps/document/PageDrawing.h>
#include <apps/vxr/import/DrawnShape.h>
#include <apps/vxr/render/Roads.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/strokes/VXRStroke.h>

#include <libxml/parser.h>

#include <unistd.h>

#include <filesystem>

namespace {

using namespace vxr;
using namespace vxr::bench;

std::shared_ptr<VXRRenderable> styledShape(int i)
{
    const float x = static_cast<float>(i % 100) * 8.37f, y = static_cast<float>(i / 100) * 10.61f;
    auto shape
        = VXRShape::shapeWithBezierPath<app::DrawnShape>(Path::pathWithOvalInRect({ x, y, 17.3f, 11.9f }));
    const auto color = Color::colorWithCalibratedRGB(static_cast<float>(i % 7) / 6, 0.3f, 0.61f);
    if (i % 4 == 0)
        shape->setFill(
            VXRTransformGradient::linearGradientWithStartColorEndColor(color, Color::blackColor()));
    else
        shape->setFill(color);
    shape->setStroke(VXRStroke::strokeWithColorWidth(color, 0.7f));
    if (i % 10 == 0)
        shape->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(315, 3, 4, 0.5f, color));
    shape->rotateByRadiansPivot(0.1f * static_cast<float>(i % 9), shape->center());
    return shape;
}

std::shared_ptr<app::DocumentPage> pageOf(int shapes)
{
    auto page = std::make_shared<app::DocumentPage>();
    for (int i = 0; i < shapes; ++i)
        page->renderables.push_back(styledShape(i));
    return page;
}

xmlDocPtr parsed(const std::string& text)
{
    return xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NONET);
}

constexpr int shapeCount = 10'000;

const int reading = compare("DOCUMENT/reading-against-parsing", atMost(2.5), [] {
    const auto text = std::make_shared<std::string>(pageOf(shapeCount)->text());
    return Pair { [text] {
                     std::vector<std::string> troubles;
                     app::DocumentPage::fromText(*text, troubles);
                 },
        [text] { xmlFreeDoc(parsed(*text)); } };
});

const int writing = compare("DOCUMENT/writing-against-serialising", atMost(2.5), [] {
    const auto page = pageOf(shapeCount);
    const std::shared_ptr<xmlDoc> tree(parsed(page->text()), xmlFreeDoc);
    return Pair { [page] { page->text(); },
        [tree] {
            xmlChar* bytes = nullptr;
            int size = 0;
            xmlDocDumpFormatMemoryEnc(tree.get(), &bytes, &size, "UTF-8", 1);
            xmlFree(bytes);
        } };
});

/// A file with so many pages, gone with the last user.
std::shared_ptr<const std::string> fileOf(int pages)
{
    app::Document document;
    for (int i = 0; i < pages; ++i)
        document.insertPage(document.pageCount(), *pageOf(100));
    const auto path = std::filesystem::temp_directory_path()
        / ("vxr-bench-" + std::to_string(getpid()) + "-" + std::to_string(pages) + ".vxr");
    document.save(path.string());
    return { new std::string(path.string()), [](const std::string* name) {
                std::filesystem::remove(*name);
                delete name;
            } };
}

void openAndDraw(const std::string& path)
{
    const auto document = app::Document::open(path);
    const app::ImportedDrawing drawing = app::drawingFrom(document->page(0));
    app::drawDirect({ drawing, 816, 1056, 1, app::svg::Rgba { 1, 1, 1, 1 }, false });
}

const int opening = compare("DOCUMENT/open-1000-pages-against-one", atMost(3), [] {
    const auto many = fileOf(1000), one = fileOf(1);
    return Pair { [many] { openAndDraw(*many); }, [one] { openAndDraw(*one); } };
});

} // namespace
