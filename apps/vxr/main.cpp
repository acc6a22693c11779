#include <apps/vxr/cli/Commands.h>

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    try {
        const app::Command command = app::parseCommandLine(argc, argv);
        if (const auto* render = std::get_if<app::RenderOptions>(&command))
            return app::runRender(*render);
        if (const auto* filter = std::get_if<app::FilterOptions>(&command))
            return app::runFilter(*filter);
        if (const auto* convert = std::get_if<app::ConvertOptions>(&command))
            return app::runConvert(*convert);
        if (const auto* inspect = std::get_if<app::InspectOptions>(&command))
            return app::runInspect(*inspect);
        if (const auto* gallery = std::get_if<app::GalleryOptions>(&command))
            return app::runGallery(*gallery);
        if (const auto* report = std::get_if<app::ReportOptions>(&command))
            return app::runReport(*report);
        return std::get<int>(command);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vxr: error: %s\n", error.what());
        return app::exitFailed;
    }
}
