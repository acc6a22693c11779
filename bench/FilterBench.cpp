#include <bench/Compare.h>
#include <bench/FilterScene.h>

#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/platform/graphics/Image.h>

#include <cstring>
#include <iterator>

// Colour adjustments of a photograph of twelve million pixels.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::FilterScene;
using vxr::bench::Pair;

std::vector<bench::FilterSetting> allSettings()
{
    return { std::begin(bench::allFilterSettings), std::end(bench::allFilterSettings) };
}

const int chain = bench::compare("FILTER/chain-of-seven-vs-memcpy", atMost(25), [] {
    const auto scene = std::make_shared<FilterScene>();
    const auto all = bench::chainOf(allSettings());
    return Pair { [=] { scene->filter(all); },
        [=] { std::memcpy(scene->out.data(), scene->pixels.data(), 4 * scene->pixels.size()); } };
});

const int six = bench::compare("FILTER/six-point-filters-vs-saturation-alone", atMost(2), [] {
    const auto scene = std::make_shared<FilterScene>();
    auto settings = allSettings();
    const auto one = bench::chainOf({ settings[2] });
    settings.erase(settings.begin() + 3);
    const auto points = bench::chainOf(settings);
    return Pair { [=] { scene->filter(points); }, [=] { scene->filter(one); } };
});

const int radius = bench::compare("FILTER/unsharp-mask-of-radius-50-vs-1", atMost(1.3), [] {
    const auto scene = std::make_shared<FilterScene>();
    return Pair { [=] { scene->filter({ FilterOperation::sharpen(0.5f, 50) }); },
        [=] { scene->filter({ FilterOperation::sharpen(0.5f, 1) }); } };
});

std::shared_ptr<VXRFilteredImage> filteredImage(const FilterScene& scene)
{
    const auto image = VXRFilteredImage::filteredImageWithImageRef(Image::createWithCopy(
        ImageLayout::nativeARGB(FilterScene::width, FilterScene::height, 4 * FilterScene::width),
        scene.pixels.data(), 4 * scene.pixels.size()));
    for (const auto& setting : bench::allFilterSettings)
        image->effectStack()->appendFilter(bench::filterOf(setting));
    return image;
}

/// One step of the slider of the top layer, as it is shown during the drag and after it.
const int drag = bench::compare("FILTER/drag-preview-step-vs-whole-step", atMost(0.2), [] {
    const FilterScene scene;
    const auto dragged = filteredImage(scene), whole = filteredImage(scene);
    dragged->setPreviewing(true);
    const auto step = [](VXRFilteredImage& image) {
        VXRFilter& top = *image.effectStack()->filterAtIndex(7);
        top.setValueForKey(top.valueForKey("inputBlack") == 0.05f ? 0.06f : 0.05f, "inputBlack");
        static_cast<void>(image.drawingImage());
    };
    return Pair { [=] { step(*dragged); }, [=] { step(*whole); } };
});

/// With what lies below the top layer kept, and without.
const int kept = bench::compare("FILTER/top-layer-with-lower-ones-kept-vs-all", atMost(0.6), [] {
    const auto scene = std::make_shared<FilterScene>();
    const auto image = filteredImage(*scene);
    const auto all = bench::chainOf(allSettings());
    return Pair { [=] {
                     VXRFilter& top = *image->effectStack()->filterAtIndex(7);
                     top.setValueForKey(top.valueForKey("inputBlack") == 0.05f ? 0.06f : 0.05f, "inputBlack");
                     static_cast<void>(image->filteredImage());
                 },
        [=] { scene->filter(all); } };
});

} // namespace
