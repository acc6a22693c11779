#include "Commands.h"
#include "Console.h"
#include "Files.h"
#include "InspectPicture.h"

#include <apps/document/Document.h>
#include <apps/document/PageDrawing.h>
#include <apps/vxr/import/FocalGradient.h>
#include <apps/vxr/import/Import.h>
#include <apps/vxr/import/OutlineStroke.h>
#include <apps/vxr/import/Pictures.h>

#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRPictureRenderer.h>
#include <vxr/renderables/VXRGroup.h>
#include <vxr/renderables/VXRImageRenderable.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRReflectionRenderable.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <fmt/format.h>

namespace app {

namespace {

std::string number(float v) { return fmt::format("{:.6g}", v == 0 ? 0.0f : v); }

std::string text(const vxr::Rect& r)
{
    return fmt::format("({}, {}) {} x {}", number(r.origin.x), number(r.origin.y), number(r.size.width),
        number(r.size.height));
}

std::string text(const vxr::AffineTransform& t)
{
    return fmt::format("[{} {} {} {} {} {}]", number(t.m11), number(t.m12), number(t.m21), number(t.m22),
        number(t.tX), number(t.tY));
}

std::string text(const vxr::Color& color)
{
    const auto byte = [](float v) { return static_cast<int>(v * 255 + 0.5f); };
    const std::string rgb = fmt::format("#{:02x}{:02x}{:02x}", byte(color.redComponent()),
        byte(color.greenComponent()), byte(color.blueComponent()));
    return color.alphaComponent() < 1 ? rgb + " alpha " + number(color.alphaComponent()) : rgb;
}

std::string text(const vxr::VXRGradient& gradient)
{
    const char* kind = dynamic_cast<const FocalGradient*>(&gradient) ? "focal gradient"
        : gradient.gradientType() == vxr::VXRLinearGradient          ? "linear gradient"
                                                                     : "radial gradient";
    std::string result = fmt::format("{}, {} stops", kind, gradient.gradientStops().size());
    if (gradient.opacity() < 1)
        result += ", opacity " + number(gradient.opacity());
    return result;
}

std::string text(const vxr::VXRImageBinary* binary)
{
    if (!binary)
        return "no picture";
    return "picture '" + binary->name() + "'" + (binary->isMissing() ? ", missing" : "");
}

std::string text(const vxr::VXRShapePainter* painter)
{
    if (const auto* color = dynamic_cast<const vxr::Color*>(painter))
        return text(*color);
    if (const auto* gradient = dynamic_cast<const vxr::VXRGradient*>(painter))
        return text(*gradient);
    if (const auto* fill = dynamic_cast<const vxr::VXRImageFill*>(painter)) {
        const auto* picture = dynamic_cast<const vxr::VXRPictureRenderer*>(fill->renderer().get());
        return picture ? text(picture->binary().get()) : "picture";
    }
    return "none";
}

std::string dashText(const float* dash, std::size_t count, float unit)
{
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += (i ? " " : ", dashes ") + number(dash[i] * unit);
    return result;
}

std::string text(const vxr::VXRStroke& stroke)
{
    static constexpr const char* caps[] = { "butt", "round", "square" };
    static constexpr const char* joins[] = { "miter", "round", "bevel" };
    const auto* outlined = dynamic_cast<const OutlineStroke*>(&stroke);
    std::string result = text(outlined ? outlined->painter().get() : stroke.color().get());
    result += fmt::format(
        ", {} wide, {} caps, {} joins", number(stroke.width()), caps[stroke.cap()], joins[stroke.join()]);
    if (outlined)
        result += dashText(outlined->pen().dash.data(), outlined->pen().dash.size(), 1) + ", as an outline";
    else
        result += dashText(
            stroke.pattern()->pattern(), static_cast<std::size_t>(stroke.pattern()->count()), stroke.width());
    return result;
}

template <class Class> bool isA(const vxr::VXRRenderable& renderable)
{
    return dynamic_cast<const Class*>(&renderable) != nullptr;
}

const char* kindOf(const vxr::VXRRenderable& renderable)
{
    if (isA<vxr::VXRGroup>(renderable))
        return "group";
    if (isA<vxr::VXRLine>(renderable))
        return "line";
    if (isA<vxr::VXRStar>(renderable))
        return "star";
    if (isA<vxr::VXRRegularPolygon>(renderable))
        return "polygon";
    if (isA<vxr::VXRShape>(renderable))
        return "shape";
    if (isA<vxr::VXRImageRenderable>(renderable))
        return "picture";
    return isA<vxr::VXRReflectionRenderable>(renderable) ? "reflection" : "unknown";
}

/// Prints a renderable and its contents, indented by group.
class TreePrinter {
public:
    explicit TreePrinter(const ImportedDrawing& drawing)
        : mDrawing(drawing)
    {
    }

