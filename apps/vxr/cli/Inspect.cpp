#include "Commands.h"
#include "Console.h"
#include "Files.h"

#include <apps/vxr/import/FocalGradient.h>
#include <apps/vxr/import/GroupRenderable.h>
#include <apps/vxr/import/Import.h>
#include <apps/vxr/import/OutlineStroke.h>

#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRShape.h>
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

std::string text(const vxr::VXRShapePainter* painter)
{
    if (const auto* color = dynamic_cast<const vxr::Color*>(painter))
        return text(*color);
    if (const auto* gradient = dynamic_cast<const vxr::VXRGradient*>(painter))
        return text(*gradient);
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

/// Prints a renderable and what is in it, one step further in for each group.
class TreePrinter {
public:
    explicit TreePrinter(const ImportedDrawing& drawing)
        : mDrawing(drawing)
    {
    }

    void print(const vxr::VXRRenderable& renderable, int depth)
    {
        const auto* group = dynamic_cast<const GroupRenderable*>(&renderable);
        const auto source = mDrawing.sources.find(&renderable);
        line(depth, "{} {}, line {}", group ? "group" : "shape", source->second.first, source->second.second);
        line(depth + 1, "bounds {}", text(renderable.alignmentBounds()));
        if (!renderable.transform().isIdentity())
            line(depth + 1, "transform {}", text(renderable.transform()));
        if (renderable.opacity() < 1)
            line(depth + 1, "opacity {}", number(renderable.opacity()));
        if (group)
            printGroup(*group, depth);
        else
            printStyles(dynamic_cast<const vxr::VXRShape&>(renderable), depth);
    }

private:
    void printGroup(const GroupRenderable& group, int depth)
    {
        for (const auto& path : group.clip())
            line(depth + 1, "clip {}, {} elements", text(path->bounds()), path->elementCount());
        for (const auto& child : group.children())
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

} // namespace

int runInspect(const InspectOptions& options)
{
    Console console;
    try {
        const svg::Drawing drawing = svg::readDrawing(readWholeFile(options.input, svg::XmlLimits {}.bytes));
        for (const svg::Warning& warning : drawing.warnings)
            console.warning(options.input, warning);
        const ImportedDrawing imported = importDrawing(drawing);
        fmt::print("{}: {} x {}, {} shapes\n", options.input, number(imported.size.width),
            number(imported.size.height), imported.shapeCount);
        TreePrinter printer(imported);
        for (const auto& renderable : imported.renderables)
            printer.print(*renderable, 1);
        return 0;
    } catch (const svg::DocumentError& error) {
        console.error(options.input, error.line, error.what());
    } catch (const std::exception& error) {
        console.error(options.input, 0, error.what());
    }
    return exitFailed;
}

} // namespace app
