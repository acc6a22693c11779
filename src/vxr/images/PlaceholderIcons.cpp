#include <vxr/images/PlaceholderIcons.h>

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/pictures/PDFDocument.h>

namespace vxr {

namespace {

// Both show a picture's sheet; they are drawn at one unit a device pixel.
constexpr Rect iconBox { 0, 0, 32, 32 };

void setLine(Context& context, float width, const ColorValue& color)
{
    LineStyle line;
    line.width = width;
    line.cap = LineCap::Round;
    line.join = LineJoin::Round;
    context.setLineStyle(line);
    context.setStrokeColor(color);
}

void drawSheet(Context& context)
{
    context.setFillColor(ColorValue::gray(1));
    context.fillRect({ 3.5f, 5.5f, 25, 21 });
    setLine(context, 1, ColorValue::gray(0.35f));
    context.beginPath();
    context.addRect({ 3.5f, 5.5f, 25, 21 });
    context.strokePath();
    context.setFillColor(ColorValue::rgb(0.62f, 0.72f, 0.82f));
    context.fillRect({ 6, 8, 20, 16 });
    context.setFillColor(ColorValue::rgb(0.42f, 0.55f, 0.42f));
    context.beginPath();
    context.moveTo({ 6, 8 });
    context.lineTo({ 13, 17 });
    context.lineTo({ 17, 12 });
    context.lineTo({ 20, 15 });
    context.lineTo({ 26, 8 });
    context.closePath();
    context.fillPath(WindingRule::NonZero);
}

/// A question mark: nobody knows where the picture is.
void drawMissing(Context& context)
{
    drawSheet(context);
    setLine(context, 3, ColorValue::gray(1));
    const auto mark = [&] {
        context.beginPath();
        context.moveTo({ 12, 19 });
        context.curveTo({ 12, 24 }, { 20, 24 }, { 20, 19 });
        context.curveTo({ 20, 16 }, { 16, 17 }, { 16, 13.5f });
        context.moveTo({ 16, 10 });
        context.lineTo({ 16, 9.9f });
        context.strokePath();
    };
    mark();
    setLine(context, 1.75f, ColorValue::gray(0.2f));
    mark();
}

/// A crack from top to bottom: the picture is there and can't be read.
void drawBroken(Context& context)
{
    drawSheet(context);
    const auto crack = [&] {
        context.beginPath();
        context.moveTo({ 18, 27 });
        context.lineTo({ 14, 20 });
        context.lineTo({ 19, 16 });
        context.lineTo({ 13, 11 });
        context.lineTo({ 16, 5 });
        context.strokePath();
    };
    setLine(context, 4, ColorValue::gray(1));
    crack();
    setLine(context, 1.25f, ColorValue::rgb(0.7f, 0.15f, 0.1f));
    crack();
}

} // namespace

std::shared_ptr<const PDFDocument> placeholderIconNamed(std::string_view name)
{
    if (name == "missingImageIcon")
        return PDFDocument::createWithDrawing(iconBox, iconBox, drawMissing);
    if (name == "brokenImageIcon")
        return PDFDocument::createWithDrawing(iconBox, iconBox, drawBroken);
    return nullptr;
}

} // namespace vxr
