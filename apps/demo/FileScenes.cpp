#include "Scene.h"

#include <vxr/geometry/Color.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/renderables/VXRImageRenderable.h>
#include <vxr/renderables/VXRShape.h>

#include <cmath>
#include <initializer_list>

// Pictures that come as files: their bytes are made here and read by the import program. Without it the
// scene shows placeholders.

namespace vxr::demo {

namespace {

constexpr Size fileSize { 120, 80 };

/// A fan of blades in inks.
std::string postScript()
{
    return "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 120 80\n%%EndComments\n"
           "0.05 0 0.15 0 setcmykcolor 0 0 120 80 rectfill\n"
           "60 8 translate\n"
           "0 10 180 { gsave dup rotate 180 div dup 1 exch sub 0.2 0 setcmykcolor\n"
           "  newpath 6 0 moveto 30 -7 50 -5 66 0 curveto 50 5 30 7 6 0 curveto fill grestore } for\n"
           "0 0 0 0.8 setcmykcolor newpath 0 0 7 0 360 arc fill\n"
           "showpage\n%%EOF\n";
}

class Bytes {
public:
    Bytes& words(std::initializer_list<int> values) ///< of 16 bits, the higher byte first
    {
        for (const int value : values) {
            mBytes += static_cast<char>(value >> 8);
            mBytes += static_cast<char>(value);
        }
        return *this;
    }
    Bytes& little(std::uint32_t value, int size)
    {
        for (int i = 0; i < size; ++i)
            mBytes += static_cast<char>(value >> 8 * i);
        return *this;
    }
    Bytes& byte(std::uint8_t value)
    {
        mBytes += static_cast<char>(value);
        return *this;
    }
    const std::string& text() const { return mBytes; }

private:
    std::string mBytes;
};

/// A house by a QuickDraw pen.
std::string pict()
{
    enum { frameRect = 0x30, paintRect = 0x31, paintOval = 0x51, paintPolygon = 0x71, penSize = 7 };
    Bytes bytes;
    const auto color = [&](int red, int green, int blue) {
        bytes.words({ 0x1a, red * 257, green * 257, blue * 257 });
    };
    const auto box = [&](int opcode, int top, int left, int bottom, int right) {
        bytes.words({ opcode, top, left, bottom, right });
    };
    bytes.words({ 0, 0, 0, 80, 120, 0x0011, 0x02ff, 0x0c00 }); // size, frame, version 2, header
    bytes.words({ -1, -1, 0, 0, 0, 0, 120, 0, 80, 0, 0, 0 });
    color(205, 225, 240);
    box(paintRect, 0, 0, 80, 120);
    color(250, 205, 90);
    box(paintOval, 6, 90, 28, 112);
    color(110, 150, 80);
    box(paintRect, 64, 0, 80, 120);
    color(225, 205, 170);
    box(paintRect, 36, 34, 68, 86);
    color(170, 70, 55);
    bytes.words({ paintPolygon, 22, 12, 26, 36, 94, 36, 26, 12, 60, 36, 94 });
    color(80, 60, 50);
    box(paintRect, 46, 42, 68, 54);
    bytes.words({ penSize, 2, 2 });
    box(frameRect, 42, 64, 56, 80);
    bytes.words({ 0xff });
    return bytes.text();
}

/// A page of a document, by the library itself.
std::string page()
{
    std::string bytes;
    const auto paper = DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        bytes.append(reinterpret_cast<const char*>(data), size);
        return true;
    });
    const Rect sheet { { 0, 0 }, fileSize };
    paper->beginPage({ .media = sheet, .crop = {}, .bleed = {}, .trim = {}, .art = {} });
    paper->setFillColor(ColorValue::rgb(0.97f, 0.95f, 0.90f));
    paper->fillRect(sheet);
    for (int ring = 0; ring < 5; ++ring) {
        const float radius = 30 - 6 * static_cast<float>(ring);
        paper->setFillColor(
            ring % 2 ? ColorValue::rgb(0.97f, 0.95f, 0.90f) : ColorValue::rgb(0.2f, 0.35f, 0.6f));
        paper->fillPath(*Path::pathWithOvalInRect({ 38 - radius, 40 - radius, 2 * radius, 2 * radius }),
            WindingRule::NonZero);
    }
    for (int line = 0; line < 9; ++line)
        paper->fillRect({ 76, 12 + 6 * static_cast<float>(line), line % 4 ? 34.0f : 22.0f, 2 });
    paper->endPage();
    paper->close();
    return bytes;
}

