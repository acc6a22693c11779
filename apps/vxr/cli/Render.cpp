#include "Commands.h"
#include "Console.h"
#include "Files.h"

#include <apps/document/Document.h>
#include <apps/document/PageDrawing.h>
#include <apps/vxr/import/Convert.h>
#include <apps/vxr/import/Pictures.h>
#include <apps/vxr/render/Roads.h>

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <set>

namespace app {

namespace fs = std::filesystem;

namespace {

constexpr int sideLimit = 32767;
constexpr double pixelLimit = 256e6;

/// An error of an output file rather than of the drawing.
struct OutputError : std::runtime_error {
    OutputError(std::string outputPath, const std::string& message)
        : std::runtime_error(message)
        , path(std::move(outputPath))
    {
    }
    std::string path;
};

Page pageFor(const ImportedDrawing& drawing, const RenderOptions& options)
{
    double scale = options.sizing.scaleFor(drawing.size.width, drawing.size.height);
    double width = drawing.size.width * scale;
    double height = drawing.size.height * scale;
    if (options.format == Format::PDF) {
        scale *= drawing.pointsPerUnit;
        width *= drawing.pointsPerUnit;
        height *= drawing.pointsPerUnit;
    }
    const auto side = [](double length) { return std::max(1.0, std::round(length)); };
    width = side(width);
    height = side(height);
    if (!(width <= sideLimit && height <= sideLimit && width * height <= pixelLimit))
        throw std::runtime_error(fmt::format(
            "the picture would be {:.0f} x {:.0f} pixels; {} a side and {:.0f} million in all is the most",
            width, height, sideLimit, pixelLimit / 1e6));
    return { drawing, static_cast<int>(width), static_cast<int>(height), static_cast<float>(scale),
        options.background, options.blackAndWhite };
}

Picture drawPicture(const Page& page, Road road)
{
    if (road == Road::NonScreen)
        return drawOffScreen(page);
    ShownPage shown(page, road == Road::Compositor);
    shown.display();
    return shown.picture();
}

void writePNG(const Picture& picture, const std::string& path)
{
    const SignalsHeld held;
    std::string reason;
    if (!picture.image()->writePNG(path, &reason))
        throw OutputError(path, reason.substr(reason.find(path + ": ") == 0 ? path.size() + 2 : 0));
}

void writePDF(const std::function<void(vxr::DocumentContext&)>& draw, const std::string& path)
{
    std::string bytes;
    const auto context
        = vxr::DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
              bytes.assign(reinterpret_cast<const char*>(data), size);
              return true;
          });
    draw(*context);
    context->close();
    try {
        writeFile(path, bytes);
    } catch (const std::exception& error) {
        throw OutputError(path, error.what());
    }
}

ImportedDrawing readDrawing(const std::string& input, Console& console)
{
    const svg::Drawing drawing = svg::readDrawing(readWholeFile(input, svg::XmlLimits {}.bytes));
    for (const svg::Warning& warning : drawing.warnings)
        console.warning(input, warning);
    ImportedDrawing imported = importDrawing(drawing, folderOf(input));
    for (const svg::Warning& warning : imported.warnings)
        console.warning(input, warning);
    return imported;
}

void renderDrawing(
    const std::string& input, const std::string& output, const RenderOptions& options, Console& console)
{
    const ImportedDrawing imported = isPicture(input) ? importPicture(input) : readDrawing(input, console);
    const Page page = pageFor(imported, options);
    if (options.format == Format::PNG)
        writePNG(drawPicture(page, options.road), output);
    else
        writePDF([&](vxr::DocumentContext& context) { drawPDFPage(page, context); }, output);
}

/// How a page of a document is to be drawn. Refers to `drawing`.
Page pageFor(const DocumentPage& source, const ImportedDrawing& drawing, const RenderOptions& options)
{
    Page page = pageFor(drawing, options);
    if (source.background && !options.isBackgroundGiven)
        page.background = rgbaFrom(*source.background);
    return page;
}

/// False when something of the document was lost.
bool renderDocument(
    const std::string& input, const std::string& output, const RenderOptions& options, Console& console)
{
    const std::unique_ptr<Document> document = Document::open(input);
    const auto count = static_cast<int>(document->pageCount());
    if (options.page > count || count == 0)
        throw std::runtime_error(
            fmt::format("there is no page {}; the document has {}", std::max(options.page, 1), count));
    const auto draw = [&](int number, const auto& use) {
        const DocumentPage& source = document->page(static_cast<std::size_t>(number - 1));
        const ImportedDrawing drawing = drawingFrom(source);
        use(pageFor(source, drawing, options));
    };
    if (options.format == Format::PNG) {
        draw(std::max(options.page, 1),
            [&](const Page& page) { writePNG(drawPicture(page, options.road), output); });
    } else {
        const int first = options.page ? options.page : 1;
        const int last = options.page ? options.page : count;
        writePDF(
            [&](vxr::DocumentContext& context) {
                for (int number = first; number <= last; ++number)
                    draw(number, [&](const Page& page) { drawPDFPage(page, context); });
            },
            output);
    }
    for (const std::string& loss : document->losses())
        console.warning(input, { 0, loss });
    return document->losses().empty();
}

} // namespace

int runRender(const RenderOptions& options)
{
    if (options.tileSize)
        setTileSize(options.tileSize);
    int status = 0;
    std::vector<std::string> inputs;
    for (const std::string& input : options.inputs) {
        try {
            const std::vector<std::string> files = filesOf(input, { ".svg", ".svgz", ".vxr" });
            inputs.insert(inputs.end(), files.begin(), files.end());
        } catch (const std::exception& error) {
            Console().error(input, 0, error.what());
            status = exitFailed;
        }
    }
    Console console(inputs.size());
    if (options.toFolder) {
        try {
            makeFolder(options.output);
        } catch (const std::exception& error) {
            console.error(options.output, 0, error.what());
            return exitFailed;
        }
    }
    std::set<std::string> written;
    for (const std::string& input : inputs) {
        console.startStep(input);
        try {
            std::string output = options.output;
            if (options.toFolder) {
                const char* extension = options.format == Format::PDF ? ".pdf" : ".png";
                const std::string stem = input == "-" ? "drawing" : fs::path(input).stem().string();
                output = (fs::path(output) / (stem + extension)).string();
            }
            if (!written.insert(output).second)
                throw OutputError(
                    output, "two of the drawings would have this name; " + input + " is left out");
            if (isDocumentFile(input))
                status = renderDocument(input, output, options, console) ? status : exitFailed;
            else
                renderDrawing(input, output, options, console);
        } catch (const svg::DocumentError& error) {
            console.error(input, error.line, error.what());
            status = exitFailed;
        } catch (const OutputError& error) {
            console.error(error.path, 0, error.what());
            status = exitFailed;
        } catch (const std::bad_alloc&) {
            console.error(input, 0, "there is not enough memory");
            status = exitFailed;
        } catch (const std::exception& error) {
            console.error(input, 0, error.what());
            status = exitFailed;
        }
    }
    return status;
}

} // namespace app