    void print(const vxr::VXRRenderable& renderable, int depth)
    {
        const auto* group = dynamic_cast<const vxr::VXRGroup*>(&renderable);
        line(depth, "{}", titleOf(renderable));
        line(depth + 1, "bounds {}", text(renderable.alignmentBounds()));
        if (!renderable.transform().isIdentity())
            line(depth + 1, "transform {}", text(renderable.transform()));
        if (renderable.opacity() < 1)
            line(depth + 1, "opacity {}", number(renderable.opacity()));
        if (group)
            printGroup(*group, depth);
        else if (const auto* shape = dynamic_cast<const vxr::VXRShape*>(&renderable))
            printStyles(*shape, depth);
        else if (const auto* image = dynamic_cast<const vxr::VXRImageRenderable*>(&renderable))
            line(depth + 1, "{}{}", text(image->imageBinary().get()),
                image->hasCrop() ? ", cropped to " + text(image->crop()) : "");
    }

private:
    std::string titleOf(const vxr::VXRRenderable& renderable) const
    {
        std::string title = kindOf(renderable);
        const auto found = mDrawing.sources.find(&renderable);
        if (found == mDrawing.sources.end())
            return title;
        const auto& [label, number] = found->second;
        if (!label.empty())
            title += " " + label;
        return number > 0 ? fmt::format("{}, line {}", title, number) : title;
    }

    void printGroup(const vxr::VXRGroup& group, int depth)
    {
        for (const auto& path : group.clipPaths())
            line(depth + 1, "clip {}, {} elements", text(path->bounds()), path->elementCount());
        for (const auto& child : group.renderables())
            print(*child, depth + 1);
    }

    void printStyles(const vxr::VXRShape& shape, int depth)
    {
        line(depth + 1, "path of {} elements, {}", shape.path()->elementCount(),
            shape.path()->windingRule() == vxr::WindingRule::EvenOdd ? "even-odd" : "nonzero");
        if (shape.fill())
            line(depth + 1, "fill {}", text(shape.fill().get()));
        if (shape.stroke())
            line(depth + 1, "stroke {}", text(*shape.stroke()));
        if (shape.tailLineEnd())
            line(depth + 1, "line end at the start");
        if (shape.headLineEnd())
            line(depth + 1, "line end at the end");
    }

    template <typename... Arguments>
    void line(int depth, fmt::format_string<Arguments...> format, Arguments&&... arguments)
    {
        fmt::print("{:{}}{}\n", "", depth * 2, fmt::format(format, std::forward<Arguments>(arguments)...));
    }

    const ImportedDrawing& mDrawing;
};

void printTree(const ImportedDrawing& drawing, int depth)
{
    TreePrinter printer(drawing);
    for (const auto& renderable : drawing.renderables)
        printer.print(*renderable, depth);
}

void inspectDrawing(const std::string& input, Console& console)
{
    const svg::Drawing drawing = svg::readDrawing(readWholeFile(input, svg::XmlLimits {}.bytes));
    for (const svg::Warning& warning : drawing.warnings)
        console.warning(input, warning);
    const ImportedDrawing imported = importDrawing(drawing, folderOf(input));
    for (const svg::Warning& warning : imported.warnings)
        console.warning(input, warning);
    fmt::print("{}: {} x {}, {} shapes\n", input, number(imported.size.width), number(imported.size.height),
        imported.shapeCount);
    printTree(imported, 1);
}

/// False when something of the document was lost.
bool inspectDocument(const std::string& input, Console& console)
{
    const std::unique_ptr<Document> document = Document::open(input);
    fmt::print("{}: {} pages, {} styles, {} pictures\n", input, document->pageCount(),
        document->styles.size(), document->data()->names().size());
    for (std::size_t i = 0; i < document->pageCount(); ++i) {
        const DocumentPage& page = document->page(i);
        const ImportedDrawing drawing = drawingFrom(page);
        fmt::print("  page {}: {} x {}, {} shapes\n", i + 1, number(page.size.width),
            number(page.size.height), drawing.shapeCount);
        if (page.background)
            fmt::print("    background {}\n", text(*page.background));
        for (const Guide& guide : page.guides)
            fmt::print("    {} guide at {}\n", guide.isHorizontal ? "horizontal" : "vertical",
                number(guide.position));
        printTree(drawing, 2);
    }
    for (const std::string& loss : document->losses())
        console.warning(input, { 0, loss });
    return document->losses().empty();
}

} // namespace

int runInspect(const InspectOptions& options)
{
    Console console;
    try {
        if (isDocumentFile(options.input))
            return inspectDocument(options.input, console) ? 0 : exitFailed;
        if (isPicture(options.input))
            inspectPicture(options.input);
        else
            inspectDrawing(options.input, console);
        return 0;
    } catch (const svg::DocumentError& error) {
        console.error(options.input, error.line, error.what());
    } catch (const std::exception& error) {
        console.error(options.input, 0, error.what());
    }
    return exitFailed;
}

} // namespace app
