// Real drawings: what the model costs over the same calls made by hand, what the compositor saves, and
// what reading a drawing costs beside parsing its XML.

#include <bench/Compare.h>

#include <apps/vxr/cli/Files.h>
#include <apps/vxr/import/Convert.h>
#include <apps/vxr/import/Import.h>
#include <apps/vxr/render/DrawingCanvas.h>

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/views/Window.h>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <cmath>
#include <cstdlib>

namespace {

using namespace vxr;
using namespace vxr::bench;

std::string textOf(const char* name)
{
    return app::readWholeFile(std::string(VXR_DRAWINGS "/") + name + ".svg", app::svg::XmlLimits {}.bytes);
}

constexpr int pageWidth = 960;
constexpr int pageHeight = 720;
constexpr float pageScale = 1.5f;

/// A fill or stroke in one colour, ready for the context.
struct Call {
    std::shared_ptr<Path> path;
    ColorValue color;
    LineStyle style;
    bool isStroke;
};

ColorValue valueOf(const app::svg::Rgba& c)
{
    return ColorValue::rgb(float(c.r), float(c.g), float(c.b), float(c.a));
}

/// The drawing without a model: each shape's calls, in the order in which it paints. For drawings of plain
/// shapes in solid colours.
std::vector<Call> callsOf(const app::svg::Drawing& drawing)
{
    std::vector<Call> calls;
    for (const app::svg::Node& node : drawing.nodes) {
        const auto& shape = std::get<app::svg::Shape>(node.content);
        const auto path = app::pathFrom(shape.outline.transformed(shape.toCanvas), shape.fillRule);
        if (shape.fill.kind == app::svg::Paint::Kind::Color)
            calls.push_back({ path, valueOf(shape.fill.color), {}, false });
        if (!shape.stroke.paints())
            continue;
        LineStyle style;
        style.width = float(shape.stroke.width * std::sqrt(std::fabs(shape.toCanvas.determinant())));
        style.cap = static_cast<LineCap>(shape.stroke.cap);
        style.join = static_cast<LineJoin>(shape.stroke.join);
        style.miterLimit = float(shape.stroke.miterLimit);
        calls.push_back({ path, valueOf(shape.stroke.paint.color), style, true });
    }
    return calls;
}

void issue(const std::vector<Call>& calls, Context& context)
{
    const StateSaver saved(context);
    context.translate(0, pageHeight);
    context.scale(pageScale, -pageScale);
    context.setFillColor(ColorValue::gray(1));
    context.fillRect({ 0, 0, pageWidth / pageScale, pageHeight / pageScale });
    for (const Call& call : calls) {
        if (call.isStroke) {
            context.setStrokeColor(call.color);
            context.strokePath(*call.path, call.style);
        } else {
            context.setFillColor(call.color);
            context.fillPath(*call.path, call.path->windingRule());
        }
    }
}

/// A drawing on a canvas in a window.
struct Shown {
    explicit Shown(const char* name, bool usesCompositor)
        : drawing(app::importDrawing(app::svg::readDrawing(textOf(name))))
        , canvas(std::make_shared<app::DrawingCanvas>(frame, drawing.renderables, pageScale, usesCompositor))
        , window(frame)
    {
        window.setContentView(canvas);
        window.display();
    }

    static constexpr Rect frame { 0, 0, pageWidth, pageHeight };
    app::ImportedDrawing drawing;
    std::shared_ptr<app::DrawingCanvas> canvas;
    Window window;
};

/// In a window each shape is composed as a layer, for the sake of what the compositor would show; the calls
/// paint straight away.
const int modelOverCalls = compare("DRAWING/model-against-calls", atMost(1.10), [] {
    const auto shown = std::make_shared<Shown>("bt", false);
    const auto calls = std::make_shared<std::vector<Call>>(callsOf(app::svg::readDrawing(textOf("bt"))));
    const auto context = BitmapContext::createBitmap(pageWidth, pageHeight);
    return Pair { [shown] { shown->window.display(); }, [calls, context] { issue(*calls, *context); } };
});

const int redrawComposited = compare("DRAWING/redraw-compositor-against-direct", atLeast(5), [] {
    const auto composited = std::make_shared<Shown>("rs", true);
    const auto direct = std::make_shared<Shown>("rs", false);
    return Pair { [composited] { composited->window.display(); }, [direct] { direct->window.display(); } };
});

/// Dragging one large shape over the others.
Work drag(const std::shared_ptr<Shown>& shown)
{
    return [shown] {
        VXRRenderable& moved = *shown->drawing.renderables.back();
        for (int i = 0; i < 20; ++i) {
            moved.offsetBy(i < 10 ? 4.0f : -4.0f, 0);
            shown->window.displayIfNeeded();
        }
    };
}

const int dragComposited = compare("DRAWING/drag-compositor-against-direct", atLeast(3), [] {
    return Pair { drag(std::make_shared<Shown>("mx", true)), drag(std::make_shared<Shown>("mx", false)) };
});

/// What can't be saved: parsing the XML and converting each number once.
void parseAndConvert(const std::string& text)
{
    xmlFreeDoc(xmlReadMemory(text.data(), int(text.size()), nullptr, nullptr, XML_PARSE_NONET));
    double sum = 0;
    for (const char* at = text.c_str(); *at;) {
        if ((*at >= '0' && *at <= '9') || *at == '.') {
            char* end = nullptr;
            sum += std::strtod(at, &end);
            at = end > at ? end : at + 1;
        } else {
            ++at;
        }
    }
    benchmark::DoNotOptimize(sum);
}

const int readingOverParsing = compare("DRAWING/reading-against-parsing", atMost(1.5), [] {
    const auto text = std::make_shared<std::string>(textOf("mx"));
    return Pair { [text] { app::svg::readDrawing(*text); }, [text] { parseAndConvert(*text); } };
});

} // namespace
