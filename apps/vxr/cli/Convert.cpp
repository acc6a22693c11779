#include "Commands.h"
#include "Console.h"
#include "Files.h"

#include <apps/document/Document.h>
#include <apps/document/PageDrawing.h>

namespace app {

namespace {

/// Something could still be saved from a damaged document, so it isn't replaced by accident.
void refuseDamaged(const std::string& path)
{
    if (!isDocumentFile(path))
        return;
    std::string loss;
    try {
        const std::unique_ptr<Document> document = Document::open(path);
        static_cast<void>(document->bytes()); // reads all of it
        if (!document->losses().empty())
            loss = document->losses().front();
    } catch (const DocumentFileError& error) {
        loss = error.what();
    }
    if (!loss.empty())
        throw std::runtime_error(
            "is a damaged document (" + loss + "); --replace-damaged replaces it all the same");
}

} // namespace

int runConvert(const ConvertOptions& options)
{
    Console console(options.inputs.size());
    Document document;
    int status = 0;
    for (const std::string& input : options.inputs) {
        console.startStep(input);
        try {
            const svg::Drawing drawing = svg::readDrawing(readWholeFile(input, svg::XmlLimits {}.bytes));
            for (const svg::Warning& warning : drawing.warnings)
                console.warning(input, warning);
            const ImportedDrawing imported = importDrawing(drawing, folderOf(input));
            for (const svg::Warning& warning : imported.warnings)
                console.warning(input, warning);
            document.insertPage(document.pageCount(), pageFrom(imported));
        } catch (const svg::DocumentError& error) {
            console.error(input, error.line, error.what());
            status = exitFailed;
        } catch (const std::exception& error) {
            console.error(input, 0, error.what());
            status = exitFailed;
        }
    }
    if (document.pageCount() == 0)
        return exitFailed;
    try {
        if (!options.replacesDamaged)
            refuseDamaged(options.output);
        const SignalsHeld held;
        document.save(options.output);
    } catch (const std::exception& error) {
        console.error(options.output, 0, error.what());
        status = exitFailed;
    }
    return status;
}

} // namespace app
