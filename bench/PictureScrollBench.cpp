#include <bench/Compare.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/imaging/ImportProgram.h>
#include <vxr/renderables/VXRImageRenderable.h>

#include <vips/vips.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

// A page of more photographs than memory holds.

namespace {

using namespace vxr;
using vxr::bench::atMost;

constexpr int photographs = 200, columns = 4;
constexpr float width = 280, height = 210; ///< of each on the page

std::string photograph()
{
    constexpr int wide = 4000, high = 3000;
    std::vector<std::uint8_t> pixels;
    pixels.reserve(std::size_t { wide } * high * 3);
    unsigned grain = 1;
    for (int y = 0; y < high; ++y)
        for (int x = 0; x < wide; ++x)
            for (int band = 0; band < 3; ++band) {
                grain = grain * 1664525 + 1013904223;
                pixels.push_back(std::uint8_t(
                    120 + 90 * std::sin(x * 0.004 + band) * std::cos(y * 0.003) + (grain >> 28)));
            }
    VipsImage* image
        = vips_image_new_from_memory(pixels.data(), pixels.size(), wide, high, 3, VIPS_FORMAT_UCHAR);
    void* bytes = nullptr;
    std::size_t size = 0;
    vips_image_write_to_buffer(image, ".jpg[Q=75]", &bytes, &size, nullptr);
    g_object_unref(image);
    std::string file(static_cast<const char*>(bytes), size);
    g_free(bytes);
    return file;
}

double residentBytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            return std::strtod(line.c_str() + 6, nullptr) * 1024;
    return 0;
}

class PhotographFolder {
public:
    PhotographFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vxr-photographs-XXXXXX").string();
        mPath = ::mkdtemp(name.data());
        const std::string file = photograph();
        for (int i = 0; i < photographs; ++i) // no two of the same bytes
            std::ofstream(path(i), std::ios::binary) << file << "photograph " << i;
    }
    ~PhotographFolder() { std::filesystem::remove_all(mPath); }

    std::string path(int i) const { return mPath + "/" + std::to_string(i) + ".jpg"; }

private:
    std::string mPath;
};

/// The highest memory of the process, above that before, while the page scrolls by.
const int scroll = bench::measure("IMAGE/scrolling-200-photographs-memory-over-budget", atMost(1), [] {
    VIPS_INIT("bench");
    Importer::setShared(std::make_shared<ImportProgram>(VXR_IMPORT));
    const PhotographFolder folder;
    const double before = residentBytes();
    double peak = before;
    {
        VXEDataManager manager;
        std::vector<std::shared_ptr<VXRImageRenderable>> page;
        for (int i = 0; i < photographs; ++i) {
            auto picture = VXRImageRenderable::imageRenderableWithImageBinary(
                VXRImageBinary::imageBinaryFromFileUsingDataManager(folder.path(i), &manager));
            picture->setFrame({ 10 + (width + 10) * float(i % columns),
                10 + (height + 10) * float(i / columns), width, height });
            page.push_back(std::move(picture));
            peak = std::max(peak, residentBytes());
        }
        const auto window = BitmapContext::createBitmap(1200, 800);
        const CurrentContextScope current(*window, true, true);
        const float end = (height + 10) * photographs / columns;
        for (float top = 0; top < end; top += 400) {
            StateSaver saved(*window);
            window->translate(0, 800 + top);
            window->scale(1, -1);
            for (const auto& picture : page)
                if (picture->alignmentBounds().maxY() > top && picture->alignmentBounds().minY() < top + 800)
                    picture->renderLayeredIntoContext(*window);
            peak = std::max(peak, residentBytes());
        }
    }
    Importer::setShared(nullptr);
    return (peak - before) / double(VXUObjectFlusher::defaultBudget);
});

} // namespace
