#include "PageDrawing.h"

#include <vxr/renderables/VXRGroup.h>

namespace app {

namespace {

std::size_t shapesIn(const std::vector<std::shared_ptr<vxr::VXRRenderable>>& renderables)
{
    std::size_t count = 0;
    for (const auto& renderable : renderables) {
        const auto* group = dynamic_cast<const vxr::VXRGroup*>(renderable.get());
        count += group ? shapesIn(group->renderables()) : 1;
    }
    return count;
}

} // namespace

DocumentPage pageFrom(const ImportedDrawing& drawing)
{
    DocumentPage page;
    page.size = drawing.size;
    page.renderables = drawing.renderables;
    for (const auto& [renderable, source] : drawing.sources)
        page.notes[renderable].label = source.first;
    return page;
}

ImportedDrawing drawingFrom(const DocumentPage& page)
{
    ImportedDrawing drawing;
    drawing.size = page.size;
    drawing.renderables = page.renderables;
    for (const auto& [renderable, note] : page.notes)
        drawing.sources[renderable] = { note.label, 0 };
    drawing.shapeCount = shapesIn(page.renderables);
    return drawing;
}

} // namespace app