/// Four inks, as they lie in a file for print.
std::string fourInks()
{
    constexpr std::uint32_t width = 120, height = 80, start = 8, inks = 4;
    constexpr std::uint32_t shortType = 3, longType = 4, entries = 10;
    constexpr std::uint32_t bits = start + 2 + entries * 12 + 4, strip = bits + 2 * inks;
    Bytes bytes;
    bytes.little('I' | 'I' << 8 | 42 << 16, 4).little(start, 4).little(entries, 2);
    const auto entry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t count, std::uint32_t value) {
        bytes.little(tag, 2).little(type, 2).little(count, 4).little(value, 4);
    };
    entry(256, longType, 1, width);
    entry(257, longType, 1, height);
    entry(258, shortType, inks, bits);
    entry(259, shortType, 1, 1); // not compressed
    entry(262, shortType, 1, 5); // inks
    entry(273, longType, 1, strip);
    entry(277, shortType, 1, inks);
    entry(278, longType, 1, height);
    entry(279, longType, 1, width * height * inks);
    entry(332, shortType, 1, 1); // cyan, magenta, yellow, black
    bytes.little(0, 4);
    for (std::uint32_t ink = 0; ink < inks; ++ink)
        bytes.little(8, 2);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (std::uint32_t ink = 0; ink < inks; ++ink) {
                const float u = static_cast<float>(x) / width, v = static_cast<float>(y) / height;
                const float angle = 6.2832f * (u - static_cast<float>(ink) / 3);
                const float amount = ink == 3 ? 0.8f * v * v : 0.5f + 0.45f * std::cos(angle);
                bytes.byte(static_cast<std::uint8_t>(255 * amount));
            }
    return bytes.text();
}

std::shared_ptr<VXRImageBinary> binaryOf(const std::string& bytes, const std::string& name)
{
    return VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(
        Data::dataWithBytes(bytes.data(), bytes.size()), name, 0, nullptr);
}

std::shared_ptr<VXRImageBinary> binaryOfPostScript()
{
    const std::string eps = postScript();
    const auto pdf = VXRImageBinary::pdfDataFromEPSDataPathError(
        Data::dataWithBytes(eps.data(), eps.size()), "fan.eps", nullptr);
    return pdf ? VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(pdf, "fan.pdf", 0, nullptr)
               : nullptr;
}

std::shared_ptr<VXRRenderable> placed(const std::shared_ptr<VXRImageBinary>& binary, float x)
{
    const Rect frame { { x, 12 }, fileSize };
    if (binary) {
        auto picture = VXRImageRenderable::imageRenderableWithImageBinary(binary);
        picture->setFrame(frame);
        return picture;
    }
    auto shape = VXRShape::shapeWithRect(frame);
    auto fill = VXRImageFill::imageFillWithMissingImageOfSize(fileSize);
    fill->setTechnique(VXRImageFillStretch);
    shape->setFill(std::move(fill));
    shape->setStroke(nullptr);
    return shape;
}

Renderables filePictures()
{
    static const bool canRead = Importer::shared().isAvailable();
    static const std::vector<std::shared_ptr<VXRImageBinary>> binaries = canRead
        ? std::vector { binaryOfPostScript(), binaryOf(pict(), "house.pict"), binaryOf(page(), "page.pdf"),
              binaryOf(fourInks(), "inks.tif") }
        : std::vector<std::shared_ptr<VXRImageBinary>>(4);
    Renderables list;
    for (const auto& binary : binaries)
        list.push_back(placed(binary, 12 + 136 * static_cast<float>(list.size())));
    return list;
}

} // namespace

std::vector<Scene> fileScenes()
{
    const auto draw = [](Context& context) {
        for (const auto& renderable : filePictures())
            renderable->renderLayeredIntoContext(context);
    };
    return { { "image-files",
        "Files: PostScript, a PICT drawing, a page of a document and a picture of four inks.", { 552, 104 },
        draw, filePictures } };
}

} // namespace vxr::demo
