#include <bench/Compare.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/images/VXRImageRenderer.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/imaging/ImportProgram.h>

#include <cstring>
#include <memory>
#include <vector>

// Pictures as they are drawn, once decoded.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::Pair;

constexpr int side = 2000;

std::shared_ptr<const Image> opaqueImage(int width, int height)
{
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < width * height; ++i)
        pixels.push_back(0xff000000 | static_cast<std::uint32_t>(i) * 2654435761u >> 8);
    ImageLayout layout = ImageLayout::nativeARGB(width, height, 4 * static_cast<std::size_t>(width));
    layout.alpha = AlphaFormat::NoneSkipFirst;
    layout.isFullAlpha = true;
    return Image::createWithCopy(layout, pixels.data(), 4 * pixels.size());
}

const int tiles = bench::compare("IMAGE/tile-2000-by-2000-vs-memcpy", atMost(4), [] {
    const auto bitmap = BitmapContext::createBitmap(side, side);
    const auto fill = VXRImageFill::imageFillWithImageRef(opaqueImage(10, 20));
    constexpr std::size_t bytes = std::size_t { side } * side * 4;
    const auto source = std::make_shared<std::vector<std::uint8_t>>(bytes, std::uint8_t { 1 });
    const auto target = std::make_shared<std::vector<std::uint8_t>>(bytes);
    return Pair { [bitmap, fill] {
                     const CurrentContextScope current(*bitmap, true, true);
                     fill->paintRect({ 0, 0, side, side });
                 },
        [source, target] { std::memcpy(target->data(), source->data(), source->size()); } };
});

/// A page of text-like marks, written by the library itself.
std::shared_ptr<const Data> writtenPage()
{
    auto bytes = std::make_shared<MutableData>();
    const auto paper = DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        bytes->appendBytes(data, size);
        return true;
    });
    paper->beginPage({ .media = { 0, 0, 600, 800 }, .crop = {}, .bleed = {}, .trim = {}, .art = {} });
    for (int i = 0; i < 4000; ++i)
        paper->fillRect({ static_cast<float>(40 + i % 60 * 9), static_cast<float>(40 + i / 60 * 11), 7, 5 });
    paper->close();
    return bytes;
}

/// The first thing seen after a zoom, in milliseconds: the pixels at hand, stretched over a window, while
/// those of the new resolution are left for later.
const int zoomedPage = bench::measure("IMAGE/zoomed-page-first-pixels-ms", atMost(16.7), [] {
    Importer::setShared(std::make_shared<ImportProgram>(VXR_IMPORT));
    const auto binary
        = VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(writtenPage(), "page.pdf", 0, nullptr);
    const auto renderer = binary->imageRenderer();
    const auto bitmap = BitmapContext::createBitmap(1200, 800);
    const CurrentContextScope current(*bitmap, true, false);
    renderer->setMayDrawLater(true);
    renderer->drawInRect({ 0, 0, 600, 800 });
    float factor = 2; // another one each time
    const double nanoseconds = bench::nanosecondsPerCall([&] {
        factor = factor < 3 ? factor * 1.0003f : 2;
        renderer->drawInRect({ -100, -200, 600 * factor, 800 * factor });
    });
    Importer::setShared(nullptr);
    return nanoseconds / 1e6;
});

} // namespace
