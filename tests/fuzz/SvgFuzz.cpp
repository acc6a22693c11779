// SVG text, read, imported and drawn small by the direct road: nothing crashes, hangs or leaks, whatever
// the bytes are.

#include <apps/vxr/render/Roads.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    app::svg::XmlLimits xmlLimits;
    xmlLimits.bytes = 1u << 16;
    app::svg::DrawingLimits limits;
    limits.shapes = 200;
    limits.visits = 2000;
    try {
        const app::svg::Drawing drawing
            = app::svg::readDrawing({ reinterpret_cast<const char*>(data), size }, xmlLimits, limits);
        const app::ImportedDrawing imported = app::importDrawing(drawing);
        if (imported.shapeCount != app::svg::shapeCount(drawing.nodes))
            std::abort();
        const app::Page page { imported, 40, 30, 0.4f, app::svg::Rgba { 1, 1, 1, 1 }, false };
        if (app::drawDirect(page).pixels.size() != 40 * 30)
            std::abort();
    } catch (const app::svg::DocumentError&) {
        // What can't be read says so.
    }
    return 0;
}
