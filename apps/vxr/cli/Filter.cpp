#include "Commands.h"
#include "Console.h"
#include "Files.h"

#include <apps/vxr/import/Pictures.h>

#include <vxr/filters/VXRFilterAdaptor.h>
#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/graphics/Image.h>

namespace app {

namespace {

void filterPicture(const FilterOptions& options)
{
    const auto image = vxr::VXRFilteredImage::filteredImageWithImageBinary(readPicture(options.input));
    if (!options.levels.empty())
        image->setAutomaticLevels(options.levels == "channels" ? vxr::VXRAutomaticLevels::PerChannel
                                                               : vxr::VXRAutomaticLevels::Luminance);
    image->setClipFraction(options.clipPercent / 100);
    for (const auto& [property, value] : options.values)
        vxr::VXRFilterAdaptor::adaptorForProperty(property)->setValueForPropertyOnStack(
            value, property, *image->effectStack());
    const auto filtered = image->filteredImage();
    if (!filtered)
        throw std::runtime_error("the picture can't be read");
    const SignalsHeld held;
    std::string reason;
    if (!filtered->writePNG(options.output, &reason))
        throw std::runtime_error(reason);
}

} // namespace

int runFilter(const FilterOptions& options)
{
    Console console;
    try {
        filterPicture(options);
        return 0;
    } catch (const std::exception& error) {
        console.error(options.input, 0, error.what());
        return exitFailed;
    }
}

} // namespace app
